// What the keyboard does among the entries, and the list of it.

import { setting } from './settings.js';

// How far a key leads, in entries; null for all other keys.
function step(key, grid, isRightToLeft) {
  const ahead = isRightToLeft ? -1 : 1;
  const steps = {
    ArrowDown: grid.columns, ArrowUp: -grid.columns, PageDown: grid.page, PageUp: -grid.page,
    Home: -Infinity, End: Infinity,
    ...(grid.columns > 1 ? { ArrowRight: ahead, ArrowLeft: -ahead } : {}),
  };
  return steps[key] ?? null;
}

const isField = element => element.closest?.('input, textarea, select, dialog, [contenteditable]');

export class Keys {
  #folder;
  #grid;
  #selection;
  #commands;

  constructor(folder, grid, selection, commands) {
    this.#folder = folder;
    this.#grid = grid;
    this.#selection = selection;
    this.#commands = commands;
    document.addEventListener('keydown', event => this.#pressed(event));
  }

  #pressed(event) {
    if (event.defaultPrevented || isField(event.target) || event.altKey)
      return;
    const isInGrid = this.#grid.element.contains(event.target);
    const done = this.#anywhere(event) || (isInGrid && (this.#walk(event) || this.#act(event)));
    if (done)
      event.preventDefault();
  }

  // Single keys can be switched off: voice control types them by accident.
  #anywhere(event) {
    if (event.ctrlKey || event.metaKey) {
      if (event.key !== 'a')
        return false;
      this.#commands.selectAll();
      return true;
    }
    const actions = { '/': () => this.#commands.focusFilter(), '?': () => this.#commands.help() };
    if (event.key === 'Escape' && this.#selection.size > 0)
      this.#selection.clear();
    else if (setting('singleKeys') && actions[event.key])
      actions[event.key]();
    else
      return false;
    return true;
  }

  #walk(event) {
    const distance = step(event.key, this.#grid, document.dir === 'rtl');
    const paths = this.#folder.shown.map(({ path }) => path);
    if (distance === null || paths.length === 0)
      return false;
    const from = paths.indexOf(this.#selection.focused);
    const to = Math.min(paths.length - 1, Math.max(0, from + distance));
    if (event.shiftKey)
      this.#selection.reach(paths[to], paths);
    this.#grid.focus(paths[to]);
    return true;
  }

  #act(event) {
    const entry = this.#folder.find(this.#selection.focused);
    if (!entry || event.target.closest('button, a'))
      return false;
    const actions = {
      Enter: () => this.#commands.open(entry),
      ' ': () => this.#selection.toggle(entry.path),
      F2: () => this.#commands.rename(entry),
      Delete: () => this.#commands.remove(this.#commands.subjects(entry)),
      ContextMenu: () => this.#commands.menu(entry),
      F10: () => event.shiftKey && this.#commands.menu(entry),
    };
    if (event.ctrlKey || event.metaKey || !actions[event.key])
      return false;
    actions[event.key]();
    return true;
  }
}
