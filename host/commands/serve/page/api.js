// Requests to the program, with the token if it requires one.

export class Refusal extends Error {
  constructor(status, answer) {
    super(answer.error || `the program answered with status ${status}`);
    this.status = status;
    this.findings = answer.findings || [];
  }
}

// The program prints its address with the token after "#", so that it reaches neither logs nor other sites. Stored for
// reloads and removed from the address bar.
function takeToken() {
  const given = new URLSearchParams(location.hash.slice(1)).get("token");
  if (given) {
    sessionStorage.setItem("token", given);
    history.replaceState(null, "", location.pathname);
  }
  return sessionStorage.getItem("token");
}
const token = takeToken();

// The answer; throws a Refusal for an error answer, a TypeError if the program is unreachable.
export async function request(path, { method = "GET", body, signal } = {}) {
  const headers = token ? { Authorization: `Bearer ${token}` } : {};
  if (body !== undefined) headers["Content-Type"] = "application/json";
  const answer = await fetch(path, { method, headers, body, signal, cache: "no-store" });
  if (answer.ok) return answer;
  throw new Refusal(answer.status, await answer.json().catch(() => ({})));
}

const json = async (path, options) => (await request(path, options)).json();
const post = (path, body) => json(path, { method: "POST", body });

export const getState = () => json("/api/state");
export const getEvents = () => json("/api/events");
export const check = (text) => post("/api/check", text);
export const apply = (text) => post("/api/apply", text);
export const save = (text) => post("/api/save", text);
export const play = (wish) => post("/api/play", JSON.stringify(wish));
export const compareWith = (text) => post("/api/compare", JSON.stringify({ configuration: text }));

// The picture at a time, without boxes.
export async function getStill(time) {
  const answer = await request(`/api/still?time=${time}`);
  const about = JSON.parse(answer.headers.get("Lightmotion-Frame"));
  return { time: about.time, picture: await createImageBitmap(await answer.blob()) };
}
