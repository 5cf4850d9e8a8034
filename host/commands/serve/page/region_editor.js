// Edits regions on the picture. Holds the selection and the change in progress; a completed change becomes one step of
// the draft.
import { announce, percent } from "./dom.js";
import { DrawingHand } from "./drawing_hand.js";
import { pointKey, regionKey } from "./overlay.js";
import { addRegion, freeName, kinds, readRegions, removeRegion, replaceRegion, settled } from "./regions.js";
import { listenToKeys } from "./region_keys.js";
import { listenToPointer } from "./region_pointer.js";

const nameOf = (region) => region.name || `the ${kinds[region.kind].word} region`;
const same = (one, other) => one && other && one.kind === other.kind && one.index === other.index;

// Event: "select".
export class RegionEditor extends EventTarget {
  regions = [];
  selected = null;
  #draft;
  #overlay;

  constructor(draft, overlay, svg) {
    super();
    this.#draft = draft;
    this.#overlay = overlay;
    this.hand = new DrawingHand(this, overlay);
    draft.addEventListener("change", () => this.#read());
    new ResizeObserver(() => this.show()).observe(svg);
    listenToPointer(this, overlay, svg);
    listenToKeys(this, overlay, svg);
  }

  get everything() {
    return this.#draft.root.roi === undefined;
  }
  get usable() {
    return !this.#draft.fault;
  }

  #read() {
    this.regions = readRegions(this.#draft.root);
    this.selected = this.regions.find((region) => same(region, this.selected)) ?? null;
    this.show();
  }

  show() {
    const { regions, selected, everything } = this;
    this.#overlay.show({ regions, selected, everything, drawn: this.hand.drawn });
  }

  find(kind, index) {
    return this.regions.find((region) => same(region, { kind, index }));
  }

  select(region) {
    if (this.selected === region) return;
    this.selected = region;
    this.#draft.endMerge();
    this.show();
    this.dispatchEvent(new Event("select"));
  }

  focus(region, point = null) {
    this.#overlay.focus(point === null ? regionKey(region) : pointKey(region, point));
  }

  add(kind, points) {
    const name = freeName(this.regions, kind);
    this.#draft.change(addRegion(this.#draft.text, { kind, name, points }), `draw ${name}`);
    this.select(this.regions.findLast((region) => region.kind === kind));
    announce(`${name} added.`);
  }

  // For points that are still being dragged: shown, but not applied.
  preview(region, points) {
    region.points = points;
    this.show();
  }

  setPoints(region, points, what, mergeKey = null) {
    this.#draft.change(
      replaceRegion(this.#draft.text, { ...region, points }),
      `${what} of ${nameOf(region)}`,
      mergeKey,
    );
  }

  movePoint(region, at, x, y, mergeKey = null) {
    const point = { ...region.points[at], ...settled(x, y) };
    this.setPoints(region, region.points.with(at, point), `move point ${at + 1}`, mergeKey);
    if (mergeKey) announce(`${percent(Math.max(0, point.x), 1)} from the left, ${percent(point.y, 1)} from the top`);
  }

  // A region keeps its shape when moved, so the whole region stops at the border.
  moved(points, dx, dy) {
    const limit = (axis, step) => {
      const all = points.map((point) => Math.max(0, Math.min(1, point[axis])));
      return Math.min(1 - Math.max(...all), Math.max(-Math.min(...all), step));
    };
    const [right, lower] = [limit("x", dx), limit("y", dy)];
    return points.map((point) => ({ ...point, ...settled(Math.max(0, point.x) + right, point.y + lower) }));
  }

  moveRegion(region, dx, dy) {
    this.setPoints(region, this.moved(region.points, dx, dy), "move", `region ${regionKey(region)}`);
    announce(`${nameOf(region)} moved`);
  }

  insertPoint(region, after, place = null) {
    const [from, to] = [region.points[after], region.points[(after + 1) % region.points.length]];
    const point = place ?? settled((Math.max(0, from.x) + Math.max(0, to.x)) / 2, (from.y + to.y) / 2);
    this.setPoints(region, region.points.toSpliced(after + 1, 0, point), `insert point ${after + 2}`);
    this.focus(region, after + 1);
    announce(`Point ${after + 2} inserted.`);
  }

  deletePoint(region, at) {
    if (region.points.length <= 3) {
      announce("A region needs three points. Delete the region instead.");
      return;
    }
    this.setPoints(region, region.points.toSpliced(at, 1), `delete point ${at + 1}`);
    this.focus(region, Math.min(at, region.points.length - 2));
    announce(`Point ${at + 1} deleted.`);
  }

  deleteRegion(region) {
    this.#draft.change(removeRegion(this.#draft.text, region), `delete ${nameOf(region)}`);
    this.select(null);
    this.dispatchEvent(new Event("select"));
    announce(`${nameOf(region)} deleted.`);
  }

  endMerge() {
    this.#draft.endMerge();
  }
}
