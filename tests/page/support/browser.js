// The browser for the tests of one file, and windows that record what the program sent.
import { after, before } from "node:test";
import { launch } from "./chromium.js";

const received = new WeakMap();
let browser = null;

// The metadata of the pictures that a window has received, oldest first.
export const framesOf = (page) => received.get(page);

export function useBrowser() {
  before(async () => {
    browser = await launch();
  });
  after(() => browser.close());
}

// Errors inside a window fail the test. Waits for the first picture if `shown`.
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
