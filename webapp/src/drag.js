// Entries that are dragged onto a folder, among the entries or in the trail above them.

import { cutName, h } from './dom.js';
import { t } from './texts.js';

const type = 'application/x-quillon-entries';

export class Drag {
  #subjects = [];
  #target = null;
  #commands;

  constructor(grid, crumbs, folder, commands) {
    this.#commands = commands;
    grid.body.addEventListener('dragstart', event => {
      const entry = folder.find(event.target.closest('.entry')?.dataset.path);
      if (!entry || event.target.closest('input'))
        return;
      this.#begin(event, commands.subjects(entry));
    });
    document.addEventListener('dragend', () => this.#aim(null));
    for (const area of [grid.body, crumbs]) {
      area.addEventListener('dragover', event => this.#over(event));
      area.addEventListener('drop', event => this.#drop(event));
    }
  }

  #begin(event, entries) {
    this.#subjects = entries;
    event.dataTransfer.setData(type, '');
    event.dataTransfer.effectAllowed = 'copyMove';
    const ghost = h('div', { class: 'ghost' }, entries.length === 1 ? cutName(entries[0].label) : t('Selected: {n}', { n: entries.length }));
    document.body.append(ghost);
    event.dataTransfer.setDragImage(ghost, 16, 16);
    setTimeout(() => ghost.remove());
  }

  // A folder that is none of those that are dragged.
  #folderAt(event) {
    const target = event.target.closest('[data-path]');
    const path = target?.dataset.path;
    return path?.endsWith('/') && !this.#subjects.some(entry => entry.path === path) ? target : null;
  }

  #aim(target) {
    this.#target?.classList.remove('is-target');
    this.#target = target;
    target?.classList.add('is-target');
  }

  #isOurs = event => event.dataTransfer.types.includes(type) && this.#commands.rights.move;

  #over(event) {
    const isOurs = this.#isOurs(event);
    const target = isOurs || event.dataTransfer.types.includes('Files') ? this.#folderAt(event) : null;
    this.#aim(target);
    if (!target || !isOurs)
      return;
    event.preventDefault();
    event.dataTransfer.dropEffect = event.ctrlKey ? 'copy' : 'move';
  }

  #drop(event) {
    const target = this.#target;
    this.#aim(null);
    if (!target || !this.#isOurs(event))
      return;
    event.preventDefault();
    this.#commands.placeInto(target.dataset.path, this.#subjects, event.ctrlKey);
  }
}
