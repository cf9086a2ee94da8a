// What is changed in folders: names, places, new things and old ones gone. Each tells what has become
// of it, and gives whether anything is another now.

import { chooseFolder } from './chooser.js';
import * as dav from './dav.js';
import { askAboutNames, askForName, confirm } from './dialog.js';
import { h } from './dom.js';
import { complain, inform } from './notices.js';
import { encoded, lastSegment, numbered, parentOf } from './paths.js';
import { t } from './texts.js';

const atOnce = 4;
const mostNumbers = 100;

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
export async function withFreeName(folder, name, put, suffix = '') {
  for (let number = 2; number < mostNumbers; ++number) {
    try {
      return await put(folder + encoded(numbered(name, number)) + suffix);
    } catch (error) {
      if (error.status !== 412 && error.status !== 405)
        throw error;
    }
  }
  throw new dav.DavError(412, folder + encoded(name));
}

export async function rename(entry, name) {
  const suffix = entry.isFolder ? '/' : '';
  const to = parentOf(entry.path) + encoded(name) + suffix;
  try {
    await dav.move(entry.path, to);
    inform(t('Renamed to {name}', { name }));
    return to;
  } catch (error) {
    complain(error);
    return null;
  }
}

export async function newFolder(folder) {
  const name = await askForName(t('New folder'), t('New folder'), t('Create'));
  if (!name)
    return false;
  const path = `${folder}${encoded(name)}/`;
  try {
    await dav.makeFolder(path);
    inform(t('Created: {name}', { name }));
    return path;
  } catch (error) {
    complain(error.status === 405 ? new dav.DavError(412, path) : error);
    return false;
  }
}

export async function newText(folder) {
  const text = h('textarea', { rows: 8, id: 'text-field', spellcheck: 'true' });
  const more = [h('label', { for: 'text-field' }, t('Text')), text];
  const name = await askForName(t('New text file'), `${t('New text')}.txt`, t('Create'), more);
  if (!name)
    return false;
  const path = folder + encoded(name);
  try {
    await dav.put(path, text.value);
    inform(t('Created: {name}', { name }));
    return path;
  } catch (error) {
    complain(error);
    return false;
  }
}

export async function remove(entries) {
  const [first] = entries;
  const title = entries.length === 1 ? t('Delete {name}?', { name: first.label }) : t('Delete {n} entries?', { n: entries.length });
  if (!await confirm(title, t('This can’t be undone.'), t('Delete')))
    return false;
  const errors = await forAll(entries, ({ path }) => dav.remove(path));
  report(errors, entries.length, 'Deleted: {n}');
  return true;
}

function report(errors, count, text) {
  if (errors.length > 0)
    complain(errors[0].error);
  if (count > errors.length)
    inform(t(text, { n: count - errors.length }));
}

// Asks once about all names that are taken there.
async function settleNames(errors, place, folder, mayReplace) {
  const taken = errors.filter(({ error }) => error.status === 412).map(({ item }) => item);
  const others = errors.filter(({ error }) => error.status !== 412);
  if (taken.length === 0)
    return others;
  const answer = await askAboutNames(taken.map(({ label }) => label), mayReplace);
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
  report(errors.filter(({ error }) => error.status !== 412), moved.length - errors.filter(({ error }) => error.status === 412).length,
    isCopy ? 'Copied: {n}' : 'Moved: {n}');
  return moved.length > 0;
}

export async function chooseAndPlace(start, entries, options) {
  const text = options.isCopy ? t('Copy') : t('Move');
  const folder = await chooseFolder(text, options.isCopy ? t('Copy here') : t('Move here'), start, options.isCopy ? [] : entries);
  return folder ? placeInto(folder, entries, options) : false;
}
