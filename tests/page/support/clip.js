// A test video: on grey, a faint patch moves up and down on the left and a bright one on the right.
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

export const seconds = 6;
const folders = [];
process.on("exit", () => folders.forEach((folder) => rmSync(folder, { recursive: true })));

// Removed after the file's tests.
export function newFolder() {
  folders.push(mkdtempSync(join(tmpdir(), "lightmotion-page-")));
  return folders.at(-1);
}

const ground = "color=c=0x808080:s=320x180:r=25";
const patch = (colour) => `color=c=${colour}:s=40x50:r=25`;
const heights = "60+50*sin(2*PI*t/3)";
const scene = `[0][1]overlay=x=40:y='${heights}'[left];[left][2]overlay=x=240:y='${heights}'`;

// 16 grey levels are above the threshold of sensitivity 3 and below that of sensitivity 2.
export function makeClip(name, codec = ["-c:v", "ffv1"]) {
  const file = join(newFolder(), name);
  const inputs = [ground, patch("0x909090"), patch("0xe0e0e0")].flatMap((input) => ["-f", "lavfi", "-i", input]);
  const output = ["-t", seconds, "-pix_fmt", "yuv420p", ...codec, file];
  execFileSync("ffmpeg", ["-v", "error", "-y", ...inputs, "-filter_complex", scene, ...output].map(String));
  return file;
}

let usual = null;
export const usualClip = () => (usual ??= makeClip("clip.mkv"));

export const isLeft = ({ x, width }) => x + width / 2 < 0.5;
export const isRight = (box) => !isLeft(box);
