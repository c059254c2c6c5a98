// What a reader sees first: the verdict, the answer, when, and what explains it.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { builtPage } from './browser.mjs';
import * as documents from './documents.mjs';
import { pageTest, textOf } from './pages.mjs';

const verdict = (page) => page.locator('h1').getAttribute('data-verdict');

pageTest('a healthy day', documents.healthy(), async (page) => {
  assert.equal(await verdict(page), 'healthy');
  assert.equal(await textOf(page, 'h1'), 'Healthy');
  assert.equal(await textOf(page, '.answer'), 'Nothing failed: the measures agree with the plant at every step.');
  assert.equal(await page.locator('.explanations').count(), 0);
  assert.equal(await page.title(), 'room: Healthy');
  assert.match(await textOf(page, '.headline'), /Plant room, 240 steps, 239 s \(4 min\)/);
});

pageTest('an explained fault', documents.explained(), async (page) => {
  assert.equal(await textOf(page, 'h1'), 'Fault found and explained');
  assert.equal(await textOf(page, '#noticed'), '27 s');
  assert.match(await textOf(page, '.facts'), /at step 27 room.xd too high/);
  assert.match(await textOf(page, '.facts'), /Grown past use 112 s bounds of room.xd/);
  // 0.909091 and 0.0909091 in two digits; the dates are those of the explanations.
  assert.equal(await textOf(page, '.story.best'), '2 thermostat on → stuck_on probability 91 % between 22 s and 26 s 1 failure Show in the charts');
  assert.equal(await textOf(page, '.stories .story'), '3 thermostat on → unknown unknown mode probability 9.1 % between 20 s and 26 s 1 failure Show in the charts');
  assert.match(await textOf(page, '.summary details'), /day.csv: 2 values are missing/);
});

pageTest('a fault that nothing explains', documents.unexplained(), async (page) => {
  assert.equal(await verdict(page), 'unexplained');
  assert.equal(await page.locator('.story').count(), 0);
  assert.equal(await page.locator('#histories').count(), 0);
  assert.match(await textOf(page, '.diagnoses'), /27 s room.xd too high: nothing explains it/);
});

pageTest('a run that was stopped', documents.stopped(), async (page) => {
  assert.equal(await verdict(page), 'stopped');
  assert.equal(await textOf(page, '.stopped-by'), 'The run was stopped: interrupted.');
});

pageTest('a discrete plant has neither charts nor a graph', documents.discrete(), async (page) => {
  assert.equal(await page.locator('#measures, #variables, #inputs, #graph').count(), 0);
  assert.equal(await textOf(page, '#noticed'), 'step 3');
  assert.match(await textOf(page, '#modes-at-cursor'), /pump.mode broken valve1.mode closed/);
});

pageTest('many explanations: the first few, and where the others are', documents.crowd(60, 100, 10), async (page) => {
  assert.equal(await page.locator('.story').count(), 5);
  assert.match(await textOf(page, '.explanations'), /and 95 more in the table of hypotheses/);
});

pageTest('names are text, whatever they hold', documents.hostile(), async (page, run) => {
  const name = run.plant.measures[0];
  assert.match(name, /^x<img src=x onerror/);
  assert.equal(await page.locator('#measures h3').innerText(), name);
  assert.equal(await page.locator('img, main script, main b:has-text("&amp;")').count(), 0);
  assert.ok((await textOf(page, '.story.best')).includes('<b>&amp;"</script><script>alert(1)</script> on → stuck_on'));
});

const directory = mkdtempSync(join(tmpdir(), 'tavro-no-run-'));
function written(name, element) {
  const file = join(directory, name);
  writeFileSync(file, readFileSync(builtPage, 'utf8').replace('<!--RUN-->', element));
  return file;
}
const run = (text) => `<script type="application/json" id="run">${text}</script>`;
const problem = (page) => textOf(page, '#problem');

pageTest('a page without a run says so', written('none.html', ''), async (page) => assert.equal(await problem(page), 'This page holds no run.'));
pageTest('a run of another version is told', written('later.html', run('{"format":"tavro-run","version":2}')), async (page) =>
  assert.equal(await problem(page), 'The run is of version 2; this page reads version 1.'));
pageTest('a run that was cut off is told', written('cut.html', run('{"format":"tavro-run"')), async (page) =>
  assert.match(await problem(page), /^The run in this page cannot be read: /));
