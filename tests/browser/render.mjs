// Puts a document into the page, as reportOf() of src/report/page.h does; for tests and pictures.
import { readFileSync, writeFileSync } from 'node:fs';

export const reportOf = (page, run) =>
  page.replace('<!--RUN-->', () => `<script type="application/json" id="run">${JSON.stringify(run).replaceAll('<', '\\u003c')}</script>`);

export function writeReport(pageFile, run, file) {
  writeFileSync(file, reportOf(readFileSync(pageFile, 'utf8'), run));
}
