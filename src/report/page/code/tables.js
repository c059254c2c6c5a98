// The hypotheses and the candidates as tables, from which they are put into the charts.
import { el, section } from './dom.js';
import { arrows, number, percent } from './format.js';
import { badge, label } from './badge.js';
import { sortable } from './table.js';

export function tableSections(run, store) {
  return [run.hypotheses.length && hypothesesSection(run, store), run.candidates.length && candidatesSection(run, store), run.alarms.length && alarmsSection(run)];
}

const modesUpTo = 4; // of a candidate; those that failed come first

const tick = (words, checked, act) => el('input', { type: 'checkbox', 'aria-label': words, checked, onchange: (event) => act(event.target.checked) });
const yes = (value) => (value ? 'yes' : 'no');
const chance = (value) => el('span', { title: String(value) }, value > 0 ? percent(value) : '–');

function hypothesesSection(run, store) {
  const time = (step) => number(run.time[step]);
  const columns = [
    { title: 'Shown', value: (h) => (store.state.shown.has(h.index) ? 0 : 1), cell: (h) => tick(`Show hypothesis ${label(h)}`, store.state.shown.has(h.index), (on) => store.show(h.index, on)) },
    { title: 'No.', value: (h) => h.index + 1, cell: badge, number: true },
    { title: 'Hypothesis', value: (h) => h.summary, cell: (h) => el('button', { type: 'button', class: 'plain', 'aria-pressed': String(store.state.focus === h.index), onclick: () => store.follow(h.index) }, arrows(h.summary)) },
    { title: 'Failures', value: (h) => h.rank, number: true },
    { title: 'Probability', value: (h) => h.probability, cell: (h) => chance(h.probability), number: true },
    { title: 'From', value: (h) => run.time[h.first], cell: (h) => time(h.first), number: true },
    { title: 'To', value: (h) => run.time[h.last], cell: (h) => time(h.last), number: true },
    { title: 'At the end', value: (h) => yes(h.alive), cell: (h) => (h.alive ? 'followed' : 'no') },
    { title: 'Candidates', value: (h) => h.candidates.length, number: true },
  ];
  const table = sortable('Hypotheses', columns, run.byInterest, { redrawOn: (draw) => store.on('choice', draw) });
  return section('hypotheses', 'Hypotheses', el('p', { class: 'hint' }, 'A hypothesis is a story of what failed. Its name puts its modes into the time line.'), table.node);
}

function candidatesSection(run, store) {
  const modes = (c) => {
    const all = Object.entries(Object.assign({}, ...c.modes.map((m) => m.values))).map(([name, value]) => `${name}=${value}`);
    const first = [...all.filter((own) => run.failing.has(own)), ...all.filter((own) => !run.failing.has(own))];
    return first.slice(0, modesUpTo).join(', ') + (first.length > modesUpTo ? ` and ${first.length - modesUpTo} more` : '');
  };
  const columns = [
    { title: 'Drawn', value: (c) => (store.state.picked.has(c.id) ? 0 : 1), cell: (c) => tick(`Draw candidate ${c.id}`, store.state.picked.has(c.id), (on) => store.pick(c.id, on)) },
    { title: 'Candidate', value: (c) => c.id, number: true },
    { title: 'Hypothesis', value: (c) => c.hypothesis + 1, cell: (c) => (run.hypotheses[c.hypothesis] ? badge(run.hypotheses[c.hypothesis]) : '–') },
    { title: 'From', value: (c) => run.time[c.first], cell: (c) => number(run.time[c.first]), number: true },
    { title: 'To', value: (c) => run.time[c.last], cell: (c) => number(run.time[c.last]), number: true },
    { title: 'At the end', value: (c) => yes(c.alive), cell: (c) => (c.alive ? 'followed' : 'no') },
    { title: 'Failures', value: (c) => c.rank, number: true },
    { title: 'Probability', value: (c) => c.probability, cell: (c) => chance(c.probability), number: true },
    { title: 'Last modes', value: modes, cell: (c) => el('span', { class: 'modes' }, modes(c)) },
  ];
  const table = sortable('Candidates', columns, run.candidates, { redrawOn: (draw) => store.on('choice', draw) });
  const clear = el('button', { type: 'button', class: 'plain no-print', onclick: () => [...store.state.picked].forEach((id) => store.pick(id, false)) }, 'Draw none of them');
  return section('candidates', 'Candidates', el('p', { class: 'hint' }, 'Each candidate is one prediction, followed for a while; they split, merge and are dropped. Those that are drawn stand as thin lines in the charts. ', clear), table.node);
}

function alarmsSection(run) {
  const columns = [
    { title: run.plant.discrete ? 'Step' : 'Time', value: (a) => a.time, number: true },
    { title: 'Measure', value: (a) => a.measure },
    { title: 'Side', value: (a) => a.side, cell: (a) => (a.side === 'high' ? '▲ too high' : '▼ too low') },
  ];
  const table = sortable('Alarms', columns, run.alarms);
  return section('alarms', 'Alarms', el('details', { open: run.alarms.length <= 10 }, el('summary', null, `All ${run.alarms.length.toLocaleString('en')}`), table.node));
}
