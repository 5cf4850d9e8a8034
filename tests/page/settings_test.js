import assert from "node:assert/strict";
import test from "node:test";
import { useBrowser } from "./support/browser.js";
import { isLeft } from "./support/clip.js";
import { framesBecome, inForce, openScene, rootOf } from "./support/scene.js";

useBrowser();

test("more sensitivity, more boxes: side by side, of the same frames", async (t) => {
  const { page } = await openScene(t, { document: '{"sensitivity": "1"}' });
  await page.click("#compare");
  await framesBecome(page, "both detectors answer", (frames) => frames.every(({ baseline }) => baseline));
  await page.click("#tab-settings");
  await page.focus("#setting-sensitivity");
  await page.keyboard.press("End");
  await inForce(page);
  assert.equal((await rootOf(page)).sensitivity, "5");
  const left = (boxes) => boxes.some(isLeft);
  // The faint patch on the left is too faint for sensitivity 1.
  await framesBecome(
    page,
    "the new settings see more",
    (frames) =>
      frames.every(({ baseline }) => baseline && !left(baseline.boxes)) && frames.some(({ boxes }) => left(boxes)),
    20,
  );
  await page.locator("#old-stage").waitFor();
  await page.click("#compare");
  await framesBecome(page, "one detector is left", (frames) => frames.every(({ baseline }) => !baseline));
  await page.locator("#old-stage").waitFor({ state: "hidden" });
});

test("a preset brings its settings and leaves the regions", async (t) => {
  const region = {
    name: "gate",
    points: [
      ["0.1", "0.1"],
      ["0.9", "0.1"],
      ["0.5", "0.9"],
    ].map(([x, y]) => ({ x, y })),
  };
  const { page } = await openScene(t, {
    document: JSON.stringify({ site: "yard", sensitivity: "1", lifeStatic: "0", roi: [region] }),
  });
  await page.click("#tab-settings");
  await page.locator(".preset", { hasText: "street" }).click();
  const root = await rootOf(page);
  assert.equal(root.sensitivity, "4");
  assert.equal(root.lifeStatic, undefined, "a setting that the preset leaves to the default");
  assert.equal(root.site, "yard");
  assert.deepEqual(root.roi, [region]);
});

test("the preset auto brings all that it sets, and another preset removes it", async (t) => {
  const { page } = await openScene(t, { document: '{"sensitivity": "1"}' });
  await page.click("#tab-settings");
  await page.locator(".preset", { hasText: "auto" }).click();
  const root = await rootOf(page);
  assert.equal(root.adapt, true);
  assert.equal(root.absorb_seconds, 60);
  assert.equal(root.sensitivity, undefined);
  await inForce(page);
  const setting = page.locator(".setting", { has: page.locator("#setting-sensitivity") });
  assert.equal(await setting.locator("output").textContent(), "chosen while it runs");
  await page.locator(".preset", { hasText: "street" }).click();
  const { adapt, extent, sensitivity } = await rootOf(page);
  assert.deepEqual([adapt, extent, sensitivity], [undefined, undefined, "4"]);
});

test("a setting out of range has a finding beside its control, with the consequence", async (t) => {
  const { page } = await openScene(t, { document: '{"sensitivity": "9"}' });
  await page.click("#tab-settings");
  const setting = page.locator(".setting", { has: page.locator("#setting-sensitivity") });
  await setting.locator(".finding").first().waitFor();
  assert.match(await setting.locator(".finding").first().textContent(), /9/);
});

test("a setting is reset to its default by removing it", async (t) => {
  const { page } = await openScene(t, { document: '{"sensitivity": "2", "minBoxW": "0.02"}' });
  await page.click("#tab-settings");
  await page.click('button[aria-label="Reset sensitivity to the default"]');
  assert.deepEqual(await rootOf(page), { minBoxW: "0.02" });
});
