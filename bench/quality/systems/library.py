"""The library through the Python module, which unlike the program gives masks: the configuration of a preset."""
import json
import subprocess
import sys
import time

from ..render import ROOT
from ..result import Box, Result, events_of
from .subtractors import Masks, images


def system(name, options):
    build = ROOT / "build" / "release"
    tree = build / "python" / "tree"
    if not (tree / "lightmotion").exists():
        raise SystemExit(f"{tree} does not exist: configure with -DLIGHTMOTION_PYTHON=ON and build lightmotion_python")
    sys.path.insert(0, str(tree))
    program = options.program or build / "lightmotion"
    preset = name.partition(":")[2] or "street"
    text = subprocess.run([program, "presets", preset], capture_output=True, text=True, check=True).stdout
    configuration = json.loads(text)
    configuration.pop("comment", None)
    return lambda video: run(configuration, video)


def run(configuration, video):
    import lightmotion
    truth = video.truth
    frames, masks = [], Masks()
    start = time.monotonic()
    with lightmotion.Detector(configuration, width=truth.width, height=truth.height, format="bgr") as detector:
        for number, image in enumerate(images(video)):
            found = detector(image, 1 + round(1000 * number / truth.fps))
            frames.append([Box(box.x, box.y, box.width, box.height) for box in found])
            masks.append(detector.foreground())
    frames = (frames + [[]] * len(truth.frames))[:len(truth.frames)]
    return Result(frames, events_of(frames, truth.fps), masks, seconds=time.monotonic() - start)
