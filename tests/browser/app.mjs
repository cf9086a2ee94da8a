// The web application in a real browser, called by what people read.

import { mkdir, readFile } from 'node:fs/promises';
import { createRequire } from 'node:module';
import { join } from 'node:path';
import { chromium } from 'playwright-core';
import de from '../../webapp/src/texts/de.js';
import es from '../../webapp/src/texts/es.js';
import fr from '../../webapp/src/texts/fr.js';

const { ARTEFACTS, CHROMIUM = '/usr/bin/chromium' } = process.env;
const axe = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const programArguments = ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking', '--disable-component-update', '--disable-sync'];

export const screens = {
  phone: { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true, locale: 'de-DE' },
  desktop: { viewport: { width: 1280, height: 800 }, locale: 'en-GB' },
};

export const pixel = Buffer.from('iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==', 'base64');
export const languages = { de, es, fr };

export class App {
  problems = []; // what the browser complained of

  static async start(screen, url, locale = screens[screen].locale) {
    const app = new App();
    app.texts = languages[locale.slice(0, 2)] ?? {};
    app.url = url;
    app.screen = screen;
    await mkdir(ARTEFACTS, { recursive: true });
    app.browser = await chromium.launch({ executablePath: CHROMIUM, args: programArguments });
    app.context = await app.browser.newContext({ ...screens[screen], locale, acceptDownloads: true });
    app.page = await app.context.newPage();
    app.page.setDefaultTimeout(10000);
    app.page.on('pageerror', error => app.problems.push(error.stack));
    app.page.on('dialog', dialog => dialog.accept());
    app.page.on('console', message => message.text().includes('Content Security Policy') && app.problems.push(message.text()));
    return app;
  }

  say = text => this.texts[text] ?? text;
  button = name => this.page.getByRole('button', { name: this.say(name), exact: true });
  press = name => this.button(name).click();
  dialog = name => this.page.getByRole('dialog', { name: this.say(name), exact: true });
  entry = name => this.page.locator(`.entry[aria-label^=${JSON.stringify(`${name},`)}]`);
  progress = name => this.page.getByRole('status', { name: this.say('Uploads') }).getByRole('progressbar', { name });
  entries = () => this.page.locator('.entry').evaluateAll(found => found.map(each => each.querySelector('.name').textContent));
  // All words of the application itself, read or told.
  words = () => this.page.evaluate(() => {
    const of = element => [...['aria-label', 'title', 'placeholder'].map(name => element.getAttribute(name)),
      ...[...element.childNodes].filter(node => node.nodeType === Node.TEXT_NODE).map(({ data }) => data)];
    return [...document.querySelectorAll('body *:not(.entry, .entry *, kbd)')].flatMap(of).filter(text => text !== null && /\p{L}/u.test(text));
  });

  async open(path = '') {
    await this.page.goto(this.url + path);
    await this.page.locator('.entry, .note:visible, .drop-box').first().waitFor();
    await this.page.waitForLoadState('networkidle');
  }

  async pick(kind, files) {
    const [chooser] = await Promise.all([this.page.waitForEvent('filechooser'), this.press(kind)]);
    await chooser.setFiles(files);
  }

  // Bytes a second that may go out; null cuts the browser off.
  async limitUpload(pace) {
    this.session ??= await this.context.newCDPSession(this.page);
    await this.session.send('Network.emulateNetworkConditions', {
      offline: pace === null, latency: 0, downloadThroughput: -1, uploadThroughput: pace ?? -1,
    });
  }

  // The violations that axe finds in what is shown, in both schemes.
  async violations(view) {
    const found = [];
    for (const colorScheme of ['light', 'dark']) {
      await this.page.emulateMedia({ colorScheme, reducedMotion: 'reduce' });
      await this.page.screenshot({ path: join(ARTEFACTS, `app-${this.screen}-${view}-${colorScheme}.png`) });
      await this.page.evaluate(await readFile(axe, 'utf8'));
      const { violations } = await this.page.evaluate(() => window.axe.run(document, {
        runOnly: ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'],
      }));
      found.push(...violations.map(({ id, nodes }) => `${view}, ${colorScheme}: ${id} ${nodes.map(({ html }) => html.slice(0, 160)).join(' ')}`));
    }
    return found;
  }
}
