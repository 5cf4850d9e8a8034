import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { request } from "node:http";
import { createInterface } from "node:readline";
import test from "node:test";
import { framesOf, openPage, useBrowser } from "./support/browser.js";
import { makeClip, seconds, usualClip } from "./support/clip.js";
import { eventually } from "./support/eventually.js";
import { startServer } from "./support/server.js";
import { framesBecome, inForce, openScene, startScene, textOf } from "./support/scene.js";

useBrowser();

const problemOf = (page) => page.locator("#problem").textContent();

test("two viewers see each other's changes", async (t) => {
  const { server } = await startScene(t);
  const [one, other] = [await openPage(t, server.address), await openPage(t, server.address)];
  await one.focus("#draw-roi");
  await one.keyboard.press("Enter");
  await inForce(one);
  await eventually("the other sees it", async () => (await textOf(other)) === (await textOf(one)));
  assert.equal(await other.locator("#region-list input").inputValue(), "Watched 1");
  await other.click("#undo");
  await inForce(other);
  await eventually("and takes it back for both", async () => !(await textOf(one)).includes("roi"));
});

function statusFor(address, headers) {
  return new Promise((done, failed) => {
    request(new URL("/api/state", address), { headers }, (answer) => {
      answer.resume();
      done(answer.statusCode);
    })
      .on("error", failed)
      .end();
  });
}

test("strangers are refused: another Host, another Origin, another site", async (t) => {
  const { server } = await startScene(t);
  assert.equal(await statusFor(server.address, {}), 200);
  assert.equal(await statusFor(server.address, { Host: "evil.example" }), 403);
  assert.equal(await statusFor(server.address, { Origin: "http://evil.example" }), 403);
  assert.equal(await statusFor(server.address, { "Sec-Fetch-Site": "cross-site" }), 403);
});

test("with a token, its address opens the page, which keeps it for a reload; without it nothing is shown", async (t) => {
  const { server } = await startScene(t, { options: ["--token", "secret"] });
  assert.ok(server.address.endsWith("#token=secret"), server.address);
  assert.equal(await statusFor(server.address, {}), 401);
  const page = await openPage(t, server.address);
  assert.ok(!page.url().includes("secret"));
  await page.reload();
  await page.locator("#waiting").waitFor({ state: "hidden" });
  const stranger = await openPage(t, server.address.split("#")[0], { shown: false });
  await eventually("the page tells what is missing", async () => (await problemOf(stranger)).includes("token"));
});

test("a file starts over at its end; its events are kept", async (t) => {
  const { page } = await openScene(t);
  await page.locator("#seek").focus();
  await page.keyboard.press("End");
  await page.keyboard.press("PageDown");
  await eventually("the end and a new beginning", () => {
    const times = framesOf(page).map(({ time }) => time);
    const late = times.findIndex((time) => time > seconds * 0.7);
    return late >= 0 && times.slice(late).some((time) => time < seconds * 0.3);
  });
  await eventually("events are listed", async () => (await page.locator("#event-list li").count()) > 0);
});

test("a paused video stops; an event seeks to its time", async (t) => {
  const { page } = await openScene(t);
  await page.locator("#event-list button").first().waitFor();
  await page.click("#play");
  await page.locator('#play[aria-label="Play"]').waitFor();
  const start = await page.locator("#event-list .span").last().textContent();
  await page.locator("#event-list button").last().click();
  await eventually("that moment", async () => (await page.locator("#time").textContent()) === start.split(" ")[0]);
});

test("the page reconnects to a restarted server", async (t) => {
  const first = await startServer(usualClip(), "--port", "0");
  const page = await openPage(t, first.address);
  await first.stop();
  await eventually("the loss is reported", async () => /connection .* lost/.test(await problemOf(page)));
  const second = await startServer(usualClip(), "--port", String(first.port));
  t.after(() => second.stop());
  await eventually("it is back", async () => (await problemOf(page)) === "");
  await framesBecome(page, "pictures again", (frames) => frames.length > 0);
});

// The camera of the program's tests, controlled through standard input.
async function startCamera(t) {
  const file = makeClip("clip.h264", ["-c:v", "libx264", "-x264-params", "keyint=10:bframes=0:aud=1"]);
  const child = spawn("python3", [new URL("../host/live_camera.py", import.meta.url).pathname, file], {
    stdio: ["pipe", "pipe", "inherit"],
  });
  t.after(() => child.kill());
  const lines = createInterface({ input: child.stdout })[Symbol.asyncIterator]();
  const answer = async () => (await lines.next()).value;
  const port = Number(await answer());
  const command = (words) => {
    child.stdin.write(`${words}\n`);
    return answer();
  };
  return { address: `rtsp://127.0.0.1:${port}/`, command };
}

test("a failed camera is reported, and its pictures return with it", async (t) => {
  const camera = await startCamera(t);
  const starting = startServer(camera.address, "--port", "0");
  await camera.command("play");
  await camera.command("send 60");
  const server = await starting;
  t.after(() => server.stop());
  const page = await openPage(t, server.address);
  await camera.command("die");
  await eventually("the failure is reported", async () => (await problemOf(page)) !== "");
  const before = framesOf(page).length;
  await camera.command("listen");
  await camera.command("play");
  await camera.command("send 60");
  await eventually("pictures again", () => framesOf(page).length > before);
  await eventually("the error disappears", async () => (await problemOf(page)) === "");
});
