// The causal graph: variables and the influences between them, laid out in layers from causes to effects,
// with the suspects of a diagnosis lit and the measures in alarm marked. Of a large plant it first shows
// what stands near the suspects.
import dagre from '@dagrejs/dagre';
import { el, freshId, section, svg } from './dom.js';
import { bare, plural } from './format.js';

const smallUpTo = 40; // so many variables are drawn whole
const reach = 2; // steps from a suspect that still belong to its neighbourhood
const letter = 7.3; // width of a letter of the labels, in pixels, roughly

export function graphSection(run, store) {
  if (!run.plant.influences.length) return null;
  const frame = el('div', { class: 'graph-frame', tabindex: '0', role: 'region', 'aria-label': 'Causal graph' });
  const suspects = el('div', { class: 'suspects' });
  const note = el('p', { class: 'hint', 'aria-live': 'polite' });
  const all = el('input', { type: 'checkbox', onchange: () => draw() });
  const nodes = allNodes(run);
  const large = nodes.length > smallUpTo;
  const draw = () => {
    const diagnosis = run.diagnoses[store.state.diagnosis];
    const shown = large && !all.checked ? neighbourhood(run, diagnosis) : new Set(nodes);
    frame.replaceChildren(picture(run, diagnosis, shown));
    bringIntoSight(frame);
    note.textContent = shown.size < nodes.length ? `${shown.size} of ${nodes.length} variables: those near the suspects, the alarms or the measures.` : '';
    suspects.replaceChildren(...suspectsList(diagnosis));
  };
  store.on('diagnosis', draw);
  whenSeen(frame, draw);
  addEventListener('beforeprint', () => frame.firstChild ?? draw());
  return section('graph', 'Causal graph', diagnosisChoice(run, store), large && el('label', { class: 'field no-print' }, all, ` Show all ${nodes.length} variables`), note, frame, legend(), suspects);
}

/** Of a graph that is larger than its frame: what is in alarm, or lit, or measured, comes to the middle. */
function bringIntoSight(frame) {
  const chief = frame.querySelector('.node.alarm') ?? frame.querySelector('.edge.lit') ?? frame.querySelector('.node.measured');
  if (!chief || (frame.scrollWidth <= frame.clientWidth && frame.scrollHeight <= frame.clientHeight)) return;
  const own = chief.getBoundingClientRect();
  const about = frame.getBoundingClientRect();
  frame.scrollLeft += own.left + own.width / 2 - about.left - about.width / 2;
  frame.scrollTop += own.top + own.height / 2 - about.top - about.height / 2;
}

/** The layout is worth doing once somebody looks. */
function whenSeen(node, act) {
  const watch = new IntersectionObserver((entries) => {
    if (!entries.some((entry) => entry.isIntersecting)) return;
    watch.disconnect();
    act();
  }, { rootMargin: '400px' });
  watch.observe(node);
}

const allNodes = (run) => [...new Set([...run.plant.variables, ...run.plant.influences.flatMap((i) => [i.cause, i.effect])])];

const suspectedIn = (diagnosis) => new Set((diagnosis?.suspects ?? []).flat().map((suspect) => suspect.influence));

function neighbourhood(run, diagnosis) {
  const suspected = suspectedIn(diagnosis);
  const seeds = [...(diagnosis?.alarms ?? []).map((a) => a.measure), ...run.plant.influences.filter((i) => suspected.has(i.name)).flatMap((i) => [i.cause, i.effect])];
  let edge = new Set(seeds.length ? seeds : run.plant.measures);
  const inside = new Set(edge);
  for (let step = 0; step < reach && inside.size < 3 * smallUpTo; step++) {
    const next = new Set();
    for (const { cause, effect } of run.plant.influences) {
      if (edge.has(cause) && !inside.has(effect)) next.add(effect);
      if (edge.has(effect) && !inside.has(cause)) next.add(cause);
    }
    for (const name of next) inside.add(name);
    edge = next;
  }
  return inside;
}

function diagnosisChoice(run, store) {
  if (run.diagnoses.length < 2) return null;
  const id = freshId('diagnosis');
  const select = el('select', { id, onchange: () => store.chooseDiagnosis(Number(select.value)) }, run.diagnoses.map((d, i) => el('option', { value: i }, run.words.at(d.time))));
  const update = ({ diagnosis }) => (select.value = String(diagnosis));
  store.on('diagnosis', update);
  update(store.state);
  return el('p', { class: 'field' }, el('label', { for: id }, 'Suspects of the diagnosis at '), select);
}

