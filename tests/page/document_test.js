import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import test from "node:test";
import { openPage, useBrowser } from "./support/browser.js";
import { usualClip } from "./support/clip.js";
import { eventually } from "./support/eventually.js";
import { startServer } from "./support/server.js";
import { framesBecome, inForce, openScene, plainDocument, textOf } from "./support/scene.js";

useBrowser();

const inForceAt = async (address) => (await fetch(new URL("/api/configuration", address))).text();

test("an invalid document is refused with the reason, and the previous one stays in effect", async (t) => {
  const { page, server } = await openScene(t);
  await page.click("#tab-document");
  await page.fill("#document-text", '{"sensitivity": "4", "roi": []}');
  await page.locator("#document-findings .finding.error", { hasText: "roi" }).waitFor();
  assert.match(await page.locator("#progress").textContent(), /^Not applied/);
  assert.ok(await page.locator("#save").isDisabled());
  assert.equal(await inForceAt(server.address), plainDocument);
  await framesBecome(page, "the detector goes on", (frames) => frames.some(({ boxes }) => boxes.length));
});

test("invalid JSON locks the controls until it is undone", async (t) => {
  const { page } = await openScene(t);
  await page.click("#tab-document");
  await page.fill("#document-text", '{"sensitivity": ');
  await page.locator("#document-findings .finding.error").first().waitFor();
  await page.locator("#controls-fault").waitFor();
  assert.ok(await page.locator("#draw-roi").isDisabled());
  await page.click("#undo");
  await inForce(page);
  assert.equal(await textOf(page), plainDocument);
  assert.ok(await page.locator("#draw-roi").isEnabled());
});

test("a document is loaded from a file, applied, and downloaded as it is", async (t) => {
  const { page, folder, server } = await openScene(t);
  const other = '{"sensitivity": "3", "remark": "from elsewhere"}\n';
  writeFileSync(join(folder, "other.json"), other);
  await page.click("#tab-document");
  await page.setInputFiles("#load-file", join(folder, "other.json"));
  await eventually("it is in force", async () => (await inForceAt(server.address)) === other);
  const [download] = await Promise.all([page.waitForEvent("download"), page.click("#download")]);
  assert.equal(download.suggestedFilename(), "yard.json");
  assert.equal(readFileSync(await download.path(), "utf8"), other);
});

test("without a file nothing can be saved, and the page states why", async (t) => {
  const server = await startServer(usualClip(), "--port", "0");
  t.after(() => server.stop());
  const page = await openPage(t, server.address);
  await page.click("#draw-roi", { clickCount: 1 });
  assert.ok(await page.locator("#save").isDisabled());
  assert.match(await page.locator("#save").getAttribute("title"), /--config/);
});

// What the page's modules change in a document's text.
const edits = [
  [
    "a member is replaced in place",
    "setMember",
    ['{ "a": "1", // one\n "b": [2] }', "a", '"3"'],
    '{ "a": "3", // one\n "b": [2] }',
  ],
  [
    "of duplicate members the last one counts",
    "setMember",
    ['{"a": "1", "a": "2"}', "a", '"3"'],
    '{"a": "1", "a": "3"}',
  ],
  ["a new member follows the last", "setMember", ['{"a": {"b": 1}}', "b", '"3"'], '{"a": {"b": 1}, "b": "3"}'],
  ["an empty object gets its first", "setMember", ["{}", "a", '"3"'], '{\n  "a": "3"\n}'],
  [
    "a comment is not a member",
    "setMember",
    ['{/* "a": "1" */ "b": "//"}', "a", '"3"'],
    '{/* "a": "1" */ "b": "//", "a": "3"}',
  ],
  ["the only member goes", "removeMember", ['{"a": [1, {"a": 2}]}', "a"], "{}"],
  ["the first member goes", "removeMember", ['{"a": "1", "b": "2"}', "a"], '{"b": "2"}'],
  ["the last member goes", "removeMember", ['{"a": "1", "b": "2"}', "b"], '{"a": "1"}'],
  ["all members of that name go", "removeMember", ['{"a": "1", "b": "2", "a": "3"}', "a"], '{"b": "2"}'],
];
test("a document's text is changed in one place only", async (t) => {
  const { page } = await openScene(t);
  for (const [what, work, args, expected] of edits) {
    const changed = await page.evaluate(
      async ([name, given]) => (await import("/json_text.js"))[name](...given),
      [work, args],
    );
    assert.equal(changed, expected, what);
  }
});
