// The list of regions beside the picture: names, kinds and covered area.
import { count, element, find, percent } from "./dom.js";
import { findingsList, findingsOf } from "./findings.js";
import { regionKey } from "./overlay.js";
import { changeKind, coverage, kinds, removeRegion, replaceRegion, watchedShare } from "./regions.js";

const nearlyAll = 0.995;

function remarkOn(region, regions) {
  const others = regions.some((other) => other !== region && other.kind === region.kind);
  if (region.kind === "roi" && others && coverage(region) > nearlyAll) {
    return "It covers the whole picture, so the other watched regions have no effect. Delete it to watch only them.";
  }
  return "";
}

export class RegionList {
  #editor;
  #draft;
  #content = "";

  constructor(editor, draft) {
    this.#editor = editor;
    this.#draft = draft;
    for (const kind of Object.keys(kinds)) {
      // Pressing a key creates a click without a pointer.
      find(`draw-${kind}`).addEventListener("click", (event) =>
        event.detail === 0 ? editor.hand.startReadyMade(kind) : editor.hand.start(kind),
      );
    }
    editor.addEventListener("select", () => this.#showSelected());
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
      : "Only motion in a watched region counts; ignored regions take precedence.";
    const onLists = this.#draft.findings.filter(({ key }) => key in kinds);
    find("region-findings").replaceChildren(...[findingsList(onLists)].filter(Boolean));
    this.#showList(regions);
  }

  // Rebuilt only on changes, and not while the user types in it: a pressed button must stay until it is released.
  #showList(regions) {
    const list = find("region-list");
    const findings = this.#draft.findings.filter(({ severity, key }) => severity !== "note" && /^ro[ir]\[/.test(key));
    const content = JSON.stringify([regions, findings]);
    const typing = list.contains(document.activeElement) && document.activeElement.matches("input");
    if (content !== this.#content && !typing) {
      const focus = document.activeElement?.dataset?.focus;
      list.replaceChildren(...regions.map((region) => this.#item(region, regions, findings)));
      if (focus) list.querySelector(`[data-focus="${focus}"]`)?.focus();
      this.#content = content;
    }
    this.#showSelected();
  }

  #showSelected() {
    const { selected } = this.#editor;
    for (const item of find("region-list").children) {
      item.classList.toggle("selected", item.dataset.of === (selected && regionKey(selected)));
    }
  }

  #item(region, regions, findings) {
    const { kind, index, points } = region;
    const remark = remarkOn(region, regions);
    const select = () => this.#editor.select(this.#editor.find(kind, index) ?? null);
    return element(
      "li",
      { class: kind, "data-of": regionKey(region), onpointerdown: select, onfocusin: select },
      element("span", { class: "swatch", "aria-hidden": "true" }),
      ...this.#controls(region),
      element("p", { class: "small" }, `${count(points.length, "point")}, ${percent(coverage(region))} of the picture`),
      remark ? element("p", { class: "finding note" }, remark) : null,
      findingsList(findingsOf(findings, `${kind}[${index}]`)),
    );
  }

  #controls({ kind, index, name }) {
    const draft = this.#draft;
    const region = () => this.#editor.find(kind, index); // looked up at the time of the event
    const rename = ({ target }) =>
      draft.change(replaceRegion(draft.text, { ...region(), name: target.value.trim() }), `rename ${name}`);
    const turn = ({ target }) =>
      draft.change(changeKind(draft.text, region(), target.value), `make ${name} ${kinds[target.value].word}`);
    const nameBox = element("input", {
      type: "text",
      value: name,
      "aria-label": `Name of ${kinds[kind].word} region ${index + 1}`,
      onchange: rename,
      "data-focus": `${kind}-${index}-name`,
    });
    nameBox.addEventListener("keydown", (event) => event.key === "Enter" && nameBox.blur());
    const options = Object.entries(kinds).map(([value, { title }]) =>
      element("option", { value, selected: value === kind }, title),
    );
    const kindBox = element(
      "select",
      { "aria-label": `What ${name} does`, onchange: turn, "data-focus": `${kind}-${index}-kind` },
      ...options,
    );
    const deletion = () => draft.change(removeRegion(draft.text, region()), `delete ${name}`);
    const about = {
      type: "button",
      class: "plain",
      "aria-label": `Delete ${name}`,
      title: "Delete",
      onclick: deletion,
    };
    return [nameBox, kindBox, element("button", about, "✕")];
  }
}
