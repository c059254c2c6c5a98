// What steers the time line and all charts: the moment at the cursor, zoom, and which hypotheses are shown.
// It stays in sight while the reader scrolls through the charts.
import { el } from './dom.js';
import { arrows, plural } from './format.js';
import { badge } from './badge.js';

const chipsUpTo = 6;

export function toolbar(run, store) {
  const moment = el('output', { class: 'moment', 'aria-live': 'polite', id: 'moment' });
  const tell = ({ cursor }) => {
    moment.textContent = [run.words.at(run.time[cursor]), run.plant.discrete ? '' : `step ${cursor}`, plural(run.followed[cursor], 'candidate')].filter(Boolean).join(' · ');
  };
  store.on('cursor', tell);
  tell(store.state);
  return el('div', { class: 'toolbar', role: 'group', 'aria-label': 'Time and hypotheses' },
    el('div', { class: 'row' }, el('div', { class: 'where-we-are' }, moment, sight(run, store)), zoomButtons(run, store)),
    chips(run, store),
    el('p', { id: 'plot-keys', class: 'unseen' }, 'Arrows pan, plus and minus zoom, 0 shows the whole run; comma and full stop move the cursor by a step, Home and End to the ends.'));
}

/** The range that all charts show. */
function sight(run, store) {
  const node = el('output', { class: 'hint', id: 'sight' });
  const digits = (value) => String(Number(value.toPrecision(5)));
  const tell = ({ range }) => (node.textContent = `${digits(range[0])} to ${digits(range[1])}${run.plant.discrete ? '' : ' s'} in sight`);
  store.on('range', tell);
  tell(store.state);
  return node;
}

function zoomButtons(run, store) {
  const button = (sign, words, act) => el('button', { type: 'button', 'aria-label': words, title: words, onclick: act }, sign);
  const noticed = run.outcome.noticed;
  const around = (time) => {
    const half = 20 * (run.plant.period || 1);
    store.setRange(time - half, time + half);
  };
  return el('div', { class: 'buttons no-print' },
    button('←', 'Earlier', () => store.pan(-0.3)), button('→', 'Later', () => store.pan(0.3)),
    button('−', 'Zoom out', () => store.zoom(2)), button('+', 'Zoom in', () => store.zoom(0.5)),
    noticed && button('Alarm', 'Zoom to where it was noticed', () => { around(noticed.time); store.setCursor(noticed.step); }),
    button('Whole run', 'Show the whole run', () => store.reset()));
}

/** A button per hypothesis; of many only the first, and how to come to the others. */
function chips(run, store) {
  if (!run.hypotheses.length) return null;
  const offered = run.byInterest.slice(0, chipsUpTo);
  const first = run.hypotheses[0];
  if (!offered.includes(first)) offered.push(first);
  const buttons = offered.map((hypothesis) => [hypothesis, el('button', { type: 'button', class: 'chip', onclick: () => store.show(hypothesis.index) }, badge(hypothesis), el('span', null, arrows(hypothesis.summary)))]);
  const count = el('span', { class: 'hint' });
  const update = ({ shown, picked }) => {
    for (const [hypothesis, button] of buttons) button.setAttribute('aria-pressed', String(shown.has(hypothesis.index)));
    count.textContent = `${shown.size} of ${run.hypotheses.length} shown${picked.size ? `, ${plural(picked.size, 'candidate')} picked` : ''}`;
  };
  store.on('choice', update);
  update(store.state);
  const many = run.hypotheses.length > offered.length;
  return [el('div', { class: 'chips', role: 'group', 'aria-label': 'Hypotheses shown' }, buttons.map(([, button]) => button)), many && el('div', { class: 'row more' }, el('span', { class: 'buttons' },
    el('button', { type: 'button', class: 'plain no-print', onclick: () => store.showOnly(run.hypotheses.map((h) => h.index)) }, 'Show all'),
    el('button', { type: 'button', class: 'plain no-print', onclick: () => store.showOnly([store.state.focus]) }, 'Only the followed one'),
    el('a', { href: '#hypotheses', class: 'no-print' }, 'All in a table')), count)];
}
