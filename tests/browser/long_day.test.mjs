// A hundred thousand steps open within seconds, and moving through them does not hold up the page. What is
// counted is the processor time of the page's own thread. The limits are wide, some ten times what is seen: they
// tell a page that draws every step from one that draws what the screen can show, on any machine.
import assert from 'node:assert/strict';
import * as documents from './documents.mjs';
import { frames, moment, pageTest, plotOf, press, sight } from './pages.mjs';

/** Milliseconds of processor time that the page has taken so far. */
async function meter(page) {
  const session = await page.context().newCDPSession(page);
  await session.send('Performance.enable', { timeDomain: 'threadTicks' });
  return async () => 1000 * (await session.send('Performance.getMetrics')).metrics.find((m) => m.name === 'TaskDuration').value;
}

/** What one of these moves takes, on average. */
async function perMove(page, keys) {
  const taken = await meter(page);
  const before = await taken();
  for (const key of keys) await press(page, key);
  return ((await taken()) - before) / keys.length;
}

pageTest('a hundred thousand steps', documents.long(100000), async (page, run) => {
  const taken = await meter(page);
  const before = await taken();
  await page.reload();
  const plot = await plotOf(page, 'room.xd');
  const opening = (await taken()) - before;
  assert.ok(opening < 15000, `opened in ${Math.round(opening)} ms`);
  await plot.focus();
  for (const keys of [['+', '-', '+'], ['+', '+', ',', '.'], new Array(10).fill('ArrowLeft'), ['-', '-', '0']]) {
    const move = await perMove(page, keys);
    assert.ok(move < 400, `${Math.round(move)} ms for each of ${keys.join(' ')}`);
  }
  await press(page, '0', 'End');
  assert.equal(await sight(page), '0 to 99999 s in sight');
  assert.match(await moment(page), /^99999 s · step 99999 · 1 candidate/);
  const value = String(Number(run.measures['room.xd'].at(-1).toPrecision(6)));
  assert.ok((await page.locator('[data-readout="room.xd"]').innerText()).includes(value));
});

pageTest('a hundred bands at a time', documents.crowd(), async (page) => {
  const plot = await plotOf(page, 'room.xd');
  await page.getByRole('button', { name: 'Show all' }).click();
  await frames(page);
  await plot.focus();
  const move = await perMove(page, ['+', '+', 'ArrowLeft', 'ArrowLeft', 'ArrowRight', '-']);
  assert.ok(move < 1500, `${Math.round(move)} ms for a move`);
});
