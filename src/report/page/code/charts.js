// A chart for each variable: what was measured, the bands of the hypotheses that are shown, the bounds of
// the candidates that were picked, and the alarms. Over each chart stand the numbers at the cursor.
import uPlot from 'uplot';
import { band, boundsAt, finiteRange, ownBand } from './hulls.js';
import { clipToPlot, drawBand, drawColumns, groupsInSight, isDense } from './bands_drawing.js';
import { el, section } from './dom.js';
import { interval, number, plural } from './format.js';
import { canvasFont, colour, lookOf } from './look.js';
import { makePlot } from './plot.js';
import { stepAt } from './run_document.js';
import { badge } from './badge.js';

const openUpTo = 6; // so many variables that are not measured are shown without being asked for
const toldUpTo = 4; // so many hypotheses tell their numbers at the cursor

/** The sections of measures, of other variables, and of inputs; empty ones are left out. */
export function chartSections(run, store) {
  const measured = run.plant.measures.filter((name) => run.measures[name]);
  const inputs = run.plant.inputs.filter((name) => run.inputs[name]);
  const others = run.plant.variables.filter((name) => !measured.includes(name) && !inputs.includes(name) && run.candidates.some((c) => c.bounds[name]));
  return [
    measured.length && section('measures', 'Measures', el('p', { class: 'hint' }, 'What was measured, within the bounds that each hypothesis predicts.'),
      measured.map((name) => chart(run, store, name, run.measures[name], 'measured', 220))),
    others.length && variablesSection(run, store, others),
    inputs.length && section('inputs', 'Inputs', inputs.map((name) => chart(run, store, name, run.inputs[name], 'given', 120))),
  ];
}

function variablesSection(run, store, names) {
  const list = el('div', null);
  let made = false;
  const details = el('details', { class: 'variables', ontoggle: () => {
    if (made || !details.open) return;
    made = true;
    list.append(...names.map((name) => chart(run, store, name, null, '', 150)));
  } }, el('summary', null, `${plural(names.length, 'variable')} without a measure`), names.length > 12 && nameFilter(list), list);
  details.open = names.length <= openUpTo;
  return section('variables', 'Other variables', el('p', { class: 'hint' }, 'Nobody measured these; their bounds follow from what was.'), details);
}

/** Hides the charts whose names do not hold what is typed. */
function nameFilter(list) {
  const sift = (event) => {
    const wanted = event.target.value.toLowerCase();
    for (const figure of list.children) figure.hidden = !figure.dataset.variable.toLowerCase().includes(wanted);
  };
  return el('label', { class: 'field' }, 'Name holds ', el('input', { type: 'search', oninput: sift }));
}

function chart(run, store, name, values, word, height) {
  const readout = el('span', { class: 'readout', 'data-readout': name });
  const alarms = run.alarmsOf.get(name) ?? [];
  const what = {
    height, label: `${name} over time`, data: [values ?? new Array(run.time.length).fill(null)],
    series: [{ stroke: () => colour('--ink'), width: 1.5, auto: false, paths: values ? sparse : () => null, points: { size: 4, fill: () => colour('--ink') } }],
    range: (sight) => rangeOf(run, store.state, name, values, sight),
    under: (plot) => drawLines(run, store.state, name, values, plot),
    over: (plot) => drawMarks(run, plot, alarms),
    atCursor: (step) => readout.replaceChildren(...numbersAt(run, store.state, name, values, word, step)),
  };
  return el('figure', { class: 'chart', 'data-variable': name },
    el('figcaption', null, el('h3', null, name), alarms.length ? el('span', { class: 'tag alarm' }, sides(alarms), plural(alarms.length, 'alarm')) : null, readout),
    makePlot(run, store, what));
}

const sides = (alarms) => `${alarms.some((a) => a.side === 'high') ? '▲' : ''}${alarms.some((a) => a.side === 'low') ? '▼' : ''} `;

const linear = uPlot.paths.linear();
/** A line from value to value, unless there are more of them than pixels: then columns are drawn. */
const sparse = (plot, series, from, to) => (isDense(plot, from, to) ? null : linear(plot, series, from, to));

function drawLines(run, state, name, values, plot) {
  const groups = groupsInSight(plot, run.time);
  drawBands(run, state, name, plot, groups);
  if (values && groups.dense) drawColumns(plot, values, groups, colour('--ink'));
}

/** Shown hypotheses, the one that is followed on top. */
function drawnIn(run, state) {
  return run.byInterest.filter((h) => state.shown.has(h.index)).sort((a, b) => Number(a.index === state.focus) - Number(b.index === state.focus));
}

function drawBands(run, state, name, plot, groups) {
  const shown = drawnIn(run, state);
  const fill = Math.max(0.03, 0.22 / Math.sqrt(Math.max(1, shown.length)));
  for (const hypothesis of shown) {
    const look = lookOf(hypothesis.place);
    const chief = hypothesis.index === state.focus;
    drawBand(plot, band(hypothesis, name), groups, { stroke: colour(look.colour), dash: look.dash, width: chief ? 2 : 1.25, fill: chief ? Math.max(fill, 0.16) : fill, alpha: chief || shown.length < 8 ? 1 : 0.5 });
  }
  for (const id of state.picked) {
    const candidate = run.candidateById.get(id);
    const look = lookOf(run.hypotheses[candidate.hypothesis]?.place ?? 0);
    if (candidate.bounds[name]) drawBand(plot, ownBand(candidate, name), groups, { stroke: colour(look.colour), dash: [], width: 0.9, fill: 0 });
  }
}

