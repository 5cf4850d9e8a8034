// Waits for a condition, and fails after a deadline.
const deadline = 60_000;
const between = 40;

// `probe` is called repeatedly; its first truthy result is returned.
export async function eventually(what, probe) {
  for (const end = Date.now() + deadline; ;) {
    const answer = await probe();
    if (answer) return answer;
    if (Date.now() > end) throw new Error(`did not happen: ${what}`);
    await new Promise((done) => setTimeout(done, between));
  }
}
