// The test video, on its own server with its own configuration file.
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { framesOf, openPage } from "./browser.js";
import { newFolder, usualClip } from "./clip.js";
import { eventually } from "./eventually.js";
import { startServer } from "./server.js";

export const plainDocument = `{
  // by the gate
  "site": {"name": "yard"},
  "sensitivity": "4"
}
`;

export async function startScene(test, { document = plainDocument, options = [] } = {}) {
  const folder = newFolder();
  const config = join(folder, "yard.json");
  writeFileSync(config, document);
  const server = await startServer(usualClip(), "--config", config, "--port", "0", ...options);
  test.after(() => server.stop());
  return { server, folder, config, saved: () => readFileSync(config, "utf8") };
}

export async function openScene(test, { window, ...scene } = {}) {
  const started = await startScene(test, scene);
  return { ...started, page: await openPage(test, started.server.address, window) };
}

export const textOf = (page) => page.locator("#document-text").inputValue();
export const rootOf = async (page) => JSON.parse((await textOf(page)).replace(/^\s*\/\/.*$/gm, ""));
export const pointOf = async (page, point) => (await rootOf(page)).roi[0].points[point];

export const inForce = (page) =>
  eventually("the document is applied", async () => (await page.locator("#progress").textContent()) === "Applied");

// The frames from now on, until the last `count` of them are as wanted.
export function framesBecome(page, what, wish, count = 10) {
  const from = framesOf(page).length;
  return eventually(what, () => {
    const last = framesOf(page).slice(from).slice(-count);
    return last.length === count && wish(last);
  });
}

// Converts fractions of the picture to pointer positions.
export async function placer(page) {
  const { x, y, width, height } = await page.locator("#overlay").boundingBox();
  return (across, down) => [x + across * width, y + down * height];
}

export async function click(page, corners) {
  const at = await placer(page);
  for (const corner of corners) await page.mouse.click(...at(...corner));
}

export async function drag(page, from, to) {
  const at = await placer(page);
  await page.mouse.move(...at(...from));
  await page.mouse.down();
  await page.mouse.move(...at(...to), { steps: 5 });
  await page.mouse.up();
}
