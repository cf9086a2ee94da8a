// Small files that go to the server in one request: for each of a thousand requests a browser takes longer
// than for what is in it. To the queue it is as if each went alone, see `send`. A server that knows no
// such request gets them one by one.

import { DavError } from '../dav.js';
import { encoded, ownRequest, reserved, root } from '../paths.js';
import { secondsOf, sendWhole } from './transfer.js';

const largest = 256 * 1024; // bytes of a file, as the server takes it
const mostFiles = 64; // the same
const mostBytes = 2 ** 20; // of all: what is sent anew when the connection breaks
const strange = new Set([404, 405, 411, 413, 415, 501]); // to an older server, or a proxy

let isKnown = true; // to the server

// Resolves with { status, statuses }, of all and of each; without `statuses` when nobody told.
function post(target, content, onProgress) {
  const request = new XMLHttpRequest();
  const done = new Promise((resolve, reject) => {
    request.open('POST', `${reserved}bundle/${target.slice(root.length)}`);
    for (const [field, value] of Object.entries({ ...ownRequest, 'Content-Type': 'application/vnd.quillon.bundle' }))
      request.setRequestHeader(field, value);
    request.responseType = 'json';
    request.upload.onprogress = ({ loaded }) => onProgress(loaded);
    request.onload = () => resolve({ status: request.status, statuses: request.response?.statuses });
    request.onerror = request.onabort = () => reject(new DavError(0, target));
    request.send(content);
  });
  return { done, stop: () => request.abort() };
}

export class Bundle {
  #target; // the folder that all of them come below
  #awaited; // files that have not come here yet
  #jobs = [];
  #request = null;

  constructor(target, files) {
    this.#target = target;
    this.#awaited = files;
  }

  // How many of `items` go together, from the first on.
  static fitting(items) {
    let room = mostBytes;
    const ends = (item, index) => {
      const size = item.measure();
      room -= size;
      return index === mostFiles || item.batch !== items[0].batch || size > largest || room < 0;
    };
    const end = isKnown ? items.findIndex(ends) : 1;
    return end < 0 ? items.length : Math.max(1, end);
  }

  // Once each file has come here, or won't, they go.
  send(job) {
    const own = { ...job, path: job.folder + encoded(job.name), isStopped: false };
    const done = new Promise((resolve, reject) => Object.assign(own, { resolve, reject }));
    this.#jobs.push(own);
    this.leave();
    return { done, stop: () => this.#stop(own) };
  }

  leave() {
    if (--this.#awaited === 0)
      this.#sendAll();
  }

  // The others go once more: what was sent of them can be told from what is there.
  #stop(job) {
    job.isStopped = true;
    job.alone?.stop();
    this.#request?.stop();
  }

  async #sendAll() {
    const jobs = await this.#readable();
    const parts = jobs.flatMap(job => [this.#headOf(job), job.content]);
    if (jobs.length === 0)
      return;
    this.#request = post(this.#target, new Blob(parts), sent => this.#noteProgress(jobs, sent));
    try {
      await this.#settle(jobs, await this.#request.done);
    } catch (error) {
      jobs.forEach(({ reject }) => reject(error));
    }
  }

  // One that can't be read any more is to fail by itself.
  async #readable() {
    const read = async job => {
      try {
        job.content = await job.file.arrayBuffer();
      } catch {
        job.reject(new DavError(0, job.path));
      }
    };
    await Promise.all(this.#jobs.map(read));
    return this.#jobs.filter(({ content, isStopped }) => content && !isStopped);
  }

  // All of it is ASCII, so its length is that of its bytes.
  #headOf(job) {
    job.head = `${job.path.slice(this.#target.length)} ${job.content.byteLength} ${job.replace ? 'T' : 'F'} ${secondsOf(job.file)}\n`;
    return job.head;
  }

  #noteProgress(jobs, sent) {
    let begin = 0;
    for (const { head, content: { byteLength }, onProgress } of jobs) {
      begin += head.length;
      onProgress(Math.max(0, Math.min(byteLength, sent - begin)));
      begin += byteLength;
    }
  }

  // What the server did not come to goes alone.
  async #settle(jobs, { status, statuses }) {
    if (!statuses && !strange.has(status))
      throw new DavError(status, this.#target);
    isKnown = Boolean(statuses);
    const told = statuses ?? [];
    told.forEach((each, index) => (each < 300 ? jobs[index].resolve() : jobs[index].reject(new DavError(each, jobs[index].path))));
    for (const job of jobs.slice(told.length).filter(({ isStopped }) => !isStopped)) {
      job.alone = sendWhole(job);
      await job.alone.done.then(job.resolve, job.reject);
    }
  }
}
