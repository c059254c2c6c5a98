// Modes over time, for one hypothesis: stretches of steps in which its candidates are in the same modes.
// Where its candidates differ a stretch holds several values. Before the first of its candidates a
// hypothesis has the modes of its history, as far as that goes back, and before that those of the candidates
// without a failure, from which it came.

import { stepAt } from './run_document.js';

const known = new Map();

/** By mode variable: stretches { from, to, values } in steps, in order, gaps where nothing is known. */
export function lanesOf(run, index) {
  if (!known.has(index)) known.set(index, computed(run, run.hypotheses[index]));
  return known.get(index);
}

function computed(run, hypothesis) {
  const lanes = new Map();
  if (!hypothesis) return lanes;
  const courses = new Map(Object.keys(run.plant.modes).map((name) => [name, []]));
  for (const own of [...hypothesis.candidates.flatMap(stretchesOf), ...before(run, hypothesis)]) if (own.to >= own.from) courses.get(own.name)?.push(own);
  for (const [name, stretches] of courses) lanes.set(name, overlaid(stretches));
  return lanes;
}

/** What one candidate says: { name, value, from, to }. */
function stretchesOf(candidate) {
  const result = [];
  const open = new Map();
  for (const { step, values } of candidate.modes)
    for (const [name, value] of Object.entries(values)) {
      if (open.has(name)) result.push({ ...open.get(name), to: step - 1 });
      open.set(name, { name, value, from: Math.max(step, candidate.first) });
    }
  for (const own of open.values()) result.push({ ...own, to: candidate.last });
  return result.filter((own) => own.to >= own.from);
}

function before(run, hypothesis) {
  const first = hypothesis.candidates.reduce((least, c) => Math.min(least, c.first), Infinity);
  if (first === Infinity || first <= 0) return [];
  const history = hypothesis.candidates.map((c) => run.historyOf.get(c.id)).find(Boolean);
  const modes = (history?.steps ?? []).map(({ time, values }) => ({ step: stepAt(run.time, time), values })).filter(({ step }) => step < first);
  const begin = modes[0]?.step ?? first;
  const origin = run.hypotheses.find((h) => h.rank === 0 && h !== hypothesis);
  const earlier = (origin?.candidates ?? []).flatMap(stretchesOf).map((own) => ({ ...own, to: Math.min(own.to, begin - 1) }));
  return [...earlier, ...stretchesOf({ modes, first: begin, last: first - 1 })];
}

/** Stretches that overlap become stretches beside each other, each with all values that hold there. */
function overlaid(stretches) {
  const events = stretches.flatMap(({ value, from, to }) => [[from, value, 1], [to + 1, value, -1]]).sort((a, b) => a[0] - b[0]);
  const counts = new Map();
  const result = [];
  for (let i = 0; i < events.length; ) {
    const step = events[i][0];
    for (; i < events.length && events[i][0] === step; i++) {
      const [, value, change] = events[i];
      counts.set(value, (counts.get(value) ?? 0) + change);
      if (!counts.get(value)) counts.delete(value);
    }
    append(result, step, events[i]?.[0], [...counts.keys()]);
  }
  return result;
}

function append(result, from, end, values) {
  if (!values.length || end === undefined) return;
  const last = result.at(-1);
  values.sort();
  if (last && last.to === from - 1 && last.values.join() === values.join()) last.to = end - 1;
  else result.push({ from, to: end - 1, values });
}

/** The values at a step, or none. */
export function valuesAt(stretches, step) {
  let low = 0;
  let high = stretches.length - 1;
  while (low <= high) {
    const middle = (low + high) >> 1;
    if (stretches[middle].to < step) low = middle + 1;
    else if (stretches[middle].from > step) high = middle - 1;
    else return stretches[middle].values;
  }
  return [];
}
