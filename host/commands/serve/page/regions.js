// The document's regions: where motion counts ("roi") and where it does not ("ror"). Coordinates are fractions of the
// frame, as numbers here and as strings in the document.
import { listText, parse, removeMember, setMember } from "./json_text.js";

export const kinds = {
  roi: { word: "watched", title: "Watch" },
  ror: { word: "ignored", title: "Ignore" },
};

// A region's own left edge is outside it, so a region that should reach the picture's left border starts slightly
// outside.
export const leftOfBorder = -0.01;

// Limits an edited coordinate to the picture and rounds it to ten-thousandths.
export function settle(axis, value) {
  const rounded = Math.round(Math.min(1, Math.max(0, value)) * 1e4) / 1e4;
  return axis === "x" && rounded === 0 ? leftOfBorder : rounded;
}
export const settled = (x, y) => ({ x: settle("x", x), y: settle("y", y) });

const isObject = (value) => value !== null && typeof value === "object" && !Array.isArray(value);
const listOf = (root, kind) => (Array.isArray(root[kind]) ? root[kind] : []);
const pointOf = (raw) => ({ x: Number.parseFloat(raw?.x), y: Number.parseFloat(raw?.y), raw });

// Every region that can be shown: {kind, index, name, points}; `index` counts per kind.
export function readRegions(root) {
  return Object.keys(kinds).flatMap((kind) =>
    listOf(root, kind).flatMap((raw, index) => {
      if (!isObject(raw) || !Array.isArray(raw.points)) return [];
      const points = raw.points.map(pointOf).filter(({ x, y }) => Number.isFinite(x) && Number.isFinite(y));
      const name = typeof raw.name === "string" ? raw.name : "";
      return [{ kind, index, name, points, raw }];
    }),
  );
}

// Unchanged coordinates keep their text.
const coordinate = (raw, value) => (Number.parseFloat(raw) === value ? raw : String(value));
const pointJson = ({ x, y, raw }) => ({ ...raw, x: coordinate(raw?.x, x), y: coordinate(raw?.y, y) });
const regionJson = ({ name, points, raw }) => ({ ...raw, name, points: points.map(pointJson) });

// Without a list of watched regions everything is watched, so an empty list is omitted.
const withList = (text, kind, list) => (list.length ? setMember(text, kind, listText(list)) : removeMember(text, kind));

export const addRegion = (text, region) =>
  withList(text, region.kind, [...listOf(parse(text), region.kind), regionJson(region)]);

export const replaceRegion = (text, region) =>
  withList(text, region.kind, listOf(parse(text), region.kind).with(region.index, regionJson(region)));

export const removeRegion = (text, { kind, index }) =>
  withList(text, kind, listOf(parse(text), kind).toSpliced(index, 1));

export const changeKind = (text, region, kind) => addRegion(removeRegion(text, region), { ...region, kind });

// By the even-odd rule, as in the plug-in.
export function isInside(points, x, y) {
  let inside = false;
  points.forEach((to, i) => {
    const from = points.at(i - 1);
    if (from.y > y !== to.y > y && from.x + ((to.x - from.x) * (y - from.y)) / (to.y - from.y) >= x) inside = !inside;
  });
  return inside;
}

const across = 96;
const down = 54;
const shareOf = (test) => {
  let inside = 0;
  for (let i = 0; i < across * down; i += 1)
    inside += test(((i % across) + 0.5) / across, (Math.floor(i / across) + 0.5) / down);
  return inside / (across * down);
};

export const hasArea = ({ points }) => points.length >= 3;
export const coverage = ({ points }) => shareOf((x, y) => isInside(points, x, y));

// The share of the picture in which motion counts. `everything`: the document has no list of watched regions.
export function watchedShare(regions, everything) {
  const of = (kind) => regions.filter((region) => region.kind === kind && hasArea(region));
  const [watched, ignored] = [of("roi"), of("ror")];
  const within = (list, x, y) => list.some(({ points }) => isInside(points, x, y));
  return shareOf((x, y) => (everything || within(watched, x, y)) && !within(ignored, x, y));
}

export function freeName(regions, kind) {
  const base = kind === "roi" ? "Watched" : "Ignored";
  const taken = new Set(regions.map(({ name }) => name));
  for (let number = 1; ; number += 1) if (!taken.has(`${base} ${number}`)) return `${base} ${number}`;
}
