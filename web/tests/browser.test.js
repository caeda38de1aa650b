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

// The page with the opponent's seed fixed and, unless asked for, no build-up.
async function openPage(options = {}, query = "seed=7&opening=0") {
  const context = await browser.newContext({ viewport: { width: 600, height: 700 }, ...options });
  const page = await context.newPage();
  const problems = [];
  page.on("pageerror", (e) => problems.push(String(e)));
  await page.goto(`http://127.0.0.1:${server.address().port}/?${query}`);
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
  // The control takes no pointer move within 15 ms of a frame: the scan starts after that.
  await page.waitForTimeout(50);
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

test("a drop on a field that is no listed destination, or after Escape, reports nothing", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  await page.mouse.move(c[32].x, c[32].y);
  await page.mouse.down();
  await page.mouse.move(c[23].x, c[23].y, { steps: 8 });
  await page.mouse.up();
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), []);
  // Escape gives up a drag: the release over 28 plays nothing.
  await page.mouse.move(c[32].x, c[32].y);
  await page.mouse.down();
  await page.mouse.move(c[28].x, c[28].y, { steps: 8 });
  await page.keyboard.press("Escape");
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

// Drags the piece of a move from its first field to its last with the mouse.
async function dragMove(page, c, move, button = "left") {
  const fields = move.split(/[-x]/).map(Number);
  const [from, to] = [c[fields[0]], c[fields[fields.length - 1]]];
  await page.mouse.move(from.x, from.y);
  await page.mouse.down({ button });
  for (let i = 1; i <= 8; ++i) {
    await page.mouse.move(from.x + (to.x - from.x) * i / 8, from.y + (to.y - from.y) * i / 8);
    await page.waitForTimeout(20);  // past the control's gate between drawn moves
  }
  await page.mouse.up({ button });
}

test("black replies to 32-28 with the opponent's move, played on the board, and white moves again",
  async () => {
    const { page, context } = await openPage();
    const c = await fieldCentres(page);
    await dragMove(page, c, "32-28");
    await page.waitForFunction(() => window.ostrelPage.whiteToMove, null, { timeout: 30000 });
    const state = await page.evaluate(() => window.ostrelPage);
    // After 32-28 black's men on 16 to 20 have the only moves, each one row down.
    assert.strictEqual(state.replies.length, 1);
    const [from, to] = state.replies[0].split("-").map(Number);
    assert.ok(from >= 16 && from <= 20 && to >= 21 && to <= 25, state.replies[0]);
    // The reply stands on the board: a black man on its field, none where it came from.
    const black = await brightness(page, c[to]);
    const left = await brightness(page, c[from]);
    assert.ok(Math.abs(black - left) > 10, `${to}: ${black}, ${from}: ${left}`);
    // The same seed chooses the same reply.
    const again = await page.evaluate(() =>
      OstrelRules.load().then((r) => r.choose("B:W28,31,33-50:B1-20", window.ostrelPage.seed)));
    assert.strictEqual(again, state.replies[0]);
    // White's second move is one of those now listed (a capture if black offered one).
    await dragMove(page, c, state.whiteMoves[0]);
    assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves),
      ["32-28", state.whiteMoves[0]]);
    await context.close();
  });

test("showMove animates frame by frame and resolves once the piece has landed", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  const run = await page.evaluate(async () => {
    let frames = 0;
    window.board.on("frame", () => { frames += 1; });
    const start = performance.now();
    const shown = await window.board.showMove("32-28");
    return { frames, ms: performance.now() - start, shown };
  });
  // The page's timer draws a frame per step of the control's pace: a travelling frame at least,
  // then the landing; how many fit depends on the frame's cost, so only the least is asked.
  assert.strictEqual(run.shown, "32-28");
  assert.ok(run.frames >= 2, JSON.stringify(run));
  const on28 = await brightness(page, c[28]);
  const on27 = await brightness(page, c[27]);
  assert.ok(on28 > on27 + 40, `28 after the move ${on28}, the empty 27 ${on27}`);
  await context.close();
});

test("the game opens with the falling pieces, then white may move", async () => {
  const { page, context } = await openPage({}, "seed=7&opening=1200");
  await page.waitForFunction(() => window.ostrelPage.whiteToMove, null, { timeout: 30000 });
  const frames = await page.evaluate(() => window.ostrelPage.openingFrames);
  assert.ok(frames >= 5, `${frames} frames of the build-up`);
  const c = await fieldCentres(page);
  assert.strictEqual(Object.keys(c).length, 50);
  const white = await brightness(page, c[32]);
  const empty = await brightness(page, c[28]);
  assert.ok(white > empty + 40, `32: ${white}, 28: ${empty}`);
  await context.close();
});

