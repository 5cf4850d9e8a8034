// The configuration being edited. The program checks every change, and applies it at once if valid; every change can
// be undone.
import { apply, check } from "./api.js";
import { announce, debounced } from "./dom.js";
import { parse } from "./json_text.js";

const mostSteps = 200;
const quiet = 250;

// Events: "change" (the text), "verdict" (findings, effective, progress).
export class Draft extends EventTarget {
  text = "";
  root = {}; // of the last valid text
  fault = ""; // why the text is invalid
  inForce = "";
  findings = [];
  effective = null;
  progress = "applied"; // or "checking", "refused", "unreachable"
  #done = [];
  #undone = [];
  #mergeKey = null;
  #settle = debounced(() => this.#checkAndApply(), quiet);
  #onApplied;

  constructor(onApplied) {
    super();
    this.#onApplied = onApplied;
  }

  get canUndo() {
    return this.#done.length > 0;
  }
  get canRedo() {
    return this.#undone.length > 0;
  }

  // `what` describes the change to users. Consecutive changes with the same merge key are one step.
  change(text, what, mergeKey = null) {
    if (text === this.text) return;
    if (mergeKey === null || mergeKey !== this.#mergeKey) this.#done.push({ text: this.text, what });
    if (this.#done.length > mostSteps) this.#done.shift();
    this.#undone = [];
    this.#mergeKey = mergeKey;
    this.#take(text);
    this.#await();
  }

  undo() {
    this.#step(this.#done, this.#undone, "Undone");
  }
  redo() {
    this.#step(this.#undone, this.#done, "Redone");
  }
  endMerge() {
    this.#mergeKey = null;
  }

  // Takes over the program's configuration: the initial one, or one that another viewer has applied.
  follow(text) {
    const own = this.text === this.inForce || !this.inForce;
    const first = !this.inForce;
    if (text === this.inForce) return;
    this.inForce = text;
    if (!own || text === this.text) return;
    if (!first) {
      this.#done.push({ text: this.text, what: "change from another window" });
      this.#undone = [];
      announce("The settings were changed in another window.");
    }
    this.#take(text);
    this.#await();
  }

  // Tries again after the program was unreachable.
  retry() {
    if (this.text !== this.inForce || this.progress === "unreachable") this.#await();
  }

  #step(from, to, word) {
    const step = from.pop();
    if (!step) return;
    to.push({ text: this.text, what: step.what });
    this.#mergeKey = null;
    this.#take(step.text);
    this.#await();
    announce(`${word}: ${step.what}`);
  }

  #take(text) {
    this.text = text;
    try {
      this.root = parse(text);
      this.fault = "";
    } catch (problem) {
      this.fault = problem.message;
    }
    this.dispatchEvent(new Event("change"));
  }

  #await() {
    this.#report("checking");
    this.#settle();
  }

  #report(progress) {
    this.progress = progress;
    this.dispatchEvent(new Event("verdict"));
  }

  // The program's findings on the current text; null if it has changed since.
  async #judge() {
    const { text } = this;
    const { findings, effective } = await check(text);
    if (text !== this.text) return null;
    this.findings = findings;
    this.effective = effective;
    const progress = findings.some(({ severity }) => severity === "error") ? "refused" : "applied";
    this.#report(progress === "applied" && text !== this.inForce ? "checking" : progress);
    return progress;
  }

  async #checkAndApply() {
    const { text } = this;
    try {
      if ((await this.#judge()) !== "applied" || text === this.inForce) return;
      await apply(text);
      this.inForce = text;
      this.#onApplied();
      if (text === this.text) this.#report("applied");
    } catch (problem) {
      if (text !== this.text) return;
      if (problem.findings?.length) this.findings = problem.findings;
      else if (problem.status) this.findings = [{ severity: "error", key: "", text: problem.message }];
      this.#report(problem.status ? "refused" : "unreachable");
    }
  }
}
