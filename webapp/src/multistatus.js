// Answers of WebDAV, and the page without scripts, as entries.

import { Entry } from './entry.js';
import { segments } from './paths.js';

// Reads the answer to a PROPFIND of Depth 1 while it arrives: a parser that builds a document takes
// seconds for ten thousand entries. The root element says which prefix stands for "DAV:".
export class ListingReader {
  entries = [];
  #depth;
  #rest = '';
  #patterns = null;

  constructor(folder) {
    this.#depth = segments(folder).length;
  }

  add(text) {
    this.#rest += text;
    this.#patterns ??= patternsOf(this.#rest);
    if (!this.#patterns)
      return;
    const { response } = this.#patterns;
    response.lastIndex = 0;
    let end = 0;
    for (let found = response.exec(this.#rest); found; found = response.exec(this.#rest)) {
      this.#take(found[1]);
      end = response.lastIndex;
    }
    this.#rest = this.#rest.slice(end);
  }

  // It holds the folder itself, too, whose path is shorter.
  #take(response) {
    const { href, collection, length, modified } = this.#patterns;
    const path = pathIn(href.exec(response)?.[1].trim() ?? '');
    if (segments(path).length <= this.#depth)
      return;
    this.entries.push(new Entry(path, collection.test(response), Number(length.exec(response)?.[1]), modified.exec(response)?.[1]));
  }
}

function patternsOf(xml) {
  const prefix = /<(?:([\w.-]+):)?multistatus\b[^>]*>/.exec(xml);
  if (!prefix)
    return null;
  const name = prefix[1] ? `${prefix[1]}:` : '';
  const element = (local, content) => `<${name}${local}(?:\\s[^>]*)?>${content}</${name}${local}>`;
  return {
    response: new RegExp(element('response', '([^]*?)'), 'g'),
    href: new RegExp(element('href', '([^<]*)')),
    collection: new RegExp(`<${name}collection\\b`),
    length: new RegExp(element('getcontentlength', '(\\d+)')),
    modified: new RegExp(element('getlastmodified', '([^<]+)')),
  };
}

// The server may write whole URLs.
function pathIn(href) {
  const path = href.replaceAll('&amp;', '&').replaceAll('&apos;', "'");
  return path.startsWith('/') ? path : new URL(path, location.origin).pathname;
}

export function failedStatus(xml) {
  const status = /HTTP\/1\.\d (\d+)/.exec(xml);
  return status ? Number(status[1]) : 500;
}

// What the server wrote for browsers without scripts; null when it is not all.
export function readPage(document) {
  const table = document.querySelector('main table');
  if (!table || document.querySelector('main p'))
    return null;
  const entries = [];
  for (const { cells } of table.rows) {
    const link = cells[0].firstElementChild;
    if (link.getAttribute('href') === '../')
      continue;
    const path = link.pathname;
    entries.push(new Entry(path, path.endsWith('/'), Number(cells[1].textContent), cells[2].textContent));
  }
  return entries;
}