test("the status frame shows over the canvas with its text and bar", async () => {
  const { page, context } = await openPage();
  const frame = await page.evaluate(() => {
    window.board.showProgressBar("Thinking", true, 50);
    const f = document.querySelector(".ostrel-status");
    const canvas = window.board.canvas.getBoundingClientRect();
    const box = f.getBoundingClientRect();
    return { shown: getComputedStyle(f).display !== "none", text: f.textContent,
      left: box.left - canvas.left, top: box.top - canvas.top, width: box.width,
      fill: f.firstChild.getBoundingClientRect().width };
  });
  // 120 twips from the corner, 5775 wide; the bar fills half of 5775 less two pixels (15 twips each).
  assert.ok(frame.shown);
  assert.strictEqual(frame.text, "Thinking");
  assert.ok(Math.abs(frame.left - 8) < 1 && Math.abs(frame.top - 8) < 1, JSON.stringify(frame));
  assert.ok(Math.abs(frame.width - 385) < 1, JSON.stringify(frame));
  assert.ok(Math.abs(frame.fill - 191.5) < 1, JSON.stringify(frame));
  const hidden = await page.evaluate(() => {
    window.board.showProgressBar("", false, 0);
    return getComputedStyle(document.querySelector(".ostrel-status")).display;
  });
  assert.strictEqual(hidden, "none");
  await context.close();
});

test("a right-button drag turns the view and moves no piece", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  const before = await page.evaluate(() => window.board.view());
  await dragMove(page, c, "32-28", "right");
  const after = await page.evaluate(() => window.board.view());
  assert.ok(Math.abs(after.azimuth - before.azimuth) > 0.05 ||
    Math.abs(after.elevation - before.elevation) > 0.05, JSON.stringify({ before, after }));
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), []);
  await context.close();
});

test("two fingers turn the view; the first finger's piece goes back", async () => {
  const { page, context } = await openPage({ hasTouch: true });
  const c = await fieldCentres(page);
  const cdp = await context.newCDPSession(page);
  const touch = (type, points) => cdp.send("Input.dispatchTouchEvent",
    { type, touchPoints: points.map(([x, y], id) => ({ x, y, id })) });
  const before = await page.evaluate(() => window.board.view());
  // The first finger takes up the man on 32, the second comes down on 34; both sweep right.
  await touch("touchStart", [[c[32].x, c[32].y]]);
  await touch("touchStart", [[c[32].x, c[32].y], [c[34].x, c[34].y]]);
  for (let i = 1; i <= 8; ++i) {
    await touch("touchMove", [[c[32].x + 15 * i, c[32].y], [c[34].x + 15 * i, c[34].y]]);
    await page.waitForTimeout(20);
  }
  await touch("touchEnd", []);
  const after = await page.evaluate(() => window.board.view());
  assert.ok(Math.abs(after.azimuth - before.azimuth) > 0.05, JSON.stringify({ before, after }));
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), []);
  // The man is back on 32, where the turned view shows it: a mouse drag 32-28 still plays.
  const turned = await fieldCentres(page);
  assert.ok(Math.hypot(turned[32].x - c[32].x, turned[32].y - c[32].y) > 3);
  await dragMove(page, turned, "32-28");
  assert.deepStrictEqual(await page.evaluate(() => window.ostrelPage.moves), ["32-28"]);
  await context.close();
});

test("twisting two fingers turns the board with them", async () => {
  const { page, context } = await openPage({ hasTouch: true });
  const centre = await page.evaluate(() => {
    const b = window.board.canvas.getBoundingClientRect();
    return { x: b.left + b.width / 2, y: b.top + b.height / 2 - 20 };
  });
  const cdp = await context.newCDPSession(page);
  const fingers = (angle) => [1, -1].map((side, id) => ({ id,
    x: centre.x + side * 80 * Math.cos(angle), y: centre.y + side * 80 * Math.sin(angle) }));
  const before = await page.evaluate(() => window.board.view());
  await cdp.send("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: fingers(0) });
  // Half a radian anticlockwise on the screen, whose y axis points down.
  for (let i = 1; i <= 10; ++i) {
    await cdp.send("Input.dispatchTouchEvent", { type: "touchMove", touchPoints: fingers(-i / 20) });
    await page.waitForTimeout(25);
  }
  await cdp.send("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
  const after = await page.evaluate(() => window.board.view());
  // The azimuth grows as the board turns anticlockwise; a move lost to the control's gate
  // between frames may keep it a little short of the fingers.
  const turned = after.azimuth - before.azimuth;
  assert.ok(turned > 0.3 && turned < 0.55, JSON.stringify({ before, after }));
  await context.close();
});

test("an image that fails to load shows the control's message in the page's dialog", async () => {
  const { page, context } = await openPage();
  const c = await fieldCentres(page);
  const white = await brightness(page, c[32]);
  const message = await page.evaluate(() => {
    window.board.setImages({ white: "missing.png" });
    const dialog = document.getElementById("message");
    return { open: dialog.open, text: dialog.querySelector("p").textContent };
  });
  assert.deepStrictEqual(message,
    { open: true, text: "Texture load failed: /ostrel/models/missing.png" });
  // The black pieces' image on the white ones: the man on 32 turns dark.
  await page.evaluate(() => {
    document.getElementById("message").close();
    window.board.setImages({ white: "pieceblack.png" });
  });
  const dressed = await brightness(page, c[32]);
  assert.ok(dressed < white - 40, `32 dressed black ${dressed}, white before ${white}`);
  await context.close();
});
