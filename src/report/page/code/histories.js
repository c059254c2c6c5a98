// The histories of the candidates that were followed to the end, as a graph: from left to right what
// changed and when. Histories that begin alike are one line until they part. Steps at which nothing changes
// are left out; failures are marked.
import { el, section, svg } from './dom.js';
import { arrows, plural } from './format.js';
import { canvasFont, lookOf } from './look.js';
import { label } from './badge.js';

const shownAtFirst = 12;
const box = { least: 110, most: 270, line: 17, gapX: 46, gapY: 14, pad: 10 };
const columnsUpTo = 60; // what a history has beyond that is told, not drawn

export function historiesSection(run) {
  if (!run.histories.length) return null;
  const ordered = [...run.histories].sort((a, b) => placeOf(run, a) - placeOf(run, b));
  const frame = el('div', { class: 'graph-frame', tabindex: '0', role: 'region', 'aria-label': 'Histories' });
  const draw = (count) => frame.replaceChildren(picture(run, ordered.slice(0, count)));
  draw(shownAtFirst);
  const rest = ordered.length - shownAtFirst;
  const more = rest > 0 && el('button', { type: 'button', class: 'plain no-print', onclick: (event) => { draw(ordered.length); event.target.remove(); } }, `Show the other ${rest}, too`);
  return section('histories', 'Histories', el('p', { class: 'hint' }, 'How each candidate came to its modes, from left to right; failures have a thick border and a mark.'), frame, more);
}

const placeOf = (run, history) => run.hypotheses[run.candidateById.get(history.candidate)?.hypothesis]?.place ?? Infinity;

/**
 * What changed and when. A history counts steps of its own: one tells moves, and the next the modes that they
 * led to, which belong to the moves whatever time stands at them.
 */
function eventsOf(history) {
  const events = [];
  let before = {};
  for (const { time, values, moves } of history.steps) {
    const changed = Object.entries(values).filter(([name, value]) => before[name] !== value);
    before = { ...before, ...values };
    const last = events.at(-1);
    const own = changed.filter(([name, value]) => !last?.moves.some((m) => name.startsWith(`${m.component}.`) && m.to === value));
    if (last && last.time === time) {
      last.changed.push(...own);
      last.moves.push(...moves);
    } else if (own.length || moves.length) events.push({ time, changed: own, moves: [...moves] });
  }
  return events;
}

/** A tree of events: equal beginnings are shared. */
function treeOf(run, histories) {
  const root = { children: [], depth: -1 };
  for (const history of histories) {
    let node = root;
    const events = eventsOf(history);
    const left = events.length - columnsUpTo;
    for (const event of left > 0 ? [events[0], ...events.slice(left + 1)] : events) node = child(node, event);
    node.ends = [...(node.ends ?? []), { history, hypothesis: run.hypotheses[run.candidateById.get(history.candidate)?.hypothesis], left }];
  }
  return root;
}

function child(node, event) {
  const key = JSON.stringify([event.time, event.changed, event.moves]);
  let found = node.children.find((c) => c.key === key);
  if (!found) node.children.push((found = { key, event, children: [], depth: node.depth + 1 }));
  return found;
}

function textOf(run, event) {
  const lines = [run.words.at(event.time)];
  for (const move of event.moves.slice(0, 3)) lines.push(`${move.failure ? '✕ ' : ''}${move.component}: ${arrows(`${move.from} -> ${move.to}`)}`);
  const moved = new Set(event.moves.map((m) => m.component));
  const rest = event.changed.filter(([name]) => !moved.has(name.slice(0, name.lastIndexOf('.'))));
  for (const [name, value] of rest.slice(0, 4)) lines.push(`${name} = ${value}`);
  if (rest.length > 4) lines.push(`and ${rest.length - 4} more`);
  return lines;
}

const ruler = document.createElement('canvas').getContext('2d');
function widthOf(text) {
  ruler.font = canvasFont(12.5, 600);
  return ruler.measureText(text).width;
}

