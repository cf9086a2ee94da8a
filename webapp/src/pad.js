// A text that visitors hand each other, where the server has one.

import { readVersion, writeVersion } from './dav.js';
import { ask } from './dialog.js';
import { button, h } from './dom.js';
import { complain, inform, reasonNote } from './notices.js';
import { reserved } from './paths.js';
import { t } from './texts.js';

const path = `${reserved}pad`;
// The server says so on its own page, which is taken over only later.
const isThere = document.querySelector('a[href$="/.quillon/pad"]') !== null;

export const padButton = () => (isThere ? button(t('Scratch pad'), 'text', () => edit(), { quiet: true }) : null);

async function edit() {
  try {
    await change(await readVersion(path));
  } catch (error) {
    complain(error, edit);
  }
}

// What the visitor wrote stays until it is saved, or given up.
async function change(version, mine = version.text, notes = []) {
  const wanted = await askForText(mine, notes);
  if (wanted === null || wanted === version.text)
    return;
  try {
    await writeVersion(path, wanted, version.tag);
    inform(t('Saved'));
  } catch (error) {
    if (!('status' in error))
      throw error;
    const theirs = error.status === 412 ? await readVersion(path).catch(() => null) : null;
    await change(theirs ?? version, wanted, theirs ? whatIsThere(theirs.text) : [reasonNote(error)]);
  }
}

const whatIsThere = text => [
  h('p', { role: 'alert' }, t('Somebody has changed it meanwhile.')),
  h('label', { for: 'pad-theirs' }, t('What is there now')),
  h('textarea', { rows: 6, value: text, id: 'pad-theirs', readonly: true }),
];

async function askForText(text, notes) {
  const field = h('textarea', { rows: 12, value: text, id: 'pad-field', autofocus: true });
  const answer = await ask({
    title: t('Scratch pad'),
    content: [h('label', { for: 'pad-field' }, t('Everyone here sees this text and can change it.')), field, ...notes],
    actions: [{ text: t('Cancel'), value: '' }, { text: t('Save'), value: 'yes', isMain: true }],
  });
  return answer ? field.value : null;
}
