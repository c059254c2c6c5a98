// The sign of a hypothesis wherever it is spoken of: its number, in its colour, with its line style.
import { svg, el } from './dom.js';
import { lookOf } from './look.js';

/** Hypotheses are counted from 1 for readers. */
export const label = (hypothesis) => String(hypothesis.index + 1);

export function badge(hypothesis) {
  const look = lookOf(hypothesis.place);
  return el('span', { class: 'badge', title: hypothesis.summary, style: `--own: var(${look.colour})` },
    svg('svg', { viewBox: '0 0 18 10', width: 18, height: 10, 'aria-hidden': 'true' },
      svg('line', { x1: 0, x2: 18, y1: 5, y2: 5, stroke: 'currentColor', 'stroke-width': 2.5, 'stroke-dasharray': look.dash.join(' ') })),
    label(hypothesis));
}
