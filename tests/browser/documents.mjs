// Documents of runs, made up: what `tavro run --json` would write of days that nobody has to compute.
// They have the form of real ones, of any size, and hold what is rare in real ones: missing measures,
// unbounded bounds, a hundred candidates, a hundred thousand steps, and names that would break a page
// that trusted them. The same arguments give the same document.

/** A small generator of numbers in [0, 1), the same on every machine. */
export function dice(seed) {
  let state = seed >>> 0;
  return () => {
    state = (state + 0x6d2b79f5) >>> 0;
    let t = state;
    t = Math.imul(t ^ (t >>> 15), t | 1);
    t ^= t + Math.imul(t ^ (t >>> 7), t | 61);
    return ((t ^ (t >>> 14)) >>> 0) / 4294967296;
  };
}

const room = {
  name: 'room', file: 'plants/room/room.plant', discrete: false, period: 1,
  inputs: ['a.u'], measures: ['room.xd'], variables: ['room.xd', 'room.x', 'room.xdq'],
  components: ['room', 'thermostat'],
  modes: {
    'room.mode': ['closed', 'open', 'unknown'],
    'thermostat.mode': ['off', 'on', 'stuck_off', 'stuck_on', 'unknown'],
  },
  influences: [
    { name: 'R1.i2', cause: 'room.xd', effect: 'room.x', kind: 'integral', condition: '((room.mode=closed) | (room.mode=open))' },
    { name: 'R1.i4', cause: 'room.xdq', effect: 'room.xd', kind: 'static', condition: '((room.mode=closed))' },
    { name: 'R1.i5', cause: 'room.xdq', effect: 'room.xd', kind: 'static', condition: '((room.mode=open))' },
    { name: 'R1.i6', cause: 'room.x', effect: 'room.xdq', kind: 'static', condition: '((room.mode=closed) | (room.mode=open))' },
    { name: 'T1.i1', cause: 'a.u', effect: 'room.xdq', kind: 'static', condition: '((thermostat.mode=on) | (thermostat.mode=stuck_on))' },
  ],
};

const options = { rules: 'sharp', isolation: 1, threshold: 3, candidates: 100, noise: { '': 0.02 }, measures: 'day.csv', inputs: null, scenario: null };

/** The true day: a room heated on and off, the heater stuck from step `stuck` on. */
function trueRoom(steps, stuck, seed) {
  const roll = dice(seed);
  const day = { time: [], on: [], x: [], xd: [], xdq: [], u: [] };
  let x = 4;
  let on = true;
  for (let k = 0; k < steps; k++) {
    if (k >= stuck) on = true;
    else if (x >= 17) on = false;
    else if (x < 10) on = true;
    const xdq = (on ? 20 : 4) - x;
    const xd = 0.05 * xdq + 0.15 + 0.01 * (roll() - 0.5);
    day.time.push(k * room.period);
    day.on.push(on);
    day.x.push(x);
    day.xdq.push(xdq);
    day.xd.push(xd);
    day.u.push(20);
    x += xd;
  }
  return day;
}

const around = (values, first, last, half, wander) => {
  const lower = [];
  const upper = [];
  for (let k = first; k <= last; k++) {
    const w = half * (1 + 0.4 * Math.sin(k / 7 + wander)) + wander * half * 0.1;
    lower.push(+(values[k] - w).toFixed(5));
    upper.push(+(values[k] + w * 1.1).toFixed(5));
  }
  return { lower, upper };
};

function boundsOf(day, first, last, wander = 0, shift = null) {
  const moved = (values, by) => (shift ? values.map((v, k) => v + by * Math.min(1, Math.max(0, (k - shift.from) / 20)) * shift.sign) : values);
  return {
    'room.xd': around(moved(day.xd, 0.4), first, last, 0.09, wander),
    'room.x': around(moved(day.x, 4), first, last, 0.6, wander),
    'room.xdq': around(moved(day.xdq, 3), first, last, 1.1, wander),
  };
}

const modesOf = (day, first, last, name = (on) => (on ? 'on' : 'off')) => {
  const modes = [];
  for (let k = first; k <= last; k++)
    if (k === first || day.on[k] !== day.on[k - 1])
      modes.push({ step: k, values: k === first ? { 'room.mode': 'closed', 'thermostat.mode': name(day.on[k]) } : { 'thermostat.mode': name(day.on[k]) } });
  return modes;
};

