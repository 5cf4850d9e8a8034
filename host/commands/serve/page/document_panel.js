// The configuration as text: edited, loaded from a file, saved and downloaded.
import { save } from "./api.js";
import { announce, element, find } from "./dom.js";
import { findingsList } from "./findings.js";
import { parse } from "./json_text.js";

const largest = 1 << 20;
const baseName = (path) => path.split("/").at(-1);

export class DocumentPanel {
  #draft;
  #area = find("document-text");
  #file = null;
  #saved = false;
  #savedText = null;

  constructor(draft) {
    this.#draft = draft;
    this.#area.addEventListener("input", () => draft.change(this.#area.value, "typing", "typing"));
    this.#area.addEventListener("blur", () => draft.endMerge());
    draft.addEventListener("change", () => this.show());
    draft.addEventListener("verdict", () => this.show());
    find("save").addEventListener("click", () => this.#save());
    find("download").addEventListener("click", () => this.#download());
    find("load").addEventListener("click", () => find("load-file").click());
    find("load-file").addEventListener("change", ({ target }) => this.#load(target));
  }

  follow({ file, saved, configuration }) {
    this.#file = file;
    this.#saved = saved;
    if (saved) this.#savedText = configuration;
    this.show();
  }

  show() {
    const { text, findings, fault, progress } = this.#draft;
    if (this.#area.value !== text) this.#area.value = text;
    const list = findingsList(findings, (line) => this.#goTo(line));
    find("document-findings").replaceChildren(
      list ?? element("p", { class: "small" }, fault ? "" : "No findings."),
    );
    find("progress").textContent = {
      applied: "Applied",
      checking: "Applying…",
      refused: "Not applied: the configuration has an error",
      unreachable: "Not applied: the program cannot be reached",
    }[progress];
    find("progress").className = progress;
    find("controls-fault").hidden = !fault;
    const unsaved = !(this.#saved && text === this.#savedText);
    find("save").textContent = this.#file ? `Save to ${baseName(this.#file)}` : "Save";
    find("save").disabled = !this.#file || !unsaved || progress === "refused" || progress === "unreachable";
    find("save").title = this.#file ?? "Start lightmotion serve with --config FILE to save from here";
    // A message about a text disappears with that text.
    if (find("saved").dataset.of !== text) this.#showStatus(unsaved && this.#file ? "Not saved yet." : "", text);
  }

  #showStatus(words, of) {
    find("saved").textContent = words;
    find("saved").dataset.of = of;
  }

  async #save() {
    const { text } = this.#draft;
    try {
      const { file, backup } = await save(text);
      this.#saved = true;
      this.#savedText = text;
      this.#showStatus(backup ? `Saved. The previous version is kept as ${backup}.` : `Saved as ${file}.`, text);
      announce(find("saved").textContent);
    } catch (problem) {
      this.#showStatus(`Not saved: ${problem.status ? problem.message : "the program cannot be reached"}`, text);
      announce(find("saved").textContent);
    }
    this.show();
  }

  #download() {
    const link = element("a", {
      href: URL.createObjectURL(new Blob([this.#draft.text], { type: "application/json" })),
      download: baseName(this.#file ?? "lightmotion.json"),
    });
    link.click();
    URL.revokeObjectURL(link.href);
  }

  async #load(chooser) {
    const [file] = chooser.files;
    chooser.value = "";
    if (!file) return;
    try {
      if (file.size > largest) throw new Error("it is larger than 1 MiB");
      const text = await file.text();
      parse(text);
      this.#draft.change(text, `load ${file.name}`);
      this.#showStatus(`${file.name} was loaded.`, text);
    } catch (problem) {
      this.#showStatus(`${file.name} was not loaded: ${problem.message}`, this.#draft.text);
    }
    announce(find("saved").textContent);
  }

  #goTo(line) {
    const lines = this.#area.value.split("\n");
    const from = lines.slice(0, line - 1).join("\n").length + (line > 1 ? 1 : 0);
    this.#area.focus();
    this.#area.setSelectionRange(from, from + (lines[line - 1] ?? "").length);
  }
}
