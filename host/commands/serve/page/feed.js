// Long polling: pictures with their boxes, and state changes.
import { getState, request } from "./api.js";

const viewer = Array.from(crypto.getRandomValues(new Uint32Array(2)), (part) => part.toString(36)).join("");
const pause = (milliseconds) => new Promise((done) => setTimeout(done, milliseconds));
const longestPause = 4000;

// Events: "frame" {about, picture}, "state", "lost" (an error), "found".
export class Feed extends EventTarget {
  #sequence = -1;
  #stateNumber = null;
  #lost = false;
  #applied = 0;

  // Answers requested before a document was applied belong to the previous document and are ignored.
  noteApplied() {
    this.#applied += 1;
  }

  emit(kind, detail) {
    this.dispatchEvent(new CustomEvent(kind, { detail }));
  }

  async refresh() {
    const before = this.#applied;
    const state = await getState();
    if (before === this.#applied) this.emit("state", state);
    else await this.refresh();
  }

  async run() {
    for (let wait = 250; ;) {
      try {
        if (this.#stateNumber === null) await this.refresh();
        await this.#nextFrame();
        if (this.#lost) this.emit("found");
        this.#lost = false;
        wait = 250;
      } catch (problem) {
        this.#lost = true;
        this.#sequence = -1;
        this.#stateNumber = null;
        this.emit("lost", problem);
        await pause(wait);
        wait = Math.min(wait * 2, longestPause);
      }
    }
  }

  async #nextFrame() {
    const answer = await request(`/api/frame?after=${this.#sequence}&viewer=${viewer}`);
    const about = JSON.parse(answer.headers.get("Lightmotion-Frame"));
    if (answer.status === 204) return this.#follow(about.state);
    const picture = await createImageBitmap(await answer.blob());
    this.#sequence = about.sequence;
    this.emit("frame", { about, picture });
    return this.#follow(about.state);
  }

  async #follow(number) {
    if (this.#stateNumber !== null && this.#stateNumber !== number) await this.refresh();
    this.#stateNumber = number;
  }
}
