// Light, dark, or as the system says; and paper, which is always light. Whoever draws on a canvas is told
// by the topic `look` of the store.
import { el } from './dom.js';
import { forgetColours } from './look.js';

const key = 'tavro-report-theme';

function remembered() {
  try {
    return localStorage.getItem(key) ?? 'auto';
  } catch {
    return 'auto'; // a browser may refuse storage to a file
  }
}

function remember(theme) {
  try {
    localStorage.setItem(key, theme);
  } catch {
    // then the next opening begins as the system says
  }
}

export function themeSwitch(store) {
  const apply = (theme) => {
    document.documentElement.dataset.theme = theme;
    forgetColours();
    store.touch('look');
  };
  const first = remembered();
  apply(first);
  for (const query of ['(prefers-color-scheme: dark)', 'print'])
    matchMedia(query).addEventListener('change', () => apply(document.documentElement.dataset.theme));
  const choice = (value, label) => el('label', null,
    el('input', { type: 'radio', name: 'theme', value, checked: value === first, onchange: () => { remember(value); apply(value); } }),
    el('span', null, label));
  return el('fieldset', { class: 'segmented no-print' }, el('legend', { class: 'unseen' }, 'Colours'), choice('auto', 'Auto'), choice('light', 'Light'), choice('dark', 'Dark'));
}
