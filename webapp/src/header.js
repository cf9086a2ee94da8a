// The top of the page: where the visitor is, the filter, and how the entries are shown.

import { button, debounced, h, icon } from './dom.js';
import { shownName } from './entry.js';
import { showHelp } from './help.js';
import { orderNames } from './order.js';
import { padButton } from './pad.js';
import { decoded, lastSegment, root, trail } from './paths.js';
import { choose, setting, showScheme } from './settings.js';
import { t } from './texts.js';

const filterDelay = 80; // ms
const schemes = ['system', 'light', 'dark'];
const schemeTexts = { system: 'Colours: as the system', light: 'Colours: light', dark: 'Colours: dark' };
const orderTexts = { name: 'Name', size: 'Size', time: 'Modified', kind: 'Kind' };

export const folderName = path => (path === root ? t('Home') : shownName(decoded(lastSegment(path))));

export class Crumbs {
  constructor() {
    this.list = h('ol', { class: 'crumbs-list' });
    this.title = h('h1', { class: 'unseen' });
    this.element = h('nav', { class: 'crumbs', 'aria-label': t('Folders') }, this.list);
  }

  show(path) {
    const steps = trail(path);
    this.title.textContent = folderName(path);
    this.list.replaceChildren(...steps.map((step, index) => h('li', {}, h('a', {
      href: step, 'data-path': step, 'aria-current': index === steps.length - 1 && 'page',
      ...step === root ? { 'aria-label': t('Home'), title: t('Home') } : {},
    }, step === root && icon('home'), (step !== root || steps.length === 1) && h('bdi', {}, folderName(step))))));
    this.element.scrollLeft = this.element.scrollWidth;
  }
}

function schemeSwitch() {
  const element = button('', null, () => {
    choose({ scheme: schemes[(schemes.indexOf(setting('scheme')) + 1) % schemes.length] });
    show();
  }, { quiet: true });
  const show = () => {
    const text = t(schemeTexts[setting('scheme')]);
    element.replaceChildren(icon(setting('scheme')));
    element.setAttribute('aria-label', text);
    element.title = text;
    showScheme();
  };
  show();
  return element;
}

// The server's own form goes on to do it.
function logOut() {
  const form = document.querySelector('form[action$=".quillon/logout"]');
  if (!form)
    return null;
  form.replaceChildren(h('button', { class: 'button quiet', 'aria-label': t('Log out'), title: t('Log out') }, icon('logOut')));
  return form;
}

export const account = () => h('div', { class: 'account' }, padButton(), schemeSwitch(),
  button(t('Keyboard'), 'help', () => showHelp(), { quiet: true, class: 'button quiet keyboard-help' }), logOut());

export function filterField(folder) {
  const field = h('input', { type: 'search', 'aria-label': t('Filter'), placeholder: t('Filter'), autocomplete: 'off', spellcheck: 'false', enterkeyhint: 'search' });
  field.addEventListener('input', debounced(filterDelay, () => field.value !== folder.words && folder.filter(field.value)));
  field.addEventListener('keydown', event => {
    if (event.key !== 'Escape')
      return;
    field.value = '';
    folder.filter('');
  });
  return field;
}

// `changed` is called when the visitor wants it otherwise.
export class ViewSwitches {
  #changed;

  constructor(changed) {
    this.#changed = changed;
    this.order = h('select', { 'aria-label': t('Sort by'), onchange: () => this.change({ order: this.order.value }) },
      ...orderNames.map(name => h('option', { value: name }, t(orderTexts[name]))));
    this.direction = button('', null, () => this.change({ isDescending: !setting('isDescending') }), { quiet: true });
    this.layouts = { grid: 'Grid', list: 'List' };
    this.layoutButtons = Object.entries(this.layouts).map(([name, text]) => button(t(text), name, () => this.change({ layout: name }), { quiet: true, 'data-layout': name }));
    this.element = h('div', { class: 'switches' }, this.order, this.direction,
      h('div', { class: 'segments', role: 'group', 'aria-label': t('View') }, ...this.layoutButtons));
    this.#show();
  }

  // The same order once more is the other direction.
  sortBy(order) {
    this.change(order === setting('order') ? { isDescending: !setting('isDescending') } : { order, isDescending: false });
  }

  change(changes) {
    choose(changes);
    this.#show();
    this.#changed();
  }

  #show() {
    this.order.value = setting('order');
    const text = setting('isDescending') ? t('Descending') : t('Ascending');
    this.direction.replaceChildren(icon(setting('isDescending') ? 'descending' : 'ascending'));
    this.direction.setAttribute('aria-label', text);
    this.direction.title = text;
    for (const each of this.layoutButtons)
      each.setAttribute('aria-pressed', each.dataset.layout === setting('layout'));
  }
}
