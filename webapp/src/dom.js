// The few words by which elements are made.

import { icons } from './icons.js';

const svg = 'http://www.w3.org/2000/svg';

function set(element, name, value) {
  if (name.startsWith('on'))
    element.addEventListener(name.slice(2), value);
  else if (name === 'value' || name === 'checked' || name === 'text')
    element[name === 'text' ? 'textContent' : name] = value;
  else if (value === true)
    element.setAttribute(name, '');
  else if (value !== false && value !== undefined && value !== null)
    element.setAttribute(name, value);
}

// h('button', { class: 'x', onclick: f }, 'text', child); false and null are no children.
export function h(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties))
    set(element, name, value);
  element.append(...children.filter(child => child !== null && child !== undefined && child !== false));
  return element;
}

const drawn = new Map(); // to be copied: each row has some

export function icon(name) {
  if (!drawn.has(name))
    drawn.set(name, draw(name));
  return drawn.get(name).cloneNode(true);
}

function draw(name) {
  const picture = document.createElementNS(svg, 'svg');
  picture.setAttribute('viewBox', '0 0 24 24');
  picture.setAttribute('aria-hidden', 'true');
  picture.setAttribute('class', `icon icon-${name}`);
  const path = document.createElementNS(svg, 'path');
  path.setAttribute('d', icons[name]);
  picture.append(path);
  return picture;
}

// A button with a picture; its text is shown, or only told.
export function button(text, picture, onclick, { quiet = false, ...more } = {}) {
  return h('button', {
    type: 'button', class: quiet ? 'button quiet' : 'button', onclick,
    ...(quiet ? { 'aria-label': text, title: text } : {}), ...more,
  }, picture && icon(picture), !quiet && h('span', {}, text));
}

// A name that is cut in its middle where there is no room: the end tells files apart. Among letters
// that go to the left no cut is in order, but after the last of them.
const tailLength = 8;
const longestTail = 16;
const toTheLeft = /[\u0590-\u08ff\ufb1d-\ufdff\ufe70-\ufefc\u{10800}-\u{10fff}\u{1e800}-\u{1efff}]/u;

function tailStart(characters) {
  const cut = characters.length - tailLength;
  const start = characters.findLastIndex(character => toTheLeft.test(character)) + 1;
  if (start === 0)
    return cut < tailLength ? characters.length : cut;
  return characters.length - start > longestTail ? characters.length : start;
}

export function cutName(label) {
  const characters = [...label];
  const start = tailStart(characters);
  return h('bdi', { class: 'name', title: label },
    h('span', { class: 'name-head' }, characters.slice(0, start).join('')),
    start < characters.length && h('span', { class: 'name-tail' }, characters.slice(start).join('')));
}

export function debounced(ms, action) {
  let timer;
  return () => {
    clearTimeout(timer);
    timer = setTimeout(action, ms);
  };
}

export function throttled(ms, action) {
  let last = 0;
  return value => {
    if (performance.now() - last < ms)
      return;
    last = performance.now();
    action(value);
  };
}

function onceBy(schedule, action) {
  let isDue = false;
  return () => {
    if (isDue)
      return;
    isDue = true;
    schedule(() => {
      isDue = false;
      action();
    });
  };
}

// At most once for all that happens in one go.
export const perTask = action => onceBy(queueMicrotask, action);

// At most once a frame.
export const perFrame = action => onceBy(requestAnimationFrame, action);
