// A picture with, in its watched parts, the boxes of motion and a trail of recent positions.
const trailSeconds = 2.5;
const colours = { casing: "rgb(0 0 0 / 0.65)", box: "#ffe14d", trail: "255 225 77" };

export class Picture {
  #ground;
  #canvas;
  #context;
  #trail = [];
  #ghost = null;
  #last = null;

  constructor(ground, marks) {
    this.#ground = ground;
    this.#canvas = marks;
    this.#context = marks.getContext("2d");
    new ResizeObserver(() => this.#last && this.#draw()).observe(marks);
  }

  show(picture, boxes, time) {
    this.#remember(boxes, time);
    this.#last = { boxes, time };
    if (this.#ground.width !== picture.width) this.#ground.width = picture.width;
    if (this.#ground.height !== picture.height) this.#ground.height = picture.height;
    this.#ground.getContext("2d").drawImage(picture, 0, 0);
    this.#draw();
  }

  // The outline of the minimum box size, in fractions; null hides it.
  set ghost(size) {
    this.#ghost = size;
    if (this.#last) this.#draw();
  }

  #remember(boxes, time) {
    const newest = this.#trail.at(-1)?.time ?? Infinity;
    if (time < newest || time > newest + 1) this.#trail = [];
    const feet = boxes.map(({ x, y, width, height }) => [x + width / 2, y + height]);
    this.#trail.push({ time, feet });
    this.#trail = this.#trail.filter((step) => step.time > time - trailSeconds);
  }

  // In device pixels, so that lines are thin and sharp.
  #draw() {
    const { boxes, time } = this.#last;
    this.#canvas.width = Math.round(this.#canvas.clientWidth * devicePixelRatio) || 1;
    this.#canvas.height = Math.round(this.#canvas.clientHeight * devicePixelRatio) || 1;
    this.#drawTrail(time);
    for (const box of boxes) this.#drawBox(box);
    if (this.#ghost) this.#drawGhost(this.#ghost);
  }

  #drawTrail(now) {
    const { width, height } = this.#canvas;
    for (const { time, feet } of this.#trail) {
      const strength = 1 - (now - time) / trailSeconds;
      this.#context.fillStyle = `rgb(${colours.trail} / ${(0.7 * strength).toFixed(3)})`;
      for (const [x, y] of feet) {
        this.#context.beginPath();
        this.#context.arc(x * width, y * height, (1 + 2 * strength) * devicePixelRatio, 0, 2 * Math.PI);
        this.#context.fill();
      }
    }
  }

  #drawBox({ x, y, width: boxWidth, height: boxHeight, id }) {
    const { width, height } = this.#canvas;
    for (const [style, thickness] of [
      [colours.casing, 4.5],
      [colours.box, 2],
    ]) {
      this.#context.strokeStyle = style;
      this.#context.lineWidth = thickness * devicePixelRatio;
      this.#context.strokeRect(x * width, y * height, boxWidth * width, boxHeight * height);
    }
    if (id) this.#drawId(id, x * width, y * height);
  }

  // Above the box's corner, or inside where there is no room above.
  #drawId(id, x, y) {
    const size = 13 * devicePixelRatio;
    const base = y > 1.4 * size ? y - 0.4 * size : y + 1.2 * size;
    this.#context.font = `600 ${size}px system-ui, sans-serif`;
    this.#context.lineJoin = "round";
    this.#context.lineWidth = 3 * devicePixelRatio;
    this.#context.strokeStyle = colours.casing;
    this.#context.strokeText(id, x, base);
    this.#context.fillStyle = colours.box;
    this.#context.fillText(id, x, base);
  }

  #drawGhost({ width: part, height: other }) {
    const { width, height } = this.#canvas;
    const [boxWidth, boxHeight] = [part * width, other * height];
    const [left, top] = [(width - boxWidth) / 2, (height - boxHeight) / 2];
    this.#context.fillStyle = "rgb(255 255 255 / 0.35)";
    this.#context.fillRect(left, top, boxWidth, boxHeight);
    for (const [style, dash] of [
      ["#000", []],
      ["#fff", [5 * devicePixelRatio]],
    ]) {
      this.#context.strokeStyle = style;
      this.#context.lineWidth = 2 * devicePixelRatio;
      this.#context.setLineDash(dash);
      this.#context.strokeRect(left, top, boxWidth, boxHeight);
    }
    this.#context.setLineDash([]);
  }
}
