// What the reader has chosen: the range of time that all charts share, the step of the cursor, the
// hypotheses and candidates that are drawn, and the one whose modes the time line shows. Parts of the
// page listen; they are told at most once per frame, whatever changed in it.

const shownAtFirst = 5;

export function makeStore(run) {
  const listeners = new Map();
  const changed = new Set();
  let waiting = false;
  const whole = [run.time[0] ?? 0, run.time[run.lastStep] ?? 1];
  if (whole[0] === whole[1]) whole[1] += 1;

  const state = {
    whole,
    range: [...whole],
    cursor: run.outcome.noticed?.step ?? run.lastStep,
    shown: new Set(firstShown(run)),
    picked: new Set(),
    focus: run.byInterest[0]?.index ?? -1,
    diagnosis: Math.max(0, run.diagnoses.length - 1),
  };

  function tell() {
    waiting = false;
    const topics = [...changed];
    changed.clear();
    for (const topic of topics) for (const listener of listeners.get(topic) ?? []) listener(state);
  }

  function touch(topic) {
    changed.add(topic);
    if (waiting) return;
    waiting = true;
    requestAnimationFrame(tell);
  }

  return {
    state,
    on(topics, listener) {
      for (const topic of topics.split(' ')) {
        if (!listeners.has(topic)) listeners.set(topic, []);
        listeners.get(topic).push(listener);
      }
    },
    /** Topics: range, cursor, choice (shown, picked, focus), diagnosis, look. */
    touch,
    setRange(from, to) {
      const next = fitted(from, to, whole, run);
      if (next[0] === state.range[0] && next[1] === state.range[1]) return;
      state.range = next;
      touch('range');
    },
    pan(part) {
      const [from, to] = state.range;
      this.setRange(from + part * (to - from), to + part * (to - from));
    },
    /** Zooms about the cursor while it is in sight, else about the middle. */
    zoom(factor, about) {
      const [from, to] = state.range;
      const cursor = run.time[state.cursor];
      const still = about ?? (cursor >= from && cursor <= to ? cursor : (from + to) / 2);
      this.setRange(still - (still - from) * factor, still + (to - still) * factor);
    },
    reset() {
      this.setRange(...whole);
    },
    setCursor(step) {
      const next = Math.min(run.lastStep, Math.max(0, step));
      if (next === state.cursor) return;
      state.cursor = next;
      touch('cursor');
    },
    show(index, on = !state.shown.has(index)) {
      if (on) state.shown.add(index);
      else state.shown.delete(index);
      touch('choice');
    },
    showOnly(indices) {
      state.shown = new Set(indices);
      touch('choice');
    },
    pick(id, on = !state.picked.has(id)) {
      if (on) state.picked.add(id);
      else state.picked.delete(id);
      touch('choice');
    },
    /** The time line follows this one, and the charts show it. */
    follow(index) {
      state.focus = index;
      state.shown.add(index);
      touch('choice');
    },
    chooseDiagnosis(index) {
      state.diagnosis = index;
      touch('diagnosis');
    },
  };
}

/** What is followed at the end, the likeliest of it, and where the run began. */
function firstShown(run) {
  const chosen = run.byInterest.filter((h) => h.alive).slice(0, shownAtFirst).map((h) => h.index);
  if (run.hypotheses.length && chosen.length < shownAtFirst) chosen.push(0);
  return chosen;
}

/** Keeps a range inside of the run, and at least two steps wide. */
function fitted(from, to, whole, run) {
  const least = Math.min(whole[1] - whole[0], 2 * (run.plant.period || 1));
  const width = Math.min(whole[1] - whole[0], Math.max(least, to - from));
  const middle = (from + to) / 2;
  const start = Math.min(whole[1] - width, Math.max(whole[0], to - from < least ? middle - width / 2 : from));
  return [start, start + width];
}
