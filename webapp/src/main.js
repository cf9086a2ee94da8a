// Takes over the page that the server wrote.

import { Commands } from './commands.js';
import { debounced, button, h, icon } from './dom.js';
import { Drag } from './drag.js';
import { dropBox } from './drop-box.js';
import { FindBar } from './find-bar.js';
import { Folder } from './folder.js';
import { Grid } from './grid.js';
import { account, Crumbs, filterField, folderName, ViewSwitches } from './header.js';
import { Keys } from './keys.js';
import { Viewer } from './look/viewer.js';
import { lostBar } from './lost-bar.js';
import { readPage } from './multistatus.js';
import { notices, reason } from './notices.js';
import { isBelow, root, searchAddress, searchedIn } from './paths.js';
import { Pointer } from './pointer.js';
import { rightsIn } from './rights.js';
import { Selection } from './selection.js';
import { logIn, session } from './session.js';
import { setting, showScheme } from './settings.js';
import { language, t } from './texts.js';
import { Toolbar } from './toolbar.js';
import { Uploads } from './uploads/uploads.js';

const refreshDelay = 700; // ms after the last of several files has come

class Page {
  folder = new Folder();
  selection = new Selection();
  crumbs = new Crumbs();
  isBlind = false; // the visitor may not see what is here
  #lacksRights = false; // the server didn't say them

