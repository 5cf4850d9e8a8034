// Activity and events over the whole video, filled in as it is analysed; also seeks.
import { clock, find } from "./dom.js";

const namespace = "http://www.w3.org/2000/svg";
const liveSpan = 300; // seconds shown of a source without an end

function shape(tag, attributes) {
  const node = document.createElementNS(namespace, tag);
  for (const [name, value] of Object.entries(attributes)) node.setAttribute(name, value);
  return node;
}

export class Timeline {
  #seek = find("seek");
  #from = 0;
  #span = 1;
  held = false; // while the user seeks
  #activity = [];
  #events = [];

  constructor(onSeek, onGlance) {
    this.#seek.addEventListener("input", () => {
      this.held = true;
      this.#label(Number(this.#seek.value));
      onGlance(Number(this.#seek.value));
    });
    this.#seek.addEventListener("change", async () => {
      await onSeek(Number(this.#seek.value));
      this.held = false;
    });
  }

  setSource({ duration, live, frame_rate: rate }) {
    find("timeline").hidden = false;
    this.#seek.disabled = live || !duration;
    this.#span = duration || liveSpan;
    this.#seek.max = this.#span;
    this.#seek.step = 1 / (rate || 25);
    this.#endless = live || !duration;
    find("timeline-end").textContent = this.#endless ? "now" : clock(this.#span, 0);
    this.#draw();
  }
  #endless = false;

  setTime(time) {
    if (this.#endless) {
      this.#from = Math.max(0, time - this.#span);
      find("timeline-start").textContent = clock(this.#from, 0);
    }
    if (this.held) return;
    this.#seek.value = time - this.#from;
    this.#label(time);
  }

  setEvents({ events, activity }) {
    this.#events = events;
    this.#activity = activity;
    this.#draw();
  }

  #label(time) {
    find("time").textContent = clock(time);
    this.#seek.setAttribute("aria-valuetext", `${clock(time)} of ${clock(this.#span)}`);
  }

  // In thousandths of the width. Small shares are enlarged, so that a distant person is visible beside a lorry.
  #draw() {
    const place = (time) => Math.max(0, Math.min(1000, ((time - this.#from) / this.#span) * 1000));
    const seen = this.#activity.filter(([second]) => second >= this.#from);
    const steps = seen.map(
      ([second], i) => (seen[i + 1]?.[0] ?? second + (second - (seen[i - 1]?.[0] ?? second - 1))) - second,
    );
    const most = Math.max(0.05, ...seen.map(([, share]) => share));
    const bars = seen.map(([second, share], i) => {
      const height = share > 0 ? Math.max(3, 46 * Math.sqrt(share / most)) : 0;
      const width = Math.max(1, place(second + Math.min(steps[i], 2)) - place(second));
      return `M${place(second).toFixed(1)} 48v${-height.toFixed(1)}h${width.toFixed(1)}v${height.toFixed(1)}z`;
    });
    const now = this.#from + Number(this.#seek.value);
    const spans = this.#events.map(({ kind, start, end, ended }) => {
      const from = place(start);
      const width = Math.max(3, place(ended ? end : Math.max(now, end)) - from);
      return shape("rect", { class: kind, x: from, y: kind === "light" ? 62 : 52, width, height: 7, rx: 2 });
    });
    find("timeline-graph").replaceChildren(shape("path", { class: "activity", d: bars.join("") }), ...spans);
  }
}
