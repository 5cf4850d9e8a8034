// The same frames side by side: with the settings at the start of the comparison, and with the current ones.
import { compareWith } from "./api.js";
import { announce, count, find } from "./dom.js";
import { Picture } from "./picture.js";

const figures = ({ boxes, plugin_ms: cost }) => `${count(boxes.length, "box", "boxes")} · ${cost.toFixed(1)} ms`;

export class Comparison {
  #picture = new Picture(find("old-canvas"), find("old-marks"));
  #on = false;

  constructor(draft, onProblem) {
    find("compare").addEventListener("click", async () => {
      try {
        await compareWith(this.#on ? null : draft.inForce);
        this.follow(!this.#on);
        announce(this.#on ? "Comparing with the settings as they are now. Change some." : "Comparison ended.");
      } catch (problem) {
        onProblem(problem);
      }
    });
  }

  follow(on) {
    this.#on = on;
    find("stages").classList.toggle("comparing", on);
    find("old-stage").hidden = !on;
    find("new-caption").hidden = !on;
    find("compare").textContent = on ? "End comparison" : "Compare settings";
  }

  show(picture, about) {
    if (!this.#on) return;
    find("new-figures").textContent = figures(about);
    const { baseline, time } = about;
    if (!baseline) return;
    find("old-figures").textContent = figures(baseline);
    this.#picture.show(picture, baseline.boxes, time);
  }
}
