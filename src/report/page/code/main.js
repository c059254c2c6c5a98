// Puts the page together from the run that it holds. Parts that have nothing to say are left out.
import { aboutSection } from './about.js';
import { chartSections } from './charts.js';
import { el } from './dom.js';
import { graphSection } from './graph.js';
import { historiesSection } from './histories.js';
import { followPaper } from './plot.js';
import { readRun } from './run_document.js';
import { makeStore } from './store.js';
import { summarySection } from './summary.js';
import { tableSections } from './tables.js';
import { themeSwitch } from './theme.js';
import { timelineSection } from './timeline.js';
import { toolbar } from './toolbar.js';

function page(run) {
  const store = makeStore(run);
  const explore = el('div', { class: 'explore' }, toolbar(run, store), timelineSection(run, store), chartSections(run, store).filter(Boolean));
  const parts = [summarySection(run, store), explore, graphSection(run, store), historiesSection(run), ...tableSections(run, store), aboutSection(run)].filter(Boolean);
  const main = el('main', { id: 'main' }, parts);
  document.title = `${run.plant.name}: ${main.querySelector('h1').textContent}`;
  document.body.prepend(el('a', { class: 'skip', href: '#main' }, 'To the report'), header(run, store, main), main,
    el('footer', null, `Written by tavro ${run.tavro}. All of this page is in this one file.`));
  followPaper(store);
}

function header(run, store, main) {
  const links = [...main.querySelectorAll('section[id]')].map((part) => el('a', { href: `#${part.id}` }, part.id === 'summary' ? 'Summary' : part.querySelector('h2').textContent));
  return el('header', null, el('p', { class: 'brand' }, el('b', null, 'tavro'), ` ${run.plant.name}`), el('nav', { class: 'no-print', 'aria-label': 'Parts of the report' }, links), themeSwitch(store));
}

const source = document.getElementById('run');
const run = readRun(source?.textContent ?? '');
source?.remove(); // it is read; its text need not be kept twice
if (typeof run === 'string') document.body.prepend(el('main', { class: 'nothing' }, el('h1', null, 'No report'), el('p', { id: 'problem' }, run)));
else page(run);
