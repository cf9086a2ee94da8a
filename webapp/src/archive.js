// Folders and selections as one file, where the server makes it.

import { ensureSession } from './dav.js';
import { h } from './dom.js';
import { complain, inform } from './notices.js';
import { parentOf } from './paths.js';
import { t } from './texts.js';

const query = '?archive=zip';
// The server says so on its own page, which is taken over only later.
const isThere = document.querySelector(`a[href="${query}"]`) !== null;
// Forms write breaks in their own way, and have no bytes that are no text.
const unsendable = /[\r\n\ufffd]/;

export const hasArchives = () => isThere;
export const archiveOf = folder => folder.path + query;

async function post(folder, names) {
  await ensureSession();
  // In a tab of its own, which a download closes at once: what the server refuses doesn't replace the page.
  const form = h('form', { method: 'post', action: folder + query, target: '_blank', hidden: true },
    ...names.map(name => h('input', { type: 'hidden', name: 'name', value: name })));
  document.body.append(form);
  form.submit();
  form.remove();
}

// The server takes names out of one folder.
export function downloadArchive(entries) {
  const folder = parentOf(entries[0].path);
  const unsent = entries.find(({ name }) => unsendable.test(name));
  if (entries.some(({ path }) => parentOf(path) !== folder))
    inform(t('An archive can only hold entries of one folder.'));
  else if (unsent)
    inform(t('This name can’t be put into an archive: {name}', { name: unsent.label }));
  else
    post(folder, entries.map(({ name }) => name)).catch(error => complain(error, () => downloadArchive(entries)));
}
