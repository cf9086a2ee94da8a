// Offers to look below the folder for what is typed, and tells what was found.

import { button, h } from './dom.js';
import { number } from './format.js';
import { t } from './texts.js';

export class FindBar {
  #folder;
  #field;

  // `field` is that of the filter, which may be ahead of the folder; `find(words)` begins a search.
  constructor(folder, field, find) {
    this.#folder = folder;
    this.#field = field;
    this.find = button(t('Search below this folder'), 'search', () => find(field.value));
    this.stay = button(t('Only this folder'), 'close', () => folder.filter(folder.words));
    this.note = h('span', { role: 'status' });
    this.element = h('div', { class: 'find-bar', hidden: true }, this.find, this.note, this.stay);
    folder.addEventListener('change', () => this.#update());
  }

  #update() {
    const { words, search, shown } = this.#folder;
    const hadFocus = this.element.contains(document.activeElement);
    this.element.hidden = words.trim() === '';
    this.find.hidden = search !== null;
    this.stay.hidden = search === null;
    const text = search === 'running' ? 'Searching … {n}' : 'Found below: {n}';
    this.note.textContent = search ? t(text, { n: number(shown.length) }) : '';
    if (hadFocus)
      [this.find, this.stay, this.#field].find(each => !each.closest('[hidden]')).focus();
  }
}
