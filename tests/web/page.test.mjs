// The web page in headless Chromium (Debian's), driven by Playwright: typing, the canvas, paste, the
// break, files and the unsaved program kept across a reload, #run= links. Reads the console through #screen-text.
//   node --test tests/web    (after make web; make test-web does both)
import { after, before, test } from 'node:test';
import assert from 'node:assert/strict';
import { existsSync, mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const build = join(dirname(fileURLToPath(import.meta.url)), '..', '..', 'build-web');
const browser_path = process.env.VEXIL_CHROMIUM || '/usr/bin/chromium';
const wait = { timeout: 30000 };

let server, browser, profile, base_url;

before(async () => {
  assert.ok(existsSync(join(build, 'vexil.wasm')), 'build-web/ is missing: run make web');
  const { serve } = await import(pathToFileURL(join(build, 'serve.mjs')).href);
  server = await serve(build, 0);
  base_url = `http://127.0.0.1:${server.address().port}/index.html`;
  // A fresh profile, kept for the whole run so that files outlive a reload.
  profile = mkdtempSync(join(tmpdir(), 'vexil-chromium-'));
  browser = await chromium.launchPersistentContext(profile, {
    executablePath: browser_path,
    headless: true,
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync', '--disable-dev-shm-usage'],
  });
});

after(async () => {
  await browser?.close();
  server?.close();
  if (profile) rmSync(profile, { recursive: true, force: true });
});

const screen = page => page.locator('#screen-text').textContent();

// Waits until the console's text matches.
async function screen_shows(page, pattern) {
  await page.waitForFunction(source => new RegExp(source, 'm').test(document.getElementById('screen-text').textContent),
    pattern.source, wait);
}

// Each page starts without the unsaved program an earlier test left; a reload of it keeps its own.
async function open_page(hash = '') {
  const page = await browser.newPage();
  await page.addInitScript(() => {
    if (sessionStorage.getItem('opened') !== null) return;
    sessionStorage.setItem('opened', 'yes');
    localStorage.removeItem('vexil-unsaved-program');
  });
  const errors = [];
  page.on('pageerror', error => errors.push(error.message));
  page.errors = errors;
  await page.goto(base_url + hash);
  return page;
}

async function ready_page() {
  const page = await open_page();
  await screen_shows(page, /^Ok$/);
  return page;
}

// Types each line and Enter after it.
async function enter(page, ...lines) {
  for (const line of lines) {
    await page.keyboard.type(line);
    await page.keyboard.press('Enter');
  }
}

test('keys typed while the engine still loads are kept', async () => {
  const page = await browser.newPage();
  let release_engine;
  const typed = new Promise(resolve => { release_engine = resolve; });
  await page.route('**/vexil.wasm', async route => { await typed; await route.continue(); });
  await page.goto(base_url);
  await page.keyboard.type('print 6*7\n');
  release_engine();
  await screen_shows(page, /^print 6\*7\n42\nOk$/);
  await page.close();
});

test('the page shows the banner and Ok, then a typed program runs into #screen-text', async t => {
  const page = await ready_page();
  assert.match(await screen(page), /^VEXIL v0\.0\.7\n.*\nOk\n/);
  assert.equal(await page.evaluate(() => crossOriginIsolated), true);
  t.diagnostic(`load to Ok: ${Math.round(await page.evaluate(() => vexil_page.first_ok_ms))} ms`);
  await enter(page, '10 for i=1 to 3', '20 print "row " + i*i', '30 next', 'run');
  await screen_shows(page, /^row 9\nOk$/);
  assert.match(await screen(page), /^row 1\nrow 4\nrow 9\nOk\n/m);
  // Editing keys: left twice, delete, back space, then Enter on the edited line.
  await page.keyboard.type('print 1234');
  for (const key of ['ArrowLeft', 'ArrowLeft', 'Delete', 'Backspace', 'Enter'])
    await page.keyboard.press(key);
  await screen_shows(page, /^print 14\n14\nOk$/);
  assert.deepEqual(page.errors, []);
  await page.close();
});

test('set_pixel shows on the canvas at its place and in its colour', async () => {
  const page = await ready_page();
  await enter(page, 'set_pixel 600, 400, rgb(63, 0, 0): set_pixel 601, 400, rgb(0, 0, 63)');
  const pixel = (x, y) => page.evaluate(([x, y]) =>
    Array.from(document.getElementById('screen').getContext('2d').getImageData(x, y, 1, 1).data), [x, y]);
  await page.waitForFunction(() =>
    document.getElementById('screen').getContext('2d').getImageData(600, 400, 1, 1).data[0] === 255, null, wait);
  assert.deepEqual(await pixel(600, 400), [255, 0, 0, 255]);
  assert.deepEqual(await pixel(601, 400), [0, 0, 255, 255]);
  assert.deepEqual(await pixel(600, 401), [0, 0, 0, 255]);
  assert.deepEqual(await pixel(599, 400), [0, 0, 0, 255]);
  await page.close();
});

test('a paste of 2000 characters loses none', async () => {
  const page = await ready_page();
  // 100 program lines of 19 characters and a line end each: the saved file must hold every one. The
  // last comment ends in a character the console cannot show, typed as one "?".
  const bodies = Array.from({ length: 100 }, (_, index) => `ix=ix+${String(index + 1).padStart(3, '0')}'paste`);
  bodies[99] = bodies[99].replace(/e$/, '\u00e9');
  const text = bodies.map((body, index) => `${100 + index} ${body}\n`).join('');
  assert.equal(text.length, 2000);
  await page.evaluate(text => {
    const data = new DataTransfer();
    data.setData('text/plain', text);
    document.dispatchEvent(new ClipboardEvent('paste', { clipboardData: data, bubbles: true }));
  }, text);
  await enter(page, 'run', 'print ix');
  await screen_shows(page, /^5050\nOk$/);
  await enter(page, 'save "paste.bas"');
  await screen_shows(page, /^save "paste.bas"\nOk$/);
  const saved = await page.evaluate(() => FS.readFile('/vexil/paste.bas', { encoding: 'utf8' }));
  bodies[99] = bodies[99].replace(/\u00e9$/, '?');
  assert.deepEqual(saved.split(/\r?\n/).filter(line => line !== ''), bodies);
  await page.close();
});

test('Control+C breaks an endless loop', async () => {
  const page = await ready_page();
  await enter(page, '10 print "looping"', '20 $a: goto $a', 'run');
  await screen_shows(page, /^looping$/);
  await page.keyboard.press('Control+c');
  await screen_shows(page, /^Break at 20\.\nOk$/);
  // The console takes keys again, and a long sleep is broken too.
  await enter(page, 'print 2+2: sleep 600000');
  await screen_shows(page, /^4$/);
  await page.keyboard.press('Control+c');
  await screen_shows(page, /^Break\.\nOk$/);
  await page.close();
});

test('save, a reload and load bring a program back; data files are kept too', async () => {
  let page = await ready_page();
  await enter(page, '10 print "kept across a reload"', 'save "kept.bas"',
    'fwopen 1, "data.txt": fprint 1, "data line": fclose 1');
  await screen_shows(page, /fclose 1\nOk$/);
  await page.waitForFunction(() => vexil_page.files_kept, null, wait);
  await page.click('#menu-button');
  assert.match(await page.locator('#file-list').textContent(), /data\.txt.*kept\.bas/);
  // A channel still open at exit keeps what was written to it.
  await page.click('#screen');
  await enter(page, 'fwopen 3, "open.txt": fprint 3, "written before exit": exit');
  await page.waitForFunction(() => document.body.dataset.state === 'ended' && vexil_page.files_kept, null, wait);
  await page.close();

  page = await ready_page();
  await enter(page, 'load "kept.bas"', 'list');
  await screen_shows(page, /^100 print "kept across a reload"\nOk$/);
  await enter(page, 'fropen 2, "data.txt": print finput(2): fclose 2');
  await screen_shows(page, /^data line$/);
  await enter(page, 'fropen 3, "open.txt": print finput(3)');
  await screen_shows(page, /^written before exit$/);
  await page.close();
});

test('an unsaved program comes back after a reload, until it is saved', async () => {
  const page = await ready_page();
  await enter(page, '10 print "unsaved"');
  await page.waitForFunction(() => /print "unsaved"/.test(localStorage.getItem('vexil-unsaved-program')), null, wait);
  await page.reload();
  await page.locator('#status', { hasText: 'not saved in the last session is back' }).waitFor(wait);
  await enter(page, 'list');
  await screen_shows(page, /^100 print "unsaved"\nOk$/);
  // Saved, it is no longer kept apart: the next reload starts empty.
  await enter(page, 'save "unsaved.bas"');
  await page.waitForFunction(() => localStorage.getItem('vexil-unsaved-program') === null, null, wait);
  await page.reload();
  await enter(page, 'list');
  await screen_shows(page, /^list\nOk$/);
  assert.equal(await page.locator('#status').textContent(), '');
  await page.close();
});

test('a .bas file from the file picker and one dropped are loaded; copy link makes a #run= link that runs it', async () => {
  const page = await ready_page();
  await browser.grantPermissions(['clipboard-read', 'clipboard-write']);
  await page.click('#menu-button');
  await page.setInputFiles('#file-picker',
    { name: 'my picked.bas', mimeType: 'text/plain', buffer: Buffer.from('print "picked"\r\nend\r\n') });
  await screen_shows(page, /^load "mypicked\.bas"\nOk$/);
  await enter(page, 'run');
  await screen_shows(page, /^picked\nOk$/);
  await page.evaluate(() => {
    const data = new DataTransfer();
    data.items.add(new File(['print "dropped " + 3*3\n'], 'drop.bas', { type: 'text/plain' }));
    document.getElementById('screen').dispatchEvent(new DragEvent('drop', { dataTransfer: data, bubbles: true }));
  });
  await screen_shows(page, /^load "drop\.bas"\nOk$/);
  await page.waitForFunction(() => vexil_page.files_kept, null, wait);
  await page.click('#menu-button');
  await page.locator('#file-list li', { hasText: 'drop.bas' }).getByRole('button', { name: 'copy link' }).click();
  await page.locator('#status', { hasText: 'copied' }).waitFor(wait);
  const link = await page.evaluate(() => navigator.clipboard.readText());
  assert.match(link, /index\.html#run=print%20%22dropped/);
  await page.close();
  const shared = await open_page(link.replace(/^.*#/, '#'));
  await screen_shows(shared, /^dropped 9$/);
  await shared.close();
});

test('a #run= link whose program cannot be loaded says why and waits at Ok', async () => {
  const page = await open_page('#run=' + encodeURIComponent(`print "never"\nprint "${'x'.repeat(300)}"\n`));
  await page.locator('#status', { hasText: '"/tmp/link.bas" line 2: Too long line' }).waitFor(wait);
  assert.match(await screen(page), /^VEXIL v0\.0\.7\n.*\nOk\n$/);
  await page.close();
});
