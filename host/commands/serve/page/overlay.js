// The regions over the picture: ignored areas are dimmed and hatched, watched areas are clear. Outlines, points and
// names are separate elements, so that touch, keyboard and screen readers can reach them.
import { hasArea } from "./regions.js";

const namespace = "http://www.w3.org/2000/svg";
export const pointKey = ({ kind, index }, point) => `${kind}-${index}-point-${point}`;
export const regionKey = ({ kind, index }) => `${kind}-${index}`;
const within = (value) => Math.min(1, Math.max(0, value));

export class Overlay {
  #svg;
  #layers;
  #nodes = new Map();
  #used = new Set();

  // The layers are elements of the page, stacked.
  constructor(svg) {
    this.#svg = svg;
    this.#layers = Object.fromEntries(
      [...svg.querySelectorAll("[data-layer]")].map((layer) => [layer.dataset.layer, layer]),
    );
  }

  get size() {
    return { width: this.#svg.clientWidth || 1, height: this.#svg.clientHeight || 1 };
  }

  // The pointer position as fractions of the picture; may be outside 0 to 1.
  place({ clientX, clientY }) {
    const frame = this.#svg.getBoundingClientRect();
    return { x: (clientX - frame.left) / frame.width, y: (clientY - frame.top) / frame.height };
  }

  focus(key) {
    this.#nodes.get(key)?.focus();
  }

  // `selected`: a listed region or null. `drawn`: the points of an outline being drawn, or null.
  show({ regions, selected, drawn, everything }) {
    this.#used.clear();
    const { width, height } = this.size;
    this.#svg.setAttribute("viewBox", `0 0 ${width} ${height}`);
    this.#showShade(regions, everything);
    for (const region of regions) this.#showRegion(region, region === selected, Boolean(drawn));
    if (selected && !drawn) this.#showPoints(selected);
    if (drawn) this.#showDrawn(drawn);
    for (const [key, node] of this.#nodes) {
      if (this.#used.has(key)) continue;
      node.remove();
      this.#nodes.delete(key);
    }
  }

  // The element with that key, created if missing: elements are reused, so that they keep the focus.
  #node(layer, key, tag, attributes) {
    let node = this.#nodes.get(key);
    if (!node) {
      node = document.createElementNS(namespace, tag);
      node.dataset.key = key;
      this.#nodes.set(key, node);
      (this.#layers[layer] ?? layer).append(node);
    }
    this.#used.add(key);
    for (const [name, value] of Object.entries(attributes)) {
      if (node.getAttribute(name) !== String(value)) node.setAttribute(name, value);
    }
    return node;
  }

  #outline(points) {
    const { width, height } = this.size;
    return points.map(({ x, y }) => `${(x * width).toFixed(2)},${(y * height).toFixed(2)}`).join(" ");
  }

  // White areas of the mask are shaded: everything, minus the watched regions, plus the ignored ones.
  #showShade(regions, everything) {
    this.#layers.ground.setAttribute("fill", everything ? "#000" : "#fff");
    for (const region of regions.filter(hasArea)) {
      this.#node(region.kind, `mask-${regionKey(region)}`, "polygon", { points: this.#outline(region.points) });
    }
  }

  #showRegion(region, selected, inert) {
    const key = regionKey(region);
    const points = this.#outline(region.points);
    const look = `${region.kind}${selected ? " selected" : ""}`;
    this.#node("regions", `${key}-casing`, "polygon", { points, class: "casing" });
    this.#node("regions", key, "polygon", {
      points,
      class: `region ${look}`,
      tabindex: inert ? -1 : 0,
      role: "button",
      "aria-label": `${region.kind === "roi" ? "Watched" : "Ignored"} region ${region.name || "without a name"}`,
      "aria-describedby": "region-keys",
    });
    const { width, height } = this.size;
    const highest = region.points.reduce((best, point) => (point.y < best.y ? point : best), { x: 0, y: 2 });
    const label = this.#node("names", `${key}-name`, "text", {
      x: Math.max(8, Math.min(within(highest.x) * width + 8, width - 9 * region.name.length)),
      y: Math.max(20, within(highest.y) * height + 20),
      class: `name ${look}`,
      "aria-hidden": true,
    });
    if (label.textContent !== region.name) label.textContent = region.name;
  }

  // Points outside the picture are shown at its border, where they can be reached.
  #showPoints(region) {
    const { width, height } = this.size;
    region.points.forEach(({ x, y }, i) => {
      const next = region.points[(i + 1) % region.points.length];
      const middle = {
        cx: (within(x) + within(next.x)) * 0.5 * width,
        cy: (within(y) + within(next.y)) * 0.5 * height,
      };
      const look = { r: 5, class: `middle ${region.kind}`, "aria-hidden": true };
      this.#node("points", `${regionKey(region)}-middle-${i}`, "circle", { ...middle, ...look });
    });
    region.points.forEach(({ x, y }, i) => {
      const key = pointKey(region, i);
      const group = this.#node("points", key, "g", {
        class: `point ${region.kind}`,
        tabindex: 0,
        role: "button",
        transform: `translate(${(within(x) * width).toFixed(2)} ${(within(y) * height).toFixed(2)})`,
        "aria-label": `Point ${i + 1} of ${region.points.length} of ${region.name}`,
        "aria-describedby": "point-keys",
      });
      this.#node(group, `${key}-reach`, "circle", { r: 18, class: "reach" });
      this.#node(group, `${key}-dot`, "circle", { r: 7, class: "dot" });
    });
  }

  #showDrawn({ kind, points, end }) {
    const corners = [...points, ...(end ? [end] : [])];
    this.#node("points", "drawn-casing", "polyline", { points: this.#outline(corners), class: "casing" });
    this.#node("points", "drawn", "polyline", { points: this.#outline(corners), class: `region drawing ${kind}` });
    const { width, height } = this.size;
    points.forEach(({ x, y }, i) => {
      const first = i === 0 && points.length > 2 ? " closing" : "";
      this.#node("points", `drawn-${i}`, "circle", {
        cx: x * width,
        cy: y * height,
        r: first ? 9 : 5,
        class: `corner ${kind}${first}`,
      });
    });
  }
}
