// The time line: the modes of the hypothesis that is followed, a lane each; the alarms, a lane per measure;
// the diagnoses; and how many candidates were followed.
import { el, freshId, section } from './dom.js';
import { arrows, plural } from './format.js';
import { clipToPlot } from './bands_drawing.js';
import { lanesOf, valuesAt } from './lanes.js';
import { canvasFont, colour } from './look.js';
import { makePlot } from './plot.js';
import { label } from './badge.js';
import { spread } from './charts.js';
import { stepAt } from './run_document.js';

const laneHeight = 38;
const barTop = 17;
const barHeight = 17;
const axisHeight = 38;
const lanesUpTo = 12;

export function timelineSection(run, store) {
  const names = Object.keys(run.plant.modes);
  const alarmed = [...run.alarmsOf.keys()];
  const readout = el('span', { class: 'readout', id: 'modes-at-cursor' });
  const lanes = lanesShown(run, names);
  const rows = [...lanes.map((name) => modeRow(run, store, name)), ...alarmed.map((measure) => alarmRow(run, measure)), run.diagnoses.length && diagnosisRow(run), followedRow(run)].filter(Boolean);
  const plot = makePlot(run, store, {
    height: rows.length * laneHeight + axisHeight, label: 'Modes, alarms and diagnoses over time',
    data: [new Array(run.time.length).fill(null)], series: [{ auto: false, paths: () => null, points: { show: false } }],
    over: (chart) => rows.forEach((row, place) => drawRow(chart, row, place)),
    atCursor: (step) => readout.replaceChildren(...modesAt(run, store.state, lanes, step)),
  });
  return section('timeline', 'Time line', followedChoice(run, store),
    el('figure', { class: 'chart lanes' }, el('figcaption', null, readout), plot),
    names.length > lanes.length && el('p', { class: 'hint' }, `${plural(names.length - lanes.length, 'mode')} that never changed in any history ${names.length - lanes.length === 1 ? 'is' : 'are'} left out.`),
    diagnosesList(run, store));
}

/** All modes of a small plant; of a large one those that some candidate or history changed. */
function lanesShown(run, names) {
  if (names.length <= lanesUpTo) return names;
  const seen = new Map();
  const moved = new Set();
  const look = (values) => {
    for (const [name, value] of Object.entries(values)) {
      if (seen.has(name) && seen.get(name) !== value) moved.add(name);
      seen.set(name, value);
    }
  };
  for (const candidate of run.candidates) for (const { values } of candidate.modes) look(values);
  for (const history of run.histories) for (const { values } of history.steps) look(values);
  return names.filter((name) => moved.has(name));
}

function followedChoice(run, store) {
  if (run.hypotheses.length < 2) return null;
  const id = freshId('followed');
  const select = el('select', { id, onchange: () => store.follow(Number(select.value)) },
    run.byInterest.map((h) => el('option', { value: h.index }, `${label(h)}  ${arrows(h.summary)}${h.alive ? '' : ' (not followed to the end)'}`)));
  const update = ({ focus }) => (select.value = String(focus));
  store.on('choice', update);
  update(store.state);
  return el('p', { class: 'field' }, el('label', { for: id }, 'Modes of '), select);
}

function modesAt(run, { focus }, names, step) {
  const lanes = lanesOf(run, focus);
  return names.map((name) => {
    const values = valuesAt(lanes.get(name) ?? [], step);
    return el('span', { class: 'value' }, `${name} `, el('b', null, values.length ? values.join(' or ') : 'not followed'));
  });
}

// A row: its name, and what draws it on a chart between two heights.

function modeRow(run, store, name) {
  return { name, draw: (chart, top, height) => drawStretches(chart, run, name, lanesOf(run, store.state.focus).get(name) ?? [], top, height) };
}

function alarmRow(run, measure) {
  const alarms = run.alarmsOf.get(measure);
  return { name: `alarms of ${measure}`, draw: (chart, top, height) => {
    chart.ctx.fillStyle = colour('--alarm');
    for (const side of ['high', 'low'])
      for (const x of spread(chart, alarms.filter((a) => a.side === side), 4 * devicePixelRatio)) drawAlarm(chart.ctx, x, top, height, side);
  } };
}

function drawAlarm(ctx, x, top, height, side) {
  const [tip, base] = side === 'high' ? [top, top + height * 0.7] : [top + height, top + height * 0.3];
  ctx.beginPath();
  ctx.moveTo(x, tip);
  ctx.lineTo(x - height * 0.35, base);
  ctx.lineTo(x + height * 0.35, base);
  ctx.fill();
}

function diagnosisRow(run) {
  return { name: 'diagnoses', draw: (chart, top, height) => {
    const { ctx } = chart;
    ctx.fillStyle = colour('--accent');
    for (const x of spread(chart, run.diagnoses, 6 * devicePixelRatio)) {
      ctx.beginPath();
      ctx.moveTo(x, top);
      ctx.lineTo(x + height / 2, top + height / 2);
      ctx.lineTo(x, top + height);
      ctx.lineTo(x - height / 2, top + height / 2);
      ctx.fill();
    }
  } };
}

function followedRow(run) {
  let most = 1;
  for (const count of run.followed) most = Math.max(most, count);
  return { name: `candidates followed, ${most} at most`, draw: (chart, top, height) => drawCounts(chart, run, most, top, height) };
}

