// The page around the engine: the canvas and #screen-text, keys and paste, the files kept in the
// browser (IndexedDB, mounted as the working directory), the unsaved program kept in localStorage and
// the menu. The engine runs on threads of its own (vexil.js), so nothing here ever waits for it: keys
// are queued, and each animation frame takes the image only when it changed.
'use strict';

const home = '/vexil';              // the working directory: saved programs and data files
const run_file = '/tmp/link.bas';   // a #run= program, not kept
const kept_program_file = '/tmp/unsaved.bas';  // the session keeps the unsaved program here
const kept_program_key = 'vexil-unsaved-program';  // and the page keeps it in localStorage
const canvas = document.getElementById('screen');
const context = canvas.getContext('2d');
const screen_text = document.getElementById('screen-text');
const status_line = document.getElementById('status');
const menu = document.getElementById('menu');
const menu_button = document.getElementById('menu-button');
const file_picker = document.getElementById('file-picker');
const file_list = document.getElementById('file-list');

// What tests and the benchmark read: when Ok first showed, when the session ended, whether every
// closed write is in IndexedDB.
const vexil_page = { first_ok_ms: null, started_ms: null, ended_ms: null, files_kept: true };

// Editing keys as engine key codes; printable characters come from event.key.
const key_codes = {
  Enter: 13, Backspace: 8, Tab: 9, Delete: 19, Insert: 18,
  ArrowRight: 28, ArrowLeft: 29, ArrowUp: 30, ArrowDown: 31,
  Home: 0, End: 0, PageUp: 0, PageDown: 0,  // nothing, as in the window
};

// As the window types them: printable ASCII as itself, any other printable character as one "?",
// control characters not at all (0).
function character_code(character) {
  const code = character.codePointAt(0);
  if (code >= 32 && code <= 126) return code;
  return code < 32 || (code >= 127 && code < 160) ? 0 : 63;
}

// Pasted text as keys: a line end (LF, CR or CR LF) is one Enter, a tab is Tab.
function text_codes(text) {
  const codes = [];
  for (const character of text.replace(/\r\n?/g, '\n')) {
    if (character === '\n') codes.push(13);
    else if (character === '\t') codes.push(9);
    else if (character_code(character) !== 0) codes.push(character_code(character));
  }
  return codes;
}

// Keys typed while the page still loads wait here and go in when the engine starts.
let early_keys = [];

function send_keys(codes) {
  if (early_keys !== null) {
    early_keys = early_keys.concat(codes);
    return;
  }
  if (codes.length === 0) return;
  const address = Module._malloc(codes.length * 4);
  if (address === 0) return;
  Module.HEAP32.set(codes, address >> 2);
  Module._vexil_keys(address, codes.length);
  Module._free(address);
}

function type_text(text) {
  send_keys(text_codes(text));
}

function in_menu(target) {
  return target instanceof Element && target.closest('#bar, #menu') !== null;
}

// The engine code of a key press; 0 for a key that does nothing; undefined for one left to the browser.
function key_code(event) {
  if (event.key === 'Tab' && event.shiftKey) return undefined;  // so the keyboard can leave the screen
  if (event.key in key_codes) return key_codes[event.key];
  return event.key.length === 1 ? character_code(event.key) : undefined;
}

function on_key_down(event) {
  if (in_menu(event.target) || event.altKey || event.metaKey) return;
  if (event.ctrlKey) {
    // Control+C breaks; Control+V pastes through the paste event; other combinations are the browser's.
    if (event.key === 'c' || event.key === 'C') {
      if (early_keys === null) Module._vexil_break();
      event.preventDefault();
    }
    return;
  }
  const code = key_code(event);
  if (code === undefined) return;
  event.preventDefault();
  if (code !== 0) send_keys([code]);
}

function on_paste(event) {
  if (in_menu(event.target)) return;
  event.preventDefault();
  type_text(event.clipboardData.getData('text/plain'));
}

// Files: every write that is closed, and the end of the session, are copied to IndexedDB. A sync asked
// for while one runs runs once more afterwards, so the last write is always kept.
let syncing = false;
let sync_again = false;

function sync_files() {
  if (syncing) {
    sync_again = true;
    return;
  }
  syncing = true;
  vexil_page.files_kept = false;
  FS.syncfs(false, error => {
    syncing = false;
    if (error) status_line.textContent = 'Files could not be kept: ' + error;
    list_files();
    if (sync_again) {
      sync_again = false;
      sync_files();
    } else {
      vexil_page.files_kept = true;
    }
  });
}

function mount_files() {
  FS.mkdir(home);
  FS.mount(FS.filesystems.IDBFS, {}, home);
  FS.chdir(home);
  const close = FS.close;
  FS.close = stream => {
    const written = (stream.flags & 3) !== 0;  // O_WRONLY or O_RDWR
    close(stream);
    if (written && stream.path && stream.path.startsWith(home + '/')) sync_files();
  };
  Module.addRunDependency('files');
  FS.syncfs(true, error => {
    if (error) status_line.textContent = 'Kept files could not be read: ' + error;
    Module.removeRunDependency('files');
  });
}

function kept_files() {
  return FS.readdir(home).filter(name => FS.isFile(FS.stat(home + '/' + name).mode)).sort();
}

