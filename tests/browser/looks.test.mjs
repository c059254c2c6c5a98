// How the page looks: contrast in light, in dark and on paper; from a phone to a wide screen without
// scrolling sideways; everything that can be used has a name and can be reached.
import assert from 'node:assert/strict';
import * as documents from './documents.mjs';
import { frames, pageTest, plotOf } from './pages.mjs';
import { weakTexts } from './contrast.mjs';

const readable = async (page) => {
  await page.locator('#graph').scrollIntoViewIfNeeded();
  await page.locator('#graph .graph-frame svg').waitFor();
  assert.deepEqual(await weakTexts(page), []);
};
const ground = (page) => page.evaluate(() => getComputedStyle(document.body).backgroundColor);

for (const name of ['healthy', 'explained', 'unexplained', 'stopped'])
  for (const colorScheme of ['light', 'dark'])
    pageTest(`${name} is readable in ${colorScheme}`, documents[name](), readable, { colorScheme });

pageTest('the reader chooses the colours, which are remembered', documents.explained(), async (page) => {
  const light = await ground(page);
  await page.getByText('Dark', { exact: true }).click();
  const dark = await ground(page);
  assert.notEqual(dark, light);
  await readable(page);
  await page.reload();
  assert.equal(await ground(page), dark);
  await page.getByText('Light', { exact: true }).click();
  assert.equal(await ground(page), light);
});

pageTest('paper is light, without controls, with charts of one width', documents.explained(), async (page) => {
  await page.emulateMedia({ media: 'print', colorScheme: 'dark' });
  await frames(page);
  assert.equal(await ground(page), 'rgb(255, 255, 255)');
  assert.equal(await page.locator('.buttons:visible, .segmented:visible, nav:visible').count(), 0);
  const widths = await page.locator('.plot canvas').evaluateAll((all) => all.map((canvas) => canvas.clientWidth));
  assert.equal(widths.length, 5); // the time line, one measure, two variables, one input
  assert.deepEqual([...new Set(widths)], [660]);
  await readable(page);
  await page.emulateMedia({ media: 'screen' });
  await frames(page);
  assert.equal(await page.locator('.buttons:visible').count(), 1);
}, { colorScheme: 'dark' });

for (const name of ['explained', 'crowd', 'hostile', 'discrete'])
  pageTest(`${name} fits a phone and a wide screen`, documents[name](name === 'explained' ? 120 : 60), async (page) => {
    if (name !== 'discrete') await plotOf(page, await page.locator('figure[data-variable]').first().getAttribute('data-variable'));
    for (const width of [320, 360, 768, 1280, 2560]) {
      await page.setViewportSize({ width, height: 740 });
      await frames(page);
      const wide = await page.evaluate(() => document.documentElement.scrollWidth);
      assert.ok(wide <= width, `${wide} pixels wide in ${width}`);
    }
  });

pageTest('all that can be used has a name', documents.crowd(60), async (page) => {
  await page.evaluate(() => document.querySelectorAll('details').forEach((d) => (d.open = true)));
  const nameless = await page.evaluate(() => [...document.querySelectorAll('button, input, select, a, [tabindex="0"], [role="img"]')]
    .filter((node) => !(node.getAttribute('aria-label') || node.textContent.trim() || node.labels?.[0]?.textContent.trim() || node.closest('label')?.textContent.trim()))
    .map((node) => node.outerHTML));
  assert.deepEqual(nameless, []);
});

pageTest('the keyboard reaches the charts', documents.explained(), async (page) => {
  const reached = new Set();
  for (let i = 0; i < 60; i++) {
    await page.keyboard.press('Tab');
    reached.add(await page.evaluate(() => document.activeElement.getAttribute('aria-label') ?? document.activeElement.textContent));
  }
  for (const part of ['room.xd over time', 'room.x over time', 'Zoom in', 'Causal graph', 'Modes, alarms and diagnoses over time'])
    assert.ok(reached.has(part), `${part} is reached`);
});
