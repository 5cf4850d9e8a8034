"""Annotated footage in the layout of changedetection.net: input/, groundtruth/, temporalROI.txt, ROI.bmp.

input/in%06d.jpg and groundtruth/gt%06d.png are numbered from 1. The grey levels of the truth: 0 static, 50 shadow,
85 outside the region of interest, 170 unknown, 255 motion. temporalROI.txt has the first and the last frame with truth.
The dataset: Goyette, Jodoin, Porikli, Konrad, Ishwar: changedetection.net: A new change detection benchmark dataset,
CVPR Workshops 2012.
"""
import re
import zlib
from pathlib import Path

import cv2
import numpy as np

from .encode import encoder
from .render import Video, cache_folder
from .truth import MOTION, OUTSIDE, UNKNOWN, Object, Truth

LEAST = 25  # pixels of a part of the truth that must be found
RATE = 25.0  # frames per second; the layout does not say


def read(path, fps=RATE):
    """The folder as a Video: its frames without loss in one file, since systems read video files."""
    path = Path(path)
    inputs = sorted((path / "input").glob("in*.*"))
    if not inputs:
        raise SystemExit(f"{path}: no input/in000001.jpg; expected the layout of changedetection.net")
    first_image = cv2.imread(str(inputs[0]))
    if first_image is None:
        raise SystemExit(f"{inputs[0]} cannot be read")
    height, width = first_image.shape[:2]
    truth = Truth(width, height, fps, f"footage: {path.name}", identities=False)
    first, last = _span(path / "temporalROI.txt", len(inputs))
    region = _region(path / "ROI.bmp", width, height)
    truth.first = first - 1
    for picture in inputs:
        number = int(re.search(r"(\d+)", picture.stem)[1])
        label = np.full((height, width), OUTSIDE, np.uint8)
        known = path / "groundtruth" / f"gt{number:06d}.png"
        if first <= number <= last and known.exists():
            label = cv2.imread(str(known), cv2.IMREAD_GRAYSCALE)
            if label is None or label.shape != (height, width):
                raise SystemExit(f"{known}: expected a picture of {width}x{height}")
        label = np.where(region, label, OUTSIDE).astype(np.uint8)
        truth.whole.append(bool(np.all((label == OUTSIDE) | (label == UNKNOWN))))
        truth.frames.append(objects(label))
        truth.add_mask(label)
    return Video(path.name, 0, _encoded(path, inputs, width, height, fps), truth)


def _span(path, count):
    if not path.exists():
        return 1, count
    words = path.read_text().split()
    if len(words) < 2:
        raise SystemExit(f"{path}: expected the numbers of the first and the last frame with truth")
    return int(words[0]), int(words[1])


def _region(path, width, height):
    if not path.exists():
        return np.ones((height, width), bool)
    region = cv2.imread(str(path), cv2.IMREAD_GRAYSCALE)
    if region is None:
        raise SystemExit(f"{path} cannot be read")
    if region.shape != (height, width):
        region = cv2.resize(region, (width, height), interpolation=cv2.INTER_NEAREST)
    return region > 127


def objects(label):
    """The connected parts of the truth. Parts that are mostly unknown, and small ones, need not be found."""
    found = []
    count, parts, stats, _ = cv2.connectedComponentsWithStats(((label == MOTION) | (label == UNKNOWN)).astype(np.uint8))
    sure = np.bincount(parts[label == MOTION], minlength=count)
    for part in range(1, count):
        x, y, width, height, pixels = (int(value) for value in stats[part])
        moving = int(sure[part])
        if moving:  # the box of what is sure; the band of unknown pixels around it belongs to neither
            here = (parts[y:y + height, x:x + width] == part) & (label[y:y + height, x:x + width] == MOTION)
            left, top, width, height = cv2.boundingRect(here.view(np.uint8))
            x, y = x + left, y + top
        found.append(Object(part, x, y, width, height, moving >= max(LEAST, 0.3 * pixels), moving, part))
    return found


def _encoded(path, inputs, width, height, fps):
    folder = cache_folder() / "footage"
    folder.mkdir(parents=True, exist_ok=True)
    target = folder / f"{path.name}-{hash_of(inputs):08x}.mkv"
    if not target.exists():
        part = target.with_suffix(".part")
        process = encoder("lossless", width, height, fps, part)
        for picture in inputs:
            image = cv2.imread(str(picture))
            if image is None or image.shape[:2] != (height, width):
                raise SystemExit(f"{picture}: expected a picture of {width}x{height}")
            process.stdin.write(image.data)
        process.stdin.close()
        if process.wait() != 0:
            raise RuntimeError(f"ffmpeg could not encode {target}")
        part.rename(target)
    return target


def hash_of(inputs):
    """Changes with the files: names, sizes, times."""

    return zlib.crc32(repr([(str(p), p.stat().st_size, p.stat().st_mtime_ns) for p in inputs]).encode())
