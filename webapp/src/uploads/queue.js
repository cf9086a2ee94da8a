// The uploads of this visit, a few at a time. Tells "change" whenever anything about them is another,
// "done" with the path of a folder when a file has come to it, and "foldersMissing" with { error, retry }
// of empty ones.

import { DavError, ensureSession, factsOf, makeFolder, unreadable } from '../dav.js';
import { perTask } from '../dom.js';
import { encoded } from '../paths.js';
import { session } from '../session.js';
import { Bundle } from './bundle.js';
import { Item } from './item.js';
import { secondsOf, send } from './transfer.js';

const atOnce = 4; // requests
const measuredFor = 8; // ms at a time
const patience = 30000; // ms without a byte, and the connection counts as lost
const pauses = [1, 2, 4, 8, 15, 30]; // seconds until a lost connection is tried again
const passing = new Set([0, 401, 423, 429, 502, 503, 504]); // reasons that go away by themselves

const keyOf = names => names.join('/');
const pathOf = (target, names) => target + names.map(name => `${encoded(name)}/`).join('');

const isReadable = file => file.slice(0, 1).arrayBuffer().then(() => true, () => false);

export class Queue extends EventTarget {
  items = [];
  #isPaused = false;

  constructor() {
    super();
    addEventListener('online', () => this.#retryNow());
    session.addEventListener('resumed', () => this.#retryNow());
    addEventListener('offline', () => this.#lose(() => true));
    setInterval(() => this.#lose(item => item.sent < item.size && Date.now() - item.moved > patience), patience / 6);
  }

  get isPaused() {
    return this.#isPaused;
  }

  get isBusy() {
    return this.items.some(item => !item.isOver);
  }

  // `decide(name)` says what to do about a name that is taken, see `askAboutNames`; it is asked for
  // each, and knows which errors mean that, and the next name.
  add({ files, folders }, target, decide) {
    const batch = { decide, target, folders: new Map() };
    this.#makeFolders(batch, target, folders, files);
    const items = files.map(picked => {
      const item = new Item(picked, pathOf(target, picked.folders), batch);
      item.prepared = () => this.#folderFor(batch, target, picked.folders);
      return item;
    });
    this.items.push(...items);
    this.#advance();
    this.#measure(items);
  }

  // The browser waits for the disk to tell a size: thousands at once would stop the page.
  async #measure(items) {
    let pauseAt = performance.now() + measuredFor;
    for (const item of items) {
      item.measure();
      if (performance.now() > pauseAt) {
        await new Promise(resolve => setTimeout(resolve));
        pauseAt = performance.now() + measuredFor;
      }
    }
    this.#tell();
  }

  // Of those without files nobody else would tell why they are missing.
  async #makeFolders(batch, target, folders, files) {
    const settled = await Promise.allSettled(folders.map(names => this.#folderFor(batch, target, names)));
    const used = new Set(files.flatMap(file => file.folders.map((_, depth) => keyOf(file.folders.slice(0, depth + 1)))));
    const failed = folders.filter((names, index) => settled[index].status === 'rejected' && !used.has(keyOf(names)));
    if (failed.length === 0)
      return;
    const error = settled[folders.indexOf(failed[0])].reason;
    const retry = () => {
      for (const names of failed)
        batch.folders.delete(keyOf(names));
      this.#makeFolders(batch, target, failed, files);
    };
    this.dispatchEvent(new CustomEvent('foldersMissing', { detail: { error, retry } }));
  }

  // Made once for a batch, after the one around it.
  #folderFor(batch, target, names) {
    if (names.length === 0)
      return Promise.resolve();
    const key = keyOf(names);
    if (!batch.folders.has(key))
      batch.folders.set(key, this.#makeFolder(batch, target, names));
    return batch.folders.get(key);
  }

  async #makeFolder(batch, target, names) {
    await this.#folderFor(batch, target, names.slice(0, -1));
    try {
      await makeFolder(pathOf(target, names));
      this.dispatchEvent(new CustomEvent('done', { detail: target }));
    } catch (error) {
      if (error.status === 412)
        return;
      if (passing.has(error.status))
        batch.folders.delete(keyOf(names));
      throw error;
    }
  }

  // Once for all that end together: there may be thousands.
  #advance = perTask(() => {
    this.#tell();
    if (this.#isPaused)
      return;
    const running = new Set(this.items.filter(({ state }) => state === 'running').map(item => item.bundle ?? item));
    let waiting = this.items.filter(({ state }) => state === 'waiting');
    for (let free = atOnce - running.size; free > 0 && waiting.length > 0; --free) {
      const count = Bundle.fitting(waiting);
      const bundle = count > 1 ? new Bundle(waiting[0].batch.target, count) : null;
      waiting.slice(0, count).forEach(item => this.#run(item, bundle));
      waiting = waiting.slice(count);
    }
  });

  async #run(item, bundle) {
    const attempt = { isSent: false };
    item.mayBeThere ||= item.attempt?.isSent === true;
    const goesOn = () => item.attempt === attempt && item.state === 'running';
    item.attempt = attempt;
    item.bundle = bundle;
    item.state = 'running';
    item.size = bundle ? item.measure() : item.file.size;
    const isDoubted = item.error?.status === 401;
    item.error = null;
    item.moved = Date.now();
    try {
      if (!await this.#isReady(item, bundle, isDoubted, goesOn))
        return this.#advance();
      // Nobody tells the progress of nothing, nor for sure of what goes at once.
      attempt.isSent = item.size === 0 || bundle !== null;
      item.job = (bundle ? job => bundle.send(job) : send)({
        file: item.file, folder: item.folder, name: item.name, replace: item.replace,
        onProgress: sent => {
          item.sent = sent;
          attempt.isSent ||= sent === item.size;
          item.moved = Date.now();
          this.#tell();
        },
      });
      await item.job.done;
      if (goesOn())
        this.#finish(item);
    } catch (error) {
      if (goesOn())
        await this.#fail(item, error);
    }
    this.#advance();
  }

  // Whether it is still to be sent; if not, those that go with it don't wait for it.
  async #isReady(item, bundle, isDoubted, goesOn) {
    let isReady = false;
    try {
      await ensureSession(isDoubted);
      await item.prepared();
      // A bundle is sent anew from its first file on: it would never end where connections break early.
      const isArrived = item.mayBeThere && !item.replace && await this.#isArrived(item);
      isReady = goesOn() && !isArrived;
      if (goesOn() && isArrived)
        this.#finish(item);
    } finally {
      if (!isReady)
        bundle?.leave();
    }
    return isReady;
  }

  #finish(item) {
    item.state = 'done';
    item.sent = item.size;
    item.job = null;
    this.dispatchEvent(new CustomEvent('done', { detail: item.folder }));
  }

  async #fail(item, error) {
    const { attempt } = item;
    if (!(error instanceof DavError))
      throw error;
    if (item.batch.decide.isTaken(error))
      return this.#settleName(item, error);
    // To the browser, what it can't read is a connection that broke.
    const isGone = error.status === 0 && !await isReadable(item.file);
    if (item.attempt !== attempt || item.state !== 'running')
      return;
    item.error = isGone ? new DavError(unreadable) : error;
    if (passing.has(item.error.status))
      this.#retryLater(item);
    else
      item.state = 'failed';
  }

