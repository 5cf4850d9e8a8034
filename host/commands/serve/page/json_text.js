// Parses a configuration and changes single members, keeping the rest of the text: unknown members, comments, order
// and whitespace.

const commentOrText = /"(?:[^"\\]|\\.)*"|\/\/[^\n]*|\/\*[^]*?\*\//g;
const token = /"(?:[^"\\]|\\.)*"|[{}[\],:]|[^\s{}[\],:"]+/g;

// Replaces comments by spaces, so that positions are unchanged.
const withoutComments = (text) =>
  text.replace(commentOrText, (part) => (part[0] === '"' ? part : part.replace(/[^\n]/g, " ")));

// The document's object; throws a SyntaxError if the text is not one.
export function parse(text) {
  const root = JSON.parse(withoutComments(text));
  if (root === null || typeof root !== "object" || Array.isArray(root)) throw new SyntaxError("not a JSON object");
  return root;
}

// The members of the outermost object: {key, from, valueFrom, to}. The text must be valid.
function members(text) {
  const found = [];
  let depth = 0;
  let open = null;
  let last = null;
  for (const match of withoutComments(text).matchAll(token)) {
    const [part] = match;
    const end = match.index + part.length;
    if (depth === 1 && (part === "," || part === "}")) open = null;
    else if (depth === 1 && !open) {
      open = { key: JSON.parse(part), from: match.index, valueFrom: null, to: end };
      found.push(open);
    } else if (open && part !== ":" && open.valueFrom === null) open.valueFrom = match.index;
    if ("{[".includes(part)) depth += 1;
    if ("}]".includes(part)) depth -= 1;
    if (open) open.to = end;
    last = match.index;
  }
  return { found, closing: last };
}

// Of duplicate keys, the last one counts.
const latest = (found, key) => found.findLast((member) => member.key === key);

export function setMember(text, key, value) {
  const { found, closing } = members(text);
  const member = latest(found, key);
  if (member) return text.slice(0, member.valueFrom) + value + text.slice(member.to);
  const before = found.at(-1);
  if (!before) return `${text.slice(0, closing)}\n  ${JSON.stringify(key)}: ${value}\n${text.slice(closing)}`;
  const gap = text.slice(0, closing).includes("\n") || value.includes("\n") ? "\n  " : " ";
  return `${text.slice(0, before.to)},${gap}${JSON.stringify(key)}: ${value}${text.slice(before.to)}`;
}

// Removes all members of that name, so that no earlier duplicate takes effect.
export function removeMember(text, key) {
  const { found } = members(text);
  const at = found.findLastIndex((member) => member.key === key);
  if (at < 0) return text;
  const from = at > 0 ? found[at - 1].to : found[at].from;
  const to = at > 0 || found.length === 1 ? found[at].to : found[at + 1].from;
  return removeMember(text.slice(0, from) + text.slice(to), key);
}

// A value on one line, with spaces.
function oneLine(value) {
  if (Array.isArray(value)) return `[${value.map(oneLine).join(", ")}]`;
  if (value === null || typeof value !== "object") return JSON.stringify(value);
  return `{${Object.entries(value)
    .map(([key, part]) => `${JSON.stringify(key)}: ${oneLine(part)}`)
    .join(", ")}}`;
}

// A list with one item per line.
export const listText = (items) => `[\n${items.map((item) => `    ${oneLine(item)}`).join(",\n")}\n  ]`;
