// What the page asks of its server, by WebDAV. Every failure is a DavError.

import { failedStatus, ListingReader } from './multistatus.js';
import { inQuery, ownRequest, reserved, root } from './paths.js';
import { offerLogin } from './session.js';

// Takes the place of a status when a file of the visitor's own can't be read any more.
export const unreadable = -1;

export class DavError extends Error {
  constructor(status, subject = '') {
    super(`${status} ${subject}`);
    this.status = status; // 0: nobody answered
    this.subject = subject; // the path that it is about
  }
}

const wanted = '<propfind xmlns="DAV:"><prop><resourcetype/><getcontentlength/><getlastmodified/></prop></propfind>';

// Who has to log in anew may be led to a page.
const isRefused = reply => reply.status === 401 || reply.type === 'opaqueredirect';

let admitted = performance.now(); // when the server last did what it was asked for
let asking = null; // whether it still would, for all who want to know at once

async function ask(method, path, headers = {}, body = undefined, signal = undefined) {
  const send = () => fetch(path, {
    method, headers: { ...ownRequest, ...headers }, body, signal, redirect: 'manual', cache: 'no-store',
  });
  let reply;
  try {
    reply = await send();
    if (isRefused(reply) && await offerLogin())
      reply = await send();
  } catch (error) {
    if (error.name === 'AbortError')
      throw error;
    throw new DavError(0, path);
  }
  if (!reply.ok)
    throw new DavError(isRefused(reply) ? 401 : reply.status, path);
  admitted = performance.now();
  return reply;
}

const trust = 10000; // ms

// What elements, links and forms ask for can't say that a page is behind it: once the session has
// ended, the browser would ask for a password in its own way. `isDoubted` when something was refused.
export async function ensureSession(isDoubted = false) {
  if (isDoubted || performance.now() - admitted > trust)
    await (asking ??= visitorAt(root).finally(() => { asking = null; }));
}

// The entries of a folder, without itself.
export const list = (folder, signal) => read(folder, folder, '1', signal, () => {});

// Those of all folders below whose names have a text in them; `arrived` is told of them on the way.
export const find = (folder, text, signal, arrived) => read(folder, `${folder}?contains=${encodeURIComponent(text)}`, 'infinity', signal, arrived);

async function read(folder, path, depth, signal, arrived) {
  const reply = await ask('PROPFIND', path, { Depth: depth, 'Content-Type': 'application/xml' }, wanted, signal);
  const reader = new ListingReader(folder);
  const bytes = reply.body.pipeThrough(new TextDecoderStream()).getReader();
  for (let piece = await bytes.read(); !piece.done; piece = await bytes.read()) {
    reader.add(piece.value);
    arrived(reader.entries);
  }
  return reader.entries;
}

// What the server says of the visitor, and of their rights to a path.
export const visitorAt = async path => (await ask('GET', `${reserved}visitor?path=${inQuery(path)}`)).json();

// 412 when the name is taken, as of all that may not replace.
export async function makeFolder(path) {
  try {
    await ask('MKCOL', path);
  } catch (error) {
    throw error.status === 405 ? new DavError(412, path) : error;
  }
}

export async function put(path, content, { replace = false } = {}) {
  await ask('PUT', path, replace ? {} : { 'If-None-Match': '*' }, content);
}

// Some of what is below may have to stay: the first reason counts.
async function askForAll(method, path, headers) {
  const reply = await ask(method, path, headers);
  if (reply.status === 207)
    throw new DavError(failedStatus(await reply.text()), path);
  return reply;
}

// Gives the path by which it can be taken back for a moment; null when it can't.
export const remove = async path => (await askForAll('DELETE', path, { 'Quillon-Undo': '?1' })).headers.get('Location');

// 412 when something else has the name by now.
export async function takeBack(path) {
  try {
    await ask('POST', path);
  } catch (error) {
    throw error.status === 409 ? new DavError(412) : error;
  }
}

const placed = (method, from, to, replace) => askForAll(method, from, {
  Destination: new URL(to, location.origin).href,
  Overwrite: replace ? 'T' : 'F',
});

export const move = (from, to, { replace = false } = {}) => placed('MOVE', from, to, replace);
export const copy = (from, to, { replace = false } = {}) => placed('COPY', from, to, replace);

// A text and what tells its version.
export async function readVersion(path) {
  const reply = await ask('GET', path);
  return { text: await reply.text(), tag: reply.headers.get('ETag') };
}

// 412 when it is another version by now.
export const writeVersion = (path, text, tag) => ask('PUT', path, { 'If-Match': tag, 'Content-Type': 'text/plain; charset=utf-8' }, text);

// A file's size in bytes and its time in whole seconds since 1970; null when there is none, or the
// visitor may not know.
export async function factsOf(path) {
  try {
    const { headers } = await ask('HEAD', path);
    return { size: Number(headers.get('Content-Length') ?? Number.NaN), seconds: Date.parse(headers.get('Last-Modified')) / 1000 };
  } catch {
    return null;
  }
}

// The begin of a file, at most `most` bytes, as a text.
export async function readText(path, most, signal) {
  const reply = await ask('GET', path, { Range: `bytes=0-${most - 1}` }, undefined, signal);
  return reply.text();
}

export async function readBlob(path, type, signal) {
  const reply = await ask('GET', path, {}, undefined, signal);
  return new Blob([await reply.arrayBuffer()], { type });
}
