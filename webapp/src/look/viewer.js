// Looks at the files of a folder, one after another, in front of everything. The address names the
// one that is seen, so it can be shared, and "back" closes it.

import { button, cutName, h, icon } from '../dom.js';
import { isViewable } from '../kinds.js';
import { lastSegment, parentOf } from '../paths.js';
import { saveByLink } from '../save.js';
import { session } from '../session.js';
import { t } from '../texts.js';
import { showDocument, showMedia, showText } from './contents.js';
import { showPicture } from './picture.js';

const shows = { picture: showPicture, video: showMedia, sound: showMedia, text: showText, pdf: showDocument };

// In its own folder, which isn't the one that is looked at for what was found below.
const addressOf = ({ path }) => `${parentOf(path)}#${lastSegment(path)}`;

export class Viewer {
  #folder;
  #closed;
  #entry = null;
  #at = 0; // its place among all
  #shown = new AbortController(); // ends what is shown

  // `closed(path)` is told what was seen last.
  constructor(folder, closed) {
    this.#folder = folder;
    this.#closed = closed;
    this.#build();
    addEventListener('popstate', () => this.follow());
    folder.addEventListener('change', () => this.#entry && this.#showPlace());
    session.addEventListener('resumed', () => this.stage.querySelector('.stage-note') && this.#show(this.#entry));
  }

  #build() {
    this.title = h('h2', { class: 'viewer-title' });
    this.stage = h('div', { class: 'stage' });
    this.save = h('a', { class: 'button quiet', download: '', onclick: saveByLink, 'aria-label': t('Download'), title: t('Download') }, icon('download'));
    this.before = button(t('Previous'), 'back', () => this.step(-1), { quiet: true });
    this.after = button(t('Next'), 'next', () => this.step(1), { quiet: true });
    this.dialog = h('dialog', { class: 'viewer', 'aria-label': t('View'), onkeydown: event => this.#pressed(event) },
      h('header', { class: 'viewer-head' }, this.title, this.before, this.after, this.save,
        button(t('Close'), 'close', () => this.leave(), { quiet: true, autofocus: true })),
      this.stage);
    this.dialog.addEventListener('cancel', event => {
      event.preventDefault();
      this.leave();
    });
    document.body.append(this.dialog);
  }

  get #all() {
    return this.#folder.shown.filter(isViewable);
  }

  open(entry) {
    history.pushState({ isViewing: true }, '', addressOf(entry));
    this.#show(entry);
  }

  // Back to the folder: by the history where it was opened from there.
  leave() {
    if (history.state?.isViewing)
      return history.back();
    history.replaceState(history.state, '', location.pathname);
    this.follow();
  }

  // Shows what the address names, or nothing.
  follow() {
    const path = location.hash ? location.pathname + location.hash.slice(1) : null;
    if (path === (this.#entry?.path ?? null))
      return;
    const entry = this.#all.find(each => each.path === path);
    if (entry)
      this.#show(entry);
    else if (this.#entry)
      this.#hide();
  }

  // What is gone by now leaves its place to the one after it.
  step(distance) {
    const all = this.#all;
    const isGone = all.every(({ path }) => path !== this.#entry.path);
    const next = all[this.#at + (isGone && distance > 0 ? distance - 1 : distance)];
    if (!next)
      return false;
    history.replaceState(history.state, '', addressOf(next));
    this.#show(next);
    return true;
  }

  #show(entry) {
    this.#shown.abort();
    this.#shown = new AbortController();
    this.#entry = entry;
    this.#showPlace();
    this.title.replaceChildren(cutName(entry.label));
    this.save.href = entry.path;
    this.stage.replaceChildren();
    this.stage.dataset.kind = entry.kind;
    if (!this.dialog.open)
      this.dialog.showModal();
    shows[entry.kind](this.stage, entry, this.#shown.signal, distance => this.step(distance));
  }

  // A button that has the keyboard keeps it at the end of the row.
  #showPlace() {
    const all = this.#all;
    const at = all.findIndex(({ path }) => path === this.#entry.path);
    if (at >= 0)
      this.#at = at;
    this.before.setAttribute('aria-disabled', this.#at === 0);
    this.after.setAttribute('aria-disabled', this.#at >= all.length - (at >= 0 ? 1 : 0));
  }

  #hide() {
    this.#shown.abort();
    const { path } = this.#entry;
    this.#entry = null;
    this.stage.replaceChildren();
    this.dialog.close();
    this.#closed(path);
  }

  // Players have these keys for themselves.
  #pressed(event) {
    const distance = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
    if (!distance || event.target.closest('video, audio, iframe'))
      return;
    event.preventDefault();
    this.step(document.dir === 'rtl' ? -distance : distance);
  }
}
