// The main walks through the application in Firefox, as Debian ships it.

import assert from 'node:assert/strict';
import { existsSync } from 'node:fs';
import { mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';
import puppeteer from 'puppeteer-core';
import { Server } from './server.mjs';

const { SERVE_PROGRAM, QUILLON_RESDIR, FIREFOX = '/usr/bin/firefox-esr' } = process.env;
const skip = existsSync(FIREFOX) ? false : `${FIREFOX} is not installed`;

describe('the application in Firefox', { skip, timeout: 120000 }, () => {
  let server;
  let browser;
  let page;
  let outside;
  const inShare = name => join(server.share, name);
  // Asking for accessible names takes seconds here.
  const press = name => page.locator(`::-p-xpath(//button[(@aria-label="${name}" or normalize-space()="${name}") and not(ancestor::*[@hidden])])`).click();
  const entry = name => page.locator(`.entry[aria-label^="${name},"]`);
  const eventually = async (what, check) => {
    for (let i = 0; i < 100 && !await check(); ++i)
      await new Promise(resolve => setTimeout(resolve, 100));
    assert.ok(await check(), what);
  };

  before(async () => {
    server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard');
    await server.add('Album/words.txt', 'in the beginning');
    outside = await mkdtemp(join(tmpdir(), 'quillon-firefox-'));
    browser = await puppeteer.launch({
      browser: 'firefox', executablePath: FIREFOX, extraPrefsFirefox: { 'intl.accept_languages': 'en', 'datareporting.policy.dataSubmissionEnabled': false },
    });
    page = await browser.newPage();
    page.setDefaultTimeout(20000);
    await page.goto(server.url);
  });
  after(async () => {
    await browser?.close();
    await server?.stop();
    await server?.removeFolder();
    await rm(outside, { recursive: true, force: true });
  });

  it('sees a folder and looks at a file', async () => {
    await entry('Album').click();
    await entry('words.txt').click();
    await eventually('the text is not shown', () => page.evaluate(() => document.querySelector('pre')?.textContent === 'in the beginning'));
    await press('Close');
    await eventually('it stays open', () => page.evaluate(() => !document.querySelector('pre'))); // that is a step back, too
    await page.goBack();
    await entry('Album').wait();
  });

  it('uploads, in one piece and in many', async () => {
    for (const [name, size] of [['small.bin', 1000], ['large.bin', 9 * 2 ** 20]]) {
      const content = Buffer.alloc(size, name);
      await writeFile(join(outside, name), content);
      const [chooser] = await Promise.all([page.waitForFileChooser(), press('Upload files')]);
      await chooser.accept([join(outside, name)]);
      await entry(name).wait();
      assert.ok(content.equals(await readFile(inShare(name))));
    }
  });

  it('renames, moves and deletes, and takes that back', async () => {
    await entry('small.bin').click({ button: 'right' });
    await press('Rename');
    await page.locator('.rename').fill('Grüße.bin');
    await page.keyboard.press('Enter');
    await entry('Grüße.bin').wait();
    await entry('Grüße.bin').click({ button: 'right' });
    await press('Move');
    await page.locator('.chooser-list button').click();
    await press('Move here');
    await eventually('it is not moved', () => existsSync(inShare('Album/Grüße.bin')));
    await entry('Album').click({ button: 'right' });
    await press('Delete');
    await eventually('it is not deleted', () => !existsSync(inShare('Album')));
    await press('Undo');
    await eventually('it does not come back', () => existsSync(inShare('Album/Grüße.bin')));
  });
});
