// Numbers and times for people, as their language has them.

import { language, t } from './texts.js';

const units = ['byte', 'kilobyte', 'megabyte', 'gigabyte', 'terabyte'];

// To make a format takes the browser some milliseconds, which the first view has not got.
function keptBy(make) {
  const known = new Map();
  return key => {
    if (!known.has(key))
      known.set(key, make(key));
    return known.get(key);
  };
}

const sizes = keptBy(power => new Intl.NumberFormat(language, {
  style: 'unit', unit: units[power], unitDisplay: power === 0 ? 'long' : 'short', maximumSignificantDigits: 3,
}));

const paces = keptBy(power => new Intl.NumberFormat(language, {
  style: 'unit', unit: `${units[power]}-per-second`, unitDisplay: 'short', maximumSignificantDigits: 2,
}));

const times = keptBy(isThisYear => new Intl.DateTimeFormat(language, {
  day: 'numeric', month: 'short', ...isThisYear ? { hour: 'numeric', minute: '2-digit' } : { year: 'numeric' },
}));

function scaled(bytes, formats) {
  const power = Math.min(units.length - 1, bytes < 1000 ? 0 : Math.floor(Math.log10(bytes) / 3));
  return formats(power).format(bytes / 1000 ** power);
}

export const size = bytes => scaled(bytes, sizes);
export const pace = bytes => scaled(bytes, paces); // in a second

export const time = ms => (ms ? times(new Date(ms).getFullYear() === new Date().getFullYear()).format(ms) : '');

export function duration(seconds) {
  if (seconds < 60)
    return t('less than a minute');
  const unit = seconds < 5400 ? 'minute' : 'hour';
  const count = Math.round(seconds / (unit === 'minute' ? 60 : 3600));
  return new Intl.NumberFormat(language, { style: 'unit', unit, unitDisplay: 'long' }).format(count);
}

const whole = keptBy(() => new Intl.NumberFormat(language));
export const number = count => whole().format(count);
