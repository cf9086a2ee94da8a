// Small pictures of files, where the server makes them.

import { h } from './dom.js';
import { ownRequest } from './paths.js';

const kinds = new Set(['picture', 'video']);
let detection = null; // whether it does; null while nobody asked, or the answer said nothing

export const previewPath = (entry, pixels) => `${entry.path}?preview=${pixels}`;

// A server that makes none answers with the file itself.
async function findOut(entry) {
  try {
    const reply = await fetch(previewPath(entry, 160), { method: 'HEAD', headers: ownRequest });
    if (reply.ok)
      return reply.headers.get('Content-Type')?.startsWith('image/') && Number(reply.headers.get('Content-Length')) !== entry.size;
  } catch {
    // As when it makes none of this one.
  }
  detection = null;
  return false;
}

export function hasPreview(entry) {
  if (!kinds.has(entry.kind))
    return Promise.resolve(false);
  detection ??= findOut(entry);
  return detection;
}

// Lies upon the icon once it is there, so that nothing moves.
export function preview(entry, pixels) {
  if (!kinds.has(entry.kind))
    return null;
  const picture = h('img', { class: 'preview', alt: '', decoding: 'async', draggable: 'false' });
  picture.addEventListener('load', () => picture.classList.add('is-there'));
  picture.addEventListener('error', () => picture.remove());
  hasPreview(entry).then(isMade => {
    if (isMade)
      picture.src = previewPath(entry, pixels);
  });
  return picture;
}
