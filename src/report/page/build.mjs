// Bundles the page into one file: style sheets, scripts and the licences of the libraries, into index.html.
// Run by scripts/build-page, which has installed the libraries:  node build.mjs MODULES OUTPUT
import { createRequire } from 'node:module';
import { readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const [modules, output] = process.argv.slice(2);
const here = dirname(fileURLToPath(import.meta.url));
const { build, transform } = createRequire(join(modules, 'package.json'))('esbuild');

const target = 'es2022';
const libraries = ['uplot', '@dagrejs/dagre', '@dagrejs/graphlib'];

function licence(name) {
  const folder = join(modules, 'node_modules', name);
  const { version } = JSON.parse(readFileSync(join(folder, 'package.json'), 'utf8'));
  return { name, version, text: readFileSync(join(folder, 'LICENSE'), 'utf8').trim() };
}

async function scripts() {
  const result = await build({
    entryPoints: [join(here, 'code/main.js')], bundle: true, write: false, minify: true, target, format: 'iife', charset: 'ascii',
    nodePaths: [join(modules, 'node_modules')], legalComments: 'none', logLevel: 'warning',
    define: { LICENCES: JSON.stringify(libraries.map(licence)) },
  });
  return result.outputFiles[0].text.trim();
}

async function styles() {
  const own = ['colours', 'page', 'charts', 'print'].map((name) => readFileSync(join(here, 'style', `${name}.css`), 'utf8'));
  const all = [readFileSync(join(modules, 'node_modules/uplot/dist/uPlot.min.css'), 'utf8'), ...own].join('\n');
  return (await transform(all, { loader: 'css', minify: true, target })).code.trim();
}

const page = readFileSync(join(here, 'index.html'), 'utf8').replace('/*STYLE*/', await styles().then((s) => () => s)).replace('/*SCRIPT*/', await scripts().then((s) => () => s));
for (const [what, times] of [['<!--RUN-->', 1], ['</script', 1], ['</style', 1]])
  if (page.split(what).length - 1 !== times) throw new Error(`${what} stands in the page other than ${times} time`);
writeFileSync(output, page);
