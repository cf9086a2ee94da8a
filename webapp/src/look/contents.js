// What is shown of films, sounds, texts and documents. Each gives what ends it, if anything must.

import { readBlob, readText } from '../dav.js';
import { h, icon } from '../dom.js';
import { size } from '../format.js';
import { reason } from '../notices.js';
import { t } from '../texts.js';

const mostText = 2 ** 20; // bytes

export function failed(stage, entry, text = t('This file can’t be shown here.')) {
  stage.replaceChildren(h('div', { class: 'stage-note' }, icon(entry.kind), h('p', {}, text),
    h('a', { class: 'button main', href: entry.path, download: '' }, t('Download'))));
}

export function showMedia(stage, entry, step) {
  const tag = entry.kind === 'video' ? 'video' : 'audio';
  const player = h(tag, { class: 'player', src: entry.path, controls: true, autoplay: true, playsinline: true, 'aria-label': entry.label });
  player.addEventListener('ended', () => step(1));
  player.addEventListener('error', () => failed(stage, entry));
  stage.append(...entry.kind === 'sound' ? [h('div', { class: 'sound-face' }, icon('sound'))] : [], player);
  return () => {
    player.removeAttribute('src');
    player.load();
  };
}

export function showText(stage, entry) {
  const text = h('pre', { class: 'text', tabindex: '0', 'aria-label': entry.label });
  stage.append(text);
  if (entry.size === 0)
    return;
  readText(entry.path, mostText).then(content => {
    text.textContent = content;
    if (entry.size > mostText)
      stage.append(h('p', { class: 'text-more' }, t('The first {size} of it.', { size: size(mostText) })));
  }, error => failed(stage, entry, reason(error)));
}

// From memory: as a file of the share it would have no viewer.
export function showDocument(stage, entry) {
  let url = null;
  let isOver = false;
  readBlob(entry.path, 'application/pdf').then(blob => {
    if (isOver)
      return;
    url = URL.createObjectURL(blob);
    stage.append(h('iframe', { class: 'document', src: url, title: entry.label }));
  }, error => failed(stage, entry, reason(error)));
  return () => {
    isOver = true;
    URL.revokeObjectURL(url);
  };
}
