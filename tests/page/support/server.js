// `lightmotion serve`, started for a test and stopped after it.
import { spawn } from "node:child_process";
import { createInterface } from "node:readline";

const program = process.env.LIGHTMOTION_PROGRAM;

export async function startServer(...options) {
  const child = spawn(program, ["serve", ...options], { stdio: ["ignore", "pipe", "pipe"] });
  let said = "";
  child.stderr.on("data", (text) => (said += text));
  const ended = new Promise((done) => child.once("exit", done));
  const address = await new Promise((found, failed) => {
    createInterface({ input: child.stdout }).on("line", (line) => {
      const match = /https?:\S+/.exec(line);
      if (match) found(match[0]);
    });
    ended.then((status) => failed(new Error(`serve ended with ${status}: ${said}`)));
  });
  return {
    address,
    port: Number(new URL(address).port),
    async stop() {
      child.kill("SIGTERM");
      await ended;
    },
  };
}
