// Folders and selections as one file, where the server makes it.

import { h, icon } from './dom.js';
import { t } from './texts.js';

const query = '?archive=zip';
let isThere = null;

// Whether the server makes them: another one answers with a page.
export async function findArchives(folder) {
  if (isThere !== null)
    return;
  try {
    const reply = await fetch(folder + query, { method: 'HEAD' });
    isThere = reply.ok && !reply.headers.get('Content-Type')?.startsWith('text/');
  } catch {
    // It is found out with the next folder, then.
  }
}

export const hasArchives = () => isThere === true;

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
