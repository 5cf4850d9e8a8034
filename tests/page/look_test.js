import assert from "node:assert/strict";
import test from "node:test";
import { useBrowser } from "./support/browser.js";
import { openScene } from "./support/scene.js";

useBrowser();

const tabs = ["regions", "settings", "document"];
const region = {
  name: "gate",
  points: [
    ["0.1", "0.1"],
    ["0.9", "0.1"],
    ["0.5", "0.9"],
  ].map(([x, y]) => ({ x, y })),
};
const document = JSON.stringify({ sensitivity: "9", roi: [region] });

test("a window as narrow as a telephone needs no scrolling sideways", async (t) => {
  const { page } = await openScene(t, { document, window: { viewport: { width: 390, height: 844 } } });
  for (const tab of tabs) {
    await page.click(`#tab-${tab}`);
    assert.ok(await page.evaluate(() => globalThis.document.documentElement.scrollWidth <= 390), tab);
  }
});

test("every control has a name, and none is reached by pointer alone", async (t) => {
  const { page } = await openScene(t, { document });
  for (const tab of tabs) {
    await page.click(`#tab-${tab}`);
    const nameless = await page.$$eval("button, input, select, textarea, [role=button]", (controls) =>
      controls
        .filter((control) => control.checkVisibility() && control.tabIndex >= 0)
        .filter(
          (control) => !(control.getAttribute("aria-label") || control.labels?.length || control.textContent.trim()),
        )
        .map((control) => control.outerHTML),
    );
    assert.deepEqual(nameless, [], tab);
  }
});

test("the keyboard alone opens every tab", async (t) => {
  const { page } = await openScene(t);
  await page.focus("#tab-regions");
  for (const tab of ["settings", "document", "regions"]) {
    await page.keyboard.press("ArrowRight");
    assert.ok(await page.locator(`#${tab}`).isVisible(), tab);
  }
});
