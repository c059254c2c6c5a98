// Numbers and times as a reader sees them. What stands at the cursor is rounded to six digits and to
// nothing else; times are in seconds, those of a discrete plant are steps.

/** A number of the data in six significant digits; null is what the run did not know. */
export const number = (value) => (value === null || value === undefined ? 'none' : String(Number(value.toPrecision(6))));

/** A bound: null, and what stands for it in a hull, is no bound at all. */
const bound = (value, side) => (Number.isFinite(value) ? number(value) : side < 0 ? '−∞' : '∞');

export const interval = (lower, upper) => `[${bound(lower, -1)}, ${bound(upper, 1)}]`;

/** A part of 1 as per cent, with two digits that mean something. */
export function percent(part) {
  if (part >= 0.9995) return part === 1 ? '100 %' : '> 99.9 %';
  if (part < 0.0005) return part === 0 ? '0 %' : '< 0.1 %';
  return `${Number((part * 100).toPrecision(part >= 0.995 ? 3 : 2))} %`;
}

/** Transitions are told with `->`; an arrow reads better. */
export const arrows = (text) => text.replaceAll(' -> ', ' → ');

/** A condition without brackets around single atoms, or around all of it, and with its signs as words. */
export function bare(condition) {
  let text = condition;
  for (let before = null; before !== text; ) {
    before = text;
    text = text.replace(/\(([^()&|]*)\)/g, '$1');
  }
  return unwrapped(text).replaceAll(' | ', ' or ').replaceAll(' & ', ' and ');
}

/** Without the brackets that hold the whole text. */
function unwrapped(text) {
  if (text[0] !== '(' || text.at(-1) !== ')') return text;
  const inner = text.slice(1, -1);
  let depth = 0;
  for (const c of inner) {
    if (c === '(') depth++;
    if (c === ')' && --depth < 0) return text;
  }
  return unwrapped(inner);
}

/** A summary without the dates at its end, for where these stand beside it. */
export const undated = (summary) => summary.replace(/ (at \S+|between \S+ and \S+)$/, '');

export const plural = (count, one, many = `${one}s`) => `${count.toLocaleString('en')} ${count === 1 ? one : many}`;

/** How the times of this run are told. */
export const timeWords = (discrete) => ({
  at: (time) => (discrete ? `step ${number(time)}` : `${number(time)} s`),
  between: (from, to) => {
    if (from === to) return discrete ? `at step ${number(from)}` : `at ${number(from)} s`;
    return discrete ? `between steps ${number(from)} and ${number(to)}` : `between ${number(from)} s and ${number(to)} s`;
  },
  long: (seconds) => (discrete ? '' : spelled(seconds)),
});

/** Seconds as hours and minutes, once there are minutes. */
function spelled(seconds) {
  if (seconds < 120) return '';
  const minutes = Math.round(seconds / 60);
  const [days, hours] = [Math.floor(minutes / 1440), Math.floor(minutes / 60) % 24];
  const parts = [days && `${days} d`, hours && `${hours} h`, minutes % 60 && `${minutes % 60} min`];
  return parts.filter(Boolean).join(' ');
}
