// A browser for the tests of one file, and windows on the page that remember what the program sent them.
import { after, before } from "node:test";
import { launch } from "./chromium.js";

const received = new WeakMap();
let browser = null;

// What came with the pictures that a window got so far, oldest first.
export const framesOf = (page) => received.get(page);

export function useBrowser() {
  before(async () => {
    browser = await launch();
  });
  after(() => browser.close());
}

// What goes wrong inside a window fails the test. Waits for the first picture, if one is to be `shown`.
export async function openPage(test, address, { shown = true, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 860 }, ...options });
  const page = await context.newPage();
  const faults = [];
  page.on("pageerror", (fault) => faults.push(fault.stack));
  const frames = [];
  received.set(page, frames);
  page.on("response", (response) => {
    const about = response.headers()["lightmotion-frame"];
    if (about && response.url().includes("/api/frame")) frames.push(JSON.parse(about));
  });
  test.after(async () => {
    await context.close();
    if (faults.length) throw new Error(`the page failed: ${faults.join("\n")}`);
  });
  await page.goto(address);
  if (shown) await page.locator("#waiting").waitFor({ state: "hidden" });
  return page;
}
