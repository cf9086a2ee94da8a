// The keys, and the switch of those that are a single character.

import { tell } from './dialog.js';
import { h } from './dom.js';
import { choose, setting } from './settings.js';
import { t } from './texts.js';

const keys = [
  ['↑ ↓ ← →', 'Go from entry to entry'],
  ['Enter', 'Open'],
  ['Space', 'Select'],
  ['Shift + ↑ ↓', 'Select several'],
  ['Ctrl + A', 'Select all'],
  ['F2', 'Rename'],
  ['Delete', 'Delete'],
  ['Shift + F10', 'More'],
  ['Esc', 'Close, or select nothing'],
  ['/', 'Filter'],
  ['?', 'Show this list'],
];

export function showHelp() {
  const list = h('dl', { class: 'keys' }, ...keys.flatMap(([key, text]) => [h('dt', {}, h('kbd', {}, key)), h('dd', {}, t(text))]));
  const singles = h('input', { type: 'checkbox', checked: setting('singleKeys'), onchange: () => choose({ singleKeys: singles.checked }) });
  return tell(t('Keyboard'), [list, h('label', { class: 'switch' }, singles, t('Use / and ? as shortcuts'))]);
}
