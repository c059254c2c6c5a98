// Draws bands on a canvas. Where steps are denser than pixels, each column of pixels takes the least lower
// and the greatest upper bound of its steps, so nothing that sticks out is lost; the numbers at the cursor
// never come from here.
import { stepAt } from './run_document.js';

/**
 * Which steps are drawn at which x, for the visible range of a chart: one group per step, or per column of
 * pixels when there are more steps than that. A group is [x, first step, last step].
 */
export function groupsInSight(chart, time) {
  const { min, max } = chart.scales.x;
  const from = Math.max(0, stepAt(time, min) - 1);
  const to = Math.min(time.length - 1, stepAt(time, max) + 1);
  const columns = Math.max(1, Math.round(chart.bbox.width));
  if (to - from <= columns) {
    const groups = [];
    for (let k = from; k <= to; k++) groups.push([chart.valToPos(time[k], 'x', true), k, k]);
    return groups;
  }
  return columnsOf(chart, time, from, to);
}

function columnsOf(chart, time, from, to) {
  const groups = [];
  const { min, max } = chart.scales.x;
  const scale = chart.bbox.width / (max - min);
  for (let k = from; k <= to; ) {
    const x = Math.round((time[k] - min) * scale);
    const first = k;
    while (k <= to && Math.round((time[k] - min) * scale) === x) k++;
    groups.push([chart.bbox.left + x, first, k - 1]);
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
    if (own.lower[k] !== own.lower[k]) continue;
    any = true;
    if (own.lower[k] < low) low = own.lower[k];
    if (own.upper[k] > high) high = own.upper[k];
  }
  return any ? [low, high] : null;
}

/** `look`: stroke, dash, width, fill (0 to 1). The end of the last run, for a label, or null. */
export function drawBand(chart, own, groups, look) {
  const { ctx } = chart;
  const runs = runsOf(chart, own, groups);
  const ratio = chart.pxRatio ?? devicePixelRatio;
  ctx.save();
  clipToPlot(chart);
  ctx.strokeStyle = ctx.fillStyle = look.stroke;
  ctx.lineWidth = look.width * ratio;
  ctx.setLineDash(look.dash.map((d) => d * ratio));
  for (const run of runs) drawRun(ctx, run, look, ratio);
  ctx.restore();
  return runs.at(-1)?.at(-1) ?? null;
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
