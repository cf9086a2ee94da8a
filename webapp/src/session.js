// A session that ended while the page was open: the visitor logs in again where they are, and what was
// refused meanwhile goes on. `session` tells "resumed" then.

import { ask } from './dialog.js';
import { h } from './dom.js';
import { reserved } from './paths.js';
import { t } from './texts.js';

const problems = { 0: 'The connection is lost.', 403: 'The name or the password is wrong.', 429: 'Too much at once. Try again in a while.' };

export const session = new EventTarget();
let asking = null;
let isDeclined = false;

const send = options => fetch(`${reserved}login`, { redirect: 'manual', cache: 'no-store', ...options });
// Whoever is let in is led on.
const isIn = reply => reply.type === 'opaqueredirect';

const fieldOf = (text, id, properties) => {
  const field = h('input', { id: `login-${id}`, name: id, required: true, ...properties });
  return [h('label', { for: field.id }, text), field];
};

// Resolves with what was typed, or null.
async function askFor(hasNames, name, note) {
  const fields = [
    ...hasNames ? fieldOf(t('Name'), 'name', { type: 'text', value: name, autocomplete: 'username', autocapitalize: 'none', spellcheck: 'false', autofocus: !name }) : [],
    ...fieldOf(t('Password'), 'password', { type: 'password', autocomplete: 'current-password', autofocus: !hasNames || name !== '' }),
  ];
  const answer = await ask({
    title: t('Log in'), content: [h('p', { role: note && 'alert' }, note ?? t('Your session has ended. Log in again.')), ...fields],
    actions: [{ text: t('Cancel'), value: '' }, { text: t('Log in'), value: 'yes', isMain: true }],
  });
  return answer && new URLSearchParams(fields.filter(field => field.name).map(field => [field.name, field.value]));
}

// What the server's own page asks for is asked for here.
async function askUntilIn() {
  const page = await send();
  const hasNames = /name="name"/.test(await page.text());
  let reply = page;
  let form = null;
  for (let note = null; !isIn(reply); note = t(problems[reply.status] ?? 'The server could not do it.')) {
    form = await askFor(hasNames, form?.get('name') ?? '', note);
    if (!form)
      return false;
    reply = await send({ method: 'POST', body: form }).catch(() => ({ status: 0 }));
  }
  return true;
}

// Gives whether the visitor is in again; asks once, whoever else wants it meanwhile.
export function logIn() {
  asking ??= askUntilIn().catch(() => null).then(isDone => {
    asking = null;
    isDeclined = isDone === false;
    if (isDone)
      session.dispatchEvent(new Event('resumed'));
    return isDone === true;
  });
  return asking;
}

// The same for what nobody waits for: who didn't want to isn't asked again and again.
export const offerLogin = async () => !isDeclined && logIn();
