// The folder that is looked at: its entries, and which of them are shown in which order. Tells
// "change" when they are others, or can't be had.

import { list } from './dav.js';
import { arranged } from './order.js';
import { setting } from './settings.js';

const mostKept = 20; // folders that are shown at once when the visitor comes back

export class Folder extends EventTarget {
  path = null;
  entries = [];
  shown = [];
  isLoading = false;
  error = null; // why there are none
  #words = '';
  #known = new Map(); // the entries of folders
  #asking = null;

  // `entries` are told by whoever has them already.
  async open(path, entries = null) {
    this.path = path;
    this.#words = '';
    this.#take(entries ?? this.#known.get(path) ?? [], !entries);
    if (!entries)
      await this.refresh();
  }

  async refresh() {
    this.#asking?.abort();
    const asking = new AbortController();
    this.#asking = asking;
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

  filter(words) {
    this.#words = words;
    this.arrange();
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
