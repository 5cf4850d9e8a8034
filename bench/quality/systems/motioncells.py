"""GStreamer's motioncells: which cells of a grid changed since the frame before."""
import re
import subprocess
import time

import cv2
import numpy as np

from ..result import Box, Result, events_of

# sensitivity, threshold, cells along each side; the first is the element's default.
GRID = [(sensitivity, threshold, cells)
        for cells in (10, 32) for threshold in (0.01, 0.1) for sensitivity in (0.5, 0.8, 0.95)]
BEST = (0.95, 0.01, 32)  # what bench/quality/search found best
# motion, motion_cells_indices=(string)"7:9\,6:9", motion_begin=(guint64)8167000000;  without the quotes for one cell
CELLS = re.compile(r'motion_cells_indices=\(string\)"?([0-9:\\, ]+)')
STAMP = re.compile(r"motion(?:_begin)?=\(guint64\)(\d+)")


def system(name):
    setting = BEST if name.endswith(":best") else GRID[0]
    return lambda video: run(setting, video)


def run(setting, video):
    sensitivity, threshold, cells = setting
    truth = video.truth
    start = time.monotonic()
    pipeline = (f"filesrc location={video.source} ! decodebin ! videoconvert ! "
                f"motioncells sensitivity={sensitivity} threshold={threshold} gridx={cells} gridy={cells} "
                "postallmotion=true display=false ! fakesink sync=false")
    done = subprocess.run(["gst-launch-1.0", "-m", *pipeline.split(" ")], capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"motioncells {video.source}: {done.stderr.strip()}")
    return read(truth, done.stdout, cells, time.monotonic() - start)


def read(truth, text, cells, seconds=0.0):
    frames = [[] for _ in truth.frames]
    for line in text.splitlines():
        cells_there, stamp = CELLS.search(line), STAMP.search(line)
        if not cells_there or not stamp:
            continue
        number = round(int(stamp[1]) * 1e-9 * truth.fps)
        if number < len(frames):
            frames[number] = boxes(cells_there[1].replace("\\", ""), cells, truth)
    return Result(frames, events_of(frames, truth.fps), seconds=seconds)


def boxes(indices, cells, truth):
    """A box around each connected part of the grid; cells are row:column."""
    grid = np.zeros((cells, cells), np.uint8)
    for cell in indices.replace(" ", "").strip(",").split(","):
        if ":" in cell:
            row, column = cell.split(":")
            grid[min(int(row), cells - 1), min(int(column), cells - 1)] = 1
    count, _, stats, _ = cv2.connectedComponentsWithStats(grid, connectivity=8)
    wide, high = truth.width / cells, truth.height / cells
    return [Box(stats[i, 0] * wide, stats[i, 1] * high, stats[i, 2] * wide, stats[i, 3] * high) for i in range(1, count)]
