// A file of the queue: where it is to stand, and how far it is.

import { numbered } from '../paths.js';

const isOver = new Set(['done', 'failed', 'skipped', 'cancelled']);

export class Item {
  state = 'waiting'; // running, asking, retrying, paused, done, failed, skipped, cancelled
  size = 0; // bytes, once it is measured
  sent = 0;
  moved = 0; // when the last bytes went out, in ms
  error = null;
  attempts = 0;
  mayBeThere = false; // an earlier attempt sent the last byte under this name, and heard nothing
  number = 1; // of the name, see `numbered`
  names = 1; // that were tried
  bundle = null; // that it goes with
  job = null;
  attempt = null; // the one that counts: an earlier one may end late

  // `answer` is what the visitor said already about its name, see `askAboutNames`.
  constructor({ file, answer }, folder, batch) {
    this.file = file;
    this.folder = folder; // path
    this.batch = batch;
    this.replace = answer === 'replace';
    if (answer === 'keep')
      this.takeNextName();
  }

  takeNextName() {
    this.number = this.batch.decide.nextNumber(this.number);
    ++this.names;
    this.forgetSent();
  }

  // Whenever a file's size is asked for, the browser asks the disk.
  measure() {
    this.size ||= this.file.size;
    return this.size;
  }

  // Whatever went out has been refused.
  forgetSent() {
    this.mayBeThere = false;
    this.attempt = null;
  }

  get name() {
    return numbered(this.file.name, this.number);
  }

  get isOver() {
    return isOver.has(this.state);
  }
}
