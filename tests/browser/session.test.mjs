// A session that ends while the application is open.

import assert from 'node:assert/strict';
import { it } from 'node:test';
import { App, pixel } from './app.mjs';
import { Server } from './server.mjs';

const { SERVE_PROGRAM, QUILLON_RESDIR } = process.env;

it('goes on where the visitor was when they log in again', { timeout: 90000 }, async () => {
  const server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard', '', 'anna:secret');
  await server.add('Album/one.png', pixel);
  await server.add('Album/words.txt', 'x');
  const app = await App.start('desktop', server.url);
  const { page } = app;
  page.on('response', async reply => {
    const asked = await reply.headerValue('WWW-Authenticate').catch(() => ''); // of a page that is closed
    if (/Basic|Digest/.test(asked)) app.problems.push(`${reply.url()} asks for a password`);
  });
  const typed = async password => {
    await page.locator('[name="name"]').fill('anna');
    await page.locator('[name="password"]').fill(password);
    await page.keyboard.press('Enter');
  };
  await page.goto(server.url);
  await typed('secret');
  await app.entry('Album').waitFor();
  await app.context.clearCookies();
  await page.goto(`${server.url}Album/#?find=words`);
  await typed('secret');
  await app.entry('words.txt').waitFor(); // the search is told to no server, and goes on all the same
  assert.equal(new URL(page.url()).hash, '#?find=words');
  assert.equal(await app.entry('one.png').count(), 0);
  await app.open('Album/'); // and nothing is asked for any more
  const later = async () => {
    await app.context.clearCookies();
    await page.evaluate(() => { // as after a while
      const now = performance.now.bind(performance);
      performance.now = () => now() + 60000;
    });
  };
  await later();
  await app.pick('Upload files', { name: 'kept.txt', mimeType: 'text/plain', buffer: Buffer.from('kept') });
  await app.dialog('Log in').waitFor();
  assert.deepEqual(await app.violations('login'), []);
  await typed('wrong');
  await page.getByText('The name or the password is wrong.').waitFor();
  await typed('secret');
  await app.entry('kept.txt').waitFor();
  assert.equal(new URL(page.url()).pathname, '/Album/');
  await app.open('Album/');
  await later();
  await app.entry('one.png').click();
  await typed('secret');
  await page.locator('.stage img[alt="one.png"]').waitFor();
  assert.deepEqual(app.problems, []);
  await app.browser.close();
  await server.stop();
  await server.removeFolder();
});
