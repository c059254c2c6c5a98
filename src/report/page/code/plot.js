// One plot on the time that all share: uPlot draws axes and measured lines; what is particular to a chart
// comes in by hooks. A plot is made when it first comes into sight, follows the shared range and cursor
// while it is in sight, and catches up when it comes back, so that a page of a hundred charts costs no
// more than those that are seen. The keyboard does all that the mouse does.
import uPlot from 'uplot';
import { el } from './dom.js';
import { canvasFont, colour } from './look.js';
import { nearestStep } from './run_document.js';

/** Room for the numbers of the vertical axis, the same in all plots so that times line up. */
const gutter = () => (innerWidth < 500 ? 44 : 58);
const paperWidth = 660;

const plots = new Set();
const byFrame = new Map();
const sight = new IntersectionObserver((entries) => {
  for (const entry of entries) byFrame.get(entry.target)?.seen(entry.isIntersecting);
}, { rootMargin: '200px' });
const sizes = new ResizeObserver((entries) => {
  for (const entry of entries) byFrame.get(entry.target)?.resized(entry.contentRect.width);
});

/**
 * `what`: height, label, series (of uPlot, without the time), data, range (lowest and highest value in
 * sight, or null for a plot without a vertical axis), under and over (draw on the chart, below and above
 * its lines), atCursor (tells the step of the cursor).
 */
export function makePlot(run, store, what) {
  const frame = el('div', {
    class: 'plot', tabindex: '0', role: 'group', 'aria-roledescription': 'chart', 'aria-label': what.label,
    'aria-describedby': 'plot-keys', onkeydown: (event) => onKey(run, store, event),
  });
  frame.style.height = `${what.height}px`;
  const own = { chart: null, visible: false, dirty: true, width: 0 };

  const make = () => {
    own.chart = new uPlot(optionsFor(run, store, what, own.width), [run.time, ...what.data], frame);
    listenToFingers(store, own.chart);
    own.dirty = false;
    requestAnimationFrame(placeCursor); // the scales are set by then
  };
  const redraw = () => {
    own.dirty = true;
    if (!own.visible || !own.width) return;
    if (!own.chart) return make();
    own.dirty = false;
    const [min, max] = store.state.range;
    own.chart.batch(() => {
      own.chart.setScale('x', { min, max });
      own.chart.redraw(false, true);
    });
    placeCursor();
  };
  const placeCursor = () => {
    if (!own.chart || !own.visible) return;
    own.chart.setCursor({ left: own.chart.valToPos(run.time[store.state.cursor], 'x'), top: -10 }, false);
  };
  const resize = (width) => {
    own.width = width;
    if (own.chart) own.chart.setSize({ width, height: what.height });
    else redraw();
  };

  byFrame.set(frame, {
    seen(visible) {
      own.visible = visible;
      if (visible && own.dirty) redraw();
      if (visible) {
        placeCursor();
        what.atCursor?.(store.state.cursor);
      }
    },
    resized(width) {
      width = Math.floor(width);
      if (width > 0 && width !== own.width && !paper) requestAnimationFrame(() => !paper && resize(width));
    },
  });
  plots.add({
    onPaper(on) {
      if (!frame.isConnected || frame.closest('details:not([open])')) return;
      own.visible = own.visible || on;
      resize(on ? paperWidth : Math.floor(frame.getBoundingClientRect().width));
      redraw();
    },
  });
  sight.observe(frame);
  sizes.observe(frame);
  store.on('range choice look', redraw);
  store.on('cursor', (state) => {
    if (!own.visible) return;
    placeCursor();
    what.atCursor?.(state.cursor);
  });
  store.on('choice', (state) => own.visible && what.atCursor?.(state.cursor));
  return frame;
}

let paper = false;
/** Charts on paper are all drawn, in light colours, at one width. */
export function followPaper(store) {
  const turn = (on) => {
    if (paper === on) return;
    paper = on;
    for (const plot of plots) plot.onPaper(on);
  };
  matchMedia('print').addEventListener('change', (event) => turn(event.matches));
  addEventListener('beforeprint', () => turn(true));
  addEventListener('afterprint', () => { turn(false); store.touch('look'); });
}

