"""The program `lightmotion` as its users run it: result lines and the events file."""
import json
import shlex
import subprocess
import tempfile
import time
from pathlib import Path

from ..render import ROOT
from ..result import Box, Event, Result


def system(name, options):
    """`lightmotion` is the default command line, `lightmotion:NAME` a preset, `lightmotion:tuned` the default with what
    `lightmotion tune` proposes for the video without marks."""
    program = Path(options.program or ROOT / "build" / "release" / "lightmotion")
    if not program.exists():
        raise SystemExit(f"{program} does not exist: build it (./run), or name it with --program")
    arguments = shlex.split(options.arguments or "")
    if name == "lightmotion:tuned":
        return lambda video: tuned(program, arguments, video)
    if ":" in name:
        arguments += ["--preset", name.split(":")[1]]
    return lambda video: run(program, arguments, video)


def tuned(program, arguments, video):
    with tempfile.TemporaryDirectory() as folder:
        proposal = Path(folder) / "proposal.json"
        done = subprocess.run([program, "tune", video.source, "-o", proposal, "--jobs", "1"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"{program} tune {video.source}: {done.stderr.strip()}")
        result = run(program, [*arguments, "--config", proposal], video)
    result.remark = done.stderr.strip().splitlines()[-1]
    return result


def run(program, arguments, video):
    truth = video.truth
    with tempfile.TemporaryDirectory() as folder:
        lines, events = Path(folder) / "lines.jsonl", Path(folder) / "events.json"
        start = time.monotonic()
        done = subprocess.run([program, "run", video.source, "-o", lines, "--events", events, "-q", "--progress", "none",
                               *arguments], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"{program} {video.source}: {done.stderr.strip()}")
        return read(truth, lines.read_text(), json.loads(events.read_text()), time.monotonic() - start)


def read(truth, lines, events, seconds=0.0):
    frames = [[] for _ in truth.frames]
    light = set()
    for line in lines.splitlines():
        item = json.loads(line)
        if "boxes" not in item or item["frame"] >= len(frames):
            continue
        boxes = [box for box in item["boxes"] if box.get("kind", "motion") == "motion"]
        frames[item["frame"]] = [Box(box["x"] * truth.width, box["y"] * truth.height, box["width"] * truth.width,
                                     box["height"] * truth.height, box.get("id")) for box in boxes]
    spans = {kind: [(e["first_frame"], e["last_frame"]) for e in events["events"] if e["kind"] == kind]
             for kind in ("motion", "light")}
    within = lambda number, kind: any(first <= number <= last for first, last in spans[kind])  # noqa: E731
    for number, boxes in enumerate(frames):
        if boxes and within(number, "light") and not within(number, "motion"):
            light.add(number)
    found = [Event(e["start"], e["end"], e["kind"]) for e in events["events"]]
    return Result(frames, found, light_alone=light, seconds=seconds)