  // The answer to an earlier attempt may have been lost: its name is its own then.
  async #settleName(item, error) {
    const { attempt } = item;
    const isArrived = item.mayBeThere && await this.#isArrived(item);
    if (item.attempt !== attempt || item.state !== 'running')
      return;
    if (isArrived)
      return this.#finish(item);
    item.forgetSent();
    item.state = 'asking';
    this.#advance();
    const answer = item.names > 1 ? 'keep' : await item.batch.decide(item.name);
    if (item.state === 'asking')
      this.#takeAnswer(item, answer, error);
  }

  async #isArrived({ folder, name, file, size }) {
    const there = await factsOf(folder + encoded(name));
    return there?.size === size && there.seconds === secondsOf(file);
  }

  #takeAnswer(item, answer, error) {
    item.state = 'waiting';
    if (answer === 'replace' && !item.replace) {
      item.replace = true;
    } else if (answer === 'keep' && item.names < item.batch.decide.mostNames) {
      item.takeNextName();
    } else {
      item.state = answer === 'skip' ? 'skipped' : 'failed';
      item.error = error;
    }
  }

  #retryLater(item) {
    item.state = 'retrying';
    const pause = pauses[Math.min(item.attempts++, pauses.length - 1)];
    item.timer = setTimeout(() => this.#again(item), pause * 1000);
  }

  // What went together goes together again.
  #again(item) {
    this.#retryNow(each => each === item || (item.bundle && each.bundle === item.bundle));
  }

  // A connection that is lost tells nothing for minutes.
  #lose(isLost) {
    for (const item of this.items.filter(each => each.state === 'running' && isLost(each))) {
      item.job?.stop();
      item.error = null;
      this.#retryLater(item);
    }
    this.#tell();
  }

  #retryNow(isMeant = () => true) {
    for (const item of this.items.filter(each => each.state === 'retrying' && isMeant(each))) {
      clearTimeout(item.timer);
      item.state = 'waiting';
    }
    this.#advance();
  }

  pause() {
    this.#isPaused = true;
    for (const item of this.items.filter(({ state }) => state === 'running' || state === 'retrying')) {
      item.state = 'paused';
      clearTimeout(item.timer);
      item.job?.stop();
    }
    this.#tell();
  }

  resume() {
    this.#isPaused = false;
    for (const item of this.items.filter(({ state }) => state === 'paused'))
      item.state = 'waiting';
    this.#advance();
  }

  // Those that went with it have lost nothing but their request.
  cancel(item) {
    clearTimeout(item.timer);
    item.state = 'cancelled';
    for (const other of this.items.filter(each => item.bundle && each.bundle === item.bundle && each.state === 'running'))
      other.state = 'waiting';
    item.job?.stop(true);
    this.#advance();
  }

  cancelAll() {
    for (const item of this.items.filter(each => !each.isOver))
      this.cancel(item);
  }

  retry(item) {
    item.state = 'waiting';
    item.attempts = 0;
    item.batch.folders.clear(); // what could not be made is tried once more
    this.#advance();
  }

  clear() {
    this.items = this.items.filter(item => !item.isOver);
    this.#isPaused &&= this.items.length > 0;
    this.#tell();
  }

  #tell = perTask(() => this.dispatchEvent(new Event('change')));
}
