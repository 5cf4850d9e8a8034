// One window of Chromium. Elements are found by CSS selectors, optionally by text; actions wait for their element.
import { EventEmitter, once } from "node:events";
import { join } from "node:path";
import { eventually } from "./eventually.js";
import { keyboardOf } from "./keyboard.js";

// Runs in the page: the elements that `steps` lead to.
function find(steps) {
  const matches = (element, { text, has }) =>
    (!text || element.textContent.toLowerCase().includes(text.toLowerCase())) && (!has || find(has, [element]).length);
  let found = arguments[1] ?? [document];
  for (const step of steps) {
    if (step.nth !== undefined) found = found.slice(step.nth).slice(0, 1);
    else found = found.flatMap((root) => [...root.querySelectorAll(step.css)]).filter((one) => matches(one, step));
    if (step.innermost) found = found.filter((one) => !found.some((other) => other !== one && one.contains(other)));
  }
  return found;
}

// Runs in the page: whether the element is visible.
function isSeen(element) {
  const { width, height } = element.getBoundingClientRect();
  return width > 0 && height > 0 && element.checkVisibility({ checkVisibilityCSS: true });
}

// Runs in the page: the centre of the element once it no longer moves and nothing covers it, or null.
async function target(element) {
  if (!isSeen(element) || element.disabled) return null;
  element.scrollIntoView({ block: "nearest", inline: "nearest" });
  const place = () => {
    const { x, y, width, height } = element.getBoundingClientRect();
    return [x + width / 2, y + height / 2];
  };
  const before = place();
  await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
  const now = place();
  const top = document.elementFromPoint(...now);
  const free = top && (element.contains(top) || element.labels?.length || top.contains(element));
  return free && String(before) === String(now) ? now : null;
}

const helpers = [find, isSeen, target].join("\n");

