// The program's findings, shown beside the settings that they concern.
import { element } from "./dom.js";

const words = { error: "Error", warning: "Warning", note: "Note" };

// Findings on a key and on anything inside it: "roi[1]" includes "roi[1].points[2].x".
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

// Null if there are none. With `goTo`, each links to its line.
export function findingsList(findings, goTo = null) {
  if (!findings.length) return null;
  return element("ul", { class: "findings" }, ...findings.map((one) => finding(one, goTo)));
}
