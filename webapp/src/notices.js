// What has become of something, for a while at the bottom of the page, and told by screen readers.

import { unreadable } from './dav.js';
import { button, h } from './dom.js';
import { shownName } from './entry.js';
import { decoded, lastSegment } from './paths.js';
import { logIn } from './session.js';
import { t } from './texts.js';

const shownFor = 6000; // ms
const offeredFor = 10000; // what can be done about it for a moment only
const mostShown = 4;
const mostReasons = 3; // told of what went wrong at once

export const notices = h('div', { class: 'notices' });
const calm = h('div', { role: 'status', class: 'notice-list' });
const urgent = h('div', { role: 'alert', class: 'notice-list' });
const told = h('div', { role: 'status', class: 'unseen' });
notices.append(calm, urgent, told);

// For screen readers alone: who looks sees it already.
export const announce = text => { told.textContent = text; };

// What can be done about something else stays, and warnings do, as far as there is room.
function makeRoom(list) {
  for (const notice of [...list.children]) {
    if (!notice.classList.contains('stays') || list.children.length >= mostShown)
      notice.remove();
  }
}

function show(list, text, action, stays = Boolean(action)) {
  const notice = h('div', { class: stays ? 'notice stays' : 'notice' }, h('span', {}, text));
  const close = () => notice.remove();
  if (action) {
    notice.append(button(action.text, null, () => {
      close();
      action.run();
    }));
  }
  notice.append(button(t('Close'), 'close', close, { quiet: true }));
  makeRoom(list);
  list.append(notice);
  if (action?.isBrief)
    setTimeout(close, offeredFor);
  else if (!action && list === calm)
    setTimeout(close, shownFor);
}

export const inform = (text, action) => show(calm, text, action);
export const warn = text => show(urgent, text, null, true);

// What happened, and what to do about it.
const reasons = {
  [unreadable]: 'The file has changed or is gone.',
  0: 'The connection is lost.',
  400: 'The name is not allowed here.',
  401: 'Your session has ended. Log in again.',
  403: 'You have no right to do this here.',
  404: 'It is not there any more.',
  409: 'The folder is not there any more.',
  412: 'The name is taken already.',
  413: 'The file is too large for this server.',
  423: 'Somebody is working on it. Try again later.',
  429: 'Too much at once. Try again in a while.',
  507: 'There is no space left on the server.',
};

export const reason = ({ status }) => t(reasons[status] ?? 'The server could not do it.');

// The reason where what was typed is kept.
export const reasonNote = error => h('p', { role: 'alert' }, reason(error), error.status === 401 && ' ',
  error.status === 401 && button(t('Log in'), null, logIn));

const withSubject = error => (error.subject ? `${shownName(decoded(lastSegment(error.subject)))}: ` : '') + reason(error);

function reasonsOf(errors) {
  const more = errors.length - mostReasons;
  return [t('Failed: {n}', { n: errors.length }), ...errors.slice(0, mostReasons).map(withSubject),
    ...more > 0 ? [t('and {n} more', { n: more })] : []].join(' · ');
}

// `retry` is offered where it can be of use; `error.all` are those of several things done at once.
export function complain(error, retry) {
  if (!('status' in error))
    throw error;
  if (error.status === 401)
    return show(urgent, reason(error), { text: t('Log in'), run: async () => await logIn() && retry?.() });
  const text = error.all?.length > 1 ? reasonsOf(error.all) : withSubject(error);
  show(urgent, text, retry && { text: t('Try again'), run: retry });
}
