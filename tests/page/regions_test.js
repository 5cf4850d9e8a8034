import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import test from "node:test";
import { openPage, useBrowser } from "./support/browser.js";
import { isLeft, isRight } from "./support/clip.js";
import { eventually } from "./support/eventually.js";
import {
  click,
  drag,
  framesBecome,
  inForce,
  openScene,
  plainDocument,
  pointOf,
  rootOf,
  textOf,
} from "./support/scene.js";

useBrowser();

const square = (low, high) => ({
  name: "gate",
  points: [
    [low, low],
    [high, low],
    [high, high],
    [low, high],
  ].map(([x, y]) => ({ x: String(x), y: String(y) })),
});
const withRegion = (region, kind = "roi") => JSON.stringify({ sensitivity: "4", [kind]: [region] });
const has = (side) => (frames) => frames.some(({ boxes }) => boxes.some(side));

test("a region drawn with the mouse: boxes only there", async (t) => {
  const { page } = await openScene(t);
  await framesBecome(page, "boxes on both sides", (frames) => has(isLeft)(frames) && has(isRight)(frames));
  await page.click("#draw-roi");
  await click(page, [
    [0.02, 0.05],
    [0.4, 0.05],
    [0.45, 0.9],
    [0.02, 0.95],
    [0.02, 0.05],
  ]);
  await inForce(page);
  await framesBecome(page, "boxes on the left only", (frames) => has(isLeft)(frames) && !has(isRight)(frames), 20);
});

test("an ignored region drawn as a rectangle: no boxes there", async (t) => {
  const { page } = await openScene(t);
  await page.click("#draw-ror");
  await drag(page, [0.05, 0.01], [0.45, 0.99]);
  await inForce(page);
  await framesBecome(page, "boxes on the right only", (frames) => has(isRight)(frames) && !has(isLeft)(frames), 20);
});

test("made and moved with the keyboard, undone, saved, reloaded: the file is right", async (t) => {
  const { page, server, config, saved } = await openScene(t);
  await page.focus("#draw-roi");
  await page.keyboard.press("Enter");
  assert.deepEqual(await pointOf(page, 0), { x: "0.3", y: "0.3" });
  for (const key of ["ArrowRight", "ArrowRight", "Shift+ArrowDown"]) await page.keyboard.press(key);
  assert.deepEqual(await pointOf(page, 0), { x: "0.302", y: "0.32" }); // two thousandths; one large step, twenty of them
  await page.keyboard.press("Control+z");
  assert.deepEqual(await pointOf(page, 0), { x: "0.3", y: "0.3" });
  await page.keyboard.press("Control+Shift+z");
  assert.deepEqual(await pointOf(page, 0), { x: "0.302", y: "0.32" });
  await inForce(page);
  await page.click("#save");
  await eventually("the backup is reported", async () =>
    (await page.locator("#saved").textContent()).includes("yard.json.bak"),
  );
  assert.equal(saved(), await textOf(page));
  assert.ok(
    saved().startsWith(plainDocument.slice(0, plainDocument.lastIndexOf('"'))),
    "the rest of the text is unchanged",
  );
  assert.equal(readFileSync(`${config}.bak`, "utf8"), plainDocument);
  await page.reload();
  await eventually(
    "the region is listed",
    async () => (await page.locator("#region-list input").inputValue()) === "Watched 1",
  );
  const again = await openPage(t, server.address);
  assert.deepEqual(await pointOf(again, 0), { x: "0.302", y: "0.32" });
});

test("points come and go by key, down to three", async (t) => {
  const { page } = await openScene(t, { document: withRegion(square(0.2, 0.6)) });
  await page.locator("#overlay .region").focus();
  await page.keyboard.press("Enter");
  await page.keyboard.press("Enter");
  assert.deepEqual(await pointOf(page, 1), { x: "0.4", y: "0.2" }); // half way from (0.2, 0.2) to (0.6, 0.2)
  for (let i = 0; i < 4; i += 1) await page.keyboard.press("Delete");
  assert.equal((await rootOf(page)).roi[0].points.length, 3);
  await page.keyboard.press("Escape");
  await page.keyboard.press("Delete");
  assert.equal((await rootOf(page)).roi, undefined, "without watched regions the whole picture is watched");
});

test("points and whole regions follow the mouse; a region keeps its shape at the border", async (t) => {
  const { page } = await openScene(t, { document: withRegion(square(0.2, 0.6)) });
  await page.locator("#overlay .region").focus();
  await drag(page, [0.2, 0.2], [0.3, 0.1]);
  const { x, y } = await pointOf(page, 0);
  assert.ok(Math.abs(x - 0.3) < 0.002 && Math.abs(y - 0.1) < 0.002, `${x}, ${y}`);
  await page.click("#undo");
  await drag(page, [0.4, 0.45], [0.9, 0.45]);
  const [left, right] = [await pointOf(page, 0), await pointOf(page, 1)];
  assert.equal(right.x, "1");
  assert.equal(left.x, "0.6");
});

test("a point is dragged out of the line between two others", async (t) => {
  const { page } = await openScene(t, { document: withRegion(square(0.2, 0.6)) });
  await page.locator("#overlay .region").focus();
  await drag(page, [0.4, 0.2], [0.4, 0.1]);
  const { points } = (await rootOf(page)).roi[0];
  assert.equal(points.length, 5);
  assert.ok(Math.abs(points[1].y - 0.1) < 0.002);
});

test("a region drawn to the left border starts outside, so that the border counts", async (t) => {
  const { page } = await openScene(t);
  await page.click("#draw-roi");
  await drag(page, [0.002, 0.3], [0.5, 0.6]);
  const xs = (await rootOf(page)).roi[0].points.map(({ x }) => Number(x));
  assert.ok(Math.min(...xs) < 0, String(xs));
});

test("corners are set by touch", async (t) => {
  const { page } = await openScene(t, { window: { hasTouch: true, viewport: { width: 390, height: 844 } } });
  await page.tap("#draw-ror");
  const { x, y, width, height } = await page.locator("#overlay").boundingBox();
  for (const [across, down] of [
    [0.2, 0.2],
    [0.8, 0.2],
    [0.5, 0.8],
  ])
    await page.touchscreen.tap(x + across * width, y + down * height);
  await page.tap("#drawing-finish");
  assert.equal((await rootOf(page)).ror[0].points.length, 3);
});

test("named, turned and deleted in the list; members of its own are kept", async (t) => {
  const { page } = await openScene(t, { document: withRegion({ ...square(0.2, 0.6), colour: "red" }) });
  await page.fill("#region-list input", "street");
  await page.keyboard.press("Enter");
  await page.selectOption("#region-list select", "ror");
  const { ror, roi } = await rootOf(page);
  assert.equal(roi, undefined);
  assert.equal(ror[0].name, "street");
  assert.equal(ror[0].colour, "red");
  // Pressing takes some time.
  await page.hover('button[aria-label="Delete street"]');
  await page.mouse.down();
  await page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))));
  await page.mouse.up();
  assert.equal((await rootOf(page)).ror, undefined);
});

test("a region over everything is reported to make the others useless", async (t) => {
  const whole = { name: "all", points: square(-1, 2).points };
  const { page } = await openScene(t, { document: JSON.stringify({ roi: [whole, square(0.2, 0.6)] }) });
  await page.getByText("covers the whole picture").waitFor();
});