export async function openWindow({ send, events, folder, browserContextId }, { viewport, hasTouch = false }) {
  const { targetId } = await send("Target.createTarget", { url: "about:blank", browserContextId });
  const { sessionId } = await send("Target.attachToTarget", { targetId, flatten: true });
  const command = (method, params) => send(method, params, sessionId);
  const on = (method, heard) => events.on(`${sessionId} ${method}`, heard);
  const page = new EventEmitter();
  let address = "";

  on("Page.frameNavigated", ({ frame }) => (address = frame.url + (frame.urlFragment ?? "")));
  on("Page.navigatedWithinDocument", ({ url }) => (address = url));
  on("Runtime.exceptionThrown", ({ exceptionDetails: { exception, text } }) =>
    page.emit("pageerror", { stack: exception?.description ?? text }),
  );
  on("Network.responseReceived", ({ response }) => {
    const headers = Object.entries(response.headers).map(([name, value]) => [name.toLowerCase(), value]);
    page.emit("response", { url: () => response.url, headers: () => Object.fromEntries(headers) });
  });
  events.on("browser Browser.downloadWillBegin", ({ frameId, guid, suggestedFilename }) => {
    if (frameId !== targetId) return;
    const whole = eventually("the download is complete", () => complete.has(guid));
    const path = () => whole.then(() => join(folder, guid));
    page.emit("download", { suggestedFilename: () => suggestedFilename, path });
  });
  const complete = new Set();
  events.on("browser Browser.downloadProgress", ({ guid, state }) => state === "completed" && complete.add(guid));

  for (const domain of ["Page", "Runtime", "Network"]) await command(`${domain}.enable`);
  await command("Emulation.setDeviceMetricsOverride", { ...viewport, deviceScaleFactor: 1, mobile: false });
  await command("Emulation.setTouchEmulationEnabled", { enabled: hasTouch });
  await command("Emulation.setFocusEmulationEnabled", { enabled: true }); // several windows, each as if focused

  async function evaluate(work, ...values) {
    const expression = `(() => { ${helpers}; return (${work})(${values.map((value) => JSON.stringify(value))}); })()`;
    const wishes = { expression, awaitPromise: true, returnByValue: true, userGesture: true };
    const { result, exceptionDetails } = await command("Runtime.evaluate", wishes);
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }
  async function arrive(method, params) {
    const loaded = once(events, `${sessionId} Page.loadEventFired`);
    await command(method, params);
    await loaded;
  }

  let at = [0, 0];
  let held = 0; // the pressed button, as a bit
  const pointer = (type, more = {}) =>
    command("Input.dispatchMouseEvent", { type, x: at[0], y: at[1], buttons: held, pointerType: "mouse", ...more });
  const mouse = {
    async move(x, y, { steps = 1 } = {}) {
      const [fromX, fromY] = at;
      for (let step = 1; step <= steps; step += 1) {
        at = [fromX + ((x - fromX) * step) / steps, fromY + ((y - fromY) * step) / steps];
        await pointer("mouseMoved", { button: held ? "left" : "none" });
      }
    },
    async down() {
      held = 1;
      await pointer("mousePressed", { button: "left", clickCount: 1 });
    },
    async up() {
      held = 0;
      await pointer("mouseReleased", { button: "left", clickCount: 1 });
    },
    async click(x, y) {
      await mouse.move(x, y);
      await mouse.down();
      await mouse.up();
    },
  };
  const touchscreen = {
    async tap(x, y) {
      await command("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: [{ x, y }] });
      await command("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
    },
  };

  function locate(steps) {
    const name = JSON.stringify(steps);
    // The result of `work` for the first matching element; repeated until it is not null.
    const first = async (work, ...values) => {
      const answer = await eventually(`an element ${name}`, () =>
        evaluate(
          `async (steps, ...values) => {
            const element = find(steps)[0];
            const value = element && (await (${work})(element, ...values));
            return value === undefined || value === null ? null : { value };
          }`,
          steps,
          ...values,
        ),
      );
      return answer.value;
    };
    const locator = {
      locator: (css, { hasText, has } = {}) => locate([...steps, { css, text: hasText, has: has?.steps }]),
      steps,
      first: () => locate([...steps, { nth: 0 }]),
      last: () => locate([...steps, { nth: -1 }]),
      count: () => evaluate("(steps) => find(steps).length", steps),
      waitFor: ({ state = "visible" } = {}) =>
        eventually(`${name} is ${state}`, async () => (await locator.isVisible()) === (state === "visible")),
      isVisible: () => evaluate("(steps) => find(steps).some(isSeen)", steps),
      isDisabled: () => first("(element) => element.disabled"),
      isEnabled: () => first("(element) => !element.disabled"),
      textContent: () => first("(element) => element.textContent"),
      inputValue: () => first("(element) => element.value"),
      getAttribute: (attribute) => first("(element, attribute) => element.getAttribute(attribute)", attribute),
      focus: () => first("(element) => (element.focus(), true)"),
      boundingBox: () =>
        first(`(element) => {
          const { x, y, width, height } = element.getBoundingClientRect();
          return { x, y, width, height };
        }`),
      hover: async () => mouse.move(...(await first("target"))),
      click: async () => mouse.click(...(await first("target"))),
      tap: async () => touchscreen.tap(...(await first("target"))),
      async fill(text) {
        await first("(element) => (isSeen(element) && !element.disabled ? (element.focus(), element.select(), true) : null)");
        await command("Input.insertText", { text });
      },
      selectOption: (value) =>
        first(
          `(element, value) => {
            element.value = value;
            for (const name of ["input", "change"]) element.dispatchEvent(new Event(name, { bubbles: true }));
            return true;
          }`,
          value,
        ),
      async setInputFiles(file) {
        const { result } = await command("Runtime.evaluate", { expression: `${find} find(${name})[0]` });
        await command("DOM.setFileInputFiles", { files: [file], objectId: result.objectId });
      },
    };
    return locator;
  }
  const locator = locate([]).locator;
  const onElement = (action) => (css, ...values) => locator(css)[action](...values);
  const actions = ["click", "fill", "focus", "hover", "selectOption", "setInputFiles", "tap"];

  return Object.assign(page, Object.fromEntries(actions.map((action) => [action, onElement(action)])), {
    evaluate,
    locator,
    mouse,
    touchscreen,
    keyboard: keyboardOf(command),
    getByText: (text) => locate([{ css: "body *", text, innermost: true }]),
    $$eval: (css, work) => evaluate(`(steps) => (${work})(find(steps))`, [{ css }]),
    goto: (url) => arrive("Page.navigate", { url }),
    reload: () => arrive("Page.reload"),
    url: () => address,
    waitForEvent: async (name) => (await once(page, name))[0],
  });
}
