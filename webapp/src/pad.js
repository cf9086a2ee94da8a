// A text that visitors hand each other, where the server has one.

import { readVersion, writeVersion } from './dav.js';
import { ask } from './dialog.js';
import { button, h } from './dom.js';
import { complain, inform } from './notices.js';
import { reserved } from './paths.js';
import { t } from './texts.js';

const path = `${reserved}pad`;
// The server says so on its own page, which is taken over only later.
const isThere = document.querySelector('a[href$="/.quillon/pad"]') !== null;

export const padButton = () => (isThere ? button(t('Scratch pad'), 'text', () => edit(), { quiet: true }) : null);

// `mine` is what the visitor wrote before somebody else was faster.
async function edit(mine = '') {
  try {
    const { text, tag } = await readVersion(path);
    const wanted = await askForText([text, mine].filter(Boolean).join('\n\n'));
    if (wanted !== null && wanted !== text)
      await save(wanted, tag);
  } catch (error) {
    complain(error, () => edit(mine));
  }
}

async function askForText(text) {
  const field = h('textarea', { rows: 12, value: text, id: 'pad-field', autofocus: true });
  const answer = await ask({
    title: t('Scratch pad'),
    content: [h('label', { for: 'pad-field' }, t('Everyone here sees this text and can change it.')), field],
    actions: [{ text: t('Cancel'), value: '' }, { text: t('Save'), value: 'yes', isMain: true }],
  });
  return answer ? field.value : null;
}

async function save(text, tag) {
  try {
    await writeVersion(path, text, tag);
    inform(t('Saved'));
  } catch (error) {
    if (error.status !== 412)
      throw error;
    inform(t('Somebody has changed it meanwhile.'), { text: t('Look'), run: () => edit(text) });
  }
}