function drawCounts(chart, run, most, top, height) {
  const { ctx, bbox } = chart;
  const { min, max } = chart.scales.x;
  ctx.fillStyle = colour('--muted');
  ctx.globalAlpha = 0.55;
  const first = stepAt(run.time, min);
  const last = stepAt(run.time, max);
  const scale = bbox.width / (max - min);
  for (let k = first; k <= last; ) {
    const x = Math.floor((run.time[k] - min) * scale);
    let count = 0;
    let end = k;
    while (end <= last && (end === k || Math.floor((run.time[end] - min) * scale) === x || run.followed[end] === count)) count = Math.max(count, run.followed[end++]);
    const until = end <= run.lastStep ? Math.floor((run.time[end] - min) * scale) : bbox.width;
    const tall = (height * count) / most;
    ctx.fillRect(Math.round(bbox.left) + x, Math.round(top + height - tall), Math.max(1, until - x), Math.round(tall));
    k = end;
  }
}

function drawRow(chart, row, place) {
  const { ctx, bbox } = chart;
  const ratio = devicePixelRatio;
  const top = bbox.top + place * laneHeight * ratio;
  ctx.save();
  clipToPlot(chart);
  ctx.font = canvasFont(12 * ratio, 500);
  ctx.fillStyle = colour('--muted');
  ctx.textBaseline = 'middle';
  ctx.textAlign = 'left';
  ctx.fillText(row.name, bbox.left + 2 * ratio, top + 9 * ratio);
  row.draw(chart, top + barTop * ratio, barHeight * ratio);
  ctx.restore();
}

function drawStretches(chart, run, name, stretches, top, height) {
  const { bbox } = chart;
  const { min, max } = chart.scales.x;
  const place = (time) => bbox.left + ((time - min) / (max - min)) * bbox.width;
  const period = run.plant.period || 1;
  let drawnTo = -Infinity;
  for (const { from, to, values } of stretches) {
    const start = run.time[from];
    const end = run.time[to + 1] ?? run.time[to] + (run.plant.discrete ? 0 : period);
    if (end < min || start > max) continue;
    const left = Math.max(bbox.left, place(start));
    const right = Math.min(bbox.left + bbox.width, Math.max(place(end), left + devicePixelRatio));
    if (right - drawnTo < 0.75) continue; // denser than pixels
    drawnTo = right;
    drawStretch(chart.ctx, run, name, values, left, right, top, height);
  }
}

function drawStretch(ctx, run, name, values, left, right, top, height) {
  const failed = values.some((value) => run.failing.has(`${name}=${value}`));
  const width = right - left;
  ctx.fillStyle = failed ? colour('--failed') : colour(`--mode${Math.max(0, run.plant.modes[name].indexOf(values[0])) % 4}`);
  ctx.fillRect(left, top, width - (width > 4 ? 1 : 0), height);
  if (failed || values.length > 1) hatch(ctx, left, top, width, height, failed ? '--failed-line' : '--muted');
  const ratio = devicePixelRatio;
  const text = values.join(' or ');
  ctx.font = canvasFont(11.5 * ratio, failed ? 600 : 500);
  const wide = ctx.measureText(text).width;
  if (wide + 8 * ratio > width) return;
  if (failed || values.length > 1) {
    ctx.fillStyle = colour(failed ? '--failed' : '--mode0');
    ctx.fillRect(left + 2 * ratio, top + ratio, wide + 5 * ratio, height - 2 * ratio);
  }
  ctx.fillStyle = colour('--ink');
  ctx.fillText(text, left + 4 * ratio, top + height / 2 + ratio * 0.5);
}

/** Slanted lines, for what should not be told by colour alone. */
function hatch(ctx, left, top, width, height, line) {
  const gap = 6 * devicePixelRatio;
  ctx.save();
  ctx.beginPath();
  ctx.rect(left, top, width - 1, height);
  ctx.clip();
  ctx.strokeStyle = colour(line);
  ctx.lineWidth = devicePixelRatio;
  ctx.beginPath();
  for (let x = left - height; x < left + width; x += gap) {
    ctx.moveTo(x, top + height);
    ctx.lineTo(x + height, top);
  }
  ctx.stroke();
  ctx.restore();
}

const diagnosesUpTo = 12;

function diagnosesList(run, store) {
  if (!run.diagnoses.length) return null;
  const go = (diagnosis, index) => () => {
    store.chooseDiagnosis(index);
    store.setCursor(diagnosis.step);
    const half = 20 * (run.plant.period || 1);
    if (!run.plant.discrete) store.setRange(diagnosis.time - half, diagnosis.time + half);
  };
  const told = (d) => (d.explanations.length ? plural(new Set(d.explanations.map((e) => e.hypothesis)).size, 'explanation') : 'nothing explains it');
  const rest = run.diagnoses.length - diagnosesUpTo;
  return el('div', { class: 'diagnoses' }, el('h3', null, 'Diagnoses'),
    el('ul', { class: 'plain-list' }, run.diagnoses.slice(0, diagnosesUpTo).map((d, index) => el('li', null,
      el('button', { type: 'button', class: 'plain', onclick: go(d, index) }, run.words.at(d.time)), ' ',
      d.alarms.length ? `${d.alarms.map((a) => `${a.measure} too ${a.side}`).join(', ')}: ` : '', told(d), d.datesCut ? '; earlier dates were not all tried' : ''))),
    rest > 0 && el('p', { class: 'hint' }, `and ${plural(rest, 'later one')}; all can be chosen at the causal graph.`));
}
