// Paths of URLs, as the server writes them: percent-encoded, folders with a "/" at their end. Names
// need not be UTF-8, so a path is never put together from what is shown of it.

// This file stands in ROOT.quillon/app/, whatever a proxy puts in front.
export const root = new URL('../../', import.meta.url).pathname;
export const reserved = `${root}.quillon/`;

// By this the server knows who asks: the browser must not ask for a password in its own way.
export const ownRequest = { 'X-Requested-With': 'Quillon' };

// A path as a value in a query, where these two mean something else.
export const inQuery = path => path.replaceAll('&', '%26').replaceAll('+', '%2B');

// A search below a folder has an address, which the server never sees. Names of files, which stand in
// the same place, hold no bare "?".
const searchMark = '#?find=';
export const searchAddress = (folder, words) => folder + searchMark + encoded(words);
export const searchedIn = ({ hash }) => (hash.startsWith(searchMark) ? decoded(hash.slice(searchMark.length)) || null : null);

const bytes = new TextEncoder();
const lenient = new TextDecoder('utf-8', { ignoreBOM: true });

function decodedBytes(text) {
  const found = [];
  for (let i = 0; i < text.length; ++i) {
    const code = text[i] === '%' ? Number.parseInt(text.slice(i + 1, i + 3), 16) : Number.NaN;
    if (Number.isNaN(code)) {
      found.push(...bytes.encode(text[i]));
    } else {
      found.push(code);
      i += 2;
    }
  }
  return Uint8Array.from(found);
}

// For people: what is no UTF-8 becomes a replacement character.
export function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return lenient.decode(decodedBytes(text));
  }
}

// Lone halves of characters, which some systems allow in names, would be refused.
export const encoded = name => encodeURIComponent(name.toWellFormed?.() ?? name);

export const segments = path => path.split('/').filter(Boolean);
export const isBelow = (path, folder) => path.startsWith(folder);
export const lastSegment = path => segments(path).at(-1) ?? '';
export const parentOf = path => path.slice(0, path.replace(/\/$/, '').lastIndexOf('/') + 1);

// The folders from the root down to `path`, which is one of them: paths.
export function trail(path) {
  const found = [root];
  for (const segment of segments(path.slice(root.length)))
    found.push(`${found.at(-1)}${segment}/`);
  return found;
}

// "a.txt" is free, else "a (2).txt" and so on.
export function numbered(name, number) {
  if (number < 2)
    return name;
  const dot = name.lastIndexOf('.');
  const end = dot > 0 ? dot : name.length;
  return `${name.slice(0, end)} (${number})${name.slice(end)}`;
}
