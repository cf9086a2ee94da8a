// Small pictures of files, which the server makes.

import { ensureSession } from './dav.js';
import { h } from './dom.js';
import { endingOf } from './kinds.js';

const endings = new Set('jpg jpeg png gif webp heic heif avif'.split(' '));
const delay = 120; // ms: who scrolls past needs none
const mostAtOnce = 3; // a browser has six connections, and listings are to find one that is free

const waiting = new Map(); // paths of previews by their elements
const loading = new Set();

export const hasPreview = entry => !entry.isFolder && (entry.kind === 'video' || endings.has(endingOf(entry.name)));
export const previewPath = (entry, pixels) => `${entry.path}?preview=${pixels}`;

function loadNext() {
  for (const [picture, path] of waiting) {
    if (loading.size >= mostAtOnce)
      return;
    waiting.delete(picture);
    loading.add(picture);
    load(picture, path);
  }
}

async function load(picture, path) {
  try {
    await ensureSession();
    if (loading.has(picture))
      picture.src = path;
  } catch {
    picture.remove();
    ended(picture);
  }
}

function ended(picture) {
  loading.delete(picture);
  loadNext();
}

// Lies upon the icon once it is there, so that nothing moves.
export function preview(entry, pixels) {
  if (!hasPreview(entry))
    return null;
  const picture = h('img', { class: 'preview', alt: '', decoding: 'async', draggable: 'false' });
  picture.addEventListener('load', () => {
    picture.classList.add('is-there');
    ended(picture);
  });
  picture.addEventListener('error', () => {
    picture.remove();
    ended(picture);
  });
  setTimeout(() => {
    if (!picture.isConnected)
      return;
    waiting.set(picture, previewPath(entry, pixels));
    loadNext();
  }, delay);
  return picture;
}

// An element goes, and nobody needs what it was to show.
export function dropPreviews(element) {
  const pictures = [...element.querySelectorAll('.preview')];
  for (const picture of pictures)
    waiting.delete(picture);
  for (const picture of pictures.filter(each => loading.delete(each)))
    picture.removeAttribute('src');
  loadNext();
}
