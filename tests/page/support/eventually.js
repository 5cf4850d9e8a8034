// Waits for what has to come true, and fails when it does not in good time.
const deadline = 60_000;
const between = 40;

// `probe` is asked again and again; its first answer that counts as true is handed back.
export async function eventually(what, probe) {
  for (const end = Date.now() + deadline; ;) {
    const answer = await probe();
    if (answer) return answer;
    if (Date.now() > end) throw new Error(`did not happen: ${what}`);
    await new Promise((done) => setTimeout(done, between));
  }
}
