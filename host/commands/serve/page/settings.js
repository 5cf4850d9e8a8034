// The settings as controls with explanations.
import { count, element, find, percent } from "./dom.js";
import { findingsList, findingsOf } from "./findings.js";
import { removeMember, setMember } from "./json_text.js";

const greyLevels = (number) => `${number} grey levels`;

// Sliders with steps of a percent are too coarse for small values: the scale is quadratic.
const toPlace = (value) => Math.round(Math.sqrt(value) * 100);
const toFraction = (place) => Math.max(0.001, Math.round((place / 100) ** 2 * 1000) / 1000);

export const settings = [
  {
    key: "sensitivity",
    title: "Sensitivity",
    about: "How small a change of a pixel is detected. Higher finds faint and distant objects, but also more noise.",
    ends: ["low", "high"],
    slider: { min: 1, max: 5, step: 1, unset: 3 },
    text: (value) => (value === "-1" ? "automatic" : value),
    effect: ({ match_threshold: match, change_threshold: change }) =>
      `A pixel counts when it differs by more than ${greyLevels(match)} from the background there and has just changed by more than ${change}.`,
    extra: { value: "-1", label: "Automatic: level 5, adapts the minimum size to the video" },
  },
  {
    key: "lcAdap",
    title: "Adaptation to lighting changes",
    about:
      "How small a lighting change is absorbed at once instead of being reported. Higher ignores lamps and clouds sooner.",
    ends: ["slow", "fast"],
    slider: { min: 1, max: 5, step: 1, unset: 4 },
    text: (value) => value,
    effect: ({ lighting_threshold: light }) => `Lighting changes above ${greyLevels(light)} are absorbed.`,
  },
  {
    key: "minBoxW",
    title: "Minimum width",
    about:
      "Boxes below both minimums are dropped. The picture shows the size while you change it.",
    ends: ["tiny", "large"],
    slider: { min: 3, max: 80, step: 1, unset: toPlace(0.05), toPlace, fromPlace: toFraction },
    text: (value) => percent(value, 1),
    effect: ({ min_box_pixels: size }) => (size ? `${count(size.width, "pixel")} of this picture.` : ""),
    ghost: true,
  },
  {
    key: "minBoxH",
    title: "Minimum height",
    about: "The same for the height.",
    ends: ["tiny", "large"],
    slider: { min: 3, max: 80, step: 1, unset: toPlace(0.05), toPlace, fromPlace: toFraction },
    text: (value) => percent(value, 1),
    effect: ({ min_box_pixels: size }) => (size ? `${count(size.height, "pixel")} of this picture.` : ""),
    ghost: true,
  },
  {
    key: "lifeStatic",
    title: "Still objects",
    about: "When a parked car or a bag that was put down becomes background.",
    choices: [
      { value: null, label: "after 3 seconds (default)" },
      { value: "0", label: "at once" },
    ],
    text: (value) => value,
    effect: () => "",
  },
];

const presetValue = (root, key) => (["string", "number"].includes(typeof root[key]) ? String(root[key]) : null);

export class Settings {
  #draft;
  #onGhost;
  #rows = [];

