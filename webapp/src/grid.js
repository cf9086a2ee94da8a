// The entries of a folder on the screen: only those that are seen stand in the document, and the one
// that has the keyboard.

import { debounced, h, perFrame } from './dom.js';
import { row, tileRow } from './entry-view.js';
import { orderNames } from './order.js';
import { dropPreviews } from './previews.js';
import { t } from './texts.js';

const spare = 6; // rows above and below what is seen
const restedAfter = 100; // ms: who scrolls past all that is there sees no spare rows
const rowHeight = 3.5; // rem
const tileWidth = 10; // rem, at least
const tileFoot = 3.25; // rem, below the picture

const headings = { name: 'Name', size: 'Size', time: 'Modified' };

export class Grid {
  #folder;
  #selection;
  #layout = 'list';
  #rows = new Map(); // elements by the number of the row
  #columns = 1;
  #height = 1; // px of a row
  #focusedAt = 0; // where the entry with the keyboard stood
  #shownTop = 0; // px, where the list was scrolled to
  #update = perFrame(() => this.#scrolled());
  #rest = debounced(restedAfter, () => this.#show());

  constructor(folder, selection, onOrder) {
    this.#folder = folder;
    this.#selection = selection;
    this.#buildElements(onOrder);
    this.element.addEventListener('scroll', this.#update, { passive: true });
    this.body.addEventListener('focusin', ({ target }) => {
      this.#focusedAt = Number(target.closest('.entry')?.dataset.index ?? this.#focusedAt);
    });
    new ResizeObserver(() => (this.#measure() ? this.renew() : this.#show())).observe(this.element);
    selection.addEventListener('change', () => this.#mark());
    folder.addEventListener('change', () => this.renew());
  }

  #buildElements(onOrder) {
    const heading = name => h('span', { role: 'columnheader', class: `cell-${name}`, 'data-order': name },
      h('button', { type: 'button', class: 'heading', tabindex: '-1', onclick: () => onOrder(name) }, t(headings[name])));
    this.head = h('div', { role: 'row', class: 'row head', 'aria-rowindex': 1 },
      ...orderNames.filter(name => name in headings).map(heading), h('span', { role: 'columnheader', class: 'cell-more' }, h('span', { class: 'unseen' }, t('More'))));
    this.body = h('div', { role: 'rowgroup', class: 'rows' });
    this.grid = h('div', { role: 'grid', class: 'grid', 'aria-multiselectable': 'true', 'aria-label': t('Files') },
      h('div', { role: 'rowgroup' }, this.head), this.body);
    this.note = h('div', { class: 'note' });
    this.element = h('section', { class: 'files', 'aria-label': t('Files'), tabindex: '-1' }, this.grid, this.note);
  }

  get columns() {
    return this.#columns;
  }

  // As many as are seen at once, for the keys that turn pages.
  get page() {
    return Math.max(1, Math.floor(this.element.clientHeight / this.#height) - 1) * this.#columns;
  }

  set layout(name) {
    this.#layout = name;
    this.grid.dataset.layout = name;
    this.#measure();
    this.renew();
  }

  showOrder(order, isDescending) {
    for (const heading of this.head.querySelectorAll('[data-order]'))
      heading.setAttribute('aria-sort', heading.dataset.order !== order ? 'none' : isDescending ? 'descending' : 'ascending');
  }

  // Gives whether the rows are others by now.
  #measure() {
    const before = `${this.#columns} ${this.#height}`;
    const rem = Number.parseFloat(getComputedStyle(document.documentElement).fontSize);
    const width = this.body.clientWidth;
    const isList = this.#layout === 'list';
    this.#columns = isList ? 1 : Math.max(2, Math.floor(width / (tileWidth * rem)));
    this.#height = isList ? rowHeight * rem : Math.round(width / this.#columns * 0.75 + tileFoot * rem);
    this.grid.style.setProperty('--columns', this.#columns);
    this.grid.style.setProperty('--row', `${this.#height}px`);
    return before !== `${this.#columns} ${this.#height}`;
  }

  // All anew: they are others, or in another order.
  renew() {
    const hadFocus = this.body.contains(document.activeElement) && !this.body.querySelector('.rename');
    if (this.body.querySelector('.rename'))
      return;
    this.#rows.clear();
    dropPreviews(this.body);
    this.body.replaceChildren();
    const count = this.#folder.shown.length;
    const rows = Math.ceil(count / this.#columns);
    this.body.style.height = `${rows * this.#height}px`;
    this.grid.setAttribute('aria-rowcount', rows + (this.#layout === 'list' ? 1 : 0));
    this.grid.setAttribute('aria-colcount', this.#layout === 'list' ? 4 : this.#columns);
    this.grid.hidden = count === 0;
    this.#keepFocused();
    this.#show();
    if (hadFocus)
      this.focus();
  }

  // What takes the place of an entry that is gone has the keyboard then.
  #keepFocused() {
    const { shown } = this.#folder;
    const at = shown.findIndex(({ path }) => path === this.#selection.focused);
    this.#focusedAt = at >= 0 ? at : Math.max(0, Math.min(this.#focusedAt, shown.length - 1));
    this.#selection.focused = shown[this.#focusedAt]?.path ?? null;
  }

  #rowOf(index) {
    return Math.floor(index / this.#columns);
  }

  // Every row is another then: the fewer there are, the smoother it goes.
  #scrolled() {
    const isJump = Math.abs(this.element.scrollTop - this.#shownTop) > this.element.clientHeight / 2;
    this.#show(isJump ? 0 : spare);
    if (isJump)
      this.#rest();
  }

  #wanted(spareRows) {
    const top = this.element.scrollTop;
    const rows = Math.ceil(this.#folder.shown.length / this.#columns);
    const first = Math.max(0, Math.floor(top / this.#height) - spareRows);
    const last = Math.min(rows - 1, Math.ceil((top + this.element.clientHeight) / this.#height) + spareRows);
    const wanted = new Set();
    for (let number = first; number <= last; ++number)
      wanted.add(number);
    const focused = this.#folder.shown.findIndex(({ path }) => path === this.#selection.focused);
    if (focused >= 0)
      wanted.add(this.#rowOf(focused));
    return wanted;
  }

  #show(spareRows = spare) {
    this.#shownTop = this.element.scrollTop;
    const wanted = this.#wanted(spareRows);
    for (const [number, element] of this.#rows) {
      if (!wanted.has(number)) {
        dropPreviews(element);
        element.remove();
        this.#rows.delete(number);
      }
    }
    for (const number of wanted) {
      if (!this.#rows.has(number))
        this.#add(number);
    }
    this.#mark();
  }

  #add(number) {
    const first = number * this.#columns;
    const entries = this.#folder.shown.slice(first, first + this.#columns);
    const { path, search } = this.#folder;
    const where = entry => (search ? entry.below(path) : '');
    const element = this.#layout === 'list' ? row(entries[0], first, where(entries[0])) : tileRow(entries, first, number, where);
    element.style.transform = `translateY(${number * this.#height}px)`;
    this.#rows.set(number, element);
    // In the order in which they are read.
    const after = [...this.#rows].filter(([other]) => other > number).sort(([a], [b]) => a - b)[0];
    this.body.insertBefore(element, after?.[1] ?? null);
  }

  #mark() {
    this.grid.classList.toggle('is-choosing', this.#selection.size > 0);
    for (const element of this.body.querySelectorAll('.entry')) {
      const { path } = element.dataset;
      element.setAttribute('aria-selected', this.#selection.has(path));
      element.tabIndex = path === this.#selection.focused ? 0 : -1;
    }
  }

  elementOf(path) {
    return [...this.body.querySelectorAll('.entry')].find(element => element.dataset.path === path);
  }

  // Gives the keyboard to an entry, wherever it is.
  focus(path = this.#selection.focused) {
    const index = this.#folder.shown.findIndex(entry => entry.path === path);
    if (index < 0)
      return this.element.focus();
    this.#selection.focused = path;
    this.#focusedAt = index;
    this.reveal(index);
    this.#show();
    this.elementOf(path).focus({ preventScroll: true });
  }

  reveal(index) {
    const top = this.#rowOf(index) * this.#height;
    const head = this.head.offsetHeight;
    const { element } = this;
    if (top < element.scrollTop)
      element.scrollTop = top;
    else if (top + this.#height + head > element.scrollTop + element.clientHeight)
      element.scrollTop = top + this.#height + head - element.clientHeight;
  }
}
