// What can be done with one entry, beside it.

import { h, icon } from './dom.js';
import { saveByLink } from './save.js';

let open = null;

export function closeMenu() {
  open?.close();
}

function place(menu, anchor, point) {
  const box = anchor?.getBoundingClientRect();
  const x = point ? point.clientX : box.right - menu.offsetWidth;
  const y = point ? point.clientY : box.bottom;
  const most = document.documentElement;
  menu.style.left = `${Math.max(8, Math.min(x, most.clientWidth - menu.offsetWidth - 8))}px`;
  menu.style.top = `${Math.max(8, Math.min(y, most.clientHeight - menu.offsetHeight - 8))}px`;
}

function walk(event, menu) {
  const items = [...menu.querySelectorAll('button, a')];
  const at = items.indexOf(document.activeElement);
  const next = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: -1 }[event.key];
  if (event.key === 'Escape' || event.key === 'Tab')
    menu.close();
  else if (next === undefined)
    return;
  else
    items.at(next % items.length).focus();
  event.preventDefault();
  event.stopPropagation();
}

// `items` are { text, picture, run }, or with `href` in place of `run` what is downloaded; `anchor` is an element, `point` an event's place.
export function showMenu(entry, items, anchor, point) {
  closeMenu();
  const before = document.activeElement;
  let chosen = null;
  const menu = h('dialog', { class: 'menu', 'aria-label': entry.label, onkeydown: event => walk(event, menu) },
    ...items.map(({ text, picture, run, href }) => (href
      ? h('a', { href, download: '', onclick: event => {
        menu.close();
        saveByLink(event);
      } }, icon(picture), text)
      : h('button', { type: 'button', onclick: () => {
        chosen = run;
        menu.close();
      } }, icon(picture), text))));
  menu.addEventListener('close', () => {
    if (open === menu)
      open = null;
    menu.remove();
    before?.focus();
    // Only now: what it gives the keyboard to keeps it.
    chosen?.();
  });
  menu.addEventListener('click', event => event.target === menu && menu.close());
  document.body.append(menu);
  open = menu;
  menu.showModal();
  place(menu, anchor, point);
}

document.addEventListener('scroll', closeMenu, { capture: true, passive: true });
