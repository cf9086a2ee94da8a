// Uploads by the client that pages use, with what happens on the way.

import assert from 'node:assert/strict';
import { readFile, readdir, stat } from 'node:fs/promises';
import { randomBytes } from 'node:crypto';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';
import { Upload } from 'tus-js-client';
import { Server } from './server.mjs';

const { SERVE_PROGRAM, QUILLON_RESDIR } = process.env;
const content = randomBytes(8 * 2 ** 20);

describe('uploads', { timeout: 60000 }, () => {
  let server;
  before(async () => { server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard'); });
  after(async () => {
    await server.stop();
    await server.removeFolder();
  });

  // Resolves when the upload is over, or was aborted by `atHalf`.
  const upload = (metadata, { atHalf, ...options } = {}) => new Promise((resolve, reject) => {
    const running = new Upload(content, {
      endpoint: `${server.url}.quillon/tus`, chunkSize: 2 ** 20, retryDelays: [100, 500, 2000], metadata,
      onSuccess: () => resolve(running), onError: reject,
      onChunkComplete: async (_, sent, total) => {
        if (!atHalf || sent < total / 2)
          return;
        const action = atHalf;
        atHalf = undefined;
        if (await action(running) === 'aborted')
          resolve(running);
      },
      ...options,
    });
    running.start();
  });
  const received = path => readFile(join(server.share, path));

  it('go on after the server was killed', async () => {
    await upload({ relativePath: 'a/b/film', mtime: '784111777' }, { atHalf: () => server.crash() });
    assert.ok(content.equals(await received('a/b/film')));
    assert.equal((await stat(join(server.share, 'a/b/film'))).mtimeMs, 784111777000);
    assert.deepEqual(await readdir(join(server.share, 'a/b')), ['film']);
  });

  it('go on after the page was left', async () => {
    const left = await upload({ filename: 'song' }, {
      atHalf: async running => {
        await running.abort();
        return 'aborted';
      },
    });
    await upload({ filename: 'song' }, { uploadUrl: left.url });
    assert.ok(content.equals(await received('song')));
  });

  it('fit into the request that begins them', async () => {
    await upload({ filename: 'small' }, { chunkSize: Infinity, uploadDataDuringCreation: true });
    assert.ok(content.equals(await received('small')));
    await assert.rejects(upload({ filename: 'small' }), /412/);
    await upload({ filename: 'small' }, { headers: { Overwrite: 'T' } });
  });
});
