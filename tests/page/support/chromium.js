// Chromium, driven over a pipe with its DevTools protocol: as much of it as the tests of the page need.
import { spawn } from "node:child_process";
import { EventEmitter } from "node:events";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { openWindow } from "./window.js";

const options = ["--headless=new", "--no-sandbox", "--disable-gpu", "--no-first-run", "--remote-debugging-pipe"];

export async function launch() {
  const folder = mkdtempSync(join(tmpdir(), "lightmotion-chromium-"));
  const child = spawn("chromium", [...options, `--user-data-dir=${folder}`, "about:blank"], {
    stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"],
  });
  const ended = new Promise((done) => child.once("exit", done));
  const [, , , requests, answers] = child.stdio;
  requests.on("error", () => {}); // Chromium has ended; see below
  const waiting = new Map();
  const events = new EventEmitter().setMaxListeners(0);
  ended.then(() => {
    for (const { failed } of waiting.values()) failed(new Error("Chromium has ended"));
  });

  function take({ id, sessionId = "browser", method, params, result, error }) {
    if (!id) return events.emit(`${sessionId} ${method}`, params);
    const { done, failed, asked } = waiting.get(id);
    waiting.delete(id);
    return error ? failed(new Error(`${asked}: ${error.message}`)) : done(result);
  }
  let rest = Buffer.alloc(0);
  answers.on("data", (bytes) => {
    rest = Buffer.concat([rest, bytes]);
    for (let end = rest.indexOf(0); end >= 0; end = rest.indexOf(0)) {
      const message = rest.subarray(0, end).toString();
      rest = rest.subarray(end + 1);
      take(JSON.parse(message));
    }
  });

  let last = 0;
  const send = (asked, params = {}, sessionId = undefined) =>
    new Promise((done, failed) => {
      last += 1;
      waiting.set(last, { done, failed, asked });
      requests.write(`${JSON.stringify({ id: last, method: asked, params, sessionId })}\0`);
    });

  return {
    async newContext(wishes) {
      const { browserContextId } = await send("Target.createBrowserContext");
      const downloads = { behavior: "allowAndName", browserContextId, downloadPath: folder, eventsEnabled: true };
      await send("Browser.setDownloadBehavior", downloads);
      return {
        newPage: () => openWindow({ send, events, folder, browserContextId }, wishes),
        close: () => send("Target.disposeBrowserContext", { browserContextId }),
      };
    },
    async close() {
      await send("Browser.close").catch(() => {});
      await ended;
      rmSync(folder, { recursive: true, force: true, maxRetries: 5 });
    },
  };
}