/** Influences between the same two variables are one arrow, with all their names. */
function edgesAmong(run, shown) {
  const edges = new Map();
  for (const influence of run.plant.influences) {
    if (!shown.has(influence.cause) || !shown.has(influence.effect)) continue;
    const key = `${influence.cause}\n${influence.effect}`;
    if (!edges.has(key)) edges.set(key, { cause: influence.cause, effect: influence.effect, influences: [] });
    edges.get(key).influences.push(influence);
  }
  return [...edges.values()];
}

/** The names at an arrow, suspects first; of many only two. */
function edgeNames({ influences }, suspected) {
  const names = influences.map(({ name: text }) => ({ text, lit: suspected.has(text) })).sort((a, b) => b.lit - a.lit);
  return names.length > 3 ? [...names.slice(0, 2), { text: `+${names.length - 2}`, lit: false }] : names;
}

const joined = (parts) => parts.map((part) => part.text).join(', ');

function laidOut(run, shown, edges, suspected) {
  const graph = new dagre.graphlib.Graph({ multigraph: true });
  graph.setGraph({ rankdir: innerWidth < 700 ? 'TB' : 'LR', nodesep: 26, ranksep: 46, marginx: 12, marginy: 12 });
  graph.setDefaultEdgeLabel(() => ({}));
  for (const name of shown) graph.setNode(name, { name, width: Math.max(64, name.length * letter + 26), height: 34 });
  edges.forEach((edge, i) => graph.setEdge(edge.cause, edge.effect, { edge, width: joined(edgeNames(edge, suspected)).length * letter + 6, height: 16, labelpos: 'c' }, String(i)));
  dagre.layout(graph);
  return graph;
}

function picture(run, diagnosis, shown) {
  const suspected = suspectedIn(diagnosis);
  const alarms = new Map((diagnosis?.alarms ?? []).map((a) => [a.measure, a.side]));
  const graph = laidOut(run, shown, edgesAmong(run, shown), suspected);
  const { width, height } = graph.graph();
  const arrow = (id) => svg('marker', { id, viewBox: '0 0 10 10', refX: 9, refY: 5, markerWidth: id === 'tip' ? 8 : 12, markerHeight: id === 'tip' ? 8 : 12, markerUnits: 'userSpaceOnUse', orient: 'auto-start-reverse' }, svg('path', { d: 'M0 0L10 5L0 10z', class: id }));
  const drawn = graph.edges().map((e) => drawnEdge(graph.edge(e), suspected));
  return svg('svg', { class: 'graph', viewBox: `0 0 ${width} ${height}`, width, height, style: `min-width: ${Math.min(width, width * 0.62)}px`, role: 'img', 'aria-label': described(run, shown, suspected, alarms) },
    svg('defs', null, arrow('tip'), arrow('tip-lit')),
    // Lit arrows lie over the others, labels over all arrows.
    drawn.filter((d) => !d.lit).map((d) => d.path), drawn.filter((d) => d.lit).map((d) => d.path), drawn.map((d) => d.text),
    graph.nodes().map((name) => drawnNode(run, graph.node(name), alarms.get(name))));
}

const described = (run, shown, suspected, alarms) =>
  `${plural(shown.size, 'variable')}; ${suspected.size ? `suspects: ${[...suspected].join(', ')}` : 'no suspects'}; ${alarms.size ? `in alarm: ${[...alarms.keys()].join(', ')}` : 'no alarm'}`;

function drawnEdge({ edge, points, x, y }, suspected) {
  const lit = edge.influences.some((i) => suspected.has(i.name));
  const d = smooth(points);
  const title = svg('title', null, edge.influences.map((i) => `${i.name}: ${i.kind}${bare(i.condition) ? ` when ${bare(i.condition)}` : ''}`).join('\n'));
  return {
    lit,
    path: svg('path', { class: lit ? 'edge lit' : 'edge', d, 'marker-end': `url(#${lit ? 'tip-lit' : 'tip'})` }, title),
    text: name(edgeNames(edge, suspected), x, y, title),
  };
}

