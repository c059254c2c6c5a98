// What the tests of the page share: one browser per test file, reports of made-up documents, and the
// questions that each test asks of a page.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { builtPage, launch, open } from './browser.mjs';
import { writeReport } from './render.mjs';

let browser;
let directory;
before(async () => {
  browser = await launch();
  directory = mkdtempSync(join(tmpdir(), 'tavro-page-'));
});
after(async () => {
  await browser?.close();
  rmSync(directory, { recursive: true, force: true });
});

let reports = 0;

/** A test with a page that shows `run` (or a file, if it is a text); it must not complain of anything. */
export function pageTest(name, run, check, options = {}) {
  test(name, async () => {
    let file = run;
    if (typeof run !== 'string') {
      file = join(directory, `${++reports}.html`);
      writeReport(builtPage, run, file);
    }
    const { page, troubles, close } = await open(browser, file, options);
    try {
      await check(page, run);
      assert.deepEqual(troubles, []);
    } finally {
      await close();
    }
  });
}

/** Texts as a reader sees them, blanks taken together. */
export const textOf = async (page, selector) => (await page.locator(selector).first().innerText()).replace(/\s+/g, ' ').trim();
export const readout = (page, variable) => textOf(page, `[data-readout="${variable}"]`);
export const moment = (page) => page.locator('#moment').innerText();
export const sight = (page) => page.locator('#sight').innerText();

/** The plot of a variable, in sight and drawn. */
export async function plotOf(page, variable) {
  const plot = page.locator(`figure[data-variable="${variable}"] .plot`);
  await plot.scrollIntoViewIfNeeded();
  await plot.locator('canvas').waitFor();
  await frames(page);
  return plot;
}

/** Waits until what was asked for has been drawn. */
export const frames = (page) => page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => requestAnimationFrame(done)))));

export async function press(page, ...keys) {
  for (const key of keys) await page.keyboard.press(key);
  await frames(page);
}

/** By column of pixels of a canvas, the first and the last row with a colour near to `rgb`, or null. */
export const inkByColumn = (plot, rgb, near = 60) =>
  plot.locator('canvas').evaluate((canvas, [[r, g, b], limit]) => {
    // Of a copy: a browser warns of a canvas that is drawn on and read in turns.
    const copied = (from) => {
      const copy = Object.assign(document.createElement('canvas'), { width: from.width, height: from.height }).getContext('2d', { willReadFrequently: true });
      copy.drawImage(from, 0, 0);
      return copy;
    };
    const { width, height } = canvas;
    const { data } = copied(canvas).getImageData(0, 0, width, height);
    const columns = new Array(width).fill(null);
    for (let x = 0; x < width; x++)
      for (let y = 0; y < height; y++) {
        const i = 4 * (y * width + x);
        if (data[i + 3] < 128 || Math.abs(data[i] - r) + Math.abs(data[i + 1] - g) + Math.abs(data[i + 2] - b) > limit) continue;
        if (columns[x]) columns[x][1] = y;
        else columns[x] = [y, y];
      }
    return columns;
  }, [rgb, near]);
