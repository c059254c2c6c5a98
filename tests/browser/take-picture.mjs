// Takes a picture of a report:  node take-picture.mjs REPORT.html PICTURE.png [width] [light|dark] [selector]
// With a selector the picture is of that part alone; else it is of the whole page.
import { launch, open } from './browser.mjs';
import { resolve } from 'node:path';

const [report, picture, width = '1280', colorScheme = 'light', selector] = process.argv.slice(2);
const browser = await launch();
const { page, troubles } = await open(browser, resolve(report), { viewport: { width: Number(width), height: 900 }, colorScheme, deviceScaleFactor: 1.5 });
// Charts are drawn once they come into sight.
const height = await page.evaluate(() => document.documentElement.scrollHeight);
for (let y = 0; y < height; y += 600) {
  await page.evaluate((to) => scrollTo({ top: to, behavior: 'instant' }), y);
  await page.waitForTimeout(120);
}
await page.evaluate(() => scrollTo({ top: 0, behavior: 'instant' }));
await page.waitForTimeout(200);
if (selector) await page.locator(selector).first().screenshot({ path: picture });
else await page.screenshot({ path: picture, fullPage: true });
for (const trouble of troubles) console.error(trouble);
await browser.close();