function optionsFor(run, store, what, width) {
  return {
    width, height: what.height, padding: [8, 14, 0, 0], legend: { show: false },
    scales: {
      x: { time: false, range: () => store.state.range },
      y: { range: () => what.range?.(store.state.range) ?? [0, 1] },
    },
    axes: [timeAxis(run), what.range ? valueAxis() : { ...valueAxis(), values: () => [], grid: { show: false }, ticks: { show: false } }],
    series: [{}, ...what.series],
    cursor: { y: false, drag: { x: true, y: false, setScale: false, dist: 5 }, points: { show: false }, bind: { dblclick: () => () => { store.reset(); return null; } } },
    hooks: {
      drawAxes: [(chart) => what.under?.(chart)],
      draw: [(chart) => what.over?.(chart)],
      setSelect: [(chart) => chosen(chart, store)],
      setCursor: [(chart) => pointed(chart, run, store)],
    },
  };
}

const axis = () => ({
  stroke: () => colour('--muted'), font: canvasFont(12), grid: { stroke: () => colour('--grid'), width: 1 },
  ticks: { stroke: () => colour('--grid'), width: 1, size: 5 },
});
const timeAxis = (run) => ({ ...axis(), size: 30, space: 64, incrs: run.plant.discrete ? [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000] : undefined, values: (_, splits) => splits.map((v, i) => short(v) + (i === splits.length - 1 && !run.plant.discrete ? ' s' : '')) });
const valueAxis = () => ({ ...axis(), size: gutter, space: 34, values: (_, splits) => splits.map((v) => short(v)) });
const short = (value) => (value === null ? '' : Math.abs(value) >= 1e6 || (value !== 0 && Math.abs(value) < 1e-4) ? value.toExponential(1) : String(Number(value.toPrecision(7))));

/** A stretch was dragged over. */
function chosen(chart, store) {
  const { left, width } = chart.select;
  if (width < 3) return;
  store.setRange(chart.posToVal(left, 'x'), chart.posToVal(left + width, 'x'));
  chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
}

/** The mouse is over the plot. Moves made by the page itself are out of the plot's height. */
function pointed(chart, run, store) {
  const { left, top } = chart.cursor;
  if (left < 0 || top < 0) return;
  store.setCursor(nearestStep(run.time, chart.posToVal(left, 'x')));
}

function onKey(run, store, event) {
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  const step = event.shiftKey ? 10 : 1;
  const actions = {
    ArrowLeft: () => store.pan(event.shiftKey ? -0.5 : -0.1), ArrowRight: () => store.pan(event.shiftKey ? 0.5 : 0.1),
    '+': () => store.zoom(0.5), '=': () => store.zoom(0.5), '-': () => store.zoom(2), _: () => store.zoom(2), 0: () => store.reset(),
    ',': () => store.setCursor(store.state.cursor - 1), '.': () => store.setCursor(store.state.cursor + 1),
    '<': () => store.setCursor(store.state.cursor - step), '>': () => store.setCursor(store.state.cursor + step),
    Home: () => store.setCursor(0), End: () => store.setCursor(run.lastStep),
  };
  if (!actions[event.key]) return;
  event.preventDefault();
  actions[event.key]();
}

/** One finger moves along time, two zoom; up and down goes on scrolling the page. */
function listenToFingers(store, chart) {
  const { over } = chart;
  let before = null;
  const read = (touches) => {
    const xs = [...touches].map((t) => t.clientX - over.getBoundingClientRect().left);
    return { middle: xs.reduce((a, b) => a + b, 0) / xs.length, spread: xs.length > 1 ? Math.abs(xs[0] - xs[1]) : 0 };
  };
  over.addEventListener('touchstart', (event) => (before = read(event.touches)), { passive: true });
  over.addEventListener('touchmove', (event) => {
    const now = read(event.touches);
    const [from, to] = store.state.range;
    const scale = (to - from) / over.clientWidth;
    if (before?.spread && now.spread) store.zoom(before.spread / now.spread, from + now.middle * scale);
    else if (before) store.setRange(from - (now.middle - before.middle) * scale, to - (now.middle - before.middle) * scale);
    before = now;
  }, { passive: true });
}
