// Draws bands on a canvas. Where steps are denser than pixels, each column of pixels takes the least lower
// and the greatest upper bound of its steps, so nothing that sticks out is lost; the numbers at the cursor
// never come from here. Columns are drawn as upright bars: a line that went up and down at every pixel
// would take a browser without a graphics card ten times as long.
import { stepAt } from './run_document.js';

/** Whether the steps in sight are denser than pixels. */
export const isDense = (chart, from, to) => to - from > Math.max(1, Math.round(chart.bbox.width));

/**
 * Which steps are drawn at which x, for the visible range of a chart: one group per step, or per column of
 * pixels when there are more steps than that. A group is [x, first step, last step].
 */
export function groupsInSight(chart, time) {
  const { min, max } = chart.scales.x;
  const { left, width } = chart.bbox;
  const key = [min, max, left, width].join();
  // All charts of a page share one range, and mostly one width.
  if (latest.key !== key) latest = { key, ...grouped(chart, time, min, max) };
  return latest;
}

let latest = { key: null };

function grouped(chart, time, min, max) {
  const from = Math.max(0, stepAt(time, min) - 1);
  const to = Math.min(time.length - 1, stepAt(time, max) + 1);
  if (isDense(chart, from, to)) return { dense: true, groups: columnsOf(chart, time, from, to) };
  const groups = [];
  for (let k = from; k <= to; k++) groups.push([chart.valToPos(time[k], 'x', true), k, k]);
  return { dense: false, groups };
}

function columnsOf(chart, time, from, to) {
  const groups = [];
  const { min, max } = chart.scales.x;
  const scale = chart.bbox.width / (max - min);
  for (let k = from; k <= to; ) {
    const x = Math.round((time[k] - min) * scale);
    const first = k;
    while (k <= to && Math.round((time[k] - min) * scale) === x) k++;
    groups.push([Math.round(chart.bbox.left) + x, first, k - 1]);
  }
  return groups;
}

/** The corners of a band, in pixels, in runs without a gap. */
function runsOf(chart, own, groups) {
  const { top, height } = chart.bbox;
  const { min, max } = chart.scales.y;
  const place = (value) => (value === Infinity ? top - 4 : value === -Infinity ? top + height + 4 : top + ((max - value) / (max - min)) * height);
  const runs = [];
  let run = null;
  for (const [x, first, last] of groups) {
    const extremes = extremesOf(own, first, last);
    if (!extremes) {
      run = null;
      continue;
    }
    if (!run) runs.push((run = []));
    run.push([x, place(extremes[0]), place(extremes[1])]);
  }
  return runs;
}

function extremesOf(own, first, last) {
  let low = Infinity;
  let high = -Infinity;
  let any = false;
  const end = Math.min(last - own.first, own.lower.length - 1);
  for (let k = Math.max(0, first - own.first); k <= end; k++) {
    if (own.lower[k] === null || Number.isNaN(own.lower[k])) continue;
    any = true;
    if (own.lower[k] < low) low = own.lower[k];
    if (own.upper[k] > high) high = own.upper[k];
  }
  return any ? [low, high] : null;
}

/** `look`: stroke, dash, width, fill and alpha (0 to 1). */
export function drawBand(chart, own, { dense, groups }, look) {
  const { ctx } = chart;
  const runs = runsOf(chart, own, groups);
  const ratio = devicePixelRatio;
  ctx.save();
  clipToPlot(chart);
  ctx.strokeStyle = ctx.fillStyle = look.stroke;
  ctx.lineWidth = look.width * ratio;
  ctx.setLineDash(look.dash.map((d) => d * ratio));
  for (const run of runs) (dense ? drawBars : drawRun)(ctx, run, look, ratio);
  ctx.restore();
}

/** A measured line where steps are denser than pixels: from the least to the greatest of each column. */
export function drawColumns(chart, values, { groups }, stroke) {
  const { ctx } = chart;
  const { min, max } = chart.scales.y;
  const { top, height } = chart.bbox;
  const place = (value) => top + ((max - value) / (max - min)) * height;
  ctx.save();
  clipToPlot(chart);
  ctx.fillStyle = stroke;
  ctx.globalAlpha = 0.6; // a dense line is a slab; what lies behind it should be seen
  let before = null;
  for (const [x, first, last] of groups) {
    const found = extremesOf({ first: 0, lower: values, upper: values }, first, last);
    // Columns that follow each other touch, as a line would.
    const [low, high] = !found ? [] : !before ? found : [Math.min(found[0], before[1]), Math.max(found[1], before[0])];
    before = found;
    if (found) bar(ctx, x, place(high), place(low), Math.ceil(devicePixelRatio));
  }
  ctx.restore();
}

/** At whole pixels, which need no smoothing. */
const bar = (ctx, x, top, bottom, least) => ctx.fillRect(x, Math.round(top), 1, Math.max(least, Math.round(bottom) - Math.round(top)));

/** A run in columns of pixels. Line styles are those of a line along the run. */
function drawBars(ctx, run, look, ratio) {
  if (look.fill) {
    ctx.globalAlpha = look.fill;
    for (const [x, low, high] of run) bar(ctx, x, high, low, 1);
  }
  ctx.globalAlpha = look.alpha ?? 1;
  const width = Math.max(1, Math.round(look.width * ratio));
  for (let i = 0; i < run.length; i++) {
    if (!inDash(run[i][0], look.dash, ratio)) continue;
    for (const side of [1, 2]) {
      const here = run[i][side];
      const there = run[Math.max(0, i - 1)][side]; // columns that follow each other touch
      bar(ctx, run[i][0], Math.min(here, there) - width / 2, Math.max(here, there) + width / 2, width);
    }
  }
}

function inDash(x, dash, ratio) {
  let rest = (x / ratio) % dash.reduce((a, b) => a + b, 0);
  for (let i = 0; i < dash.length; i++) {
    if (rest < dash[i]) return i % 2 === 0;
    rest -= dash[i];
  }
  return true;
}

export function clipToPlot(chart) {
  const { left, top, width, height } = chart.bbox;
  chart.ctx.beginPath();
  chart.ctx.rect(left, top, width, height);
  chart.ctx.clip();
}

function drawRun(ctx, run, look, ratio) {
  // A single step has no width of its own; it is drawn two pixels wide.
  const points = run.length === 1 ? [[run[0][0] - ratio, run[0][1], run[0][2]], [run[0][0] + ratio, run[0][1], run[0][2]]] : run;
  if (look.fill) {
    ctx.globalAlpha = look.fill;
    ctx.beginPath();
    points.forEach(([x, , high], i) => (i ? ctx.lineTo(x, high) : ctx.moveTo(x, high)));
    for (let i = points.length - 1; i >= 0; i--) ctx.lineTo(points[i][0], points[i][1]);
    ctx.fill();
  }
  ctx.globalAlpha = look.alpha ?? 1;
  for (const side of [1, 2]) {
    ctx.beginPath();
    points.forEach((point, i) => (i ? ctx.lineTo(point[0], point[side]) : ctx.moveTo(point[0], point[side])));
    ctx.stroke();
  }
}
