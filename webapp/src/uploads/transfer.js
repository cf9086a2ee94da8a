// One file on its way to the server: `send` gives { done, stop }. `done` fails with a DavError; `stop`
// ends it, and `stop(true)` gives up what is on the server of it. Small files are one PUT; a large one
// is a resumable upload, which goes on where it was.

import { DavError } from '../dav.js';
import { encoded, ownRequest, reserved, root } from '../paths.js';

const libraryMissing = 500; // as what the server could not do, which the visitor may try again
const tusRequest = { ...ownRequest, 'Tus-Resumable': '1.0.0' };
const largestPut = 4 * 2 ** 20; // bytes: what is sent anew when a connection breaks

// When it was changed, since 1970, as the server is told.
export const secondsOf = file => Math.floor(file.lastModified / 1000);

// By XMLHttpRequest: nothing else tells how far it is.
export function sendWhole({ file, folder, name, replace, onProgress }) {
  const path = folder + encoded(name);
  const request = new XMLHttpRequest();
  const done = new Promise((resolve, reject) => {
    request.open('PUT', path);
    const headers = { ...ownRequest, 'X-OC-Mtime': secondsOf(file), ...replace ? {} : { 'If-None-Match': '*' } };
    for (const [field, value] of Object.entries(headers))
      request.setRequestHeader(field, value);
    request.upload.onprogress = ({ loaded }) => onProgress(loaded);
    request.onload = () => (request.status < 300 ? resolve() : reject(new DavError(request.status, path)));
    request.onerror = () => reject(new DavError(0, path));
    request.onabort = resolve;
    request.send(file);
  });
  return { done, stop: () => request.abort() };
}

// The library sends slices. Chromium reads a file in the process that sends it, but a slice of it, even one of
// all, in another one, for twice the processor time.
const wholeFiles = {
  openFile: async file => ({
    size: file.size,
    slice: async (from, to) => ({ value: from === 0 && to >= file.size ? file : file.slice(from, to), done: to >= file.size }),
    close: () => {},
  }),
};

// A browser repeats a request whose connection broke, and the server has more of the file by then: nothing
// that asking it anew won't settle.
const isOutOfStep = response => response?.getStatus() === 409 && response.getHeader('Upload-Offset') !== null;
const reasonOf = ({ originalResponse }) => (isOutOfStep(originalResponse) ? 0 : originalResponse?.getStatus() ?? 0);

function sendResumable({ file, folder, name, replace, onProgress }) {
  let upload = null;
  let isStopped = false;
  const done = (async () => {
    const { Upload } = await import('tus-js-client').catch(() => { throw new DavError(libraryMissing, folder + encoded(name)); });
    await new Promise((resolve, reject) => {
      const failed = error => reject(new DavError(reasonOf(error), folder + encoded(name)));
      upload = new Upload(file, {
        endpoint: `${reserved}tus/${folder.slice(root.length)}`,
        metadata: { filename: name, mtime: String(secondsOf(file)), ...replace ? { replace: 'yes' } : {} },
        headers: { ...ownRequest, ...replace ? { Overwrite: 'T' } : {} },
        fileReader: wholeFiles,
        retryDelays: null, // who waits for the network is the queue
        removeFingerprintOnSuccess: true,
        onProgress,
        onSuccess: () => resolve(),
        onError: failed,
      });
      upload.findPreviousUploads().then(earlier => {
        if (isStopped)
          return;
        const ofName = earlier.filter(({ metadata }) => metadata.filename === name);
        // Whether it may replace something is settled when it begins.
        const isSame = ({ metadata }) => ('replace' in metadata) === replace;
        ofName.filter(each => !isSame(each)).forEach(({ urlStorageKey, uploadUrl }) => forget({ key: urlStorageKey, uploadUrl }));
        const same = ofName.find(isSame);
        if (same)
          upload.resumeFromPreviousUpload(same);
        upload.start();
      }, failed);
    });
  })();
  const stop = isForGood => {
    isStopped = true;
    upload?.abort(isForGood === true).catch(() => {}); // it ends by itself after a day
  };
  return { done, stop };
}

export const send = job => (job.file.size > largestPut ? sendResumable : sendWhole)(job);

// What the browser knows of uploads that an earlier page began: names.
function remembered() {
  try {
    return Object.keys(localStorage).filter(key => key.startsWith('tus::'))
      .map(key => ({ key, ...JSON.parse(localStorage.getItem(key)) }))
      .filter(({ uploadUrl, metadata }) => uploadUrl && metadata?.filename);
  } catch {
    return [];
  }
}

// Those of them that the server still waits for; the others are forgotten.
export async function interrupted() {
  const all = remembered();
  const areOpen = await Promise.all(all.map(({ uploadUrl }) => isOpen(uploadUrl)));
  all.filter((_, index) => !areOpen[index]).forEach(({ key }) => localStorage.removeItem(key));
  return all.filter((_, index) => areOpen[index]);
}

// Who can't tell now may be able to later.
async function isOpen(url) {
  try {
    const { status, headers } = await fetch(url, { method: 'HEAD', redirect: 'manual', cache: 'no-store', headers: tusRequest });
    return status !== 404 && status !== 410 && (status !== 200 || headers.get('Upload-Offset') !== headers.get('Upload-Length'));
  } catch {
    return true;
  }
}

export const forget = ({ key, uploadUrl }) => {
  localStorage.removeItem(key);
  fetch(uploadUrl, { method: 'DELETE', headers: tusRequest }).catch(() => {});
};
