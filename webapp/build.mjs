// Makes what the program serves out of the sources: node build.mjs OUT. OUT holds node_modules, and
// gets app.qrc with all that it names. A file's name tells its content, so that browsers may keep it
// for good; head.html says which ones a page begins with.

import { createRequire } from 'node:module';
import { mkdir, rm, writeFile } from 'node:fs/promises';
import { basename, dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { brotliCompressSync, constants, gzipSync } from 'node:zlib';

const source = join(dirname(fileURLToPath(import.meta.url)), 'src');
const out = resolve(process.argv[2]);
const files = join(out, 'files');

async function bundle() {
  const { build } = createRequire(join(out, 'package.json'))('esbuild');
  return build({
    entryPoints: ['main.js', 'style/main.css', 'mark.svg'].map(name => join(source, name)),
    outdir: files,
    nodePaths: [join(out, 'node_modules')],
    bundle: true,
    splitting: true,
    minify: true,
    format: 'esm',
    target: ['chrome109', 'firefox115', 'safari16.4'],
    loader: { '.svg': 'copy' },
    entryNames: '[name]-[hash]',
    chunkNames: '[name]-[hash]',
    metafile: true,
    write: false,
  });
}

const compressions = {
  '': content => content,
  '.br': content => brotliCompressSync(content, { params: { [constants.BROTLI_PARAM_QUALITY]: 11 } }),
  '.gz': content => gzipSync(content, { level: 9 }),
};

async function write({ path, contents }) {
  const name = basename(path);
  const names = [];
  for (const [ending, compress] of Object.entries(compressions)) {
    await writeFile(join(files, name + ending), compress(contents));
    names.push(name + ending);
  }
  return names;
}

// `{app}` stands for the path of the files, which depends on who asks, `{nonce}` for what the policy of
// one page trusts its scripts by.
function head({ outputs }) {
  const [script, style, mark] = ['main.js', 'main.css', 'mark.svg'].map(name => Object.keys(outputs).find(
    output => outputs[output].entryPoint?.endsWith(name)));
  const chunks = outputs[script].imports.filter(({ kind }) => kind === 'import-statement');
  return [
    `<link rel="stylesheet" href="{app}/${basename(style)}">`,
    `<link rel="icon" href="{app}/${basename(mark)}">`,
    ...chunks.map(({ path }) => `<link rel="modulepreload" nonce="{nonce}" href="{app}/${basename(path)}">`),
    `<script type="module" nonce="{nonce}" src="{app}/${basename(script)}"></script>`,
  ].join('');
}

await rm(files, { recursive: true, force: true });
await mkdir(files, { recursive: true });
const { outputFiles, metafile } = await bundle();
await writeFile(join(files, 'head.html'), head(metafile));
const names = ['head.html', ...(await Promise.all(outputFiles.map(write))).flat()];
const entries = names.map(name => `<file alias="${name}">files/${name}</file>`).join('\n');
await writeFile(join(out, 'app.qrc'), `<RCC><qresource prefix="/app">\n${entries}\n</qresource></RCC>\n`);
