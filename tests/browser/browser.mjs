// The browser of the tests: Debian's Chromium, driven through the library that scripts/build-page installs.
import { createRequire } from 'node:module';
import { execFileSync } from 'node:child_process';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

export const root = resolve(dirname(fileURLToPath(import.meta.url)), '../..');
export const builtPage = process.env.TAVRO_PAGE ?? join(root, 'build/page/report.html');
const { chromium } = createRequire(join(root, 'build/page/package.json'))('playwright-core');

const program = () => process.env.CHROMIUM ?? execFileSync('sh', ['-c', 'command -v chromium || command -v chromium-browser'], { encoding: 'utf8' }).trim();

/** Sandboxes of the browser do not work for root, in a container for instance. */
export const launch = () => chromium.launch({ executablePath: program(), args: process.getuid?.() === 0 ? ['--no-sandbox'] : [] });

/**
 * A report, opened as a user does. What the page complained of or asked the network for is in `troubles`;
 * a test ends with looking there.
 */
export async function open(browser, file, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 900 }, colorScheme: 'light', ...options });
  const page = await context.newPage();
  const troubles = [];
  page.on('console', (message) => ['error', 'warning'].includes(message.type()) && troubles.push(message.text()));
  page.on('pageerror', (error) => troubles.push(String(error)));
  page.on('dialog', (dialog) => { troubles.push(`dialog: ${dialog.message()}`); dialog.dismiss(); });
  const url = pathToFileURL(file).href;
  page.on('request', (request) => request.url() !== url && !request.url().startsWith('data:') && troubles.push(`request: ${request.url()}`));
  await page.goto(url);
  return { page, troubles, close: () => context.close() };
}
