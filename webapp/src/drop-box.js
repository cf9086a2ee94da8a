// The page for who may add files but see none.

import { button, h, icon } from './dom.js';
import { t } from './texts.js';

export const dropBox = uploads => h('section', { class: 'drop-box' },
  icon('upload'), h('h1', {}, t('Add files')),
  h('p', {}, t('Choose files or drop them here. Only the owner sees what you add.')),
  h('div', { class: 'tools' },
    button(t('Upload files'), 'upload', uploads.pickFiles, { class: 'button main' }),
    button(t('Upload folder'), 'uploadFolder', uploads.pickFolder)));