const historyOf = (candidate, day, last, failures = []) => {
  const steps = [];
  let mode = null;
  for (let k = 0; k <= last; k++) {
    const failure = failures.find((f) => f.step === k);
    const stuck = failures.some((f) => f.step <= k);
    const now = failure ? failure.to : stuck ? mode : day.on[k] ? 'on' : 'off';
    const moves = mode !== null && now !== mode
      ? [{ component: 'thermostat', from: mode, to: now, failure: !!failure, unknown: now === 'unknown' }] : [];
    // As in real runs: a history counts its own steps, and moves stand one step before what they lead to.
    if (moves.length) steps.push({ step: steps.length, time: day.time[k], values: { 'room.mode': 'closed', 'thermostat.mode': mode }, moves });
    if (k === 0 || moves.length) steps.push({ step: steps.length, time: day.time[k], values: { 'thermostat.mode': now, ...(k === 0 && { 'room.mode': 'closed' }) }, moves: [] });
    mode = now;
  }
  return { candidate, steps };
};

function document(day, rest) {
  return {
    format: 'tavro-run', version: 1, tavro: '0.1.0', plant: room, run: options,
    outcome: { status: 0, verdict: 'healthy', answer: [], noticed: null, stopped: null, pastUse: [], notes: [] },
    time: day.time, inputs: { 'a.u': day.u }, measures: { 'room.xd': day.xd.map((v) => +v.toFixed(6)) },
    followed: day.time.map(() => 1), alarms: [], diagnoses: [], hypotheses: [], candidates: [], histories: [], ...rest,
  };
}

/** A day on which nothing fails; two candidates part and merge where the thermostat switches. */
export function healthy(steps = 240) {
  const day = trueRoom(steps, Infinity, 1);
  const last = steps - 1;
  const candidates = [];
  const followed = day.time.map(() => 1);
  let id = 0;
  let from = 0;
  const main = (until) => candidates.push({ id: id++, hypothesis: 0, first: from, last: until, alive: until === last, rank: 0, probability: 1, modes: modesOf(day, from, until), bounds: boundsOf(day, from, until) });
  for (let k = 2; k < last - 4; k++)
    if (day.on[k] !== day.on[k - 1]) {
      main(k);
      candidates.push({ id: id++, hypothesis: 0, first: k - 1, last: k + 2, alive: false, rank: 0, probability: 0.5, modes: modesOf(day, k - 1, k + 2, (on) => (on ? 'off' : 'on')), bounds: boundsOf(day, k - 1, k + 2, 2) });
      for (let j = k - 1; j <= k + 2; j++) followed[j] = 2;
      from = k + 1;
    }
  main(last);
  return document(day, {
    followed, candidates,
    outcome: { status: 0, verdict: 'healthy', answer: ['Nothing failed: the measures agree with the plant at every step.'], noticed: null, stopped: null, pastUse: [], notes: ['day.csv: 240 lines are read'] },
    hypotheses: [{ summary: 'nothing failed', rank: 0, probability: 1, first: 0, last, alive: true, unknown: false }],
    histories: [historyOf(candidates.at(-1).id, day, last)],
  });
}

