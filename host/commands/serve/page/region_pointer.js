// Editing regions with a mouse, pen or finger.
import { settled } from "./regions.js";

const stroke = 8; // pixels from which a press is a drag instead of a click
const magnet = 8; // distance from the border, in pixels, within which points snap to it

// Snaps a position to the picture's border if it is close.
function pulled(overlay, { x, y }) {
  const { width, height } = overlay.size;
  const pull = (value, length) => {
    if (value * length < magnet) return 0;
    return (1 - value) * length < magnet ? 1 : value;
  };
  return { x: pull(x, width), y: pull(y, height) };
}

// Handlers while a pointer is down: `drag` gets every position, `drop` the last; `drop` alone if it did not move.
function dragOfPoint(editor, overlay, region, at) {
  const original = region.points;
  let points = null;
  return {
    drag(place) {
      const { x, y } = pulled(overlay, place);
      points = original.with(at, { ...original[at], ...settled(x, y) });
      editor.preview(region, points);
    },
    drop() {
      if (points) editor.setPoints(region, points, `move point ${at + 1}`);
    },
    cancel: () => editor.preview(region, original),
  };
}

function dragOfMiddle(editor, overlay, region, after, from) {
  editor.insertPoint(region, after, settled(from.x, from.y));
  return dragOfPoint(editor, overlay, editor.find(region.kind, region.index), after + 1);
}

function dragOfRegion(editor, region, from) {
  const original = region.points;
  let points = null;
  return {
    drag(place) {
      points = editor.moved(original, place.x - from.x, place.y - from.y);
      editor.preview(region, points);
    },
    drop() {
      if (points) editor.setPoints(region, points, "move");
    },
    cancel: () => editor.preview(region, original),
  };
}

function drawing(editor, overlay, from) {
  const { hand } = editor;
  let to = null;
  return {
    drag(place) {
      to = pulled(overlay, place);
      if (!hand.drawn.points.length) hand.lead(to);
    },
    drop() {
      if (to && !hand.drawn.points.length) hand.addRectangle(from, to);
      else hand.addCorner(to ?? from);
    },
    cancel() {},
  };
}

function begin(editor, overlay, event) {
  const from = pulled(overlay, overlay.place(event));
  if (editor.hand.drawn) return drawing(editor, overlay, from);
  const key = event.target.closest("[data-key]")?.dataset.key ?? "";
  const [, kind, index, part, number] = /^(ro[ir])-(\d+)(?:-(point|middle)-(\d+))?/.exec(key) ?? [];
  const region = kind && editor.find(kind, Number(index));
  if (!region || !editor.usable) {
    editor.select(null);
    return null;
  }
  editor.select(region);
  editor.focus(region, part === "point" ? Number(number) : null);
  if (part === "point") return dragOfPoint(editor, overlay, region, Number(number));
  if (part === "middle") return dragOfMiddle(editor, overlay, region, Number(number), overlay.place(event));
  return dragOfRegion(editor, region, overlay.place(event));
}

export function listenToPointer(editor, overlay, svg) {
  let held = null;
  svg.addEventListener("pointerdown", (event) => {
    if (held || event.button !== 0) return;
    const work = begin(editor, overlay, event);
    if (!work) return;
    held = { ...work, pointer: event.pointerId, x: event.clientX, y: event.clientY, moved: false };
    svg.setPointerCapture(event.pointerId);
    event.preventDefault();
  });
  svg.addEventListener("pointermove", (event) => {
    if (!held && editor.hand.drawn?.points.length) editor.hand.lead(overlay.place(event));
    if (held?.pointer !== event.pointerId) return;
    held.moved ||= Math.hypot(event.clientX - held.x, event.clientY - held.y) > stroke / (editor.hand.drawn ? 1 : 4);
    if (held.moved) held.drag(overlay.place(event));
  });
  svg.addEventListener("pointerup", (event) => {
    if (held?.pointer !== event.pointerId) return;
    const { drop } = held;
    held = null;
    drop();
  });
  svg.addEventListener("pointercancel", (event) => {
    if (held?.pointer !== event.pointerId) return;
    held.cancel();
    held = null;
  });
}