function run_link(text) {
  return location.href.replace(/#.*$/, '') + '#run=' + encodeURIComponent(text);
}

function list_files() {
  file_list.replaceChildren();
  const names = kept_files();
  if (names.length === 0) {
    const item = document.createElement('li');
    item.textContent = 'No files kept in this browser yet: save "name.bas" keeps one.';
    file_list.append(item);
  }
  for (const name of names) {
    const item = document.createElement('li');
    const label = document.createElement('span');
    label.textContent = name;
    const download = document.createElement('a');
    download.textContent = 'download';
    download.download = name;
    download.href = URL.createObjectURL(new Blob([FS.readFile(home + '/' + name)], { type: 'text/plain' }));
    item.append(label, download);
    if (/\.bas$/i.test(name)) {
      const copy = document.createElement('button');
      copy.textContent = 'copy link';
      copy.addEventListener('click', () => {
        const link = run_link(FS.readFile(home + '/' + name, { encoding: 'utf8' }));
        navigator.clipboard.writeText(link).then(() => { status_line.textContent = 'Link to ' + name + ' copied'; },
          () => { status_line.textContent = link; });
      });
      item.append(copy);
    }
    file_list.append(item);
  }
}

// A program from the picker or dropped on the screen is kept under a plain name and loaded as typed.
async function open_program(file) {
  const name = file.name.replace(/[^A-Za-z0-9._-]/g, '') || 'program.bas';
  FS.writeFile(home + '/' + name, new Uint8Array(await file.arrayBuffer()));
  sync_files();
  type_text('load "' + name + '"\n');
  canvas.focus();
}

// The program the engine holds and has not saved, copied to localStorage each time the session rewrites
// or removes its file, and once more when the page is hidden or left: the next page loads it.
let kept_program_changes = 0;

function keep_program() {
  if (early_keys !== null) return;
  const changes = Module._vexil_kept_program_changes();
  if (changes === kept_program_changes) return;
  kept_program_changes = changes;
  try {
    if (FS.analyzePath(kept_program_file).exists)
      localStorage.setItem(kept_program_key, FS.readFile(kept_program_file, { encoding: 'utf8' }));
    else
      localStorage.removeItem(kept_program_key);
  } catch (error) {
    status_line.textContent = 'The unsaved program could not be kept: ' + error.message;
  }
}

// Not with a #run= link, which brings its own program: the kept one waits for the next page.
function restore_program() {
  let text = null;
  try {
    text = localStorage.getItem(kept_program_key);
  } catch (error) {
    status_line.textContent = 'The unsaved program could not be read: ' + error.message;
  }
  if (text !== null) FS.writeFile(kept_program_file, text);
}

// The largest whole scale in device pixels, so that every screen pixel is the same size.
function fit_canvas() {
  const ratio = window.devicePixelRatio || 1;
  const room_height = window.innerHeight - document.getElementById('bar').offsetHeight;
  const scale = Math.max(1, Math.floor(Math.min(window.innerWidth * ratio / canvas.width, room_height * ratio / canvas.height)));
  canvas.style.width = canvas.width * scale / ratio + 'px';
  canvas.style.height = canvas.height * scale / ratio + 'px';
}

function draw(image) {
  keep_program();
  if (Module._vexil_frame()) {
    const address = Module._vexil_image();
    image.data.set(Module.HEAPU8.subarray(address, address + image.data.length));
    context.putImageData(image, 0, 0);
    const text = Module.UTF8ToString(Module._vexil_text());
    if (screen_text.textContent !== text) screen_text.textContent = text;
    if (vexil_page.first_ok_ms === null && /^Ok$/m.test(text)) vexil_page.first_ok_ms = performance.now();
    // A program file that cannot be loaded leaves the console at Ok; the reason shows here, as does an
    // unsaved program brought back.
    const reports = Module.UTF8ToString(Module._vexil_reports()).trim();
    if (reports !== '') status_line.textContent = reports;
  }
  if (Module._vexil_ended()) {
    vexil_page.ended_ms = performance.now();
    sync_files();
    status_line.textContent = 'VEXIL has ended: reload the page to start again.';
    document.body.dataset.state = 'ended';
    return;
  }
  requestAnimationFrame(() => draw(image));
}

// A #run= link starts with its program loaded and running.
function start() {
  let program = '';
  if (location.hash.startsWith('#run=')) {
    FS.writeFile(run_file, decodeURIComponent(location.hash.slice(5)));
    program = run_file;
  } else {
    restore_program();
  }
  vexil_page.started_ms = performance.now();
  if (Module.ccall('vexil_start', 'number', ['string', 'string'], [program, kept_program_file]) === 0) {
    status_line.textContent = 'VEXIL could not start: out of memory.';
    return;
  }
  document.body.dataset.state = 'running';
  const typed = early_keys;
  early_keys = null;
  send_keys(typed);
  draw(context.createImageData(canvas.width, canvas.height));
}

menu_button.addEventListener('click', () => {
  menu.hidden = !menu.hidden;
  menu_button.setAttribute('aria-expanded', String(!menu.hidden));
  if (menu.hidden) canvas.focus();
  else list_files();
});
file_picker.addEventListener('change', () => {
  if (file_picker.files.length > 0) open_program(file_picker.files[0]);
  file_picker.value = '';
  menu.hidden = true;
});
canvas.addEventListener('dragover', event => { event.preventDefault(); canvas.classList.add('dropping'); });
canvas.addEventListener('dragleave', () => canvas.classList.remove('dropping'));
canvas.addEventListener('drop', event => {
  event.preventDefault();
  canvas.classList.remove('dropping');
  if (event.dataTransfer.files.length > 0) open_program(event.dataTransfer.files[0]);
});
document.addEventListener('visibilitychange', () => { if (document.visibilityState === 'hidden') keep_program(); });
window.addEventListener('pagehide', keep_program);
document.addEventListener('keydown', on_key_down);
document.addEventListener('paste', on_paste);
window.addEventListener('resize', fit_canvas);
fit_canvas();
canvas.focus();
if (!window.crossOriginIsolated)
  status_line.textContent = 'This page needs to be served cross-origin isolated (make serve).';

var Module = {
  preRun: [mount_files],
  onRuntimeInitialized: start,
};
