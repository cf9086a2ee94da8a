// The uploads on the page: a progress for each, and for all.

import { confirm } from '../dialog.js';
import { button, cutName, h } from '../dom.js';
import { shownName } from '../entry.js';
import { duration, number, pace, size } from '../format.js';
import { reason } from '../notices.js';
import { logIn } from '../session.js';
import { t } from '../texts.js';
import { Pace } from './pace.js';
import { forget, interrupted } from './transfer.js';

const mostShown = 40; // of any number of files: those that matter
const interval = 250; // ms between two looks at the progress
const urgency = { failed: 0, asking: 1, running: 2, retrying: 3, paused: 4, waiting: 5, done: 6, skipped: 7, cancelled: 8 };

const notes = {
  waiting: 'Waiting', asking: 'Name exists', paused: 'Paused', retrying: 'Connection lost, trying again',
  done: 'Done', skipped: 'Skipped', cancelled: 'Cancelled',
};

class Line {
  constructor(item, queue) {
    this.item = item;
    this.bar = h('progress', { value: 0, 'aria-label': shownName(item.name) });
    this.note = h('span', { class: 'upload-note' });
    this.cancel = button(t('Cancel'), 'close', () => queue.cancel(item), { quiet: true });
    this.logIn = button(t('Log in'), null, logIn, { class: 'button upload-login' });
    this.retry = button(t('Try again'), 'retry', () => queue.retry(item), { quiet: true });
    this.element = h('li', { class: 'upload' }, h('div', { class: 'upload-name' }, cutName(shownName(item.name))),
      this.note, this.logIn, this.retry, this.cancel, this.bar);
  }

  #note({ state, error, sent, size: all }) {
    if (state === 'failed' || (state === 'retrying' && error?.status > 0))
      return reason(error);
    return state === 'running' ? `${size(sent)} / ${size(all)}` : t(notes[state]);
  }

  update() {
    const { item } = this;
    this.element.dataset.state = item.state;
    this.bar.max = Math.max(1, item.size);
    this.bar.value = item.size === 0 ? Number(item.state === 'done') : item.sent;
    this.cancel.hidden = item.isOver;
    this.retry.hidden = item.state !== 'failed';
    const note = this.#note(item);
    if (note !== this.note.textContent)
      this.note.replaceChildren(note);
    this.logIn.hidden = item.error?.status !== 401 || item.state !== 'retrying';
  }
}

export class UploadPanel {
  #queue;
  #lines = new Map();
  #pace = new Pace();
  #timer = null;

  constructor(queue) {
    this.#queue = queue;
    this.title = h('strong', { class: 'uploads-title' });
    this.facts = h('span', { class: 'uploads-facts' });
    this.pause = button(t('Pause'), 'pause', () => (queue.isPaused ? queue.resume() : queue.pause()), { quiet: true });
    this.stop = button(t('Cancel all'), 'close', () => this.#close(), { quiet: true });
    this.total = h('progress', { class: 'uploads-total', 'aria-label': t('All uploads') });
    this.list = h('ul', { class: 'upload-list' });
    // Told when it begins and ends; what lies between would never let a screen reader finish.
    this.element = h('section', { class: 'uploads', role: 'status', 'aria-label': t('Uploads'), 'aria-live': 'off', hidden: true },
      h('div', { class: 'uploads-head' }, h('div', { class: 'uploads-words' }, this.title, this.facts), this.pause, this.stop),
      this.total, this.list);
    queue.addEventListener('change', () => this.#due());
    this.#showInterrupted();
  }

  #due() {
    this.#timer ??= setTimeout(() => {
      this.#timer = null;
      this.#update();
    }, interval);
  }

  async #close() {
    if (this.#queue.isBusy && !await confirm(t('Cancel all uploads?'), t('What has arrived of them so far is given up.'), t('Cancel all')))
      return;
    this.#queue.cancelAll();
    this.#queue.clear();
    this.element.hidden = true;
  }

  #update() {
    const { items, isBusy, isPaused } = this.#queue;
    if (items.length === 0)
      return;
    this.element.hidden = false;
    this.#showTotal(items, isBusy, isPaused);
    const shown = items.length <= mostShown ? items
      : [...items].sort((a, b) => urgency[a.state] - urgency[b.state]).slice(0, mostShown);
    for (const item of shown) {
      if (!this.#lines.has(item))
        this.#lines.set(item, new Line(item, this.#queue));
      this.#lines.get(item).update();
    }
    const wanted = shown.map(item => this.#lines.get(item).element);
    if (wanted.length !== this.list.children.length || wanted.some((element, index) => this.list.children[index] !== element))
      this.list.replaceChildren(...wanted);
  }

  #showTotal(items, isBusy, isPaused) {
    const wanted = items.filter(({ state }) => state !== 'cancelled' && state !== 'skipped');
    const sum = of => wanted.reduce((total, item) => total + of(item), 0);
    const [all, sent] = [sum(item => item.size), sum(item => item.sent)];
    const done = items.filter(({ state }) => state === 'done').length;
    const speed = this.#pace.note(sent);
    this.total.max = Math.max(1, all);
    this.total.value = all ? sent : Number(!isBusy);
    this.title.textContent = isBusy ? t('Uploading {done} of {n}', { done: number(done), n: number(items.length) })
      : t('Uploaded: {n}', { n: number(done) });
    const facts = [`${size(sent)} / ${size(all)}`];
    if (isBusy && speed > 0 && !isPaused)
      facts.push(pace(speed), t('{time} left', { time: duration((all - sent) / speed) }));
    this.facts.textContent = facts.join(' · ');
    this.pause.hidden = !isBusy;
    const text = isPaused ? t('Resume') : t('Pause');
    if (this.pause.title !== text)
      this.pause.replaceWith(this.pause = button(text, isPaused ? 'play' : 'pause', () => (isPaused ? this.#queue.resume() : this.#queue.pause()), { quiet: true }));
    this.stop.title = isBusy ? t('Cancel all') : t('Close');
    this.stop.setAttribute('aria-label', this.stop.title);
  }

  // The page was left meanwhile: only the visitor can hand out the files again.
  async #showInterrupted() {
    const left = await interrupted();
    if (left.length === 0 || this.#queue.items.length > 0)
      return;
    this.element.hidden = false;
    this.title.textContent = t('Interrupted: {n}', { n: left.length });
    this.facts.textContent = t('Choose the same files again to go on.');
    this.total.value = 0;
    this.pause.hidden = true;
    this.list.replaceChildren(...left.map(each => {
      const line = h('li', { class: 'upload' }, h('div', { class: 'upload-name' }, cutName(shownName(each.metadata.filename))),
        button(t('Give up'), 'close', () => {
          forget(each);
          line.remove();
          this.element.hidden = this.list.children.length === 0;
        }, { quiet: true }));
      return line;
    }));
  }
}
