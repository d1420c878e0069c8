// The benchmark programs in the web page (headless Chromium) against the native headless binary.
// Each program runs as a #run= link with `exit` typed behind it, timed in the page from the engine's
// start to the end of its session; the binary is timed from its start to its exit. Best of RUNS runs.
// Then the time from opening the page to the first Ok on its screen.
//   make web && make && node bench/web.mjs [PROGRAM.bas...]       (after make test-web's npm ci)
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, readdirSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const root = join(dirname(fileURLToPath(import.meta.url)), '..');
const { chromium } = createRequire(join(root, 'tests/web/package.json'))('playwright-core');
const { serve } = await import(pathToFileURL(join(root, 'build-web/serve.mjs')).href);
const native = process.env.VEXIL || join(root, 'build/vexil');
const runs = Number(process.env.RUNS || 3);
const programs = process.argv.length > 2 ? process.argv.slice(2)
  : readdirSync(join(root, 'bench')).filter(name => name.endsWith('.bas')).map(name => join('bench', name));

// The time, and the last line the program printed, so that both faces are seen to do the same work.
function native_run(program) {
  const start = process.hrtime.bigint();
  const output = execFileSync(native, ['--headless', program], { cwd: root, stdio: ['ignore', 'pipe', 'inherit'], maxBuffer: 1 << 28 });
  return { ms: Number(process.hrtime.bigint() - start) / 1e6, last: last_line(output.toString()) };
}

function last_line(text) {
  return text.split('\n').map(line => line.trimEnd()).filter(line => !['', 'exit', 'Ok'].includes(line)).pop();
}

async function page_ms(browser, url, program) {
  const page = await browser.newPage();
  await page.goto(url + '#run=' + encodeURIComponent(readFileSync(join(root, program), 'utf8')));
  await page.waitForFunction(() => vexil_page.started_ms !== null);
  await page.evaluate(() => type_text('exit\n'));
  await page.waitForFunction(() => vexil_page.ended_ms !== null, null, { timeout: 600000, polling: 100 });
  const ms = await page.evaluate(() => vexil_page.ended_ms - vexil_page.started_ms);
  const last = last_line(await page.locator('#screen-text').textContent());
  await page.close();
  return { ms, last };
}

async function best(measure) {
  let least = { ms: Infinity };
  for (let run = 0; run < runs; ++run) {
    const result = await measure();
    if (result.ms < least.ms) least = result;
  }
  return least;
}

const server = await serve(join(root, 'build-web'), 0);
const profile = mkdtempSync(join(tmpdir(), 'vexil-bench-'));
const browser = await chromium.launchPersistentContext(profile, {
  executablePath: process.env.VEXIL_CHROMIUM || '/usr/bin/chromium', headless: true,
  args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking'],
});
const url = `http://127.0.0.1:${server.address().port}/index.html`;
console.log('program              native ms    page ms   page/native');
for (const program of programs) {
  const native_result = await best(async () => native_run(program));
  const page_result = await best(() => page_ms(browser, url, program));
  if (page_result.last !== native_result.last)
    throw new Error(`${program}: the page ended with "${page_result.last}", the binary with "${native_result.last}"`);
  console.log(`${program.padEnd(20)} ${native_result.ms.toFixed(0).padStart(9)} ${page_result.ms.toFixed(0).padStart(10)} ` +
    `${(page_result.ms / native_result.ms).toFixed(2).padStart(12)}`);
}
const load_result = await best(async () => {
  const page = await browser.newPage();
  await page.goto(url);
  await page.waitForFunction(() => vexil_page.first_ok_ms !== null);
  const ms = await page.evaluate(() => vexil_page.first_ok_ms);
  await page.close();
  return { ms };
});
console.log(`load to Ok: ${load_result.ms.toFixed(0)} ms (from the start of navigation, best of ${runs})`);
await browser.close();
server.close();
rmSync(profile, { recursive: true, force: true });
