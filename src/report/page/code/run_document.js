// The run that the page tells of: read from the page, checked, and indexed once. Everything else reads
// from here; nothing changes it.
import { timeWords } from './format.js';

/** The text of what is wrong, or the indexed run. */
export function readRun(text) {
  if (!text) return 'This page holds no run.';
  let data;
  try {
    data = JSON.parse(text);
  } catch (error) {
    return `The run in this page cannot be read: ${error.message}`;
  }
  if (data.format !== 'tavro-run') return 'What this page holds is no run.';
  if (data.version !== 1) return `The run is of version ${data.version}; this page reads version 1.`;
  return indexed(data);
}

function indexed(data) {
  const run = { ...data, words: timeWords(data.plant.discrete), lastStep: data.time.length - 1 };
  run.hypotheses = data.hypotheses.map((own, index) => ({ ...own, index, candidates: [], failures: [] }));
  for (const candidate of data.candidates) run.hypotheses[candidate.hypothesis]?.candidates.push(candidate);
  for (const diagnosis of data.diagnoses)
    for (const explanation of diagnosis.explanations) run.hypotheses[explanation.hypothesis]?.failures.push(explanation);
  for (const hypothesis of run.hypotheses) hypothesis.failures = joined((hypothesis.moves ?? hypothesis.failures).filter((move) => move.failure));
  run.byInterest = [...run.hypotheses].sort(moreInteresting);
  run.byInterest.forEach((hypothesis, place) => (hypothesis.place = place));
  run.candidateById = new Map(data.candidates.map((candidate) => [candidate.id, candidate]));
  run.historyOf = new Map(data.histories.map((history) => [history.candidate, history]));
  run.alarmsOf = byMeasure(data.alarms);
  run.failing = failingModes(data);
  return run;
}

/** Each failure once, from the earliest to the latest of the dates that were found for it. */
function joined(failures) {
  const once = new Map();
  for (const { component, from, to, earliest, latest } of failures) {
    const key = JSON.stringify([component, from, to]);
    const known = once.get(key) ?? { component, from, to, earliest, latest };
    once.set(key, { ...known, earliest: Math.min(known.earliest, earliest), latest: Math.max(known.latest, latest) });
  }
  return [...once.values()];
}

function byMeasure(alarms) {
  const result = new Map();
  for (const alarm of alarms) {
    if (!result.has(alarm.measure)) result.set(alarm.measure, []);
    result.get(alarm.measure).push(alarm);
  }
  return result;
}

/** What is still followed comes first, then few failures, then the likely. */
function moreInteresting(one, other) {
  return Number(other.alive) - Number(one.alive) || Number(other.agrees ?? true) - Number(one.agrees ?? true) || Number(one.unknown) - Number(other.unknown) || one.rank - other.rank || other.probability - one.probability || one.index - other.index;
}

/** `variable=value` of every mode that somebody entered by a failure. */
function failingModes(data) {
  const failing = new Set();
  const variables = Object.keys(data.plant.modes);
  const add = (component, to) => {
    for (const name of variables) if (name.startsWith(`${component}.`) && data.plant.modes[name].includes(to)) failing.add(`${name}=${to}`);
  };
  for (const diagnosis of data.diagnoses) for (const e of diagnosis.explanations) if (e.failure) add(e.component, e.to);
  for (const history of data.histories) for (const step of history.steps) for (const m of step.moves) if (m.failure) add(m.component, m.to);
  return failing;
}

/** The last step whose time is not after `time`; times grow. */
export function stepAt(time, moment) {
  let low = 0;
  let high = time.length - 1;
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (time[middle] <= moment) low = middle;
    else high = middle - 1;
  }
  return low;
}

/** The step nearest to a moment. */
export function nearestStep(time, moment) {
  const before = stepAt(time, moment);
  const after = Math.min(before + 1, time.length - 1);
  return moment - time[before] <= time[after] - moment ? before : after;
}
