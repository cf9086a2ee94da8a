// What a visitor chose, kept by the browser as far as it allows that.

const defaults = { layout: 'list', order: 'name', isDescending: false, scheme: 'system', singleKeys: true };
const key = 'quillon.settings';

function read() {
  try {
    return JSON.parse(localStorage.getItem(key)) ?? {};
  } catch {
    return {};
  }
}

const chosen = { ...defaults, ...read() };

export const setting = name => chosen[name];

export function choose(changes) {
  Object.assign(chosen, changes);
  try {
    localStorage.setItem(key, JSON.stringify(chosen));
  } catch {
    // It holds until the page is left, then.
  }
}

const isDark = matchMedia('(prefers-color-scheme: dark)');

export function showScheme() {
  const { scheme } = chosen;
  document.documentElement.dataset.scheme = scheme === 'system' ? (isDark.matches ? 'dark' : 'light') : scheme;
}

isDark.addEventListener('change', showScheme);
