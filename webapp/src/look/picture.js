// A picture that fingers and wheel enlarge and move, and that is swiped aside.

import { ensureSession } from '../dav.js';
import { h } from '../dom.js';
import { isForeignPicture } from '../kinds.js';
import { hasPreview, previewPath } from '../previews.js';
import { explain, failure } from './contents.js';

const largest = 8; // times
const swipe = 60; // px

class Zoom {
  #stage;
  #picture;
  #step;
  #fingers = new Map();
  #scale = 1;
  #x = 0;
  #y = 0;
  #start = null; // of a swipe

  constructor(stage, picture, step) {
    this.#stage = stage;
    this.#picture = picture;
    this.#step = step;
    const events = {
      pointerdown: event => this.#down(event), pointermove: event => this.#move(event),
      pointerup: event => this.#up(event), pointercancel: event => this.#up(event),
      dblclick: event => this.#zoom(this.#scale > 1 ? 1 / this.#scale : 2.5, event.clientX, event.clientY),
      wheel: event => {
        event.preventDefault();
        this.#zoom(event.deltaY < 0 ? 1.2 : 1 / 1.2, event.clientX, event.clientY);
      },
    };
    for (const [name, listener] of Object.entries(events))
      picture.addEventListener(name, listener);
  }

  #down(event) {
    this.#picture.setPointerCapture(event.pointerId);
    this.#fingers.set(event.pointerId, { x: event.clientX, y: event.clientY });
    this.#start = this.#fingers.size === 1 ? { x: event.clientX, y: event.clientY } : null;
  }

  #spread() {
    const [a, b] = [...this.#fingers.values()];
    return { distance: Math.hypot(a.x - b.x, a.y - b.y), x: (a.x + b.x) / 2, y: (a.y + b.y) / 2 };
  }

  #move(event) {
    const finger = this.#fingers.get(event.pointerId);
    if (!finger)
      return;
    const before = this.#fingers.size === 2 ? this.#spread() : { ...finger };
    Object.assign(finger, { x: event.clientX, y: event.clientY });
    const after = this.#fingers.size === 2 ? this.#spread() : finger;
    if (this.#fingers.size === 2)
      this.#zoom(after.distance / before.distance, after.x, after.y);
    if (this.#scale > 1 || this.#fingers.size === 2)
      this.#y += after.y - before.y;
    this.#x += after.x - before.x;
    this.#apply();
  }

  #up(event) {
    const finger = this.#fingers.get(event.pointerId);
    if (!finger || !this.#fingers.delete(event.pointerId) || this.#fingers.size > 0)
      return;
    const way = this.#start && this.#scale === 1 ? finger.x - this.#start.x : 0;
    const ahead = document.dir === 'rtl' ? -1 : 1;
    if (Math.abs(way) > swipe && this.#step(way < 0 ? ahead : -ahead) !== false)
      return;
    if (this.#scale <= 1)
      this.#reset();
  }

  // About a point of the screen, which stays where it is.
  #zoom(factor, x, y) {
    const scale = Math.min(largest, Math.max(1, this.#scale * factor));
    const box = this.#stage.getBoundingClientRect();
    const [fromX, fromY] = [x - box.left - box.width / 2, y - box.top - box.height / 2];
    this.#x = fromX - (fromX - this.#x) * scale / this.#scale;
    this.#y = fromY - (fromY - this.#y) * scale / this.#scale;
    this.#scale = scale;
    if (scale === 1)
      return this.#reset();
    this.#apply();
  }

  #reset() {
    [this.#scale, this.#x, this.#y] = [1, 0, 0];
    this.#apply();
  }

  #apply() {
    this.#picture.style.transform = `translate(${this.#x}px, ${this.#y}px) scale(${this.#scale})`;
  }
}

// Whether it could be shown.
async function shows(picture, path, signal) {
  signal.addEventListener('abort', () => picture.removeAttribute('src'));
  try {
    picture.src = path;
    await picture.decode();
    return true;
  } catch {
    return false;
  }
}

// A picture is preceded by its preview, which takes the same place.
async function load(picture, entry, signal) {
  await ensureSession();
  const isPreceded = hasPreview(entry) && await shows(picture, previewPath(entry, 1280), signal);
  if (signal.aborted || (isPreceded && isForeignPicture(entry.name)))
    return true;
  if (!await shows(new Image(), entry.path, signal))
    return isPreceded;
  if (!signal.aborted)
    picture.src = entry.path;
  return true;
}

export function showPicture(stage, entry, signal, step) {
  const picture = h('img', { class: 'picture', alt: entry.label, draggable: 'false' });
  stage.append(picture);
  new Zoom(stage, picture, step);
  load(picture, entry, signal).then(isShown => isShown || explain(stage, entry, signal), failure(stage, entry, signal));
}
