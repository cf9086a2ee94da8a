// Walks through the file manager as a person would: on a desktop and on a phone.
//
//   npm ci
//   SERVE_PROGRAM=build/bin/quillon-serve QUILLON_RESDIR=build/res ARTEFACTS=tests/artefacts \
//     node --test walk.test.mjs
//
// Pictures of the pages are kept in ARTEFACTS.

import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { mkdir, readFile } from 'node:fs/promises';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';
import { chromium } from 'playwright-core';
import { Server } from './server.mjs';

const { SERVE_PROGRAM, QUILLON_RESDIR, ARTEFACTS, CHROMIUM = '/usr/bin/chromium' } = process.env;
const patience = 20000; // ms

const screens = {
  desktop: { viewport: { width: 1280, height: 900 } },
  phone: { viewport: { width: 390, height: 844 }, deviceScaleFactor: 2, isMobile: true, hasTouch: true },
};

const chromiumArguments = [
  '--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
  '--disable-component-update', '--disable-sync', '--disable-quic',
];

// A large photograph of nothing, as the browser itself encodes it.
async function drawPicture(page, type, hue) {
  const base64 = await page.evaluate(([type, hue]) => {
    const canvas = document.createElement('canvas');
    [canvas.width, canvas.height] = [1600, 1200];
    const pen = canvas.getContext('2d');
    for (let i = 0; i < 4000; ++i) {
      pen.fillStyle = `hsl(${hue + (i % 90)} 60% ${30 + (i % 50)}%)`;
      pen.fillRect((i * 7919) % 1600, (i * 104729) % 1200, 40, 40);
    }
    return canvas.toDataURL(type).split(',')[1];
  }, [type, hue]);
  return Buffer.from(base64, 'base64');
}

