// The charts: what stands at the cursor is what the run holds, whatever is drawn; keyboard and mouse move
// the range that all charts share; what is shown is chosen.
import assert from 'node:assert/strict';
import * as documents from './documents.mjs';
import { frames, inkByColumn, moment, pageTest, plotOf, press, readout, sight, textOf } from './pages.mjs';

const six = (value) => String(Number(value.toPrecision(6)));

/** The hull of a hypothesis at a step, from the document itself. */
function hullAt(run, hypothesis, variable, step) {
  const those = run.candidates.filter((c) => c.hypothesis === hypothesis && c.first <= step && step <= c.last);
  const lower = Math.min(...those.map((c) => c.bounds[variable].lower[step - c.first] ?? -Infinity));
  const upper = Math.max(...those.map((c) => c.bounds[variable].upper[step - c.first] ?? Infinity));
  return `[${lower === -Infinity ? '−∞' : six(lower)}, ${upper === Infinity ? '∞' : six(upper)}]`;
}

pageTest('the cursor begins where the fault was noticed', documents.explained(), async (page, run) => {
  await plotOf(page, 'room.xd');
  assert.equal(await moment(page), '27 s · step 27 · 3 candidates');
  assert.equal(await readout(page, 'room.xd'), `measured ${six(run.measures['room.xd'][27])} 2 ${hullAt(run, 1, 'room.xd', 27)} 3 ${hullAt(run, 2, 'room.xd', 27)}`);
});

pageTest('the cursor is drawn from the start, at its time', documents.explained(), async (page) => {
  const line = (await plotOf(page, 'room.xd')).locator('.u-cursor-x');
  const place = await line.evaluate((node) => new DOMMatrix(getComputedStyle(node).transform).m41 / node.parentElement.offsetWidth);
  assert.ok(Math.abs(place - 27 / 119) < 0.002, `at ${place} of the width`);
});

pageTest('the keyboard moves the cursor', documents.explained(), async (page, run) => {
  await (await plotOf(page, 'room.xd')).focus();
  await press(page, 'Home');
  assert.equal(await moment(page), '0 s · step 0 · 1 candidate');
  assert.equal(await readout(page, 'room.xd'), `measured ${six(run.measures['room.xd'][0])} 1 ${hullAt(run, 0, 'room.xd', 0)}`);
  await press(page, '.', '.', '.', ',');
  assert.equal(await moment(page), '2 s · step 2 · 1 candidate');
  await press(page, 'End');
  assert.equal(await moment(page), '119 s · step 119 · 3 candidates');
});

pageTest('the keyboard zooms, pans and resets all charts', documents.explained(), async (page) => {
  await (await plotOf(page, 'room.xd')).focus();
  assert.equal(await sight(page), '0 to 119 s in sight');
  await press(page, 'End', ',', '+'); // about the cursor at 118: 118 - 118 / 2, and 118 + 1 / 2
  assert.equal(await sight(page), '59 to 118.5 s in sight');
  await press(page, 'ArrowLeft'); // a tenth of 59.5
  assert.equal(await sight(page), '53.05 to 112.55 s in sight');
  await press(page, 'ArrowRight', 'ArrowRight', 'ArrowRight'); // not past the end
  assert.equal(await sight(page), '59.5 to 119 s in sight');
  await press(page, '0');
  assert.equal(await sight(page), '0 to 119 s in sight');
  await press(page, '-');
  assert.equal(await sight(page), '0 to 119 s in sight');
});

pageTest('the mouse points at a step, drags over a stretch, and sees the whole again', documents.explained(), async (page, run) => {
  const plot = await plotOf(page, 'room.xd');
  const box = await plot.locator('.u-over').boundingBox();
  const at = (time) => box.x + (time / 119) * box.width;
  await page.mouse.move(at(60.2), box.y + 50);
  await frames(page);
  assert.match(await moment(page), /^60 s/);
  assert.match(await readout(page, 'room.xd'), new RegExp(`^measured ${six(run.measures['room.xd'][60])} `));
  await page.mouse.down();
  await page.mouse.move(at(80), box.y + 50, { steps: 4 });
  await page.mouse.up();
  await frames(page);
  const [from, to] = (await sight(page)).match(/[\d.]+/g).map(Number);
  assert.ok(Math.abs(from - 60.2) < 0.3 && Math.abs(to - 80) < 0.3, `${from} to ${to}`);
  await page.mouse.dblclick(at(40), box.y + 50);
  await frames(page);
  assert.equal(await sight(page), '0 to 119 s in sight');
});

pageTest('buttons do what the keys do', documents.explained(), async (page) => {
  await page.getByRole('button', { name: 'Zoom to where it was noticed' }).click();
  await frames(page);
  assert.equal(await sight(page), '7 to 47 s in sight');
  await page.getByRole('button', { name: 'Show the whole run' }).click();
  await frames(page);
  assert.equal(await sight(page), '0 to 119 s in sight');
});

pageTest('hypotheses are shown and hidden', documents.explained(), async (page, run) => {
  await plotOf(page, 'room.xd');
  const chip = page.locator('.chip', { hasText: 'unknown' });
  assert.equal(await chip.getAttribute('aria-pressed'), 'true');
  const blue = [0, 104, 168];
  const before = (await inkByColumn(await plotOf(page, 'room.xd'), [179, 74, 0])).filter(Boolean).length;
  await chip.click();
  await frames(page);
  assert.equal(await chip.getAttribute('aria-pressed'), 'false');
  assert.equal(await readout(page, 'room.xd'), `measured ${six(run.measures['room.xd'][27])} 2 ${hullAt(run, 1, 'room.xd', 27)}`);
  const after = (await inkByColumn(await plotOf(page, 'room.xd'), [179, 74, 0])).filter(Boolean).length;
  assert.ok(before > 300 && after < 60, `columns with the colour of hypothesis 3: ${before}, then ${after}`);
  assert.ok((await inkByColumn(await plotOf(page, 'room.xd'), blue)).filter(Boolean).length > 300);
});

