// The list of events, newest first; each links to its time.
import { clock, element, find, percent } from "./dom.js";

const words = { motion: "Motion", light: "Lighting change" };
const keyOf = ({ id, start }) => `${id} ${start}`; // a restarted program restarts its ids
const setText = (node, text) => node.textContent !== text && (node.textContent = text);

export class EventList {
  #onSeek;
  #items = new Map();

  constructor(onSeek) {
    this.#onSeek = onSeek;
  }

  // An event in progress keeps its element: a pressed button must stay until it is released.
  show({ events }, live) {
    const items = events.map((event) => this.#items.get(keyOf(event)) ?? this.#item(event, live));
    events.forEach((event, i) => this.#fill(items[i], event));
    this.#items = new Map(events.map((event, i) => [keyOf(event), items[i]]));
    const list = find("event-list");
    if (items.length !== list.children.length || items.some((item, i) => item !== list.children[i])) {
      const focused = document.activeElement;
      list.replaceChildren(...items);
      if (list.contains(focused)) focused.focus();
    }
    find("no-events").hidden = events.length > 0;
    setText(find("event-count"), String(events.length || ""));
  }

  #item({ kind, start }, live) {
    const parts = ["kind", "span", "about small", "why small"].map((name) => element("span", { class: name }));
    const box = live
      ? element("div", { class: "event" }, ...parts)
      : element("button", { type: "button", class: "event", onclick: () => this.#onSeek(start) }, ...parts);
    return element("li", { class: kind }, box);
  }

  #fill(item, { kind, start, end, peak_share: share, regions, started, ended }) {
    const [kindBox, span, about, whyBox] = item.firstChild.children;
    setText(kindBox, words[kind] ?? kind);
    setText(span, `${clock(start)} – ${ended ? clock(end) : "now"}`);
    setText(about, [`${percent(share)} of the picture`, ...regions].join(", "));
    setText(whyBox, `${started} ${ended}`.trim());
  }
}