/** The thermostat sticks on at 24; at 27 no candidate is left, and two explanations are found. */
export function explained(steps = 120, { missing = false } = {}) {
  const stuck = 20;
  const noticed = 27;
  const day = trueRoom(steps, stuck, 2);
  const healthyDay = trueRoom(steps, Infinity, 2);
  for (let k = 22; k < steps; k++) healthyDay.xd[k] -= 0.5 * Math.min(1, (k - 21) / 3);
  const last = steps - 1;
  const alarms = [26, 27].map((step) => ({ step, time: step, measure: 'room.xd', side: 'high' }));
  const explanation = (hypothesis, to, earliest, latest, unknown) => ({
    hypothesis, component: 'thermostat', from: 'on', to, time: latest, earliest, latest, rank: 1, failure: true, unknown,
    summary: `thermostat on -> ${to} between ${earliest} and ${latest}`,
  });
  const result = document(day, {
    followed: day.time.map((_, k) => (k < 20 ? 1 : k < noticed ? 2 : 3)),
    alarms,
    diagnoses: [{
      step: noticed, time: noticed, alarms: [alarms[1]], text: '[{T1.i1,0,...}][{R1.i6,1,...}]',
      suspects: [
        [{ influence: 'R1.i4', delay: 0, condition: '((room.mode=closed))' }],
        [{ influence: 'T1.i1', delay: 0, condition: '((thermostat.mode=on))' }, { influence: 'R1.i6', delay: 1, condition: '((room.mode=closed))' }],
      ],
      explanations: [explanation(1, 'stuck_on', 22, 26, false), explanation(2, 'unknown', 20, 26, true)],
    }],
    hypotheses: [
      { summary: 'nothing failed', rank: 0, probability: 0, first: 0, last: noticed - 1, alive: false, unknown: false },
      { summary: 'thermostat on -> stuck_on between 22 and 26', rank: 1, probability: 0.909091, first: 22, last, alive: true, unknown: false },
      { summary: 'thermostat on -> unknown between 20 and 26', rank: 1, probability: 0.0909091, first: 20, last, alive: true, unknown: true },
    ],
    candidates: [
      { id: 0, hypothesis: 0, first: 0, last: 21, alive: false, rank: 0, probability: 1, modes: modesOf(healthyDay, 0, 21), bounds: boundsOf(healthyDay, 0, 21) },
      { id: 1, hypothesis: 0, first: 22, last: noticed - 1, alive: false, rank: 0, probability: 0.5, modes: [{ step: 22, values: { 'room.mode': 'closed', 'thermostat.mode': 'off' } }], bounds: boundsOf(healthyDay, 22, noticed - 1) },
      { id: 2, hypothesis: 0, first: 20, last: noticed - 1, alive: false, rank: 0, probability: 0.5, modes: [{ step: 20, values: { 'room.mode': 'closed', 'thermostat.mode': 'on' } }, { step: 24, values: { 'thermostat.mode': 'off' } }], bounds: boundsOf(healthyDay, 20, noticed - 1, 1) },
      { id: 3, hypothesis: 1, first: 22, last, alive: true, rank: 1, probability: 0.6, modes: [{ step: 22, values: { 'room.mode': 'closed', 'thermostat.mode': 'on' } }, { step: 24, values: { 'thermostat.mode': 'stuck_on' } }], bounds: boundsOf(day, 22, last, 1.5) },
      { id: 4, hypothesis: 1, first: 22, last, alive: true, rank: 1, probability: 0.3, modes: [{ step: 22, values: { 'room.mode': 'closed', 'thermostat.mode': 'stuck_on' } }], bounds: boundsOf(day, 22, last) },
      { id: 5, hypothesis: 2, first: 20, last, alive: true, rank: 1, probability: 0.09, modes: [{ step: 20, values: { 'room.mode': 'closed', 'thermostat.mode': 'unknown' } }], bounds: boundsOf(day, 20, last, 12) },
    ],
    histories: [
      historyOf(3, day, last, [{ step: 24, to: 'stuck_on' }]),
      historyOf(4, day, last, [{ step: 22, to: 'stuck_on' }]),
      historyOf(5, day, last, [{ step: 20, to: 'unknown' }]),
    ],
    outcome: {
      status: 10, verdict: 'explained',
      answer: ['The measures left the bounds at 27 s.', 'Most likely the thermostat got stuck on between 22 and 26 s.', 'An unknown mode of the thermostat would explain it, too.'],
      noticed: { step: noticed, time: noticed, alarms: [{ measure: 'room.xd', side: 'high' }] },
      stopped: null, pastUse: [{ measure: 'room.xd', time: 112 }], notes: ['day.csv: 2 values are missing', 'day.csv: after line 121 its last line stands'],
    },
  });
  const wide = result.candidates.at(-1).bounds['room.xdq'];
  for (let k = 10; k < wide.lower.length; k++) wide.upper[k] = null;
  for (let k = 20; k < 30; k++) wide.lower[k] = null;
  if (missing) for (let k = 40; k < 60; k++) result.measures['room.xd'][k] = null;
  return result;
}

