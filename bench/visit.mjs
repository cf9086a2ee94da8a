// A visitor of the web application, for measures/webapp.py: node visit.mjs URL UPLOADS BIG MANY, where
// UPLOADS is an empty folder of the share, BIG a file and MANY a folder of small files. Tells what it took.

import { readdir } from 'node:fs/promises';
import { join } from 'node:path';
import { App } from '../tests/browser/app.mjs';

const atOnce = 4; // uploads, as in the application
const longest = 180000; // ms that uploads may take

const [url, uploads, big, many] = process.argv.slice(2);
const small = (await readdir(many)).map(name => join(many, name));
const app = await App.start('desktop', url);
const { page } = app;
page.setDefaultTimeout(longest);

// By a browser that runs and knows nothing of the page.
async function firstView() {
  const context = await app.browser.newContext();
  const view = await context.newPage();
  await view.goto(url, { waitUntil: 'networkidle' });
  const told = await view.evaluate(() => ({
    app_bytes: ['navigation', 'resource'].flatMap(kind => performance.getEntriesByType(kind))
      .reduce((sum, { transferSize }) => sum + transferSize, 0) / 1e3, // KB
    app_paint: performance.getEntriesByName('first-contentful-paint')[0].startTime,
  }));
  await context.close();
  return told;
}

// From the click to the frame after the one that has all rows.
async function listing() {
  const shown = page.evaluate(() => new Promise(resolve => {
    addEventListener('click', ({ timeStamp }) => requestAnimationFrame(function look() {
      if (document.querySelector('.entry[data-path^="/entries/"]'))
        requestAnimationFrame(() => resolve(performance.now() - timeStamp));
      else
        requestAnimationFrame(look);
    }), { capture: true, once: true });
  }));
  await app.entry('entries').click();
  return shown;
}

// The fewest frames in a second, on the way from the first row to the last.
const frames = () => page.evaluate(() => new Promise(resolve => {
  const [list, seconds, times] = [document.querySelector('.files'), 10, []];
  const height = list.scrollHeight - list.clientHeight;
  requestAnimationFrame(function step(now) {
    times.push(now);
    const gone = (now - times[0]) / 1000;
    list.scrollTop = height * gone / seconds;
    if (gone < seconds)
      return requestAnimationFrame(step);
    const whole = times.filter(time => time <= now - 1000);
    resolve(Math.min(...whole.map(start => times.filter(time => time > start && time <= start + 1000).length)));
  });
}));

// Seconds from the choice of the files until the page says that they are there.
async function upload(files) {
  await page.evaluate(() => {
    window.chosen = new Promise(resolve => addEventListener('change', () => resolve(performance.now()), { capture: true, once: true }));
  });
  await app.pick('Upload files', files);
  await page.locator('.uploads-title', { hasText: new RegExp(`^Uploaded: ${files.length.toLocaleString('en-GB')}$`) }).waitFor();
  return page.evaluate(async () => (performance.now() - await window.chosen) / 1000);
}

// What the browser takes for the same at best: requests and nothing else.
async function bareUpload(files) {
  await page.evaluate(() => document.body.insertAdjacentHTML('beforeend', '<input type="file" id="bare" multiple>'));
  await page.setInputFiles('#bare', files);
  return page.evaluate(async atOnce => {
    const field = document.getElementById('bare');
    const rest = [...field.files];
    field.remove();
    const began = performance.now();
    const put = file => new Promise((resolve, reject) => {
      const request = new XMLHttpRequest();
      request.open('PUT', `bare-${file.name}`);
      request.onload = resolve;
      request.onerror = reject;
      request.send(file);
    });
    const worker = async () => {
      while (rest.length > 0)
        await put(rest.shift());
    };
    await Promise.all(Array.from({ length: atOnce }, worker));
    return (performance.now() - began) / 1000;
  }, atOnce);
}

await app.open();
const told = { ...await firstView(), app_listing: await listing(), app_frames: await frames() };
await app.open(uploads);
for (const [name, files] of Object.entries({ big: [big], app_files: small }))
  Object.assign(told, { [name]: await upload(files), [`${name}_bare`]: await bareUpload(files) });
console.log(JSON.stringify(told));
await app.browser.close();
