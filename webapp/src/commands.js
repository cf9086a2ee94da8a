// Everything that a visitor can do with entries, whatever key, button or gesture asked for it.

import { archiveOf, downloadArchive, hasArchives } from './archive.js';
import * as changes from './changes.js';
import { askForName } from './dialog.js';
import { h } from './dom.js';
import { showHelp } from './help.js';
import { isViewable } from './kinds.js';
import { showMenu } from './menu.js';
import { NameEdit } from './name-edit.js';
import { complain, reasonNote } from './notices.js';
import { numbered } from './paths.js';
import { noRights } from './rights.js';
import { save } from './save.js';
import { t } from './texts.js';

// Somebody writes, or is asked something.
const isTyping = () => document.querySelector('dialog[open]') !== null
  || document.activeElement?.matches('textarea, input:not([type="checkbox"])') === true;

export class Commands {
  rights = noRights;
  #page;
  #naming = null;

  // `page` is { folder, selection, grid, viewer, filterField, go(path) }.
  constructor(page) {
    this.#page = page;
  }

  // What a command for `entry` is about: all that is chosen, when it is among that.
  subjects(entry) {
    const { selection, folder } = this.#page;
    return selection.has(entry.path) ? selection.of(folder.shown) : [entry];
  }

  get chosen() {
    return this.#page.selection.of(this.#page.folder.shown);
  }

  open(entry) {
    if (entry.isFolder)
      this.#page.go(entry.path);
    else if (isViewable(entry))
      this.#page.viewer.open(entry);
    else
      save(entry.path, entry.name);
  }

  // In place, where the entry stands.
  rename(entry) {
    const { grid, selection } = this.#page;
    if (!this.rights.move)
      return;
    selection.clear();
    grid.focus(entry.path);
    this.#naming = new NameEdit(grid.elementOf(entry.path), entry.name, name => changes.rename(entry, name), (path, hadFocus) => {
      grid.renew();
      if (hadFocus)
        grid.focus(entry.path);
      if (path)
        this.#change(() => path);
    });
  }

  // The visitor goes elsewhere.
  endNaming() {
    this.#naming?.end();
  }

  async #change(change) {
    const { folder, selection, grid } = this.#page;
    let result = true;
    try {
      result = await change();
    } catch (error) {
      const again = error.retry ?? (error.status === 0 && change);
      complain(error, again && (() => this.#change(again)));
    }
    if (result === null)
      return;
    selection.clear();
    await folder.refresh();
    if (isTyping())
      return;
    if (typeof result === 'string')
      grid.focus(result);
    else
      grid.focus();
  }

  // Asks for a name until `make` could do it, or the visitor wants it no more.
  async #make(title, suggested, more, make) {
    let note = null;
    for (let name = this.#freeName(suggested); ;) {
      name = await askForName(title, name, t('Create'), note ? [...more, note] : more);
      if (!name)
        return;
      try {
        const path = await make(name);
        await this.#change(() => path);
        return;
      } catch (error) {
        if (!('status' in error))
          throw error;
        note = reasonNote(error);
      }
    }
  }

  #freeName(name) {
    const { folder } = this.#page;
    let number = 1;
    while (folder.holds(numbered(name, number)))
      ++number;
    return numbered(name, number);
  }

  newFolder = async () => {
    const { path } = this.#page.folder;
    await this.#make(t('New folder'), t('New folder'), [], name => changes.newFolder(path, name));
  };

  newText = async () => {
    const { path } = this.#page.folder;
    const text = h('textarea', { rows: 8, id: 'text-field', spellcheck: 'true' });
    const more = [h('label', { for: 'text-field' }, t('Text')), text];
    await this.#make(t('New text file'), `${t('New text')}.txt`, more, name => changes.newText(path, name, text.value));
  };

  remove = entries => this.rights.remove && entries.length > 0 && this.#change(
    () => changes.remove(entries, change => this.#change(change)));

  #options = isCopy => ({ isCopy, mayReplace: this.rights.change });
  move = entries => this.#change(() => changes.chooseAndPlace(this.#page.folder.path, entries, this.#options(false)));
  copy = entries => this.#change(() => changes.chooseAndPlace(this.#page.folder.path, entries, this.#options(true)));
  placeInto = (folder, entries, isCopy) => this.#change(() => changes.placeInto(folder, entries, this.#options(isCopy)));

  canDownload = entries => this.rights.read && (hasArchives() || entries.every(({ isFolder }) => !isFolder));

  download(entries) {
    if (hasArchives() && (entries.length > 1 || entries[0].isFolder))
      downloadArchive(entries);
    else
      entries.forEach(({ path, name }) => save(path, name));
  }

  menu(entry, anchor = this.#page.grid.elementOf(entry.path), point = null) {
    const { selection } = this.#page;
    if (!selection.has(entry.path))
      selection.clear();
    const entries = this.subjects(entry);
    const { read, remove, move, copy } = this.rights;
    const items = [
      { text: t('Open'), picture: entry.isFolder ? 'folder' : 'file', run: () => this.open(entry), is: entries.length === 1 },
      { text: t('Download'), picture: 'download', run: () => this.download(entries), is: this.canDownload(entries) && !(entries.length === 1 && entry.isFolder) },
      { text: t('Download as zip'), picture: 'archive', href: archiveOf(entry), is: read && hasArchives() && entry.isFolder && entries.length === 1 },
      { text: t('Rename'), picture: 'rename', run: () => this.rename(entry), is: move && entries.length === 1 },
      { text: t('Move'), picture: 'move', run: () => this.move(entries), is: move },
      { text: t('Copy'), picture: 'copy', run: () => this.copy(entries), is: copy },
      { text: t('Select'), picture: 'selectAll', run: () => selection.toggle(entry.path), is: !selection.has(entry.path) },
      { text: t('Delete'), picture: 'remove', run: () => this.remove(entries), is: remove },
    ];
    showMenu(entry, items.filter(({ is }) => is), anchor ?? this.#page.grid.elementOf(entry.path), point);
  }

  selectAll() {
    const { folder, selection } = this.#page;
    selection.all(folder.shown.map(({ path }) => path));
  }

  focusFilter() {
    this.#page.filterField.focus();
  }

  help = showHelp;
}
