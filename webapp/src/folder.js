// The folder that is looked at: its entries, and which of them are shown in which order. Tells
// "change" when they are others, or can't be had.

import { find, list } from './dav.js';
import { throttled } from './dom.js';
import { arranged } from './order.js';
import { setting } from './settings.js';

const showEvery = 250; // ms
const mostKept = 20; // folders that are shown at once when the visitor comes back

export class Folder extends EventTarget {
  path = null;
  entries = [];
  shown = [];
  isLoading = false;
  error = null; // why there are none
  search = null; // 'running' or 'done', while what is shown was found below
  #words = '';
  #known = new Map(); // the entries of folders
  #asking = null;

  // `entries` are told by whoever has them already.
  async open(path, entries = null) {
    this.path = path;
    this.search = null;
    this.#words = '';
    this.#take(entries ?? this.#known.get(path) ?? [], !entries);
    if (!entries)
      await this.refresh();
  }

  async refresh() {
    this.search = null;
    const asking = this.#ask();
    const { path } = this;
    try {
      const entries = await list(path, asking.signal);
      this.#take(entries, false);
    } catch (error) {
      if (asking.signal.aborted)
        return;
      this.#known.delete(path);
      // What was seen is of more use than nothing while nobody answers.
      const isLost = error.status === 0 && this.entries.length > 0;
      this.#take(isLost ? this.entries : [], false, isLost ? null : error);
    }
  }

  // Whatever was asked for before is of no use any more.
  #ask() {
    this.#asking?.abort();
    this.#asking = new AbortController();
    return this.#asking;
  }

  // Among all folders below, by the words of the filter. Shows what is found while it is found.
  async findBelow(words) {
    this.#words = words;
    const asking = this.#ask();
    const found = entries => {
      this.entries = entries;
      this.arrange();
    };
    this.search = 'running';
    found([]);
    try {
      const entries = await find(this.path, this.#words.trim(), asking.signal, throttled(showEvery, found));
      this.search = 'done';
      found(entries);
    } catch (error) {
      if (!asking.signal.aborted)
        this.#take([], false, error);
    }
  }

  // Other words are for the folder itself.
  filter(words) {
    this.#words = words;
    if (this.search)
      this.#leaveSearch();
    else
      this.arrange();
  }

  #leaveSearch() {
    this.#asking.abort();
    this.search = null;
    this.#take(this.#known.get(this.path) ?? [], false);
  }

  get words() {
    return this.#words;
  }

  arrange() {
    const order = { order: setting('order'), isDescending: setting('isDescending') };
    this.shown = arranged(this.entries, order, this.#words);
    this.dispatchEvent(new Event('change'));
  }

  find(path) {
    return this.entries.find(entry => entry.path === path);
  }

  holds(name) {
    return this.entries.some(entry => entry.name === name);
  }

  #take(entries, isLoading, error = null) {
    this.isLoading = isLoading;
    this.entries = entries;
    this.error = error;
    if (!isLoading && !error) {
      this.#known.delete(this.path);
      this.#known.set(this.path, entries);
      if (this.#known.size > mostKept)
        this.#known.delete(this.#known.keys().next().value);
    }
    this.arrange();
  }
}
