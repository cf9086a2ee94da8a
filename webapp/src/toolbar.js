// The buttons at hand: to add something, or to do something with what is chosen.

import { button, h } from './dom.js';
import { t } from './texts.js';

export class Toolbar {
  #commands;
  #selection;

  constructor(commands, selection, uploads) {
    this.#commands = commands;
    this.#selection = selection;
    const tool = (text, picture, run, more = {}) => button(t(text), picture, run, { title: t(text), ...more });
    this.adding = h('div', { class: 'tools', role: 'group', 'aria-label': t('Add') },
      tool('Upload files', 'upload', uploads.pickFiles, { class: 'button main' }),
      tool('Upload folder', 'uploadFolder', uploads.pickFolder),
      tool('New folder', 'newFolder', commands.newFolder),
      tool('New text file', 'newText', commands.newText),
      this.selectAll = tool('Select all', 'selectAll', () => commands.selectAll(), { class: 'button select-all' }));
    this.selectNothing = button(t('Select nothing'), 'close', () => selection.clear(), { quiet: true });
    this.count = h('span', { class: 'count', role: 'status' });
    this.actions = {
      download: tool('Download', 'download', () => commands.download(commands.chosen)),
      rename: tool('Rename', 'rename', () => commands.rename(commands.chosen[0])),
      move: tool('Move', 'move', () => commands.move(commands.chosen)),
      copy: tool('Copy', 'copy', () => commands.copy(commands.chosen)),
      remove: tool('Delete', 'remove', () => commands.remove(commands.chosen), { class: 'button danger' }),
    };
    this.choosing = h('div', { class: 'tools choosing', role: 'group', 'aria-label': t('Selection') },
      h('div', { class: 'chosen' }, this.selectNothing, this.count),
      ...Object.values(this.actions));
    this.element = h('section', { class: 'toolbar is-unknown', 'aria-label': t('Actions') }, this.adding, this.choosing);
    selection.addEventListener('change', () => this.show());
    this.show();
  }

  // The rights of the visitor are known: until then nothing is shown that would have to move.
  settle() {
    this.element.classList.remove('is-unknown');
    this.show();
  }

  show() {
    const focused = document.activeElement;
    const hadFocus = this.element.contains(focused);
    this.#showTools();
    if (hadFocus && focused.closest('[hidden]'))
      (this.#selection.size > 0 ? this.selectNothing : this.selectAll).focus();
  }

  #showTools() {
    const { rights, chosen } = this.#commands;
    const isChoosing = this.#selection.size > 0;
    this.adding.hidden = isChoosing;
    this.choosing.hidden = !isChoosing;
    for (const tool of this.adding.querySelectorAll('.button:not(.select-all)'))
      tool.hidden = !rights.add;
    if (!isChoosing)
      return;
    this.count.textContent = t('Selected: {n}', { n: this.#selection.size });
    this.actions.download.hidden = !this.#commands.canDownload(chosen);
    this.actions.rename.hidden = !rights.move || chosen.length !== 1;
    this.actions.move.hidden = !rights.move;
    this.actions.copy.hidden = !rights.copy;
    this.actions.remove.hidden = !rights.remove;
  }
}
