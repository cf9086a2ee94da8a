// The order of entries and which of them are shown.

import { folded } from './entry.js';

const compared = (a, b) => (a < b ? -1 : Number(a > b));
const byName = (a, b) => compared(a.key, b.key) || compared(a.path, b.path);

const orders = {
  name: byName,
  size: (a, b) => a.size - b.size,
  time: (a, b) => a.time - b.time,
  kind: (a, b) => compared(a.kind, b.kind),
};

export const orderNames = Object.keys(orders);

// Those whose names hold all words, folders first.
export function arranged(entries, { order, isDescending }, words = '') {
  const wanted = folded(words).split(/\s+/).filter(Boolean);
  const found = wanted.length === 0
    ? [...entries]
    : entries.filter(({ name }) => wanted.every(word => folded(name).includes(word)));
  const direction = isDescending ? -1 : 1;
  const compare = orders[order] ?? byName;
  return found.sort((a, b) => b.isFolder - a.isFolder || direction * compare(a, b) || byName(a, b));
}
