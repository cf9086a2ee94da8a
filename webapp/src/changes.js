// What is changed in folders: names, places, new things and old ones gone. Each tells what has become
// of it, and gives the path of what has the keyboard then, or true; null when the visitor wants it
// no more. What fails is thrown, with what is to be tried again as its `retry`.

import { chooseFolder } from './chooser.js';
import * as dav from './dav.js';
import { askAboutNames, confirm } from './dialog.js';
import { inform } from './notices.js';
import { encoded, lastSegment, numbered, parentOf } from './paths.js';
import { t } from './texts.js';

const atOnce = 4;
const mostNumbers = 100;
const mostUndone = 50; // entries that the server keeps aside for a moment

// Runs `work` for each of `items`, a few at once; gives the errors.
async function forAll(items, work) {
  const rest = [...items];
  const errors = [];
  const worker = async () => {
    for (let item = rest.shift(); item; item = rest.shift()) {
      try {
        await work(item);
      } catch (error) {
        errors.push({ item, error });
      }
    }
  };
  await Promise.all(Array.from({ length: atOnce }, worker));
  return errors;
}

// `put` by the first name that nobody has: it gets the path.
async function withFreeName(folder, name, put, suffix = '') {
  for (let number = 2; number < mostNumbers; ++number) {
    try {
      return await put(folder + encoded(numbered(name, number)) + suffix);
    } catch (error) {
      if (error.status !== 412)
        throw error;
    }
  }
  throw new dav.DavError(412, folder + encoded(name));
}

// What no folder can hold reads as another path, or as one that is not there.
const longestName = 255; // bytes
const impossible = /[/\0]|^\.{1,2}$/;

function pathOf(folder, name) {
  if (impossible.test(name) || new TextEncoder().encode(name).length > longestName)
    throw new dav.DavError(400, folder + encoded(name));
  return folder + encoded(name);
}

export async function rename(entry, name) {
  const to = pathOf(parentOf(entry.path), name) + suffixOf(entry);
  await dav.move(entry.path, to);
  inform(t('Renamed to {name}', { name }));
  return to;
}

export async function newFolder(folder, name) {
  const path = `${pathOf(folder, name)}/`;
  await dav.makeFolder(path);
  inform(t('Created: {name}', { name }));
  return path;
}

export async function newText(folder, name, text) {
  const path = pathOf(folder, name);
  await dav.put(path, text);
  inform(t('Created: {name}', { name }));
  return path;
}

// Few are deleted at once, and can be taken back: `change` does that, see `Commands`. Who deletes many
// is asked before.
export async function remove(entries, change) {
  const question = t('Delete {n} entries?', { n: entries.length });
  if (entries.length > mostUndone && !await confirm(question, t('This can’t be undone.'), t('Delete')))
    return null;
  return removeAll(entries, change);
}

async function removeAll(entries, change) {
  const removed = [];
  const errors = await forAll(entries, async ({ path }) => removed.push(await dav.remove(path)));
  const kept = removed.filter(Boolean);
  const undo = kept.length > 0 ? { text: t('Undo'), run: () => change(() => takeAllBack(kept)), isBrief: true } : null;
  return report(errors, entries.length, 'Deleted: {n}', rest => removeAll(rest, change), undo);
}

async function takeAllBack(kept) {
  const errors = await forAll(kept, dav.takeBack);
  return report(errors, kept.length, 'Brought back: {n}', takeAllBack);
}

function report(errors, count, text, again, action = null) {
  if (count > errors.length)
    inform(t(text, { n: count - errors.length }), action);
  if (errors.length > 0)
    throw Object.assign(errors[0].error, { all: errors.map(({ error }) => error), retry: () => again(errors.map(({ item }) => item)) });
  return true;
}

// A folder would take all that it holds with it.
async function isWithoutFolders(taken, folder) {
  if (taken.some(({ isFolder }) => isFolder))
    return false;
  const names = new Set(taken.map(({ name }) => name));
  const there = await dav.list(folder).catch(() => null);
  return there?.some(({ isFolder, name }) => isFolder && names.has(name)) === false;
}

// Asks once about all names that are taken there.
async function settleNames(errors, place, folder, mayReplace) {
  const taken = errors.filter(({ error }) => error.status === 412).map(({ item }) => item);
  const others = errors.filter(({ error }) => error.status !== 412);
  if (taken.length === 0)
    return others;
  const answer = await askAboutNames(taken.map(({ label }) => label), mayReplace && await isWithoutFolders(taken, folder));
  if (answer === 'replace')
    return [...others, ...await forAll(taken, entry => place(entry, folder + lastSegment(entry.path) + suffixOf(entry), true))];
  if (answer === 'keep') {
    return [...others, ...await forAll(taken,
      entry => withFreeName(folder, entry.name, path => place(entry, path), suffixOf(entry)))];
  }
  return [...others, ...taken.map(item => ({ item, error: new dav.DavError(412, item.path) }))];
}

const suffixOf = entry => (entry.isFolder ? '/' : '');

// Puts entries into a folder.
export async function placeInto(folder, entries, { isCopy, mayReplace }) {
  const place = (entry, path, replace = false) => (isCopy ? dav.copy : dav.move)(entry.path, path, { replace });
  // A copy beside itself gets a name of its own at once.
  const put = entry => (isCopy && parentOf(entry.path) === folder
    ? withFreeName(folder, entry.name, path => place(entry, path), suffixOf(entry))
    : place(entry, folder + lastSegment(entry.path) + suffixOf(entry)));
  const moved = entries.filter(({ path }) => folder !== path && (isCopy || parentOf(path) !== folder));
  const errors = await settleNames(await forAll(moved, put), place, folder, mayReplace);
  const skipped = errors.filter(({ error }) => error.status === 412).length;
  return report(errors.filter(({ error }) => error.status !== 412), moved.length - skipped,
    isCopy ? 'Copied: {n}' : 'Moved: {n}', rest => placeInto(folder, rest, { isCopy, mayReplace }));
}

export async function chooseAndPlace(start, entries, options) {
  const text = options.isCopy ? t('Copy') : t('Move');
  const folder = await chooseFolder(text, options.isCopy ? t('Copy here') : t('Move here'), start, options.isCopy ? [] : entries);
  return folder ? placeInto(folder, entries, options) : null;
}
