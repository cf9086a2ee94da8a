// The texts of the page in the visitor's language. They are called by what they say in English.

import de from './texts/de.js';
import es from './texts/es.js';
import fr from './texts/fr.js';

const languages = { en: {}, de, es, fr };
export const language = navigator.languages.find(each => each.slice(0, 2) in languages) ?? 'en';
const texts = languages[language.slice(0, 2)];

// t('Selected: {n}', { n: 3 })
export function t(text, values = {}) {
  return (texts[text] ?? text).replace(/\{(\w+)\}/g, (_, name) => values[name]);
}
