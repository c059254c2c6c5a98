// What was run, with what, and whose work the page holds.
import { el, section } from './dom.js';
import { number } from './format.js';

export function aboutSection(run) {
  const { plant, run: own } = run;
  const noise = Object.entries(own.noise ?? {}).map(([name, value]) => `${name || 'all measures'} ${number(value)}`).join(', ');
  const rows = [
    ['Plant', `${plant.name}${plant.discrete ? ', discrete' : ''}`], ['File of the plant', plant.file], ['Sample period', plant.discrete ? null : `${number(plant.period)} s`],
    ['Components', plant.components.join(', ')], ['Measures from', own.measures], ['Inputs from', own.inputs], ['Scenario', own.scenario],
    ['Rules', own.rules], ['Isolation', own.isolation], ['Alarm after', `${own.threshold} measures in a row`], ['Candidates at most', own.candidates || 'as the rules say'],
    ['Noise', noise || 'none stated'], ['Exit status', run.outcome.status], ['Tavro', run.tavro],
  ].filter(([, value]) => value !== null && value !== undefined && value !== '');
  return section('about', 'What was run', el('dl', { class: 'about' }, rows.map(([name, value]) => el('div', null, el('dt', null, name), el('dd', null, String(value))))), keys(), licences());
}

function keys() {
  const rows = [['← →', 'pan; with Shift farther'], ['+ −', 'zoom in and out'], ['0', 'show the whole run'], [', .', 'move the cursor by a step'], ['Home End', 'cursor to the first and the last step']];
  return el('details', { class: 'no-print' }, el('summary', null, 'Keys and mouse in the charts'),
    el('dl', { class: 'about' }, rows.map(([key, words]) => el('div', null, el('dt', null, el('kbd', null, key)), el('dd', null, words)))),
    el('p', null, 'Drag over a chart to zoom into that stretch, double-click to see the whole run. On a touch screen one finger moves along time, two zoom.'));
}

/** LICENCES is put in by the build: { name, version, text } of each library in the page. */
function licences() {
  return el('details', { class: 'licences no-print' }, el('summary', null, 'Licences of the libraries in this page'),
    LICENCES.map(({ name, version, text }) => [el('h3', null, `${name} ${version}`), el('pre', null, text)]));
}
