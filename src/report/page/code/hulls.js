// Bounds over time. The band of a hypothesis is the hull of its candidates, step by step: what the
// hypothesis says, whichever of its candidates is true. Bands are computed when a chart first needs them.
// In a band NaN means that nothing was followed, an infinity that there was no bound.

const bands = new Map();

/** The band of one hypothesis for one variable: bounds from step `first` on. */
export function band(hypothesis, variable) {
  const key = `${hypothesis.index}\n${variable}`;
  if (!bands.has(key)) bands.set(key, hull(hypothesis.candidates, variable));
  return bands.get(key);
}

const own = new WeakMap();

/** The band of one candidate alone. */
export function ownBand(candidate, variable) {
  if (!own.has(candidate)) own.set(candidate, new Map());
  const known = own.get(candidate);
  if (!known.has(variable)) known.set(variable, hull([candidate], variable));
  return known.get(variable);
}

function hull(candidates, variable) {
  const those = candidates.filter((candidate) => candidate.bounds[variable]);
  if (!those.length) return { first: 0, lower: new Float64Array(0), upper: new Float64Array(0) };
  let first = Infinity;
  let last = -Infinity;
  for (const c of those) {
    first = Math.min(first, c.first);
    last = Math.max(last, c.last);
  }
  const lower = new Float64Array(last - first + 1).fill(NaN);
  const upper = new Float64Array(last - first + 1).fill(NaN);
  for (const c of those) widen(lower, upper, c, c.bounds[variable], c.first - first);
  return { first, lower, upper };
}

function widen(lower, upper, candidate, bounds, offset) {
  const count = Math.min(bounds.lower.length, candidate.last - candidate.first + 1);
  for (let i = 0; i < count; i++) {
    const low = bounds.lower[i] ?? -Infinity;
    const high = bounds.upper[i] ?? Infinity;
    const k = i + offset;
    if (!(lower[k] <= low)) lower[k] = low;
    if (!(upper[k] >= high)) upper[k] = high;
  }
}

/** The bounds of a band at a step, or null where nothing is followed. */
export function boundsAt(found, step) {
  const k = step - found.first;
  if (k < 0 || k >= found.lower.length || Number.isNaN(found.lower[k])) return null;
  return [found.lower[k], found.upper[k]];
}

/** The least and the greatest finite bound in a range of steps, or null. */
export function finiteRange({ first, lower, upper }, from, to) {
  let low = Infinity;
  let high = -Infinity;
  const end = Math.min(lower.length - 1, to - first);
  for (let k = Math.max(0, from - first); k <= end; k++) {
    if (lower[k] < low && lower[k] > -Infinity) low = lower[k];
    if (upper[k] > high && upper[k] < Infinity) high = upper[k];
  }
  if (low === Infinity && high === -Infinity) return null;
  // With bounds on one side only, the others are where these end.
  return low === Infinity ? [high, high] : high === -Infinity ? [low, low] : [low, high];
}
