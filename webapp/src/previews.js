// Small pictures of files, which the server makes.

import { h } from './dom.js';
import { endingOf } from './kinds.js';

const endings = new Set('jpg jpeg png gif webp heic heif avif'.split(' '));
const delay = 80; // ms: who scrolls past needs none

export const hasPreview = entry => !entry.isFolder && endings.has(endingOf(entry.name));
export const previewPath = (entry, pixels) => `${entry.path}?preview=${pixels}`;

// Lies upon the icon once it is there, so that nothing moves.
export function preview(entry, pixels) {
  if (!hasPreview(entry))
    return null;
  const picture = h('img', { class: 'preview', alt: '', decoding: 'async', draggable: 'false' });
  picture.addEventListener('load', () => picture.classList.add('is-there'));
  picture.addEventListener('error', () => picture.remove());
  setTimeout(() => {
    if (picture.isConnected)
      picture.src = previewPath(entry, pixels);
  }, delay);
  return picture;
}
