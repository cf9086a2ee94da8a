// An entry as a row of the list or as a tile of the grid.

import { cutName, h, icon } from './dom.js';
import { size, time } from './format.js';
import { preview } from './previews.js';
import { t } from './texts.js';

// A screen reader hears this, and it begins with the name.
function told(entry, where) {
  return [entry.label, entry.isFolder ? t('folder') : size(entry.size), time(entry.time), where].filter(Boolean).join(', ');
}

function face(entry, pixels) {
  return h('span', { class: `face face-${entry.kind}`, 'aria-hidden': 'true' },
    icon(entry.kind), preview(entry, pixels));
}

const check = () => h('span', { class: 'check', 'aria-hidden': 'true' }, icon('check'));

const link = entry => h('a', { class: 'open', href: entry.path, tabindex: '-1', draggable: 'false' }, cutName(entry.label));

const more = entry => h('button', {
  type: 'button', class: 'more', tabindex: '-1', title: t('More'), 'aria-label': t('More: {name}', { name: entry.label }),
}, icon('more'));

const shared = (entry, index, where) => ({
  'data-path': entry.path, 'data-index': index, 'aria-label': told(entry, where), tabindex: '-1', draggable: 'true',
});

// `where` tells the folder of what was found below.
export function row(entry, index, where) {
  return h('div', { role: 'row', class: 'entry row', 'aria-rowindex': index + 2, ...shared(entry, index, where) },
    h('span', { role: 'gridcell', class: 'cell-name' }, face(entry, 160), check(), link(entry), where && h('bdi', { class: 'where' }, where)),
    h('span', { role: 'gridcell', class: 'cell-size' }, entry.isFolder ? '' : size(entry.size)),
    h('span', { role: 'gridcell', class: 'cell-time' }, time(entry.time)),
    h('span', { role: 'gridcell', class: 'cell-more' }, more(entry)));
}

function tile(entry, index, column, where) {
  return h('div', { role: 'gridcell', class: 'entry tile', 'aria-colindex': column + 1, title: where, ...shared(entry, index, where) },
    face(entry, 320), check(),
    h('span', { class: 'tile-foot' }, link(entry), more(entry)));
}

export function tileRow(entries, first, number, where) {
  return h('div', { role: 'row', class: 'tiles', 'aria-rowindex': number + 1 },
    ...entries.map((entry, column) => tile(entry, first + column, column, where(entry))));
}

// The field in which an entry gets another name, in place of its link.
export function nameField(element, name) {
  const field = h('input', { class: 'rename', type: 'text', value: name, 'aria-label': t('New name'), spellcheck: 'false' });
  element.draggable = false;
  element.querySelector('.open').replaceWith(field);
  field.focus();
  const dot = name.lastIndexOf('.');
  field.setSelectionRange(0, dot > 0 ? dot : name.length);
  return field;
}
