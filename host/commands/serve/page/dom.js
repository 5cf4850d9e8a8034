// Helpers for the document object model.

export const find = (id) => document.getElementById(id);

// element("button", { type: "button", class: "plain" }, "Save") creates an element; properties whose names begin with
// "on" are listeners; null and false properties are omitted.
export function element(tag, properties = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith("on")) node.addEventListener(name.slice(2), value);
    else node.setAttribute(name, value === true ? "" : value);
  }
  node.append(...children.filter((child) => child !== null));
  return node;
}

// Announces a text to screen readers, also if it is the same as the previous one.
export function announce(text) {
  const place = find("said");
  place.textContent = place.textContent === text ? `${text}\u00a0` : text;
}

// "1:02.4"; hours only if needed.
export function clock(seconds, digits = 1) {
  const scale = 10 ** digits;
  const whole = Math.floor(seconds * scale + 1e-6) / scale;
  const minutes = Math.floor(whole / 60);
  const rest = (whole - minutes * 60).toFixed(digits).padStart(digits ? 3 + digits : 2, "0");
  return minutes < 60
    ? `${minutes}:${rest}`
    : `${Math.floor(minutes / 60)}:${String(minutes % 60).padStart(2, "0")}:${rest}`;
}

export const percent = (share, digits = 0) => `${(share * 100).toFixed(digits)} %`;

export const count = (number, one, many = `${one}s`) => `${number} ${number === 1 ? one : many}`;

// A function that runs `work` when it has not been called for `milliseconds`.
export function debounced(work, milliseconds) {
  let timer = 0;
  return (...args) => {
    clearTimeout(timer);
    timer = setTimeout(() => work(...args), milliseconds);
  };
}
