// A file or folder, as listings tell of it.

import { decoded, lastSegment, parentOf } from './paths.js';
import { kindOf } from './kinds.js';

// Breaks would tear a line, and marks of direction would have "exe" read as something else.
const hidden = /[\u0000-\u001f\u007f\u202a-\u202e\u2066-\u2069]/g;
const pictured = character => {
  const code = character.charCodeAt(0);
  if (code > 0x7f)
    return '\ufffd';
  return String.fromCharCode(code === 0x7f ? 0x2421 : 0x2400 + code);
};

const longestNumber = 16; // digits

const ascii = /^[ -~]*$/;
export const folded = text => (ascii.test(text) ? text : text.normalize('NFKD').replace(/\p{M}/gu, '')).toLowerCase();

export const shownName = name => name.replace(hidden, pictured);

export class Entry {
  #name;

  #date;
  #time;
  #key;

  // `path` is that of its URL, `size` in bytes, `date` as HTTP writes it.
  constructor(path, isFolder, size, date) {
    this.path = path;
    this.isFolder = isFolder;
    this.size = size || 0;
    this.#date = date;
  }

  // What follows is found out once it is asked for: folders are large.

  // As it is on the disk, as far as it is UTF-8.
  get name() {
    this.#name ??= decoded(lastSegment(this.path));
    return this.#name;
  }

  // ms since 1970; 0 when nobody knows.
  get time() {
    this.#time ??= Date.parse(this.#date) || 0;
    return this.#time;
  }

  // Texts in whose order people look for names: numbers by their value, letters whatever their case
  // and marks. Comparing by the rules of a language takes a hundred times longer.
  get key() {
    this.#key ??= folded(this.name).replace(/\d+/g, digits => digits.padStart(longestNumber, '0'));
    return this.#key;
  }

  // The folders between `folder` and it, as they are shown.
  below(folder) {
    return shownName(decoded(parentOf(this.path).slice(folder.length)));
  }

  get label() {
    return shownName(this.name);
  }

  get kind() {
    return this.isFolder ? 'folder' : kindOf(this.name);
  }
}
