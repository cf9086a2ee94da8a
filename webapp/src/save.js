// Has the browser keep a file.

import { ensureSession } from './dav.js';
import { h } from './dom.js';
import { complain } from './notices.js';

// Under `name`, or as the server calls it.
export async function save(path, name = '') {
  try {
    await ensureSession();
  } catch (error) {
    return complain(error, () => save(path, name));
  }
  const link = h('a', { href: path, download: name, hidden: true });
  document.body.append(link);
  link.click();
  link.remove();
}

// A link that does so, as people click it.
export function saveByLink(event) {
  event.preventDefault();
  save(event.currentTarget.getAttribute('href'));
}