  // `onGhost` is called with the minimum box size while it is changed, and with null afterwards.
  constructor(draft, onGhost) {
    this.#draft = draft;
    this.#onGhost = onGhost;
    this.#rows = settings.map((setting) => this.#row(setting));
    find("setting-rows").append(...this.#rows.map(({ node }) => node));
    draft.addEventListener("change", () => this.show());
    draft.addEventListener("verdict", () => this.show());
  }

  show() {
    for (const row of this.#rows) this.#fill(row);
  }

  // The settings of a preset instead of those of any other; its comment is not used.
  usePreset({ name, configuration }, presets) {
    const preset = JSON.parse(configuration);
    const keys = new Set(settings.map(({ key }) => key));
    for (const other of presets) for (const key of Object.keys(JSON.parse(other.configuration))) keys.add(key);
    keys.delete("comment");
    let { text } = this.#draft;
    for (const key of keys) {
      text = key in preset ? setMember(text, key, JSON.stringify(preset[key])) : removeMember(text, key);
    }
    this.#draft.change(text, `preset ${name}`);
  }

  #set(setting, value) {
    const { text } = this.#draft;
    const changed =
      value === null ? removeMember(text, setting.key) : setMember(text, setting.key, JSON.stringify(value));
    this.#draft.change(changed, `change ${setting.title.toLowerCase()}`);
  }

  #row(setting) {
    const id = `setting-${setting.key}`;
    const value = element("output", { for: id });
    const reset = element(
      "button",
      { type: "button", class: "link", onclick: () => this.#set(setting, null) },
      "Reset",
    );
    reset.setAttribute("aria-label", `Reset ${setting.title.toLowerCase()} to the default`);
    const row = { setting, value, reset, effect: element("p", { class: "effect" }), findings: element("div") };
    row.control = setting.slider ? this.#slider(row, id) : this.#choice(row, id);
    row.extra = setting.extra ? this.#extra(row) : null;
    row.node = element(
      "div",
      { class: "setting" },
      element("div", { class: "title" }, element("label", { for: id }, setting.title), value, reset),
      element("p", { class: "small", id: `${id}-about` }, setting.about),
      row.control,
      setting.ends
        ? element(
            "div",
            { class: "ends", "aria-hidden": "true" },
            ...setting.ends.map((end) => element("span", {}, end)),
          )
        : null,
      row.extra,
      row.effect,
      row.findings,
    );
    return row;
  }

  #slider({ setting, value }, id) {
    const { min, max, step, fromPlace = String } = setting.slider;
    const control = element("input", { type: "range", id, min, max, step, "aria-describedby": `${id}-about` });
    control.addEventListener("input", () => {
      value.textContent = setting.text(String(fromPlace(control.value)));
      control.setAttribute("aria-valuetext", value.textContent);
      if (setting.ghost) this.#showGhost();
    });
    control.addEventListener("change", () => this.#set(setting, String(fromPlace(control.value))));
    if (setting.ghost) {
      control.addEventListener("focus", () => this.#showGhost());
      control.addEventListener("pointerdown", () => this.#showGhost());
      control.addEventListener("pointerup", () => control.blur());
      control.addEventListener("blur", () => this.#onGhost(null));
    }
    return control;
  }

  #showGhost() {
    const place = (key) => toFraction(this.#rows.find(({ setting }) => setting.key === key).control.value);
    this.#onGhost({ width: place("minBoxW"), height: place("minBoxH") });
  }

  #choice({ setting }, id) {
    const options = setting.choices.map(({ value, label }) => element("option", { value: value ?? "" }, label));
    const control = element("select", { id, "aria-describedby": `${id}-about` }, ...options);
    control.addEventListener("change", () => this.#set(setting, control.value === "" ? null : control.value));
    return control;
  }

  #extra({ setting, control }) {
    const box = element("input", { type: "checkbox" });
    box.addEventListener("change", () => this.#set(setting, box.checked ? setting.extra.value : String(control.value)));
    return element("label", { class: "check" }, box, setting.extra.label);
  }

  #fill(row) {
    const { setting, control } = row;
    const value = presetValue(this.#draft.root, setting.key);
    const { fault, findings, effective } = this.#draft;
    control.disabled = Boolean(fault);
    row.reset.hidden = value === null || Boolean(fault);
    const chosen = value === null && effective?.adapts.includes(setting.key);
    row.value.textContent = chosen ? "chosen while it runs" : value === null ? "default" : setting.text(value);
    if (setting.slider) {
      const { unset, toPlace: place = Number } = setting.slider;
      const shown =
        value === null || !Number.isFinite(Number.parseFloat(value)) ? unset : place(Number.parseFloat(value));
      if (document.activeElement !== control || this.#draft.progress === "applied") control.value = shown;
      control.setAttribute("aria-valuetext", row.value.textContent);
    } else {
      this.#fillChoice(row, value);
    }
    if (row.extra) row.extra.firstChild.checked = value === setting.extra.value;
    control.classList.toggle("unset", value === null || value === setting.extra?.value);
    row.effect.textContent = effective && !chosen ? setting.effect(effective) : "";
    const list = findingsList(findingsOf(findings, setting.key));
    row.findings.replaceChildren(...(list ? [list] : []));
  }

  // A value that is not among the choices is added to them.
  #fillChoice({ setting, control, value }, chosen) {
    const known = setting.choices.some((choice) => choice.value === chosen);
    control.querySelector(".own")?.remove();
    if (!known) control.append(element("option", { value: chosen, class: "own" }, `“${chosen}”`));
    control.value = chosen ?? "";
    value.textContent = "";
  }
}
