// What is shown of films, sounds, texts and documents, until a signal ends it.

import { ensureSession, readBlob, readText } from '../dav.js';
import { button, h, icon } from '../dom.js';
import { size } from '../format.js';
import { reason } from '../notices.js';
import { saveByLink } from '../save.js';
import { logIn } from '../session.js';
import { t } from '../texts.js';

const mostText = 2 ** 20; // bytes
const told = new Set([0, 401, 403, 404]); // statuses that say more than that it can't be shown

// An error that says nothing of the visitor or the server leaves the file to other programs.
function failed(stage, entry, error) {
  stage.replaceChildren(h('div', { class: 'stage-note' }, icon(entry.kind),
    h('p', {}, error ? reason(error) : t('This file can’t be shown here.')),
    error?.status === 401 ? button(t('Log in'), null, logIn, { class: 'button main' })
      : h('a', { class: 'button main', href: entry.path, download: '', onclick: saveByLink }, t('Download'))));
}

// Gives what is done about errors, unless the signal has come meanwhile.
export const failure = (stage, entry, signal) => error => signal.aborted || failed(stage, entry, error);

// Elements don't say why: the server does.
export async function explain(stage, entry, signal) {
  const error = await readText(entry.path, 1, signal).then(() => null, found => found);
  if (!signal.aborted)
    failed(stage, entry, told.has(error?.status) ? error : null);
}

export function showMedia(stage, entry, signal, step) {
  const tag = entry.kind === 'video' ? 'video' : 'audio';
  const player = h(tag, { class: 'player', controls: true, autoplay: true, playsinline: true, 'aria-label': entry.label });
  player.addEventListener('ended', () => step(1), { signal });
  player.addEventListener('error', () => explain(stage, entry, signal), { signal });
  stage.append(...entry.kind === 'sound' ? [h('div', { class: 'sound-face' }, icon('sound'))] : [], player);
  ensureSession().then(() => signal.aborted || (player.src = entry.path), failure(stage, entry, signal));
  signal.addEventListener('abort', () => {
    player.removeAttribute('src');
    player.load();
  });
}

export function showText(stage, entry, signal) {
  const text = h('pre', { class: 'text', tabindex: '0', 'aria-label': entry.label });
  stage.append(text);
  if (entry.size === 0)
    return;
  readText(entry.path, mostText, signal).then(content => {
    text.textContent = content;
    if (entry.size > mostText)
      stage.append(h('p', { class: 'text-more' }, t('The first {size} of it.', { size: size(mostText) })));
  }).catch(failure(stage, entry, signal));
}

// From memory: as a file of the share it would have no viewer.
export function showDocument(stage, entry, signal) {
  readBlob(entry.path, 'application/pdf', signal).then(blob => {
    const url = URL.createObjectURL(blob);
    signal.addEventListener('abort', () => URL.revokeObjectURL(url));
    stage.append(h('iframe', { class: 'document', src: url, title: entry.label }));
  }).catch(failure(stage, entry, signal));
}
