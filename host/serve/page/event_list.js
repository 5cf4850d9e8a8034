// The events that were found, newest first; each leads to its moment.
import { clock, element, find, percent } from "./dom.js";

const words = { motion: "Motion", light: "Change of light" };

export class EventList {
  #onSeek;
  #shown = "";

  constructor(onSeek) {
    this.#onSeek = onSeek;
  }

  show({ events }, live) {
    const key = JSON.stringify(events);
    if (key === this.#shown) return;
    this.#shown = key;
    find("no-events").hidden = events.length > 0;
    find("event-count").textContent = events.length || "";
    const list = find("event-list");
    const focus = document.activeElement?.dataset?.event;
    list.replaceChildren(...events.map((event) => this.#item(event, live)));
    if (focus) list.querySelector(`[data-event="${CSS.escape(focus)}"]`)?.focus();
  }

  #item({ id, kind, start, end, share, regions, why }, live) {
    const span = `${clock(start)} – ${end === null ? "now" : clock(end)}`;
    const parts = [
      element("span", { class: "kind" }, words[kind] ?? kind),
      element("span", { class: "span" }, span),
      element(
        "span",
        { class: "small" },
        `${percent(share)} of the picture${regions?.length ? `, ${regions.join(", ")}` : ""}`,
      ),
      why ? element("span", { class: "why small" }, why) : null,
    ];
    const box = live
      ? element("div", { class: "event" }, ...parts)
      : element(
          "button",
          { type: "button", class: "event", "data-event": id, onclick: () => this.#onSeek(start) },
          ...parts,
        );
    return element("li", { class: kind }, box);
  }
}