/** No candidate is left and no explanation is found; the run goes on without one. */
export function unexplained(steps = 60) {
  const base = explained(steps);
  const last = 26;
  return {
    ...base,
    hypotheses: [{ ...base.hypotheses[0], last }],
    candidates: base.candidates.filter((c) => c.hypothesis === 0),
    diagnoses: [{ ...base.diagnoses[0], explanations: [] }],
    histories: [],
    followed: base.time.map((_, k) => (k <= last ? 2 : 0)),
    outcome: { ...base.outcome, status: 11, verdict: 'unexplained', answer: ['The measures left the bounds at 27 s, and nothing that the plant knows explains it.'], pastUse: [] },
  };
}

/** Interrupted on the way. */
export function stopped(steps = 40) {
  const base = healthy(steps);
  return { ...base, outcome: { ...base.outcome, status: 12, verdict: 'stopped', stopped: 'interrupted', answer: ['The run was interrupted at 39 s.'] } };
}

/** A plant without numbers: a pump and two valves, by commands and observations. */
export function discrete() {
  const modes = { 'pump.mode': ['off', 'on', 'broken'], 'valve1.mode': ['open', 'closed', 'stuck'], 'valve2.mode': ['open', 'closed', 'stuck'] };
  const time = [0, 1, 2, 3, 4];
  const start = { 'pump.mode': 'off', 'valve1.mode': 'closed', 'valve2.mode': 'closed' };
  const running = { ...start, 'pump.mode': 'on' };
  const candidate = (id, hypothesis, failure, first = 0) => ({
    id, hypothesis, first, last: 4, alive: true, rank: failure ? 1 : 0, probability: failure ? 0.5 : 0,
    modes: [{ step: first, values: start }, { step: 1, values: { 'pump.mode': 'on' } }, { step: 3, values: failure }], bounds: {},
  });
  const history = (id, component, to, values) => ({ candidate: id, steps: [
    { step: 0, time: 0, values: start, moves: [] },
    { step: 1, time: 1, values: running, moves: [{ component: 'pump', from: 'off', to: 'on', failure: false, unknown: false }] },
    { step: 3, time: 3, values: { ...running, ...values }, moves: [{ component, from: component === 'pump' ? 'on' : 'closed', to, failure: true, unknown: false }] },
  ] });
  return {
    format: 'tavro-run', version: 1, tavro: '0.1.0',
    plant: { name: 'line', file: 'plants/line/line.plant', discrete: true, period: 1, inputs: [], measures: [], variables: [], components: ['pump', 'valve1', 'valve2'], modes, influences: [] },
    run: { ...options, noise: {}, measures: null, scenario: 'day.scenario' },
    outcome: { status: 10, verdict: 'explained', answer: ['The pump broke at 3, or valve1 is stuck.'], noticed: { step: 3, time: 3, alarms: [] }, stopped: null, pastUse: [], notes: [] },
    time, inputs: {}, measures: {}, followed: [1, 1, 1, 2, 2], alarms: [],
    diagnoses: [{ step: 3, time: 3, alarms: [], suspects: [], text: '', explanations: [
      { hypothesis: 0, component: 'pump', from: 'on', to: 'broken', time: 3, earliest: 3, latest: 3, rank: 1, failure: true, unknown: false, summary: 'pump on -> broken at 3' },
      { hypothesis: 1, component: 'valve1', from: 'closed', to: 'stuck', time: 3, earliest: 3, latest: 3, rank: 1, failure: true, unknown: false, summary: 'valve1 closed -> stuck at 3' }] }],
    hypotheses: [
      { summary: 'pump on -> broken at 3', rank: 1, probability: 0.5, first: 0, last: 4, alive: true, unknown: false },
      { summary: 'valve1 closed -> stuck at 3', rank: 1, probability: 0.5, first: 0, last: 4, alive: true, unknown: false }],
    candidates: [candidate(0, 0, { 'pump.mode': 'broken' }), candidate(1, 1, { 'valve1.mode': 'stuck' })],
    histories: [history(0, 'pump', 'broken', { 'pump.mode': 'broken' }), history(1, 'valve1', 'stuck', { 'valve1.mode': 'stuck' })],
  };
}

