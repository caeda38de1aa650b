// A picture of the page for the README: white plays 32-28 on the board, the demo's opponent
// replies, and the page is saved once white may move again.
//   NODE_PATH=build-web/node_modules node web/tools/screenshot.js build-web/module/web docs/web-page.png
"use strict";
const { chromium } = require("playwright-core");
const { serve } = require("../tests/serve.js");

(async () => {
  const [site, out] = process.argv.slice(2);
  if (!site || !out) {
    console.error("usage: screenshot.js SITE OUT.png");
    process.exit(2);
  }
  const server = await serve(site, 0);
  const browser = await chromium.launch({
    executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu"] });
  try {
    const page = await browser.newPage({ viewport: { width: 520, height: 600 } });
    await page.goto(`http://127.0.0.1:${server.address().port}/?seed=7&opening=0`);
    await page.waitForFunction(() => window.ostrelPage.whiteToMove, null, { timeout: 60000 });
    // White's move as the page gets it from a drag.
    await page.evaluate(async () => {
      await window.board.showMove("32-28");
      window.board.emit("move", "32-28");
    });
    await page.waitForFunction(() => window.ostrelPage.whiteToMove, null, { timeout: 60000 });
    await page.screenshot({ path: out });
    console.log(`${out}: after 32-28 and ${await page.evaluate(() => window.ostrelPage.replies[0])}`);
  } finally {
    await browser.close();
    server.close();
  }
})().catch((e) => {
  console.error(String(e));
  process.exit(1);
});
