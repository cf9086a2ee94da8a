// A visitor's day with the web application, on a phone in German and on a desktop in English.

import assert from 'node:assert/strict';
import { existsSync, readdirSync } from 'node:fs';
import { mkdtemp, mkdir, readFile, rm, writeFile } from 'node:fs/promises';
import { randomBytes } from 'node:crypto';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, describe, it } from 'node:test';
import { App, languages, pixel, screens } from './app.mjs';
import { Server } from './server.mjs';

const { SERVE_PROGRAM, QUILLON_RESDIR } = process.env;
const film = randomBytes(12 * 2 ** 20);
// A tenth of a second of nothing: 8000 bytes a second.
const silence = Buffer.concat([
  Buffer.from('RIFF\x44\x03\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1f\0\0\x40\x1f\0\0\x01\0\x08\0data\x20\x03\0\0', 'latin1'),
  Buffer.alloc(800, 128),
]);
const hostile = [
  '<img src=x onerror=alert(1)>', '"quotes" & \'more\'', 'tab\tand\nbreak', '100%25 #1?.txt',
  `${'ü'.repeat(125)}.txt`, '\u202Egpj.exe', 'a;b=c.txt', 'C:',
];

describe('the files of the application', () => {
  let server;
  before(async () => { server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard'); });
  after(async () => {
    await server.stop();
    await server.removeFolder();
  });

  it('are few bytes, and kept for good', async () => {
    const page = await fetch(server.url);
    const policies = [page, await fetch(server.url)].map(({ headers }) => headers.get('Content-Security-Policy'));
    policies.forEach(policy => assert.match(policy, /^default-src 'self'; script-src 'nonce-[0-9a-f]{32,}';/));
    assert.notEqual(policies[0], policies[1]);
    const files = [...(await page.text()).matchAll(/(?:href|src)="(\/\.quillon\/app\/[^"]+)"/g)].map(([, path]) => new URL(path, server.url));
    let size = 0;
    for (const file of files) {
      const packed = await fetch(file, { headers: { 'Accept-Encoding': 'gzip' } });
      assert.equal(packed.headers.get('Content-Encoding'), 'gzip');
      assert.match(packed.headers.get('Cache-Control'), /immutable/);
      size += Number(packed.headers.get('Content-Length'));
      const known = { 'Accept-Encoding': 'gzip', 'If-None-Match': packed.headers.get('ETag') };
      assert.equal((await fetch(file, { headers: known })).status, 304);
      assert.equal((await fetch(file, { headers: { 'Accept-Encoding': 'identity' } })).headers.get('Content-Encoding'), null);
    }
    assert.ok(files.length >= 3 && size < 60000, `${files.length} files, ${size} bytes`);
    assert.equal((await fetch(`${server.url}.quillon/app/no.js`)).status, 404);
  });
});

it('takes files from who sees none', async () => {
  const server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard', 'everyone = add\n');
  const app = await App.start('phone', server.url);
  const card = { name: 'card.txt', mimeType: 'text/plain', buffer: Buffer.from('hello') };
  await app.open();
  for (let count = 1; count <= 2; ++count) {
    await app.pick('Upload files', card);
    await app.page.locator('.upload[data-state="done"]').nth(count - 1).waitFor();
  }
  assert.deepEqual(await app.violations('drop-box'), []);
  assert.equal(readdirSync(server.share).filter(name => name.startsWith('card')).length, 2);
  await app.browser.close();
  await server.stop();
  await server.removeFolder();
});

it('speaks four languages', async () => {
  const server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard');
  await server.add('x');
  const words = async locale => {
    const app = await App.start('phone', server.url, locale);
    await app.open();
    const cut = await app.page.locator('.toolbar .button:visible span').evaluateAll(
      found => found.filter(each => each.scrollWidth > each.clientWidth || each.scrollHeight > each.clientHeight).map(each => each.textContent));
    assert.deepEqual(cut, [], `cut at the bottom of the page in ${locale}`);
    await app.page.keyboard.press('?');
    await app.dialog('Keyboard').waitFor();
    const shown = new Set(await app.words());
    await app.browser.close();
    return shown;
  };
  const english = await words('en-GB');
  for (const [language, texts] of Object.entries(languages)) {
    const others = await words(language);
    assert.deepEqual([...english].filter(text => others.has(text) && texts[text] !== text), [], language);
  }
  await server.stop();
  await server.removeFolder();
});

for (const screen of Object.keys(screens)) {
  describe(`the application on a ${screen}`, { timeout: 240000 }, () => {
    const isPhone = screen === 'phone';
    let server;
    let app;
    let outside;
    const inShare = path => join(server.share, path);
    const file = async (name, content) => {
      await writeFile(join(outside, name), content);
      return join(outside, name);
    };
    const eventually = async (what, check) => {
      for (let i = 0; i < 200 && !await check(); ++i)
        await app.page.waitForTimeout(100);
      assert.ok(await check(), what);
    };
    const arrives = path => eventually(`${path} is missing`, () => existsSync(inShare(path)));
    const choose = async (name, command) => {
      await app.entry(name).locator('.more').click();
      await app.press(command);
    };

    before(async () => {
      server = await Server.start(SERVE_PROGRAM, QUILLON_RESDIR, 'standard', 'scratch-pad = yes\n');
      outside = await mkdtemp(join(tmpdir(), 'quillon-files-'));
      await server.add('Album/one.png', pixel, 3);
      await server.add('Album/two.png', pixel, 2);
      await server.add('Album/words.txt', 'in the beginning', 1);
      await server.add('Media/1.wav', silence);
      await server.add('Media/2.mp4', 'x');
      await server.add('Media/3.pdf', '%PDF-1.4');
      await server.add('File 10.doc', 'x', 9);
      await server.add('File 2.doc', 'xxx', 1);
      for (const name of hostile)
        await server.add(`Hostile/${name}`, 'x');
      await mkdir(inShare('Many'));
      await Promise.all(Array.from({ length: 10000 }, (_, i) => writeFile(inShare(`Many/entry ${i}`), '')));
      app = await App.start(screen, server.url);
    });
    after(async () => {
      await app?.browser.close();
      await server?.stop();
      await server?.removeFolder();
      await rm(outside, { recursive: true, force: true });
    });

    it('shows a folder, as the visitor wants it', async () => {
      await app.open();
      const folders = ['Album', 'Hostile', 'Many', 'Media'];
      assert.deepEqual(await app.entries(), [...folders, 'File 2.doc', 'File 10.doc']);
      await app.page.getByRole('combobox').selectOption('size');
      assert.deepEqual((await app.entries()).slice(4), ['File 10.doc', 'File 2.doc']);
      await app.page.getByRole('combobox').selectOption('name');
      await app.press('Grid');
      await app.page.reload();
      assert.equal(await app.page.getByRole('gridcell', { name: /^Album/ }).count(), 1);
      await app.press('List');
      await app.page.getByRole('searchbox', { name: app.say('Filter') }).fill('10');
      await eventually('the filter does nothing', async () => (await app.entries()).length === 1);
      await app.page.getByRole('searchbox').fill('words');
      await app.press('Search below this folder');
      await app.page.getByRole('row', { name: /^words.txt.*Album/ }).waitFor();
      await app.page.keyboard.press('Escape');
    });

    it('goes into folders and back', async () => {
      const names = async () => (await app.entries()).join();
      await app.open();
      await app.entry('Album').click();
      await eventually('not in the folder', async () => await names() === 'one.png,two.png,words.txt');
      assert.equal(new URL(app.page.url()).pathname, '/Album/');
      await app.page.goBack();
      await eventually('not back', async () => (await names()).startsWith('Album'));
      await app.page.goForward();
      await app.page.getByRole('navigation').getByRole('link', { name: app.say('Home') }).click();
      await eventually('not at home', async () => (await names()).startsWith('Album'));
    });

    it('has ten thousand entries on the screen at once', async () => {
      await app.open();
      const took = await app.page.evaluate(async () => {
        const begin = performance.now();
        document.querySelector('.entry[data-path="/Many/"]').click();
        while (!document.querySelector('.entry[data-path$="entry%200"]'))
          await new Promise(requestAnimationFrame);
        return performance.now() - begin;
      });
      assert.ok(took < 3000, `it takes ${took} ms`); // with others at work beside it
      assert.ok(await app.page.locator('.entry').count() < 60);
      await app.entry('entry 0').focus();
      await app.page.keyboard.press('End');
      await app.page.locator('.entry:focus[data-path$="entry%209999"]').waitFor();
    });

    it('shows any name as it is', async () => {
      await app.open('Hostile/');
      const shown = new Set(await app.entries());
      assert.equal(shown.size, hostile.length);
      for (const name of ['<img src=x onerror=alert(1)>', 'tab␉and␊break', '\ufffdgpj.exe', '100%25 #1?.txt'])
        assert.ok(shown.has(name), name);
      await app.entry('100%25 #1?.txt').click();
      await app.page.locator('pre').getByText('x').waitFor();
    });

    it('looks at files', async () => {
      await app.open('Album/');
      await app.entry('one.png').locator('.preview.is-there').waitFor();
      await app.entry('one.png').click();
      await app.page.locator('.stage img[alt="one.png"]').waitFor();
      await app.page.keyboard.press('ArrowRight');
      await app.page.locator('.stage img[alt="two.png"]').waitFor();
      assert.match(app.page.url(), /#two.png$/);
      await app.page.reload();
      await app.page.locator('.stage img[alt="two.png"]').waitFor();
      await app.press('Next');
      await app.page.getByText('in the beginning').waitFor();
      await app.press('Close');
      await app.page.locator('.entry:focus').waitFor();
    });

    it('plays, and reads documents', async () => {
      await app.page.route('**/2.mp4', () => {}); // for ever on its way
      await app.open('Media/');
      await app.entry('1.wav').click();
      await app.page.locator('audio').waitFor();
      await app.page.locator('video[src="/Media/2.mp4"]').waitFor(); // once the sound has ended
      await app.press('Next');
      await app.page.locator('iframe[src^="blob:"][title="3.pdf"]').waitFor();
      await app.page.unroute('**/2.mp4');
    });

    it('looks at finds where they stand', async () => {
      await app.open();
      await app.page.getByRole('searchbox').fill('words');
      await app.press('Search below this folder');
      await app.entry('words.txt').locator('.open').click();
      await app.page.getByText('in the beginning').waitFor();
      assert.match(app.page.url(), /\/Album\/#words.txt$/);
      await app.press('Close');
      await app.button('Only this folder').waitFor();
      assert.match(app.page.url(), /:\d+\/#\?find=words$/);
      await app.page.reload();
      await app.entry('words.txt').waitFor();
      await app.page.goBack();
      await app.entry('Album').waitFor();
      await app.page.goForward();
      await app.entry('words.txt').waitFor();
      await app.press('Only this folder');
      assert.equal(new URL(app.page.url()).hash, '');
    });

    it('keeps what was seen, and asks again, when nobody answers', async () => {
      await app.page.route(/visitor/, route => route.abort(), { times: 1 });
      await app.open('Album/');
      await app.limitUpload(null);
      await app.page.evaluate(() => dispatchEvent(new Event('online')));
      await app.page.getByText(app.say('The connection is lost.')).waitFor();
      await app.entry('one.png').waitFor();
      await app.limitUpload(-1);
      await app.page.evaluate(() => dispatchEvent(new Event('online')));
      await app.button('New folder').waitFor();
    });

    it('takes a file, a folder and a choice', async () => {
      await app.open();
      // A slow browser tells of it in the tab that it opens for an archive.
      const taken = async step => {
        const download = new Promise(resolve => {
          const listen = page => page.once('download', resolve);
          listen(app.page);
          app.context.once('page', listen);
        });
        await step();
        return (await download).suggestedFilename();
      };
      const more = name => app.entry(name).locator('.more').click();
      await more('Album');
      assert.equal(await taken(() => app.page.getByRole('link', { name: app.say('Download as zip') }).click()), 'Album.zip');
      await app.page.keyboard.press('Escape');
      await more('File 2.doc');
      assert.equal(await taken(() => app.press('Download')), 'File 2.doc');
      await app.page.keyboard.press('Control+a');
      assert.match(await taken(() => app.press('Download')), /\.zip$/);
      await app.page.keyboard.press('Escape');
      await app.page.getByRole('searchbox').fill('words');
      await app.press('Search below this folder');
      await app.entry('words.txt').waitFor();
      await app.page.getByRole('searchbox').fill('o');
      await app.press('Search below this folder');
      await app.entry('two.png').waitFor();
      await app.press('Select all');
      await app.press('Download');
      await app.page.getByText(app.say('An archive can only hold entries of one folder.')).waitFor();
    });

    it('adds files, and asks once about names', async () => {
      await app.open('Album/');
      const paths = [await file('words.txt', 'new words'), await file('notes.txt', 'notes')];
      await app.pick('Upload files', paths);
      await app.dialog('Name exists').waitFor();
      await app.press('Keep both');
      await arrives('Album/words (2).txt');
      await arrives('Album/notes.txt');
      await app.pick('Upload files', paths);
      await app.press('Replace');
      await eventually('nothing is replaced', async () => `${await readFile(inShare('Album/words.txt'))}` === 'new words');
      await app.entry('words (2).txt').waitFor();
    });

    it('takes nobody else’s file for its own', async () => {
      await app.open('Album/');
      await app.page.route('**/same.txt', async route => {
        await server.add('Album/same.txt', 'theirs');
        await route.abort();
      }, { times: 1 });
      await app.pick('Upload files', await file('same.txt', 'mine, '));
      await app.dialog('Name exists').waitFor();
      await app.press('Keep both');
      await arrives('Album/same (2).txt');
    });

    it('knows its own empty file again when the answer was lost', async () => {
      await app.open('Album/');
      await app.page.route('**/empty.txt', async route => {
        await route.fetch();
        await route.abort();
      }, { times: 1 });
      await app.pick('Upload files', await file('empty.txt', ''));
      await app.page.locator('.upload[data-state="done"]').getByText('empty.txt').waitFor();
    });

    // How the server, or what is before it, takes small files that come together.
    const lostAnswer = async route => {
      await route.fetch();
      await route.abort();
    };
    const manners = {
      'whose answer is lost': lostAnswer,
      'that a proxy refuses': route => route.fulfill({ status: 405 }),
      'that never arrives': route => route.abort(),
    };
    for (const [what, answer] of Object.entries(manners)) {
      it(`sends small files by one request ${what}`, async () => {
        await mkdir(inShare(what));
        await app.open(`${what}/`);
        await writeFile(inShare(`${what}/3.txt`), 'theirs');
        await app.page.route('**/.quillon/bundle/**', answer, { times: 1 });
        const many = await Promise.all(Array.from({ length: 70 }, (_, i) => file(`${i}.txt`, `${'x'.repeat(i)}\n`)));
        await app.pick('Upload files', many);
        await app.dialog('Name exists').waitFor();
        await app.press('Keep both');
        await eventually('some are missing', () => readdirSync(inShare(what)).length === 71);
        assert.equal(`${await readFile(inShare(`${what}/3.txt`))}`, 'theirs');
        assert.equal(`${await readFile(inShare(`${what}/69.txt`))}`, `${'x'.repeat(69)}\n`);
        await app.page.locator('.upload[data-state="failed"]').waitFor({ state: 'detached' });
      });
    }

    it('goes on with small files of which one is cancelled', async () => {
      await app.open();
      await app.page.route('**/.quillon/bundle/**', () => {}, { times: 1 });
      await app.pick('Upload files', await Promise.all(['left.txt', 'wanted.txt', 'also.txt'].map(name => file(name, name))));
      await app.page.locator('.upload', { hasText: 'left' }).getByRole('button', { name: app.say('Cancel') }).click();
      await arrives('wanted.txt');
      await arrives('also.txt');
      assert.equal(await app.page.getByText(app.say('Connection lost, trying again')).count(), 0);
      assert.ok(!existsSync(inShare('left.txt')));
    });

    it('adds folders as they are, by choice and by drop', async () => {
      await mkdir(join(outside, 'Trip/day one'), { recursive: true });
      await file('Trip/day one/a.txt', 'a');
      await app.open();
      await app.pick('Upload folder', join(outside, 'Trip'));
      await arrives('Trip/day one/a.txt');
      await app.page.evaluate(() => {
        const transfer = new DataTransfer();
        transfer.items.add(new File(['dropped'], 'dropped.txt'));
        document.body.dispatchEvent(new DragEvent('drop', { dataTransfer: transfer, bubbles: true, cancelable: true }));
        const pasted = new DataTransfer();
        pasted.items.add(new File(['picture'], 'image.png', { type: 'image/png' }));
        document.body.dispatchEvent(new ClipboardEvent('paste', { clipboardData: pasted, bubbles: true }));
      });
      await arrives('dropped.txt');
      await eventually('nothing is pasted', () => readdirSync(server.share).some(name => name.endsWith('.png')));
    });

    // What happens while a large file is on its way, and what makes it go on.
    const interruptions = {
      'the network is lost': async () => {
        await app.limitUpload(null);
        await app.page.getByText(app.say('Connection lost, trying again')).waitFor();
        await app.limitUpload(-1);
      },
      'the server is killed': async () => {
        await server.crash();
        await app.limitUpload(-1);
      },
      'the visitor pauses it': async () => {
        await app.press('Pause');
        await app.limitUpload(-1);
        await app.press('Resume');
      },
      'the page is loaded anew': async path => {
        await app.page.reload();
        await app.page.getByText(app.say('Choose the same files again to go on.')).waitFor();
        await app.limitUpload(-1);
        await app.pick('Upload files', path);
      },
    };
    for (const [what, interrupt] of Object.entries(interruptions)) {
      it(`goes on with an upload when ${what}`, async () => {
        const name = `${what}.bin`;
        const path = await file(name, film);
        await app.open('Album/');
        await app.limitUpload(2 * 2 ** 20);
        await app.pick('Upload files', path);
        await eventually('it does not begin', async () => await app.progress(name).evaluate(bar => bar.value) > 2 ** 21);
        await interrupt(path);
        await arrives(`Album/${name}`);
        assert.ok(film.equals(await readFile(inShare(`Album/${name}`))));
      });
    }

    it('goes on with an upload when the browser repeats a request', async () => {
      await app.open('Album/');
      await app.page.route(/tus\/Album\/\w/, route => route.fulfill({ status: 409, headers: { 'Upload-Offset': '1' } }), { times: 1 });
      await app.pick('Upload files', await file('repeated.bin', film));
      await arrives('Album/repeated.bin');
    });

    it('makes, renames, moves, copies and deletes', async () => {
      await app.open();
      await app.press('New folder');
      await app.page.getByRole('textbox').fill('Söme & folder');
      await app.press('Create');
      await app.entry('Söme & folder').waitFor();
      await app.press('New text file');
      await app.page.locator('#name-field').fill('File 10.doc');
      await app.page.locator('#text-field').fill('Dear all');
      await app.press('Create');
      await app.page.getByRole('dialog').getByRole('alert').waitFor();
      await app.page.locator('#name-field').fill('letter.txt');
      await app.press('Create');
      await app.entry('letter.txt').waitFor();

      await app.entry('letter.txt').focus();
      await app.page.keyboard.press('F2');
      for (const [name, reason] of [['File 10.doc', 'The name is taken already.'], ['a/b', 'The name is not allowed here.']]) {
        await app.page.locator('.rename').fill(name);
        await app.page.keyboard.press('Enter');
        await app.page.getByRole('alert').getByText(app.say(reason)).waitFor();
        assert.equal(await app.page.locator('.rename:focus').inputValue(), name);
      }
      await app.page.locator('.rename').fill('draft.txt');
      await app.page.getByRole('searchbox').focus();
      await app.entry('draft.txt').waitFor();
      await choose('draft.txt', 'Rename');
      await app.page.locator('.rename:focus').fill('note.txt');
      await app.page.keyboard.press('Enter');
      await app.entry('note.txt').waitFor();

      for (const [command, button] of [['Copy', 'Copy here'], ['Move', 'Move here']]) {
        await choose('note.txt', command);
        await app.page.locator('.chooser').getByRole('button', { name: 'Söme & folder' }).click();
        await app.press(button);
        if (command === 'Move')
          await app.press('Keep both');
        await arrives(`Söme & folder/note${command === 'Move' ? ' (2)' : ''}.txt`);
      }
      assert.equal(`${await readFile(inShare('Söme & folder/note (2).txt'))}`, 'Dear all');
      await app.entry('note.txt').waitFor({ state: 'detached' });
      if (!isPhone) {
        await app.entry('File 2.doc').dragTo(app.entry('Söme & folder'));
        await arrives('Söme & folder/File 2.doc');
      }

      await app.entry('Söme & folder').click();
      await app.entry('note.txt').waitFor();
      await app.page.keyboard.press('Control+a');
      const left = () => readdirSync(inShare('Söme & folder')).filter(name => !name.startsWith('.')).length;
      const all = left();
      await app.press('Delete');
      await eventually('something stays', () => left() === 0);
      await app.press('Undo');
      await eventually('something is gone for good', () => left() === all);
    });

    it('hands a text to others, and keeps what both wrote', async () => {
      const pad = `${server.url}.quillon/pad`;
      await app.open();
      await app.press('Scratch pad');
      await app.page.locator('#pad-field').fill('milk');
      await fetch(pad, { method: 'PUT', body: 'bread' });
      await app.press('Save');
      assert.equal(await app.page.locator('#pad-theirs').inputValue(), 'bread');
      await app.press('Save');
      await app.page.getByText(app.say('Saved')).waitFor();
      assert.equal(await (await fetch(pad)).text(), 'milk');
    });

    it('chooses several', async () => {
      await app.open('Album/');
      const chosen = () => app.page.locator('.entry[aria-selected="true"]').count();
      if (isPhone) {
        const box = await app.entry('one.png').boundingBox();
        const finger = (type, x = box.x + 90, y = box.y + 20) => app.entry('one.png').dispatchEvent(type, { pointerType: 'touch', clientX: x, clientY: y });
        await finger('pointerdown');
        await eventually('a long press does nothing', async () => await chosen() === 1);
        await finger('pointerup');
        await app.entry('two.png').tap();
      } else {
        await app.entry('one.png').click({ modifiers: ['Control'] });
        await app.entry('two.png').click({ modifiers: ['Shift'] });
      }
      await eventually('not both are chosen', async () => await chosen() >= 2);
      await app.page.keyboard.press('Escape');
      assert.equal(await chosen(), 0);
    });

    it('is for everyone', async () => {
      const found = [];
      const look = async view => found.push(...await app.violations(view));
      await app.open();
      await look('list');
      await app.press('Grid');
      await look('grid');
      await app.page.keyboard.press('Control+a');
      await look('chosen');
      await app.page.keyboard.press('Escape');
      await app.entry('Album').locator('.more').click();
      await look('menu');
      await app.press('Copy');
      await look('chooser');
      await app.page.keyboard.press('Escape');
      await app.press('New text file');
      await look('dialog');
      await app.page.keyboard.press('Escape');
      await app.limitUpload(2 ** 20);
      await app.pick('Upload files', await file('watched.bin', film));
      await app.progress('watched.bin').waitFor();
      await look('uploads');
      await app.limitUpload(-1);
      await arrives('watched.bin');
      for (const name of ['one.png', 'words.txt']) {
        await app.open(`Album/#${name}`);
        await look(name);
      }
      assert.deepEqual(found, []);
      assert.deepEqual(app.problems, []);
      assert.ok(await app.page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), 'it scrolls sideways');
    });
  });
}
