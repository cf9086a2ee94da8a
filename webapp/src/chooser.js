// Lets the visitor choose a folder to put something into. Resolves with its path, or null.

import { button, h, icon } from './dom.js';
import { list } from './dav.js';
import { ask } from './dialog.js';
import { shownName } from './entry.js';
import { reason } from './notices.js';
import { arranged } from './order.js';
import { decoded, lastSegment, parentOf, root } from './paths.js';
import { t } from './texts.js';

const folderName = path => (path === root ? t('Home') : shownName(decoded(lastSegment(path))));

// `moved` can't be put into themselves.
export async function chooseFolder(title, action, start, moved) {
  let path = start;
  const here = h('strong', { class: 'chooser-here', 'aria-live': 'polite' });
  const up = button(t('Up'), 'back', () => show(parentOf(path)), { quiet: true });
  const folders = h('ul', { class: 'chooser-list', tabindex: '-1' });

  const item = folder => h('li', {}, h('button', { type: 'button', onclick: () => show(folder.path) },
    icon('folder'), h('bdi', {}, folder.label), icon('next')));

  const note = text => h('li', { class: 'chooser-note' }, text);

  // The list keeps the keyboard when it has it.
  function fill(folder, items) {
    if (folder !== path)
      return;
    const hadFocus = folders.contains(document.activeElement);
    folders.replaceChildren(...items);
    if (hadFocus)
      (folders.querySelector('button') ?? folders).focus();
  }

  async function show(folder) {
    path = folder;
    here.textContent = folderName(path);
    if (path === root && document.activeElement === up)
      folders.focus();
    up.disabled = path === root;
    try {
      const entries = arranged(await list(folder), { order: 'name' }).filter(
        entry => entry.isFolder && !moved.some(each => each.path === entry.path));
      fill(folder, entries.length > 0 ? entries.map(item) : [note(t('No folders here'))]);
    } catch (error) {
      fill(folder, [note(reason(error))]);
    }
  }

  show(start);
  const answer = await ask({
    title, className: 'chooser', content: [h('div', { class: 'chooser-head' }, up, here), folders],
    actions: [{ text: t('Cancel'), value: '' }, { text: action, value: 'yes', isMain: true }],
  });
  return answer && path;
}
