// The page in a real browser: Debian's chromium, headless, driven by playwright-core, with the
// site that scripts/web.sh built (OSTREL_SITE) served from localhost.
"use strict";
const test = require("node:test");
const assert = require("node:assert");
const fs = require("fs");
const path = require("path");
const { chromium } = require("playwright-core");
const { serve } = require("./serve.js");

const site = process.env.OSTREL_SITE;

let server, browser;

test.before(async () => {
  assert.ok(site && fs.existsSync(path.join(site, "ostrel.wasm")), "OSTREL_SITE holds no module");
  server = await serve(site, 0);
  browser = await chromium.launch({
    executablePath: "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
      "--disable-background-networking", "--disable-component-update", "--disable-sync"],
    // playwright gives each launch a fresh profile folder of its own and removes it on close.
  });
});

test.after(async () => {
  if (browser) await browser.close();
  if (server) server.close();
});

async function openPage(options = {}) {
  const context = await browser.newContext({ viewport: { width: 600, height: 700 }, ...options });
  const page = await context.newPage();
  const problems = [];
  page.on("pageerror", (e) => problems.push(String(e)));
  await page.goto(`http://127.0.0.1:${server.address().port}/`);
  await page.waitForFunction(() => window.ostrelPage.ready || window.ostrelPage.error,
    null, { timeout: 60000 });
  const state = await page.evaluate(() => window.ostrelPage);
  assert.strictEqual(state.error, null);
  assert.deepStrictEqual(problems, []);
  return { page, context };
}

// Where fields lie on the canvas, in CSS pixels: the pointer is moved over a grid (without a
// button) and the board names the field under it; each field's points are averaged.
async function fieldCentres(page) {
  return page.evaluate(() => {
    const board = window.board;
    const box = board.canvas.getBoundingClientRect();
    const points = new Map();
    let last = 0;
    board.on("pointer", (field) => { last = Number(field); });
    for (let y = 2; y < box.height; y += 4) {
      for (let x = 2; x < box.width; x += 4) {
        last = 0;
        board.module.ccall("ostrel_pointer", null,
          ["number", "number", "number", "number", "number", "number"], [board.id, 1, 0, 0, x, y]);
        if (last <= 0) continue;  // off the board
        const p = points.get(last) || { x: 0, y: 0, n: 0 };
        p.x += x; p.y += y; p.n += 1;
        points.set(last, p);
      }
    }
    const centres = {};
    for (const [field, p] of points) {
      centres[field] = { x: box.left + p.x / p.n, y: box.top + p.y / p.n, n: p.n };
    }
    return centres;
  });
}

// Mean brightness (0..255) of a square of the canvas around a page point.
async function brightness(page, at) {
  return page.evaluate(({ x, y }) => {
    const canvas = window.board.canvas;
    const box = canvas.getBoundingClientRect();
    const scale = canvas.width / box.width;
    const copy = document.createElement("canvas");
    copy.width = canvas.width;
    copy.height = canvas.height;
    const g = copy.getContext("2d");
    g.drawImage(canvas, 0, 0);
    const half = Math.round(4 * scale);
    const cx = Math.round((x - box.left) * scale), cy = Math.round((y - box.top) * scale);
    const d = g.getImageData(cx - half, cy - half, 2 * half, 2 * half).data;
    let sum = 0;
    for (let i = 0; i < d.length; i += 4) sum += (d[i] + d[i + 1] + d[i + 2]) / 3;
    return sum / (d.length / 4);
  }, at);
}

test("the page shows the board: every dark field found under the pointer", async () => {
  const { page, context } = await openPage();
  const centres = await fieldCentres(page);
  assert.deepStrictEqual(Object.keys(centres).map(Number).sort((a, b) => a - b),
    Array.from({ length: 50 }, (_, i) => i + 1));
  // Fields of one row lie left to right from white's side: 46 left of 50, 1 above 46.
  assert.ok(centres[46].x < centres[50].x);
  assert.ok(centres[1].y < centres[46].y);
  const firstFrame = await page.evaluate(() => window.ostrelPage.firstFrameMs);
  assert.ok(firstFrame > 0);
  console.log(`first frame ${Math.round(firstFrame)} ms after navigation`);
  await context.close();
});