/** As many hypotheses as there are live candidates, and thousands of short ones before them. */
export function crowd(steps = 300, alive = 100, short = 3000) {
  const base = explained(steps);
  const last = steps - 1;
  const day = trueRoom(steps, 20, 2);
  const roll = dice(7);
  const hypotheses = [base.hypotheses[0]];
  const candidates = [...base.candidates.filter((c) => c.hypothesis === 0)];
  const explanations = [];
  for (let i = 0; i < alive; i++) {
    const from = 10 + Math.floor(roll() * 14);
    const summary = `valve${i + 1} closed -> stuck between ${from} and 26`;
    hypotheses.push({ summary, rank: 1 + (i % 3), probability: 0.5 / (i + 1), first: from, last, alive: true, unknown: i % 9 === 8 });
    explanations.push({ hypothesis: i + 1, component: `valve${i + 1}`, from: 'closed', to: 'stuck', time: 24, earliest: from, latest: 26, rank: 1, failure: true, unknown: false, summary });
    candidates.push({ id: candidates.length, hypothesis: i + 1, first: from, last, alive: true, rank: 1 + (i % 3), probability: 0.5 / (i + 1), modes: [{ step: from, values: { 'room.mode': 'closed', 'thermostat.mode': i % 2 ? 'stuck_on' : 'unknown' } }], bounds: boundsOf(day, from, last, roll() * 6, { from: 30, sign: roll() * 2 - 1 }) });
  }
  for (let i = 0; i < short; i++) {
    const from = 26 + Math.floor(roll() * (steps - 36));
    candidates.push({ id: candidates.length, hypothesis: 1 + (i % alive), first: from, last: from + 4, alive: false, rank: 1, probability: 0.001, modes: [{ step: from, values: { 'thermostat.mode': 'on' } }], bounds: boundsOf(day, from, from + 4, 1) });
  }
  return { ...base, hypotheses, candidates, followed: day.time.map((_, k) => (k < 24 ? 2 : alive)), diagnoses: [{ ...base.diagnoses[0], explanations }],
    histories: candidates.filter((c) => c.alive).map((c) => historyOf(c.id, day, last, [{ step: 24, to: 'stuck_on' }])) };
}

/** A long day. */
export const long = (steps = 100000) => healthy(steps);

/** A plant of many variables in a chain with shortcuts; few of them are measured. */
export function big(variables = 150, steps = 200) {
  const base = explained(steps);
  const names = Array.from({ length: variables }, (_, i) => `tank${i}.level`);
  const influences = names.slice(1).map((effect, i) => ({ name: `K${i + 1}.i1`, cause: names[i], effect, kind: i % 3 ? 'static' : 'integral', condition: '((pump.mode=ok))' }));
  for (let i = 0; i + 7 < variables; i += 5) influences.push({ name: `K${i}.i2`, cause: names[i], effect: names[i + 7], kind: 'delay', condition: '' });
  const measures = [names[10], names[80 % variables]];
  const rename = (bounds) => Object.fromEntries(names.map((n, i) => [n, Object.values(bounds)[i % 3]]));
  return {
    ...base,
    plant: { ...base.plant, name: 'cascade', variables: names, measures, inputs: [], influences },
    inputs: {}, measures: { [measures[0]]: base.measures['room.xd'], [measures[1]]: base.measures['room.xd'] },
    alarms: base.alarms.map((a) => ({ ...a, measure: measures[0] })),
    candidates: base.candidates.map((c) => ({ ...c, bounds: rename(c.bounds) })),
    diagnoses: base.diagnoses.map((d) => ({ ...d, alarms: [{ ...d.alarms[0], measure: measures[0] }], suspects: [[{ influence: 'K8.i1', delay: 0, condition: '((pump.mode=ok))' }], [{ influence: 'K10.i1', delay: 2, condition: '' }]] })),
    outcome: { ...base.outcome, noticed: { ...base.outcome.noticed, alarms: [{ measure: measures[0], side: 'high' }] } },
  };
}

/** Names that would end a script, open an element or leave an attribute, were they trusted. */
export function hostile() {
  const text = JSON.stringify(explained(60))
    .replaceAll('thermostat', '<b>&amp;\\"</script><script>alert(1)</script>')
    .replaceAll('room.xd', `x<img src=x onerror=alert(2)>'\\u2028.${'d'.repeat(90)}`);
  return JSON.parse(text);
}

export const documents = { healthy, explained, unexplained, stopped, discrete, crowd, long, big, hostile, missing: () => explained(120, { missing: true }) };
