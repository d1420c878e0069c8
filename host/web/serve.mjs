// Serves the page's directory on 127.0.0.1, cross-origin isolated: the engine's threads share memory,
// which browsers allow only to pages sent with these two headers.
//   node serve.mjs [PORT]      (default 8000; the tests import serve and use a free port)
import { createServer } from 'node:http';
import { readFile } from 'node:fs/promises';
import { dirname, extname, join, normalize } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';

const content_types = {
  '.html': 'text/html; charset=utf-8',
  '.js': 'text/javascript; charset=utf-8',
  '.mjs': 'text/javascript; charset=utf-8',
  '.wasm': 'application/wasm',
};

const isolation_headers = {
  'Cross-Origin-Opener-Policy': 'same-origin',
  'Cross-Origin-Embedder-Policy': 'require-corp',
  'Cross-Origin-Resource-Policy': 'same-origin',
  'Cache-Control': 'no-cache',
};

// Resolves with the listening server; port 0 takes a free one (server.address().port).
export function serve(root, port) {
  const server = createServer(async (request, response) => {
    const path = normalize(decodeURIComponent(new URL(request.url, 'http://localhost').pathname));
    const file = join(root, path.endsWith('/') ? path + 'index.html' : path);
    const type = content_types[extname(file)];
    const method_known = request.method === 'GET' || request.method === 'HEAD';
    if (!method_known || type === undefined || !file.startsWith(root)) {
      response.writeHead(404, isolation_headers).end();
      return;
    }
    try {
      const body = await readFile(file);
      response.writeHead(200, { ...isolation_headers, 'Content-Type': type, 'Content-Length': body.length })
        .end(request.method === 'HEAD' ? undefined : body);
    } catch {
      response.writeHead(404, isolation_headers).end();
    }
  });
  return new Promise((resolve, reject) => {
    server.once('error', reject);
    server.listen(port, '127.0.0.1', () => resolve(server));
  });
}

if (process.argv[1] && import.meta.url === pathToFileURL(process.argv[1]).href) {
  const root = dirname(fileURLToPath(import.meta.url));
  const server = await serve(root, Number(process.argv[2] || 8000));
  console.log(`VEXIL at http://127.0.0.1:${server.address().port}/`);
}