test("a mouse drag from 32 to 28 reports 32-28 and leaves a white disc on 28", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  const emptyBefore = await brightness(page, c[28]);
  const whiteBefore = await brightness(page, c[32]);
  assert.ok(whiteBefore > emptyBefore + 40, `white man ${whiteBefore}, empty field ${emptyBefore}`);

  await page.mouse.move(c[32].x, c[32].y);
  await page.mouse.down();
  for (let i = 1; i <= 8; ++i) {
    await page.mouse.move(c[32].x + (c[28].x - c[32].x) * i / 8,
      c[32].y + (c[28].y - c[32].y) * i / 8);
    await page.waitForTimeout(20);  // past the control's gate between drawn moves
  }
  await page.mouse.up();
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), ["32-28"]);
  const on28 = await brightness(page, c[28]);
  const on32 = await brightness(page, c[32]);
  assert.ok(on28 > emptyBefore + 40, `28 after the move ${on28}, before ${emptyBefore}`);
  assert.ok(on32 < whiteBefore - 40, `32 after the move ${on32}, before ${whiteBefore}`);
  await context.close();
});

test("a drop on a field that is no listed destination reports nothing", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  await page.mouse.move(c[32].x, c[32].y);
  await page.mouse.down();
  await page.mouse.move(c[23].x, c[23].y, { steps: 8 });
  await page.mouse.up();
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), []);
  await context.close();
});

test("a touch drag from 32 to 28 reports 32-28", async () => {
  const { page, context } = await openPage({ hasTouch: true, deviceScaleFactor: 2 });
  const c = await fieldCentres(page);
  const cdp = await context.newCDPSession(page);
  const touch = (type, p) =>
    cdp.send("Input.dispatchTouchEvent", { type, touchPoints: p ? [{ x: p.x, y: p.y }] : [] });
  await touch("touchStart", c[32]);
  for (let i = 1; i <= 8; ++i) {
    await touch("touchMove", {
      x: c[32].x + (c[28].x - c[32].x) * i / 8, y: c[32].y + (c[28].y - c[32].y) * i / 8 });
    await page.waitForTimeout(20);
  }
  await touch("touchEnd");
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), ["32-28"]);
  // At a device pixel ratio of 2 the canvas has twice the pixels of its CSS size.
  const sizes = await page.evaluate(() => {
    const box = window.board.canvas.getBoundingClientRect();
    return { width: window.board.canvas.width, css: box.width };
  });
  assert.ok(Math.abs(sizes.width - 2 * sizes.css) <= 2, JSON.stringify(sizes));
  await context.close();
});

test("black replies to 32-28 with one of its legal moves, and white may move again", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  await page.mouse.move(c[32].x, c[32].y);
  await page.mouse.down();
  await page.mouse.move(c[28].x, c[28].y, { steps: 8 });
  await page.mouse.up();
  await page.waitForFunction(() => window.ostrelPage.replies.length === 1, null, { timeout: 10000 });
  const reply = await page.evaluate(() => window.ostrelPage.replies[0]);
  // After 32-28 black's men on 16 to 20 have the only moves, each one row down.
  const [from, to] = reply.split("-").map(Number);
  assert.ok(from >= 16 && from <= 20 && to >= 21 && to <= 25, reply);
  // A second drag is taken once the reply is on the board: 37-32 is legal whatever black did.
  await page.waitForFunction(() => window.ostrelPage.whiteToMove, null, { timeout: 30000 });
  await page.mouse.move(c[37].x, c[37].y);
  await page.mouse.down();
  await page.mouse.move(c[32].x, c[32].y, { steps: 8 });
  await page.mouse.up();
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), ["32-28", "37-32"]);
  await context.close();
});
