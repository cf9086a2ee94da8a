// Ways for files to come in, and what becomes of them.

import { askAboutNames } from '../dialog.js';
import { h } from '../dom.js';
import { shownName } from '../entry.js';
import { announce, complain, inform, warn } from '../notices.js';
import { number } from '../format.js';
import { t } from '../texts.js';
import { Awake } from './awake.js';
import { UploadPanel } from './panel.js';
import { fromClipboard, fromList, fromTransfer, isFiles } from './picked.js';
import { Queue } from './queue.js';

function picker(attributes, take) {
  const field = h('input', { type: 'file', multiple: true, hidden: true, tabindex: '-1', 'aria-hidden': 'true', ...attributes });
  field.addEventListener('change', () => {
    take(fromList(field.files));
    field.value = '';
  });
  document.body.append(field);
  return () => field.click();
}

const mostListed = 5;

function listed(names) {
  const shown = names.slice(0, mostListed).map(shownName);
  return [...shown, ...names.length > mostListed ? [t('and {n} more', { n: names.length - mostListed })] : []].join(', ');
}

// What a batch does about names that are taken; `isBlind` for who can't see them.
function decider(known, { mayReplace, isBlind }) {
  let asked = isBlind ? Promise.resolve('keep') : null;
  const decide = name => {
    asked ??= askAboutNames([...new Set([name, ...known])].map(shownName), mayReplace).then(answer => answer ?? 'skip');
    return asked;
  };
  decide.isTaken = ({ status }) => status === 412 || (isBlind && status === 403);
  // Who can't see which are free would try them one by one.
  decide.nextNumber = number => (isBlind ? Math.floor(10000 + Math.random() * 90000) : number + 1);
  decide.mostNames = isBlind ? 4 : 50;
  return decide;
}

function outcome(items) {
  const count = wanted => items.filter(({ state }) => state === wanted).length;
  const failed = count('failed') > 0 ? `, ${t('Failed: {n}', { n: number(count('failed')) })}` : '';
  return t('Uploaded: {n}', { n: number(count('done')) }) + failed;
}

export class Uploads {
  #queue = new Queue();
  #where;

  // `where()` tells { folder, rights, taken(name), isBlind } of what is looked at.
  constructor(where, onArrived) {
    this.#where = where;
    this.panel = new UploadPanel(this.#queue).element;
    this.pickFiles = picker({}, picked => this.add(picked));
    this.pickFolder = picker({ webkitdirectory: true }, picked => this.add(picked));
    const awake = new Awake();
    let wasBusy = false;
    this.#queue.addEventListener('change', () => {
      const { isBusy, items } = this.#queue;
      awake.want(isBusy);
      if (wasBusy && !isBusy)
        announce(outcome(items));
      wasBusy = isBusy;
    });
    this.#queue.addEventListener('foldersMissing', ({ detail }) => complain(detail.error, detail.retry));
    this.#queue.addEventListener('done', ({ detail }) => onArrived(detail));
    this.#listen();
  }

  // `where` and `target`, a path, are of the moment when the visitor let go of the files.
  async add(picked, where = this.#where(), target = where.folder) {
    const { rights, taken, isBlind } = where;
    if (!rights.add)
      return inform(t('You have no right to do this here.'));
    if (picked.unread?.length > 0)
      warn(t('Could not be read: {names}', { names: listed(picked.unread) }));
    const known = target === this.#where().folder ? picked.files.filter(each => each.folders.length === 0 && taken(each.file.name)) : [];
    const decide = decider(known.map(({ file }) => file.name), { mayReplace: rights.change, isBlind });
    // Asked before anything is sent, where it is known that it must be.
    const answer = known.length > 0 && !isBlind ? await decide(known[0].file.name) : null;
    for (const each of known)
      each.answer = answer;
    // Who can't see them in the folder sees what came of this visit.
    if (!this.#queue.isBusy && !isBlind)
      this.#queue.clear();
    const files = picked.files.filter(each => each.answer !== 'skip');
    this.#queue.add({ files, folders: picked.folders }, target, decide);
  }

  #listen() {
    const veil = h('div', { class: 'drop-veil', hidden: true, 'aria-hidden': 'true' }, h('p', {}, t('Drop files here')));
    document.body.append(veil);
    document.addEventListener('dragover', event => {
      if (!isFiles(event.dataTransfer))
        return;
      event.preventDefault();
      event.dataTransfer.dropEffect = this.#where().rights.add ? 'copy' : 'none';
      veil.hidden = !this.#where().rights.add;
    });
    document.addEventListener('dragleave', event => {
      veil.hidden ||= event.relatedTarget === null;
    });
    document.addEventListener('drop', async event => {
      veil.hidden = true;
      if (!isFiles(event.dataTransfer))
        return;
      event.preventDefault();
      const where = this.#where();
      const path = event.target.closest?.('[data-path]')?.dataset.path;
      this.add(await fromTransfer(event.dataTransfer), where, path?.endsWith('/') ? path : where.folder);
    });
    document.addEventListener('paste', event => {
      if (event.clipboardData.files.length > 0 && !event.target.closest('input, textarea'))
        this.add(fromClipboard(event.clipboardData));
    });
  }
}
