// Looks at the files of a folder, one after another, in front of everything. The address names the
// one that is seen, so it can be shared, and "back" closes it.

import { button, cutName, h, icon } from '../dom.js';
import { isViewable } from '../kinds.js';
import { decoded, lastSegment } from '../paths.js';
import { t } from '../texts.js';
import { showDocument, showMedia, showText } from './contents.js';
import { showPicture } from './picture.js';

const shows = { picture: showPicture, video: showMedia, sound: showMedia, text: showText, pdf: showDocument };

export class Viewer {
  #folder;
  #closed;
  #entry = null;
  #end = () => {}; // of what is shown

  // `closed(path)` is told what was seen last.
  constructor(folder, closed) {
    this.#folder = folder;
    this.#closed = closed;
    this.#build();
    addEventListener('popstate', () => this.follow());
    folder.addEventListener('change', () => this.follow());
  }

  #build() {
    this.title = h('h2', { class: 'viewer-title' });
    this.stage = h('div', { class: 'stage' });
    this.save = h('a', { class: 'button quiet', download: '', 'aria-label': t('Download'), title: t('Download') }, icon('download'));
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
    history.pushState({ isViewing: true }, '', `#${lastSegment(entry.path)}`);
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
    const name = decoded(location.hash.slice(1));
    const entry = name && this.#folder.path === location.pathname && this.#all.find(each => each.name === name);
    if (entry && entry.path === this.#entry?.path)
      return;
    if (entry)
      this.#show(entry);
    else if (this.#entry && !name)
      this.#hide();
  }

  step(distance) {
    const all = this.#all;
    const next = all[all.findIndex(({ path }) => path === this.#entry.path) + distance];
    if (!next)
      return false;
    history.replaceState(history.state, '', `#${lastSegment(next.path)}`);
    this.#show(next);
    return true;
  }

  #show(entry) {
    this.#end();
    this.#entry = entry;
    const all = this.#all;
    const at = all.findIndex(({ path }) => path === entry.path);
    // A button that has the keyboard keeps it at the end of the row.
    this.before.setAttribute('aria-disabled', at <= 0);
    this.after.setAttribute('aria-disabled', at === all.length - 1);
    this.title.replaceChildren(cutName(entry.label));
    this.save.href = entry.path;
    this.stage.replaceChildren();
    this.stage.dataset.kind = entry.kind;
    if (!this.dialog.open)
      this.dialog.showModal();
    this.#end = shows[entry.kind](this.stage, entry, distance => this.step(distance)) ?? (() => {});
  }

  #hide() {
    this.#end();
    this.#end = () => {};
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
