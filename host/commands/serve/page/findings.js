// What the program finds in the document, shown where it belongs.
import { element } from "./dom.js";

const words = { error: "Mistake", warning: "Warning", note: "Note" };

// Those of a key and of what lies within it: "roi[1]" has "roi[1].points[2].x".
export const findingsOf = (findings, key) =>
  findings.filter(
    (finding) => finding.key === key || finding.key.startsWith(`${key}.`) || finding.key.startsWith(`${key}[`),
  );

const finding = ({ severity, key, text, hint, line }, goTo) =>
  element(
    "li",
    { class: `finding ${severity}` },
    element("strong", {}, `${words[severity] ?? severity}: `),
    goTo && key ? element("code", {}, key) : null,
    goTo && key ? " " : null,
    hint ? `${text} (${hint})` : text,
    goTo && line ? " " : null,
    goTo && line
      ? element("button", { type: "button", class: "link", onclick: () => goTo(line) }, `Line ${line}`)
      : null,
  );

// Null when there are none. With `goTo`, each leads to its line.
export function findingsList(findings, goTo = null) {
  if (!findings.length) return null;
  return element("ul", { class: "findings" }, ...findings.map((one) => finding(one, goTo)));
}
