// Connects the parts of the page.
import { getEvents, getStill, play } from "./api.js";
import { Comparison } from "./compare.js";
import { DocumentPanel } from "./document_panel.js";
import { announce, debounced, element, find } from "./dom.js";
import { Draft } from "./draft.js";
import { EventList } from "./event_list.js";
import { Feed } from "./feed.js";
import { Overlay } from "./overlay.js";
import { Picture } from "./picture.js";
import { RegionEditor } from "./region_editor.js";
import { RegionList } from "./region_list.js";
import { Settings } from "./settings.js";
import { openTabs } from "./tabs.js";
import { Timeline } from "./timeline.js";

const eventsEvery = 1000;

const feed = new Feed();
const draft = new Draft(() => feed.noteApplied());
const picture = new Picture(find("canvas"), find("marks"));
const editor = new RegionEditor(draft, new Overlay(find("overlay")), find("overlay"));
const timeline = new Timeline(seek, glance);
const events = new EventList(seek);
const comparison = new Comparison(draft, showProblem);
const documentPanel = new DocumentPanel(draft);
const settings = new Settings(draft, (size) => (picture.ghost = size));
new RegionList(editor, draft);
openTabs(find("tabs"));

let state = null;
let presetNames = "";

// ---- errors -------------------------------------------------------------------------------------------------

function showNotice(text) {
  if (find("problem").textContent === text) return;
  find("problem").textContent = text;
  find("problem").hidden = !text;
}

const reasons = {
  401: "A token is required. Open the full address that lightmotion serve printed, including the part after #.",
  403: "The program refused the request.",
  503: "Too many windows are open. This one keeps trying.",
};

function showProblem(problem) {
  const reason = reasons[problem.status];
  if (reason) showNotice(problem.status === 403 ? `${reason} ${problem.message}` : reason);
  else if (problem.status) showNotice(`The program reports: ${problem.message}`);
  else showNotice("The connection to the program was lost. Reconnecting…");
}

// ---- updates from the program -------------------------------------------------------------------------------

feed.addEventListener("lost", ({ detail }) => {
  showProblem(detail);
  document.body.classList.add("lost");
});
feed.addEventListener("found", () => {
  document.body.classList.remove("lost");
  announce("Reconnected.");
  draft.retry();
});

feed.addEventListener("state", ({ detail }) => {
  state = detail;
  const { name, width, height, frame_rate: rate, live } = state.source;
  const shortName = name.includes("://") ? name : name.split("/").at(-1);
  document.title = `${shortName} – lightmotion`;
  find("source-name").textContent = shortName;
  find("source-name").title = name;
  find("source-about").textContent = [
    width && `${width} × ${height}`,
    rate && `${Number(rate.toFixed(2))} frames per second`,
    live ? "live" : "file, looped",
  ]
    .filter(Boolean)
    .join(" · ");
  showNotice(state.problem);
  document.body.classList.remove("lost");
  find("play").setAttribute("aria-label", state.playing ? "Pause" : "Play");
  find("play").dataset.playing = state.playing;
  timeline.setSource(state.source);
  comparison.follow(state.comparing);
  documentPanel.follow(state);
  draft.follow(state.configuration);
  showPresets(state.presets);
  refreshEvents();
});

feed.addEventListener("frame", ({ detail: { about, picture: image } }) => {
  find("waiting").hidden = true;
  find("stages").style.setProperty("--shape", `${image.width} / ${image.height}`); // with square pixels
  if (!timeline.held) picture.show(image, about.boxes, about.time);
  comparison.show(image, about);
  timeline.setTime(about.time);
  find("boxes").textContent = about.boxes.length;
  find("fps").textContent = about.fps.toFixed(about.fps < 10 ? 1 : 0);
  find("cost").textContent = `${about.plugin_ms.toFixed(1)} ms`;
  if (performance.now() - eventsAt > eventsEvery) refreshEvents();
});

let eventsAt = -Infinity;
async function refreshEvents() {
  eventsAt = performance.now();
  const answer = await getEvents().catch(() => null); // the next picture tries again
  if (!answer) return;
  timeline.setEvents(answer);
  events.show(answer, state.source.live);
}

// ---- user actions -------------------------------------------------------------------------------------------

async function seek(time) {
  try {
    await play({ time });
    timeline.setTime(time);
  } catch (problem) {
    showProblem(problem);
  }
}

// While the seek bar is dragged, single pictures are shown, one request at a time.
let wanted = null;
let asking = false;
async function glance(time) {
  wanted = time;
  if (asking) return;
  asking = true;
  while (wanted !== null) {
    const moment = wanted;
    wanted = null;
    const still = await getStill(moment).catch(() => null);
    if (still && timeline.held) picture.show(still.picture, [], still.time);
  }
  asking = false;
}

find("play").addEventListener("click", () => play({ playing: !state?.playing }).catch(showProblem));

function showPresets(presets) {
  const names = JSON.stringify(presets);
  if (names === presetNames) return;
  presetNames = names;
  find("presets").replaceChildren(
    ...presets.map((preset) =>
      element(
        "button",
        { type: "button", class: "preset", onclick: () => usePreset(preset, presets) },
        element("strong", {}, preset.name),
        element("span", { class: "small" }, preset.about),
      ),
    ),
  );
}

function usePreset(preset, presets) {
  settings.usePreset(preset, presets);
  announce(`The settings of ${preset.name}.`);
}

function showSteps() {
  find("undo").disabled = !draft.canUndo;
  find("redo").disabled = !draft.canRedo;
}
draft.addEventListener("change", showSteps);
find("undo").addEventListener("click", () => draft.undo());
find("redo").addEventListener("click", () => draft.redo());
document.addEventListener("keydown", (event) => {
  const key = event.key.toLowerCase();
  if (!(event.ctrlKey || event.metaKey) || !"zy".includes(key)) return;
  if (event.target.matches('input[type="text"]')) return;
  if (key === "y" || event.shiftKey) draft.redo();
  else draft.undo();
  event.preventDefault();
});

const announceVerdict = debounced(() => {
  const errors = draft.findings.filter(({ severity }) => severity === "error");
  if (errors.length) announce(`Not applied: ${errors[0].text}`);
}, 500);
draft.addEventListener("verdict", announceVerdict);

feed.run();
