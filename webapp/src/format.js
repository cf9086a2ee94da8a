// Numbers and times for people, as their language has them.

import { language, t } from './texts.js';

const units = ['byte', 'kilobyte', 'megabyte', 'gigabyte', 'terabyte'];
const formats = units.map((unit, index) => new Intl.NumberFormat(language, {
  style: 'unit', unit, unitDisplay: index === 0 ? 'long' : 'short', maximumSignificantDigits: 3,
}));

const paces = units.map(unit => new Intl.NumberFormat(language, {
  style: 'unit', unit: `${unit}-per-second`, unitDisplay: 'short', maximumSignificantDigits: 2,
}));

function scaled(bytes, by) {
  const power = Math.min(units.length - 1, bytes < 1000 ? 0 : Math.floor(Math.log10(bytes) / 3));
  return by[power].format(bytes / 1000 ** power);
}

export const size = bytes => scaled(bytes, formats);
export const pace = bytes => scaled(bytes, paces); // in a second

const sameYear = new Intl.DateTimeFormat(language, { day: 'numeric', month: 'short', hour: 'numeric', minute: '2-digit' });
const otherYear = new Intl.DateTimeFormat(language, { day: 'numeric', month: 'short', year: 'numeric' });

export function time(ms) {
  if (!ms)
    return '';
  return (new Date(ms).getFullYear() === new Date().getFullYear() ? sameYear : otherYear).format(ms);
}

export function duration(seconds) {
  if (seconds < 60)
    return t('less than a minute');
  const unit = seconds < 5400 ? 'minute' : 'hour';
  const count = Math.round(seconds / (unit === 'minute' ? 60 : 3600));
  return new Intl.NumberFormat(language, { style: 'unit', unit, unitDisplay: 'long' }).format(count);
}

const whole = new Intl.NumberFormat(language);
export const number = count => whole.format(count);