/** Alarms as triangles at the edge that was left, and the diagnoses as lines. */
function drawMarks(run, plot, alarms) {
  const { ctx } = plot;
  const { top, height } = plot.bbox;
  const ratio = devicePixelRatio;
  ctx.save();
  clipToPlot(plot);
  ctx.strokeStyle = colour('--alarm');
  ctx.fillStyle = colour('--alarm');
  ctx.lineWidth = ratio;
  ctx.setLineDash([4 * ratio, 3 * ratio]);
  for (const x of spread(plot, run.diagnoses, ratio)) line(ctx, x, top, top + height);
  for (const side of ['high', 'low'])
    for (const x of spread(plot, alarms.filter((alarm) => alarm.side === side), 3 * ratio)) triangle(ctx, x, side === 'high' ? top + 1 : top + height - 1, side === 'high' ? 1 : -1, 5 * ratio);
  ctx.restore();
}

/** Where these are drawn: those in sight, none nearer to the one before than `least` pixels. */
export function spread(plot, marks, least) {
  const result = [];
  const { min, max } = plot.scales.x;
  for (const mark of marks) {
    if (mark.time < min || mark.time > max) continue;
    const x = plot.valToPos(mark.time, 'x', true);
    if (!result.length || x - result.at(-1) >= least) result.push(x);
  }
  return result;
}

function line(ctx, x, from, to) {
  ctx.beginPath();
  ctx.moveTo(x, from);
  ctx.lineTo(x, to);
  ctx.stroke();
}

/** Points up from the upper edge and down from the lower one: that way the measure went out. */
function triangle(ctx, x, edge, direction, size) {
  ctx.beginPath();
  ctx.moveTo(x, edge);
  ctx.lineTo(x - size, edge + direction * size * 1.6);
  ctx.lineTo(x + size, edge + direction * size * 1.6);
  ctx.fill();
}

/**
 * The measures in sight and the bounds of what is shown. Bounds may have grown past use: beside measures
 * they take twice the height of these at most, on either side, and run out of the chart.
 */
function rangeOf(run, state, name, values, [from, to]) {
  const first = stepAt(run.time, from);
  const last = Math.min(run.lastStep, stepAt(run.time, to) + 1);
  const measured = values && extent(values, first, last);
  let all = null;
  const take = (found) => {
    if (found) all = all ? [Math.min(all[0], found[0]), Math.max(all[1], found[1])] : [...found];
  };
  for (const h of drawnIn(run, state)) take(finiteRange(band(h, name), first, last));
  for (const id of state.picked) if (run.candidateById.get(id).bounds[name]) take(finiteRange(ownBand(run.candidateById.get(id), name), first, last));
  if (measured && all) {
    const room = 2 * Math.max(wholeSpan(values), measured[1] - measured[0]) || Infinity;
    all = [Math.max(all[0], measured[0] - room), Math.min(all[1], measured[1] + room)];
  }
  take(measured);
  return padded(all ?? [0, 1]);
}

function padded([low, high]) {
  const margin = high > low ? (high - low) * 0.08 : Math.abs(high) * 0.1 || 1;
  return [low - margin, high + margin];
}

function extent(values, first, last) {
  let low = Infinity;
  let high = -Infinity;
  for (let k = first; k <= last; k++) {
    const value = values[k];
    if (value === null) continue;
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return low <= high ? [low, high] : null;
}

const spans = new WeakMap();
function wholeSpan(values) {
  if (!spans.has(values)) {
    const all = extent(values, 0, values.length - 1);
    spans.set(values, all ? all[1] - all[0] : 0);
  }
  return spans.get(values);
}

/** What stands over a chart: the measure, and the bounds of the first few hypotheses. */
function numbersAt(run, state, name, values, word, step) {
  const parts = [];
  if (values) parts.push(el('span', { class: 'value' }, `${word} `, el('b', null, values[step] === null ? 'missing' : number(values[step]))));
  const bounds = run.byInterest.filter((h) => state.shown.has(h.index)).map((h) => [h, boundsAt(band(h, name), step)]).filter(([, own]) => own);
  for (const [hypothesis, own] of bounds.slice(0, toldUpTo)) parts.push(el('span', { class: 'value' }, badge(hypothesis), ' ', interval(...own)));
  if (bounds.length > toldUpTo) parts.push(el('span', { class: 'value' }, `and ${bounds.length - toldUpTo} more`));
  for (const id of [...state.picked].slice(0, toldUpTo)) {
    const candidate = run.candidateById.get(id);
    const own = candidate.bounds[name] && boundsAt(ownBand(candidate, name), step);
    if (own) parts.push(el('span', { class: 'value' }, `candidate ${id} `, interval(...own)));
  }
  return parts;
}
