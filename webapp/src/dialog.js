// Questions to the visitor. Each resolves with the answer, or null when it is closed.

import { button, h } from './dom.js';
import { t } from './texts.js';

let count = 0;

// `content` are elements; `actions` are { text, value, isMain, isDangerous }.
export function ask({ title, content = [], actions, className = '' }) {
  return new Promise(resolve => {
    const id = `dialog-${++count}`;
    const before = document.activeElement;
    const make = ({ text, value, isMain, isDangerous }) => h('button', {
      type: isMain ? 'submit' : 'button', value,
      class: ['button', isMain && 'main', isDangerous && 'danger'].filter(Boolean).join(' '),
      onclick: isMain ? undefined : () => dialog.close(value),
    }, text);
    const dialog = h('dialog', { class: `dialog ${className}`, 'aria-labelledby': id },
      h('form', { method: 'dialog' },
        h('header', { class: 'dialog-head' }, h('h2', { id }, title),
          button(t('Close'), 'close', () => dialog.close(''), { quiet: true })),
        h('div', { class: 'dialog-body' }, ...content),
        h('footer', { class: 'dialog-foot' }, ...actions.map(make))));
    dialog.addEventListener('close', () => {
      const { returnValue } = dialog;
      dialog.remove();
      if (before?.isConnected)
        before.focus();
      resolve(returnValue || null);
    });
    document.body.append(dialog);
    dialog.showModal();
    (dialog.querySelector('[autofocus]') ?? dialog.querySelector('.main') ?? dialog).focus();
  });
}

const cancel = () => ({ text: t('Cancel'), value: '' });

export const confirm = (title, text, action) => ask({
  title, content: [h('p', {}, text)], actions: [cancel(), { text: action, value: 'yes', isMain: true, isDangerous: true }],
});

export const tell = (title, content) => ask({ title, content, actions: [{ text: t('Close'), value: '', isMain: true }] });

// Resolves with the name, or null.
export async function askForName(title, name, action, more = []) {
  const field = h('input', { type: 'text', value: name, required: true, autofocus: true, id: 'name-field', spellcheck: 'false', autocomplete: 'off' });
  const actions = [cancel(), { text: action, value: 'yes', isMain: true }];
  const content = [h('label', { for: 'name-field' }, t('Name')), field, ...more];
  field.addEventListener('focus', () => field.setSelectionRange(0, name.lastIndexOf('.') > 0 ? name.lastIndexOf('.') : name.length), { once: true });
  return await ask({ title, content, actions }) ? field.value.trim() || null : null;
}

// What to do with names that are taken: "keep", "replace", "skip", or null for nothing at all.
export const askAboutNames = (names, mayReplace) => ask({
  title: t('Name exists'),
  content: [
    h('p', {}, t('These names are taken already:')),
    h('ul', { class: 'names' }, ...names.slice(0, 5).map(name => h('li', {}, h('bdi', {}, name)))),
    names.length > 5 && h('p', {}, t('and {n} more', { n: names.length - 5 })),
  ],
  actions: [
    { text: t('Skip'), value: 'skip' },
    ...(mayReplace ? [{ text: t('Replace'), value: 'replace', isDangerous: true }] : []),
    { text: t('Keep both'), value: 'keep', isMain: true },
  ],
});
