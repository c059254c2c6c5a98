// Writes reports of the made-up documents:  node write-reports.mjs DIRECTORY [NAME]...
import { mkdirSync } from 'node:fs';
import { join } from 'node:path';
import { documents } from './documents.mjs';
import { builtPage } from './browser.mjs';
import { writeReport } from './render.mjs';

const [directory, ...names] = process.argv.slice(2);
mkdirSync(directory, { recursive: true });
for (const name of names.length ? names : Object.keys(documents)) writeReport(builtPage, documents[name](), join(directory, `${name}.html`));
