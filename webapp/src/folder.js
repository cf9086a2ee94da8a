// The folder that is looked at: its entries, and which of them are shown in which order. Tells
// "change" when they are others, or can't be had, and "back" when they are those of the folder itself after
// a search.

import { find, list } from './dav.js';
import { throttled } from './dom.js';
import { arranged } from './order.js';
import { setting } from './settings.js';

const showEvery = 250; // ms
const mostKept = 20; // folders that are shown at once when the visitor comes back

export class Folder extends EventTarget {
  path = null;
  shown = [];
  isLoading = false;
  isLost = false; // nobody answers: what is shown was there before
  error = null; // why there are none
  search = null; // 'running' or 'done', while what is shown was found below
  #own = []; // entries of the folder itself
  #found = []; // below
  #words = '';
  #known = new Map(); // the entries of folders
  #listing = null;
  #searching = null;

  // `entries` are told by whoever has them already.
  async open(path, entries = null) {
    this.path = path;
    this.#words = '';
    this.#endSearch();
    this.#listing?.abort();
    this.#take(entries ?? this.#known.get(path) ?? [], !entries);
    if (!entries)
      await this.refresh();
  }

  get entries() {
    return this.search ? this.#found : this.#own;
  }

  async refresh() {
    await Promise.all([this.#list(), this.search && this.#find(() => {})]);
  }

  async #list() {
    this.#listing?.abort();
    const { signal } = this.#listing = new AbortController();
    const { path } = this;
    try {
      this.#take(await list(path, signal), false);
      this.dispatchEvent(new Event('answered'));
    } catch (error) {
      if (!signal.aborted)
        this.#fail(error);
    }
  }

  // What was seen is of more use than nothing while nobody answers.
  #fail(error) {
    this.isLoading = false;
    this.isLost = error.status === 0 && this.entries.length > 0;
    this.error = this.isLost ? null : error;
    if (error.status !== 0)
      this.#known.delete(this.path);
    if (this.error)
      this.#empty();
    this.arrange();
  }

  #empty() {
    if (this.search)
      this.#found = [];
    else
      this.#own = [];
  }

  // Among all folders below, by the words of the filter. Shows what is found while it is found.
  async findBelow(words) {
    this.#words = words;
    this.search = 'running';
    const found = entries => {
      this.#found = entries;
      this.arrange();
    };
    found([]);
    await this.#find(throttled(showEvery, found));
  }

  async #find(arrived) {
    this.#searching?.abort();
    const { signal } = this.#searching = new AbortController();
    try {
      this.#found = await find(this.path, this.#words.trim(), signal, arrived);
      this.search = 'done';
      [this.isLost, this.error] = [false, null];
      this.arrange();
    } catch (error) {
      if (!signal.aborted)
        this.#fail(error);
    }
  }

  // Other words are for the folder itself.
  filter(words) {
    const wasSearch = this.search !== null;
    this.#words = words;
    this.#endSearch();
    this.arrange();
    if (wasSearch)
      this.dispatchEvent(new Event('back'));
  }

  #endSearch() {
    this.#searching?.abort();
    if (this.search)
      this.error = null;
    this.search = null;
    this.#found = [];
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

  // Also while what is shown was found below.
  holds(name) {
    return this.#own.some(entry => entry.name === name);
  }

  #take(entries, isLoading) {
    this.isLoading = isLoading;
    this.isLost = false;
    this.error = null;
    this.#own = entries;
    if (!isLoading) {
      this.#known.delete(this.path);
      this.#known.set(this.path, entries);
      if (this.#known.size > mostKept)
        this.#known.delete(this.#known.keys().next().value);
    }
    this.arrange();
  }
}