  constructor() {
    this.switches = new ViewSwitches(() => this.#arrange());
    this.grid = new Grid(this.folder, this.selection, order => this.switches.sortBy(order));
    this.filterField = filterField(this.folder);
    this.commands = new Commands(this);
    const refresh = debounced(refreshDelay, () => !this.isBlind && this.folder.refresh());
    this.uploads = new Uploads(() => this.#place(), path => isBelow(path, this.folder.path) && refresh());
    this.toolbar = new Toolbar(this.commands, this.selection, this.uploads);
    this.viewer = new Viewer(this.folder, path => this.grid.focus(path));
    new Keys(this.folder, this.grid, this.selection, this.commands);
    new Pointer(this.grid, this.folder, this.selection, this.commands);
    new Drag(this.grid, this.crumbs.element, this.folder, this.commands);
    this.folder.addEventListener('change', () => this.#changed());
    this.folder.addEventListener('back', () => {
      if (searchedIn(location) !== null)
        history.replaceState(history.state, '', this.folder.path);
    });
    this.folder.addEventListener('answered', () => this.#lacksRights && this.#findRights(this.folder.path));
    addEventListener('online', () => this.#comeBack());
    session.addEventListener('resumed', () => {
      this.#lacksRights = true; // it may be somebody else
      this.#comeBack();
    });
    addEventListener('popstate', () => this.#follow());
    this.crumbs.element.addEventListener('click', event => this.#crumbClicked(event));
  }

  start() {
    const known = readPage(document);
    const header = h('header', { class: 'top' }, this.crumbs.title, this.crumbs.element, account(),
      h('div', { class: 'filter' }, icon('search'), this.filterField), this.switches.element);
    this.inside = [lostBar(this.folder, () => this.#comeBack()), new FindBar(this.folder, this.filterField, words => this.#find(words)).element, this.grid.element];
    this.main = h('main', { class: 'app' }, ...this.inside);
    document.body.replaceChildren(header, this.toolbar.element, this.main, this.uploads.panel, notices,
      ...document.querySelectorAll('body > :is(dialog, input, .drop-veil)'));
    this.#arrange();
    this.#open(location.pathname, known);
  }

  #place() {
    const { folder, commands, isBlind } = this;
    return { folder: folder.path, rights: isBlind ? { add: true, change: false } : commands.rights, taken: name => folder.holds(name), isBlind };
  }

  #arrange() {
    this.grid.layout = setting('layout');
    this.grid.showOrder(setting('order'), setting('isDescending'));
    this.folder.arrange();
  }

  go(path) {
    if (path === this.folder.path)
      return;
    history.replaceState({ ...history.state, scroll: this.grid.element.scrollTop }, '');
    history.pushState({}, '', path);
    this.#open(path);
    this.grid.element.focus();
  }

  #find(words) {
    history.pushState({}, '', searchAddress(this.folder.path, words.trim()));
    this.folder.findBelow(words);
  }

  #follow() {
    const { folder } = this;
    const words = searchedIn(location);
    if (location.pathname !== folder.path)
      return this.#open(location.pathname);
    const isFile = location.hash !== '' && words === null; // the viewer follows it
    if (isFile || words === (folder.search && folder.words.trim()))
      return;
    this.filterField.value = words ?? '';
    if (words === null)
      folder.filter('');
    else
      folder.findBelow(words);
  }

  async #open(path, known = null) {
    this.#leaveDropBox();
    this.commands.endNaming();
    this.#lacksRights = false;
    this.selection.clear();
    this.filterField.value = '';
    this.crumbs.show(path);
    document.title = folderName(path);
    this.grid.element.scrollTop = 0;
    const opened = this.folder.open(path, known);
    this.#follow(); // a search, perhaps
    await opened;
    if (this.folder.path !== path)
      return;
    this.grid.element.scrollTop = history.state?.scroll ?? 0;
    this.viewer.follow();
    await this.#findRights(path);
  }

  async #findRights(path) {
    const { error } = this.folder;
    if (error && error.status !== 403)
      return this.toolbar.settle();
    const found = await rightsIn(path).catch(() => null);
    if (this.folder.path !== path)
      return;
    this.#lacksRights = !found;
    // Those that were known last are nearer to the truth than none.
    if (!found)
      return this.toolbar.settle();
    if (error && found.add && !found.see)
      return this.#showDropBox();
    this.commands.rights = found;
    document.title = path === root ? found.share || folderName(path) : folderName(path);
    this.toolbar.settle();
    this.#changed();
  }

  async #comeBack() {
    const { path } = this.folder;
    if (!this.isBlind)
      await this.folder.refresh();
    if (this.#lacksRights && this.folder.path === path)
      await this.#findRights(path);
  }

  #crumbClicked(event) {
    const path = event.target.closest('a')?.dataset.path;
    if (!path || event.ctrlKey || event.metaKey || event.shiftKey)
      return;
    event.preventDefault();
    this.go(path);
  }

  #changed() {
    const { folder, grid } = this;
    this.selection.keep(folder.shown.map(({ path }) => path));
    grid.note.hidden = folder.shown.length > 0;
    grid.note.replaceChildren(...this.#emptyNote(folder));
  }

  // What is said instead of entries.
  #emptyNote({ isLoading, error, words, path }) {
    if (isLoading)
      return [h('p', { class: 'loading' }, t('Loading …'))];
    if (error?.status === 401)
      return [icon('logOut'), h('p', { role: 'alert' }, reason(error)),
        button(t('Log in'), null, logIn, { class: 'button main' }), this.#again(path)];
    if (error)
      return [icon('help'), h('p', { role: 'alert' }, reason(error)), this.#again(path)];
    if (words)
      return [icon('search'), h('p', {}, t('Nothing here has such a name.'))];
    return [icon('folder'), h('p', {}, this.commands.rights.add ? t('Nothing here yet. Drop files to add them.') : t('Nothing here yet.'))];
  }

  #again = path => button(t('Try again'), 'retry', () => this.#open(path));

  #leaveDropBox() {
    if (!this.isBlind)
      return;
    this.isBlind = false;
    document.body.classList.remove('is-blind');
    this.main.replaceChildren(...this.inside);
  }

  #showDropBox() {
    this.isBlind = true;
    document.body.classList.add('is-blind');
    this.main.replaceChildren(dropBox(this.uploads));
  }
}

document.documentElement.lang = language;
showScheme();
document.body.className = 'taken';
new Page().start();
