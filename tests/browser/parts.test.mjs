// The causal graph, the histories, the tables, and what was run.
import assert from 'node:assert/strict';
import * as documents from './documents.mjs';
import { frames, pageTest, textOf } from './pages.mjs';

const graph = async (page) => {
  await page.locator('#graph').scrollIntoViewIfNeeded();
  await page.locator('#graph .graph-frame svg').waitFor();
  return page.locator('#graph .graph-frame');
};

pageTest('the graph lights suspects and marks measures in alarm', documents.explained(), async (page) => {
  const frame = await graph(page);
  assert.equal(await frame.locator('.node').count(), 4); // three variables and the input
  assert.equal(await frame.locator('path.edge').count(), 4); // R1.i4 and R1.i5 go between the same two
  assert.equal(await frame.locator('path.edge.lit').count(), 3);
  assert.equal(await frame.locator('.node.alarm').getAttribute('data-node'), 'room.xd');
  assert.equal(await frame.locator('.node.measured').count(), 1);
  assert.match(await frame.locator('svg').getAttribute('aria-label'), /suspects: R1.i4, T1.i1, R1.i6; in alarm: room.xd/);
  assert.match(await textOf(page, '.suspect-sets'), /R1.i4 when room.mode=closed T1.i1 when thermostat.mode=on and R1.i6 1 step before when room.mode=closed/);
});

pageTest('of a large plant the neighbourhood, then all', documents.big(150, 60), async (page) => {
  const frame = await graph(page);
  // By hand: the suspects K8.i1 and K10.i1 join tanks 7, 8, 9 and 10; two steps from these along the chain
  // and the shortcuts (0 to 7, 5 to 12, 10 to 17) are 0, 1, 5, 6, 11, 12, 16, 17 and 18.
  assert.equal(await frame.locator('.node').count(), 13);
  await page.getByLabel('Show all 150 variables').check();
  await frames(page);
  assert.equal(await frame.locator('.node').count(), 150);
});

pageTest('histories begin as one and part', documents.explained(), async (page) => {
  const frame = page.locator('#histories');
  assert.equal(await frame.locator('.node.history').count(), 4);
  assert.equal(await frame.locator('.node.failure').count(), 3);
  assert.match(await textOf(page, '#histories'), /24 s ✕ thermostat: on → stuck_on/);
  assert.equal(await frame.locator('.end').count(), 3);
});

const range = (page, id) => textOf(page, `#${id} .where`);
const column = (page, id, n) => page.locator(`#${id} tbody tr td:nth-child(${n})`).allInnerTexts();

pageTest('thousands of candidates are a page of rows at a time', documents.crowd(), async (page, run) => {
  assert.equal(run.candidates.length, 3103);
  assert.equal(await range(page, 'candidates'), '1 to 20 of 3,103');
  assert.equal(await page.locator('#candidates tbody tr').count(), 20);
  await page.locator('#candidates').getByRole('button', { name: 'Next' }).click();
  assert.equal(await range(page, 'candidates'), '21 to 40 of 3,103');
  assert.equal((await column(page, 'candidates', 2))[0], '20');
});

pageTest('tables are sorted and sifted', documents.crowd(), async (page, run) => {
  const id = page.locator('#candidates').getByRole('button', { name: 'Candidate', exact: true });
  await id.click();
  await id.click();
  assert.equal(await page.locator('#candidates th[aria-sort]').getAttribute('aria-sort'), 'descending');
  assert.deepEqual((await column(page, 'candidates', 2)).slice(0, 3), ['3102', '3101', '3100']);
  await page.locator('#hypotheses').getByLabel('Rows that hold').fill('valve7 ');
  assert.equal(await page.locator('#hypotheses tbody tr').count(), 1);
  assert.deepEqual(await column(page, 'hypotheses', 2), ['8']);
  const own = run.hypotheses[7];
  assert.deepEqual(await column(page, 'hypotheses', 6), [String(own.first)]);
  assert.deepEqual(await column(page, 'hypotheses', 9), [String(run.candidates.filter((c) => c.hypothesis === 7).length)]);
});

pageTest('hypotheses are followed and shown from their table', documents.crowd(60, 20, 10), async (page) => {
  await page.getByRole('checkbox', { name: 'Show hypothesis 2', exact: true }).uncheck();
  await page.locator('#hypotheses').getByRole('button', { name: 'valve4 closed' }).click();
  await frames(page);
  assert.equal(await page.getByLabel('Modes of').inputValue(), '4');
  assert.equal(await page.locator('.chip', { hasText: /valve1 / }).getAttribute('aria-pressed'), 'false');
});

pageTest('what was run, and whose libraries draw it', documents.explained(), async (page) => {
  const about = await textOf(page, '#about');
  for (const part of ['File of the plant plants/room/room.plant', 'Measures from day.csv', 'Rules sharp', 'Noise all measures 0.02', 'Exit status 10', 'Tavro 0.1.0', 'Alarm after 3 measures in a row'])
    assert.ok(about.includes(part), part);
  await page.getByText('Licences of the libraries in this page').click();
  const licences = await textOf(page, '.licences');
  for (const part of ['uplot 1.', '@dagrejs/dagre 3.', 'Permission is hereby granted']) assert.ok(licences.includes(part), part);
});