for (const [screen, options] of Object.entries(screens)) {
  describe(`on a ${screen}`, { timeout: 150000 }, () => {
    let server;
    let browser;
    let page;
    let pictures = 0;
    const dialogs = [];
    let acceptDialogs = true;

    const keepPicture = async name => {
      const number = String(++pictures).padStart(2, '0');
      await page.screenshot({ path: join(ARTEFACTS, `${screen}-${number}-${name}.png`), fullPage: true });
    };
    const entries = () => page.locator('td[width="200"] > a').evaluateAll(
      links => links.map(link => decodeURIComponent(link.pathname)));
    const path = () => decodeURIComponent(new URL(page.url()).pathname);
    const text = () => page.locator('body').innerText();
    const link = name => page.getByRole('link', { name, exact: true });
    const button = name => page.locator(`input[value="${name}"]`);
    const list = label => page.locator(`select:has(option:text-is("${label}"))`);
    const check = name => page.locator(`input[type=checkbox][value="${name}"]`).check();
    const follow = async step => (await Promise.all([page.waitForNavigation(), step()]))[0];
    // The lists of the tool row submit themselves as soon as something is chosen.
    const choose = label => follow(() => list(label).selectOption({ label }));
    const press = name => follow(() => button(name).click());
    const enter = name => follow(() => link(name).click());

    before(async () => {
      await mkdir(ARTEFACTS, { recursive: true });
      server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR);
      browser = await chromium.launch({ executablePath: CHROMIUM, args: chromiumArguments });
      page = await (await browser.newContext({ ...options, acceptDownloads: true })).newPage();
      page.setDefaultTimeout(patience);
      page.on('dialog', dialog => {
        dialogs.push(dialog.message());
        return acceptDialogs ? dialog.accept() : dialog.dismiss();
      });

      await server.add('Album/beach.jpg', await drawPicture(page, 'image/jpeg', 200), 3);
      await server.add('Album/wood.png', await drawPicture(page, 'image/png', 90), 2);
      await server.add('Album/torn.jpg', Buffer.alloc(30000, 'x'), 1);
      await server.add('Album/tapes.tar.gz', 'x');
      await server.add('Album/inside/deep.txt', 'deep');
      await server.add('C++ notes & plans.txt', 'x'.repeat(3000), 40);
      await server.add('<img src=x onerror=alert(1)> "quoted".txt', 'x', 50);
      await server.add('song.mp3', 'x'.repeat(2 * 1024 * 1024), 60);
      for (let i = 10; i < 40; ++i)
        await server.add(`entry ${i}.doc`, 'x'.repeat(i), i);
    });

    after(async () => {
      await browser?.close();
      await server?.removeFolder();
    });

    it('lists the share', async () => {
      await page.goto(server.url);
      const names = await entries();
      assert.equal(names.length, 24);
      assert.equal(names[0], '/Album');
      assert.equal(names[1], '/<img src=x onerror=alert(1)> "quoted".txt');
      assert.deepEqual(dialogs, [], 'markup in a name has run');
      await keepPicture('root');
    });

    it('enters a folder, where previews appear by themselves', async () => {
      assert.equal((await enter('Album')).status(), 202);
      assert.deepEqual(await entries(), [
        '/Album/inside', '/Album/beach.jpg', '/Album/tapes.tar.gz', '/Album/torn.jpg', '/Album/wood.png']);
      await page.waitForFunction(
        () => document.querySelectorAll('img[src^="/_t/"]').length === 2
          && !document.querySelector('meta[http-equiv=refresh]'),
        null, { timeout: patience });
      await page.waitForLoadState();
      const sizes = await page.locator('img[src^="/_t/"]').evaluateAll(
        images => images.map(image => `${image.naturalWidth}x${image.naturalHeight}`));
      assert.deepEqual(sizes, ['124x93', '124x93']);
      const broken = await page.locator('img').evaluateAll(
        images => images.filter(image => !image.naturalWidth).map(image => image.src));
      assert.deepEqual(broken, [], 'pictures are missing');
      await keepPicture('previews');
    });

    it('goes up again', async () => {
      await enter('../Album');
      assert.equal(path(), '/');
      assert.equal(await page.locator('b > a').count(), 0, 'a link leads above the share');
    });

    it('creates a folder', async () => {
      await choose('Create Folder');
      await keepPicture('create-folder');
      dialogs.length = 0;
      await button('Create').click();
      assert.deepEqual(dialogs, ['No folder name']);
      await page.locator('input[name=f]').fill('My + Trip');
      await press('Create');
      assert.match(await text(), /New folder created/);
      assert.ok(existsSync(join(server.share, 'My + Trip')));
      await keepPicture('folder-created');
      await enter('My + Trip');
      assert.match(await text(), /Empty/);
      assert.equal(path(), '/My + Trip');
      await keepPicture('empty-folder');
    });

    it('uploads a file', async () => {
      await choose('Add File');
      await keepPicture('upload');
      dialogs.length = 0;
      await button('Send').click();
      assert.deepEqual(dialogs, ['No selected file']);
      const file = { name: 'Grüße 1.txt', mimeType: 'text/plain', buffer: Buffer.alloc(3000007, 'upload') };
      await page.locator('input[type=file]').setInputFiles(file);
      await press('Send');
      assert.match(await text(), /File sent success\./);
      assert.deepEqual(await entries(), ['/My + Trip/Grüße 1.txt']);
      await keepPicture('uploaded');

      const [download] = await Promise.all([page.waitForEvent('download'), link(file.name).click()]);
      assert.ok(file.buffer.equals(await readFile(await download.path())), 'the file came back changed');
    });

    it('asks before it deletes', async () => {
      await page.goto(server.url + 'My%20%2B%20Trip');
      await server.add('My + Trip/old/a', 'x');
      await server.add('My + Trip/older/b', 'x');
      await server.add('My + Trip/C++ code', 'x');
      await page.reload();

      dialogs.length = 0;
      acceptDialogs = false;
      await check('old');
      await check('C++ code');
      await button('Delete selected items').click();
      assert.deepEqual(dialogs, ['Delete all files in folder old?']);
      assert.equal(await button('old').isChecked(), false);
      assert.ok(existsSync(join(server.share, 'My + Trip/C++ code')));

      acceptDialogs = true;
      await check('old');
      await keepPicture('selected');
      await press('Delete selected items');
      assert.match(await text(), /2 file removed\./);
      assert.deepEqual(await entries(), ['/My + Trip/older', '/My + Trip/Grüße 1.txt']);
      await keepPicture('deleted');

      dialogs.length = 0;
      await check('older');
      await press('Delete selected items');
      assert.deepEqual(dialogs, ['Delete all files in folder older?'], 'a single folder goes unasked');
      assert.deepEqual(await entries(), ['/My + Trip/Grüße 1.txt']);
    });

    it('ends in order', async () => assert.equal(await server.stop(), 0));
  });
}