pageTest('a candidate that is picked is drawn and told', documents.explained(), async (page, run) => {
  await page.getByRole('checkbox', { name: 'Draw candidate 4' }).check();
  await plotOf(page, 'room.xd');
  const own = run.candidates[4].bounds['room.xd'];
  assert.ok((await readout(page, 'room.xd')).endsWith(`candidate 4 [${six(own.lower[5])}, ${six(own.upper[5])}]`));
});

pageTest('what is missing and what is unbounded is told as such', documents.explained(120, { missing: true }), async (page, run) => {
  await (await plotOf(page, 'room.xd')).focus();
  await press(page, 'Home', ...new Array(45).fill('.'));
  assert.match(await readout(page, 'room.xd'), /^measured missing /);
  await plotOf(page, 'room.xdq');
  assert.ok((await readout(page, 'room.xdq')).endsWith(`3 ${hullAt(run, 2, 'room.xdq', 45)}`));
  assert.equal(hullAt(run, 2, 'room.xdq', 45), '[−∞, ∞]');
  // No line is drawn where nothing was measured: 40 to 59 of 119, of a plot that begins behind its numbers.
  const plot = await plotOf(page, 'room.xd');
  const ink = await inkByColumn(plot, [24, 34, 45], 40);
  const place = await plot.evaluate((node) => [node.querySelector('.u-over').offsetLeft, node.querySelector('.u-over').offsetWidth]);
  const column = (time) => Math.round(place[0] + (time / 119) * place[1]);
  assert.equal(ink.slice(column(42), column(58)).filter(Boolean).length, 0);
  assert.ok(ink.slice(column(70), column(100)).every(Boolean));
});

pageTest('of 20,000 steps a single one that sticks out is drawn, and told exactly', spike(), async (page) => {
  const plot = await plotOf(page, 'room.x');
  const ink = await inkByColumn(plot, [0, 104, 168]);
  const place = await plot.evaluate((node) => [node.querySelector('.u-over').offsetLeft, node.querySelector('.u-over').offsetWidth]);
  const column = Math.round(place[0] + (7777 / 19999) * place[1]);
  const height = (x) => Math.min(...ink.slice(x - 1, x + 2).filter(Boolean).map(([top]) => top));
  assert.ok(height(column) < height(column + 40) - 40, `${height(column)} at the spike, ${height(column + 40)} beside it`);
  await plot.focus();
  const box = await plot.locator('.u-over').boundingBox();
  await page.mouse.move(box.x + (7777 / 19999) * box.width, box.y + 40);
  await frames(page);
  const near = Number((await moment(page)).match(/^\d+/)[0]);
  await press(page, ...new Array(Math.abs(7777 - near)).fill(near < 7777 ? '.' : ','));
  assert.match(await moment(page), /^7777 s/);
  assert.match(await readout(page, 'room.x'), /, 123\.457\]$/);
});

function spike() {
  const run = documents.healthy(20000);
  const candidate = run.candidates.find((c) => c.first <= 7777 && 7777 <= c.last);
  candidate.bounds['room.x'].upper[7777 - candidate.first] = 123.45678;
  return run;
}

pageTest('a hundred hypotheses: few are shown, all can be', documents.crowd(120, 100, 50), async (page) => {
  await plotOf(page, 'room.xd');
  assert.equal(await page.locator('.chip').count(), 7);
  assert.match(await textOf(page, '.toolbar'), /5 of 101 shown/);
  await page.getByRole('button', { name: 'Show all' }).click();
  await frames(page);
  assert.match(await textOf(page, '.toolbar'), /101 of 101 shown/);
  assert.match(await readout(page, 'room.xd'), /and 96 more$/);
  await page.getByRole('button', { name: 'Only the followed one' }).click();
  await frames(page);
  assert.match(await textOf(page, '.toolbar'), /1 of 101 shown/);
});

pageTest('the time line follows the hypothesis that is chosen', documents.explained(), async (page) => {
  await page.locator('#timeline .plot canvas').waitFor();
  assert.equal(await textOf(page, '#modes-at-cursor'), 'room.mode closed thermostat.mode stuck_on');
  await page.getByLabel('Modes of').selectOption({ index: 1 });
  await frames(page);
  assert.equal(await textOf(page, '#modes-at-cursor'), 'room.mode closed thermostat.mode unknown');
  // Before its own candidates a hypothesis has the modes of its history.
  await page.locator('#timeline .plot').focus();
  await press(page, 'Home');
  assert.equal(await textOf(page, '#modes-at-cursor'), 'room.mode closed thermostat.mode on');
});

pageTest('many variables are made when they are asked for', documents.big(150, 60), async (page) => {
  assert.equal(await page.locator('#variables figure').count(), 0);
  await page.getByText('148 variables without a measure').click();
  await page.locator('#variables figure').first().waitFor();
  assert.equal(await page.locator('#variables figure').count(), 148);
  const drawn = await page.locator('#variables canvas').count();
  assert.ok(drawn < 20, `${drawn} charts are drawn`);
  await page.getByLabel('Name holds').fill('tank14');
  assert.equal(await page.locator('#variables figure:visible').count(), 11); // 14, and 140 to 149
});