/** On a ground of its own, so that no arrow runs through it; only the suspects of an arrow are lit. */
function name(parts, x, y, title) {
  const width = joined(parts).length * letter;
  const texts = parts.map((part, i) => [i ? ', ' : '', svg('tspan', { class: part.lit && 'lit' }, part.text)]);
  return svg('g', { class: 'edge-name' }, title.cloneNode(true), svg('rect', { x: x - width / 2 - 2, y: y - 9, width: width + 4, height: 18 }), svg('text', { x, y: y + 4 }, texts));
}

/** A curve through the points of a layout. */
function smooth(points) {
  if (points.length < 3) return `M${points.map((p) => `${p.x} ${p.y}`).join('L')}`;
  let d = `M${points[0].x} ${points[0].y}`;
  for (let i = 1; i < points.length - 1; i++) {
    const end = i === points.length - 2 ? points[i + 1] : { x: (points[i].x + points[i + 1].x) / 2, y: (points[i].y + points[i + 1].y) / 2 };
    d += `Q${points[i].x} ${points[i].y} ${end.x} ${end.y}`;
  }
  return d;
}

function drawnNode(run, { name, x, y, width, height }, side) {
  const measured = run.plant.measures.includes(name);
  const input = run.plant.inputs.includes(name);
  const given = !input && !run.plant.variables.includes(name);
  const kind = ['node', measured && 'measured', input && 'input', given && 'given', side && 'alarm'].filter(Boolean).join(' ');
  const box = (inset, round) => svg('rect', { x: x - width / 2 + inset, y: y - height / 2 + inset, width: width - 2 * inset, height: height - 2 * inset, rx: round });
  return svg('g', { class: kind, 'data-node': name },
    svg('title', null, `${name}${measured ? ', measured' : ''}${input ? ', an input' : ''}${given ? ', a parameter' : ''}${side ? `, too ${side}` : ''}`),
    box(0, input || given ? 3 : 17), measured && box(3, 14), svg('text', { x, y: y + 4.5 }, name),
    side && svg('path', { class: 'side', d: triangle(x + width / 2 - 4, y - height / 2 + 2, side === 'high' ? -1 : 1) }));
}

const triangle = (x, y, direction) => `M${x} ${y + 8 * direction}L${x - 8} ${y - 6 * direction}L${x + 8} ${y - 6 * direction}z`;

function legend() {
  const item = (shape, words) => el('li', null, svg('svg', { viewBox: '0 0 34 18', width: 34, height: 18, 'aria-hidden': 'true', class: 'graph' }, shape), words);
  const box = (kind, inner) => svg('g', { class: `node ${kind}` }, svg('rect', { x: 1, y: 1, width: 32, height: 16, rx: kind === 'input' || kind === 'given' ? 3 : 8 }), inner && svg('rect', { x: 3.5, y: 3.5, width: 27, height: 11, rx: 6 }));
  return el('ul', { class: 'legend' }, item(box('measured', true), 'measured'), item(box('input'), 'input'), item(box('given'), 'parameter'),
    item([box('alarm measured', true), svg('path', { class: 'side', d: triangle(26, 8, -1) })], 'in alarm: ▲ too high, ▼ too low'),
    item(svg('path', { class: 'edge lit', d: 'M1 9H32' }), 'suspected'));
}

const suspectsUpTo = 40;

function suspectsList(diagnosis) {
  if (!diagnosis) return [];
  if (!diagnosis.suspects.length) return [el('p', { class: 'hint' }, 'This diagnosis names no influences.')];
  const one = ({ influence, delay, condition }) => el('span', null, el('b', null, influence), delay ? ` ${plural(delay, 'step')} before` : '', bare(condition) ? el('span', { class: 'sub' }, ` when ${bare(condition)}`) : '');
  const rest = diagnosis.suspects.length - suspectsUpTo;
  return [
    el('h3', null, 'Suspects'), el('p', { class: 'hint' }, 'Each line is a diagnosis of its own: what it names may not be acting, all of it together.'),
    el('ul', { class: 'suspect-sets' }, diagnosis.suspects.slice(0, suspectsUpTo).map((set) => el('li', null, set.map((suspect, i) => [i ? ' and ' : '', one(suspect)])))),
    rest > 0 ? el('p', { class: 'hint' }, `and ${plural(rest, 'more', 'more')}`) : '',
  ];
}