/** Writes the lines of every node, and makes each column as wide as the longest of its lines. */
function columnsOf(run, root) {
  const columns = [];
  const visit = (node) => {
    node.lines = textOf(run, node.event).map(shortened);
    const width = Math.min(box.most, Math.max(box.least, ...node.lines.map((line) => widthOf(line) + 2 * box.pad)));
    columns[node.depth] = { width: Math.max(columns[node.depth]?.width ?? 0, width) };
    node.children.forEach(visit);
  };
  root.children.forEach(visit);
  let x = 4;
  for (const column of columns) {
    column.x = x;
    x += column.width + box.gapX;
  }
  return columns;
}

/** Gives every node its place: its column by depth, its row beside its first child. */
function place(node, columns, top) {
  let y = top;
  for (const next of node.children) y = place(next, columns, y);
  if (node.depth < 0) return y;
  node.height = node.lines.length * box.line + 2 * box.pad;
  node.width = columns[node.depth].width;
  node.x = columns[node.depth].x;
  node.y = top;
  const ends = (node.ends?.length ?? 0) * 20;
  return Math.max(y, top + Math.max(node.height, ends && !node.children.length ? ends : 0) + box.gapY);
}

function picture(run, histories) {
  const root = treeOf(run, histories);
  const height = Math.max(60, place(root, columnsOf(run, root), 4));
  const parts = [];
  let width = 0;
  const visit = (node) => {
    for (const next of node.children) {
      if (node.depth >= 0) parts.push(link(node, next));
      visit(next);
    }
    if (node.depth < 0) return;
    const ends = endsOf(node);
    width = Math.max(width, node.x + node.width + 10, ...ends.map((end) => end.right));
    parts.push(drawn(node), ends.map((end) => end.sign));
  };
  visit(root);
  return svg('svg', { class: 'graph', viewBox: `0 0 ${width} ${height}`, width, height, style: `min-width: ${width * 0.8}px`, role: 'img', 'aria-label': spoken(run, histories) }, parts);
}

const spoken = (run, histories) => `Histories. ${histories.slice(0, 5).map((h) => eventsOf(h).slice(-5).map((e) => textOf(run, e).join(', ')).join('; then ')).join('. ')}`;

function link(from, to) {
  const x1 = from.x + from.width;
  const y1 = from.y + 16;
  const y2 = to.y + 16;
  const middle = x1 + box.gapX / 2;
  const fails = to.event.moves.some((m) => m.failure);
  return svg('path', { class: fails ? 'edge lit' : 'edge', d: `M${x1} ${y1}C${middle} ${y1} ${middle} ${y2} ${to.x} ${y2}` });
}

function drawn(node) {
  const fails = node.event.moves.some((m) => m.failure);
  return svg('g', { class: `node history${fails ? ' failure' : ''}`, 'data-time': node.event.time },
    svg('title', null, node.lines.join('\n')),
    svg('rect', { x: node.x, y: node.y, width: node.width, height: node.height, rx: 8 }),
    node.lines.map((line, i) => svg('text', { class: i ? '' : 'time', x: node.x + box.pad, y: node.y + box.pad + 12 + i * box.line }, line)));
}

function shortened(text) {
  while (text.length > 4 && widthOf(text) > box.most - 2 * box.pad) text = `${text.slice(0, -2)}…`;
  return text;
}

/** Which hypotheses end here. */
function endsOf(node) {
  return (node.ends ?? []).slice(0, 12).map(({ history, hypothesis, left }, i) => {
    const x = node.x + node.width + 10;
    const y = node.y + 20 + i * 20;
    const look = lookOf(hypothesis?.place ?? 0);
    const words = `${hypothesis ? `${label(hypothesis)} · ` : ''}candidate ${history.candidate}${left > 0 ? `, ${plural(left, 'change')} left out` : ''}`;
    const sign = svg('g', { class: 'end', style: `color: var(${look.colour})` }, svg('title', null, hypothesis?.summary ?? ''), svg('circle', { cx: x + 4, cy: y - 4, r: 4 }), svg('text', { x: x + 12, y }, words));
    return { sign, right: x + 20 + widthOf(words) };
  });
}
