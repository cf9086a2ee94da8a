// Folders and selections as one file, where the server makes it.

import { h, icon } from './dom.js';
import { t } from './texts.js';

const query = '?archive=zip';
// The server says so on its own page, which is taken over only later.
const isThere = document.querySelector(`a[href="${query}"]`) !== null;

export const hasArchives = () => isThere;

export function archiveLink(entry, onclick) {
  if (!isThere || !entry.isFolder)
    return null;
  return h('a', { href: entry.path + query, download: '', onclick }, icon('archive'), t('Download as zip'));
}

// A form, so that the browser itself receives it.
export function downloadArchive(folder, entries) {
  const form = h('form', { method: 'post', action: folder + query, hidden: true },
    ...entries.map(({ name }) => h('input', { type: 'hidden', name: 'name', value: name })));
  document.body.append(form);
  form.submit();
  form.remove();
}
