// Tells that nobody answers, above what was there before.

import { button, h } from './dom.js';
import { reason } from './notices.js';
import { t } from './texts.js';

export function lostBar(folder, again) {
  const note = h('span', { role: 'alert' });
  const element = h('div', { class: 'find-bar', hidden: true }, note, button(t('Try again'), 'retry', again));
  folder.addEventListener('change', () => {
    element.hidden = !folder.isLost;
    note.textContent = folder.isLost ? reason({ status: 0 }) : '';
  });
  return element;
}
