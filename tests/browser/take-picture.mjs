// Takes a picture of a report:  node take-picture.mjs REPORT.html PICTURE.png [WIDTHxHEIGHT] [light|dark]
// What a window of that size shows, from the top of the page; without a height the whole page.
import { resolve } from 'node:path';
import { launch, open } from './browser.mjs';

const [report, picture, size = '1280', colorScheme = 'light'] = process.argv.slice(2);
const [width, height] = size.split('x').map(Number);
const browser = await launch();
const { page, troubles } = await open(browser, resolve(report), { viewport: { width, height: height ?? 900 }, colorScheme });
// Charts are drawn once they come into sight.
const whole = await page.evaluate(() => document.documentElement.scrollHeight);
for (let y = 0; y < whole && !height; y += 600) {
  await page.evaluate((top) => scrollTo({ top, behavior: 'instant' }), y);
  await page.waitForTimeout(120);
}
await page.evaluate(() => scrollTo({ top: 0, behavior: 'instant' }));
await page.waitForTimeout(500);
await page.screenshot({ path: picture, fullPage: !height });
for (const trouble of troubles) console.error(trouble);
await browser.close();
