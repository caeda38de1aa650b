// Serves a folder over HTTP on localhost: the page and its module, nothing else.
//   node serve.js FOLDER [PORT]
"use strict";
const http = require("http");
const fs = require("fs");
const path = require("path");

const types = {
  ".html": "text/html", ".js": "text/javascript", ".wasm": "application/wasm",
  ".data": "application/octet-stream",
};

function serve(folder, port) {
  const root = path.resolve(folder);
  const server = http.createServer((request, response) => {
    const name = decodeURIComponent(new URL(request.url, "http://localhost").pathname);
    const file = path.join(root, name === "/" ? "index.html" : name);
    if (!file.startsWith(root + path.sep)) {
      response.writeHead(403).end();
      return;
    }
    fs.readFile(file, (error, body) => {
      if (error) {
        response.writeHead(404).end();
        return;
      }
      response.writeHead(200, { "Content-Type": types[path.extname(file)] || "text/plain" });
      response.end(body);
    });
  });
  return new Promise((resolve) => server.listen(port, "127.0.0.1", () => resolve(server)));
}

module.exports = { serve };

if (require.main === module) {
  const [folder, port] = process.argv.slice(2);
  serve(folder, Number(port || 8080)).then((s) => {
    console.log(`serving ${folder} on http://localhost:${s.address().port}/`);
  });
}
