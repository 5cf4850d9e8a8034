// The list of regions beside the picture: names, kinds, and what they come to.
import { count, element, find, percent } from "./dom.js";
import { findingsList, findingsOf } from "./findings.js";
import { changeKind, coverage, hasArea, kinds, removeRegion, replaceRegion, watchedShare } from "./regions.js";

const nearlyAll = 0.995;

function remarkOn(region, regions) {
  if (!hasArea(region)) return "It needs three points to cover anything.";
  const others = regions.some((other) => other !== region && other.kind === region.kind);
  if (region.kind === "roi" && others && coverage(region) > nearlyAll) {
    return "It covers the whole picture, so the other watched regions change nothing. Delete it to watch only them.";
  }
  return "";
}

export class RegionList {
  #editor;
  #draft;

  constructor(editor, draft) {
    this.#editor = editor;
    this.#draft = draft;
    for (const kind of Object.keys(kinds)) {
      // A press of a key makes a click without a pointer.
      find(`draw-${kind}`).addEventListener("click", (event) =>
        event.detail === 0 ? editor.hand.startReadyMade(kind) : editor.hand.start(kind),
      );
    }
    editor.addEventListener("select", () => this.show());
    draft.addEventListener("change", () => this.show());
    draft.addEventListener("verdict", () => this.show());
  }

  show() {
    const { regions, everything, usable } = this.#editor;
    for (const kind of Object.keys(kinds)) find(`draw-${kind}`).disabled = !usable;
    const share = watchedShare(regions, everything);
    find("watched-share").textContent = percent(share);
    find("watched-bar").value = share;
    find("watched-text").textContent = everything
      ? regions.length
        ? "Everything outside the ignored regions is watched."
        : "No regions: the whole picture is watched."
      : "Only what lies in a watched region counts; ignored regions win.";
    const onLists = this.#draft.findings.filter(({ key }) => key in kinds);
    find("region-findings").replaceChildren(...[findingsList(onLists)].filter(Boolean));
    const list = find("region-list");
    // What is being typed in stays.
    if (list.contains(document.activeElement) && document.activeElement.matches("input")) return;
    const focus = document.activeElement?.dataset?.focus;
    list.replaceChildren(...regions.map((region) => this.#item(region, regions)));
    if (focus) list.querySelector(`[data-focus="${focus}"]`)?.focus();
  }

  #item(region, regions) {
    const draft = this.#draft;
    const { kind, index, name } = region;
    const id = `${kind}-${index}`;
    const selected = this.#editor.selected === region;
    const remark = remarkOn(region, regions);
    const rename = ({ target }) =>
      draft.change(replaceRegion(draft.text, { ...region, name: target.value.trim() }), `rename ${name}`);
    const turn = ({ target }) =>
      draft.change(changeKind(draft.text, region, target.value), `make ${name} ${kinds[target.value].word}`);
    const nameBox = element("input", {
      type: "text",
      value: name,
      "aria-label": `Name of ${kinds[kind].word} region ${index + 1}`,
      onchange: rename,
      "data-focus": `${id}-name`,
    });
    nameBox.addEventListener("keydown", (event) => event.key === "Enter" && nameBox.blur());
    return element(
      "li",
      { class: `${kind}${selected ? " selected" : ""}`, onpointerdown: () => this.#select(region) },
      element("span", { class: "swatch", "aria-hidden": "true" }),
      nameBox,
      element(
        "select",
        { "aria-label": `What ${name} does`, onchange: turn, "data-focus": `${id}-kind` },
        ...Object.entries(kinds).map(([value, { title }]) =>
          element("option", { value, selected: value === kind }, title),
        ),
      ),
      element(
        "button",
        {
          type: "button",
          class: "plain",
          "aria-label": `Delete ${name}`,
          title: "Delete",
          onclick: () => draft.change(removeRegion(draft.text, region), `delete ${name}`),
        },
        "✕",
      ),
      element(
        "p",
        { class: "small" },
        `${count(region.points.length, "point")}, ${percent(coverage(region))} of the picture`,
      ),
      remark ? element("p", { class: "finding note" }, remark) : null,
      findingsList(findingsOf(draft.findings, `${kind}[${index}]`).filter(({ severity }) => severity !== "note")),
    );
  }

  // Not built anew under the pointer that presses in it.
  #select(region) {
    if (this.#editor.selected !== region)
      setTimeout(() => this.#editor.select(this.#editor.find(region.kind, region.index) ?? null));
  }
}
