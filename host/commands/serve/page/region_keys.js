// Editing regions with the keyboard.
const steps = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] };
const step = 0.001;
const largeStep = 0.02;

// What has the focus: {region, point}; `point` is null for a whole region.
function focused(editor, target) {
  const match = /^(ro[ir])-(\d+)(?:-point-(\d+))?$/.exec(target.dataset?.key ?? "");
  if (!match) return null;
  const region = editor.find(match[1], Number(match[2]));
  return region && { region, point: match[3] === undefined ? null : Number(match[3]) };
}

function move(editor, { region, point }, [dx, dy], far) {
  const size = far ? largeStep : step;
  if (point === null) return editor.moveRegion(region, dx * size, dy * size);
  const { x, y } = region.points[point];
  return editor.movePoint(
    region,
    point,
    Math.max(0, x) + dx * size,
    y + dy * size,
    `point ${region.kind} ${region.index} ${point}`,
  );
}

function press(editor, event, { region, point }) {
  const whole = point === null;
  const works = {
    Enter: () => {
      if (!whole) return editor.insertPoint(region, point);
      editor.select(region);
      return editor.focus(region, 0);
    },
    Delete: () => (whole ? editor.deleteRegion(region) : editor.deletePoint(region, point)),
    Escape: () => (whole ? editor.select(null) : editor.focus(region)),
  };
  works.Backspace = works.Delete;
  works[" "] = () => editor.select(region);
  if (steps[event.key]) move(editor, { region, point }, steps[event.key], event.shiftKey);
  else if (works[event.key]) works[event.key]();
  else return false;
  return true;
}

const drawingKeys = {
  Enter: (hand) => hand.finish(),
  Escape: (hand) => hand.cancel(),
  Backspace: (hand) => hand.takeBack(),
};

export function listenToKeys(editor, overlay, svg) {
  svg.addEventListener("keydown", (event) => {
    const place = focused(editor, event.target);
    if (place && !event.ctrlKey && !event.metaKey && !event.altKey && press(editor, event, place))
      event.preventDefault();
  });
  svg.addEventListener("focusin", (event) => {
    const place = focused(editor, event.target);
    if (place) editor.select(place.region);
  });
  svg.addEventListener("focusout", () => editor.endMerge());
  document.addEventListener("keydown", (event) => {
    if (!editor.hand.drawn || event.target.closest("button, input, textarea, select")) return;
    if (!drawingKeys[event.key]) return;
    drawingKeys[event.key](editor.hand);
    event.preventDefault();
  });
}
