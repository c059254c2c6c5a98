// Reports of real runs, all *.html in the directory TAVRO_REPORTS: each is opened, and what it says is held
// against the document in it. Without that variable the made-up documents stand in.
import assert from 'node:assert/strict';
import { readFileSync, readdirSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { test } from 'node:test';
import * as made from './documents.mjs';
import { frames, moment, pageTest, press, textOf } from './pages.mjs';
import { weakTexts } from './contrast.mjs';

const six = (value) => String(Number(value.toPrecision(6)));
const arrows = (text) => text.replaceAll(' -> ', ' → ');

/** The document in a report, as any program could read it. */
const documentIn = (file) => JSON.parse(readFileSync(file, 'utf8').match(/<script type="application\/json" id="run">([^]*?)<\/script>/)[1]);

const squeezed = (text) => text.replace(/\s+/g, ' ').trim();

async function check(page, run) {
  assert.equal(await page.locator('h1').getAttribute('data-verdict'), run.outcome.verdict);
  assert.equal(await textOf(page, '.answer'), squeezed(run.outcome.answer.map(arrows).join(' ')));
  if (run.outcome.noticed) assert.ok((await textOf(page, '#noticed')).includes(six(run.outcome.noticed.time)));
  const drawable = (name) => run.candidates.some((c) => c.bounds[name]);
  assert.equal(await page.locator('#measures figure').count(), run.plant.measures.filter((name) => run.measures[name]).length);
  assert.equal(await page.locator('#hypotheses tbody tr').count(), Math.min(20, run.hypotheses.length));
  assert.equal(await page.locator('#candidates tbody tr').count(), Math.min(20, run.candidates.length));
  for (const name of run.plant.measures.filter(drawable)) await measuredAt(page, run, name);
  const problems = await weakTexts(page);
  assert.deepEqual(problems, []);
  assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth));
}

/** The measure at the first, at the noticed and at the last step. */
async function measuredAt(page, run, name) {
  const figure = page.locator('#measures figure').nth(run.plant.measures.filter((m) => run.measures[m]).indexOf(name));
  const plot = figure.locator('.plot');
  await plot.scrollIntoViewIfNeeded();
  await plot.locator('canvas').waitFor();
  await plot.focus();
  const last = run.time.length - 1;
  for (const [key, step] of [['Home', 0], ['End', last]]) {
    await press(page, key);
    await frames(page);
    assert.ok((await moment(page)).includes(`step ${step}`));
    const value = run.measures[name][step];
    assert.match(squeezed(await figure.locator('.readout').innerText()), new RegExp(`^measured ${(value === null ? 'missing' : six(value)).replace(/[.+]/g, '\\$&')}( |$)`));
  }
}

const directory = process.env.TAVRO_REPORTS;
if (directory) {
  const files = readdirSync(directory).filter((name) => name.endsWith('.html')).map((name) => resolve(join(directory, name)));
  test('there are reports', () => assert.ok(files.length > 0, `none in ${directory}`));
  for (const file of files) pageTest(file, file, (page) => check(page, documentIn(file)));
} else {
  for (const name of ['healthy', 'explained', 'unexplained', 'stopped', 'discrete', 'big', 'hostile']) pageTest(name, made[name](), check);
}
