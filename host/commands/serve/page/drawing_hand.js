// Draws a new region: point by point, or a rectangle by dragging.
import { announce, find } from "./dom.js";
import { kinds, settled } from "./regions.js";

const corner = ({ x, y }) => settled(x, y);
const rectangle = (a, b) => [corner(a), corner({ x: b.x, y: a.y }), corner(b), corner({ x: a.x, y: b.y })];
const readyMade = rectangle({ x: 0.3, y: 0.3 }, { x: 0.7, y: 0.7 });

export class DrawingHand {
  drawn = null; // {kind, points, end}
  #editor;
  #overlay;

  constructor(editor, overlay) {
    this.#editor = editor;
    this.#overlay = overlay;
    find("drawing-finish").addEventListener("click", () => this.finish());
    find("drawing-cancel").addEventListener("click", () => this.cancel());
  }

  start(kind) {
    this.#editor.select(null);
    this.drawn = { kind, points: [], end: null };
    find("drawing-text").textContent = `Click the corners of the area to be ${kinds[kind].word}, or drag a rectangle.`;
    this.#show();
    find("overlay").scrollIntoView({ block: "nearest" });
    announce(`Drawing. Click corners on the picture. Enter finishes, Escape cancels.`);
  }

  // Without a pointer: a rectangle in the middle, to be adjusted with the keyboard.
  startReadyMade(kind) {
    this.#editor.add(kind, readyMade);
    this.#editor.focus(this.#editor.selected, 0);
  }

  addCorner(place) {
    const { points } = this.drawn;
    if (points.length > 2 && this.#isNear(points[0], place)) return this.finish();
    if (points.length && this.#isNear(points.at(-1), place)) return points.length > 2 ? this.finish() : null;
    points.push(corner(place));
    return this.#show();
  }

  addRectangle(from, to) {
    this.drawn.points = rectangle(from, to);
    this.finish();
  }

  lead(place) {
    this.drawn.end = corner(place);
    this.#show();
  }

  takeBack() {
    if (this.drawn.points.length) this.drawn.points.pop();
    this.#show();
  }

  finish() {
    if (this.drawn.points.length < 3) {
      announce("A region needs three corners.");
      return;
    }
    const { kind, points } = this.drawn;
    this.#stop();
    this.#editor.add(kind, points);
  }

  cancel() {
    this.#stop();
    announce("Drawing cancelled.");
  }

  #stop() {
    this.drawn = null;
    this.#show();
  }

  #isNear(corner_, place) {
    const { width, height } = this.#overlay.size;
    return Math.hypot((corner_.x - place.x) * width, (corner_.y - place.y) * height) < 12;
  }

  #show() {
    const { drawn } = this;
    find("drawing").hidden = !drawn;
    find("drawing-finish").disabled = !drawn || drawn.points.length < 3;
    find("overlay").classList.toggle("is-drawing", Boolean(drawn));
    this.#editor.show();
  }
}
