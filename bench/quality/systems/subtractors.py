"""OpenCV's background subtractors with the usual cleaning: opening, closing, contours, a minimum area."""
import time

import cv2
import numpy as np

from ..result import Box, Result, events_of

# Settings in the order of the search; the first is OpenCV's default. Area: share of the frame.
AREAS = (0.001, 0.0003, 0.004)
GRIDS = {
    "mog2": [{"history": history, "varThreshold": threshold} for threshold in (16, 4, 9, 36) for history in (500, 2000)],
    "knn": [{"history": history, "dist2Threshold": threshold} for threshold in (400, 100, 200, 900) for history in (500, 2000)],
    "cnt": [{"minPixelStability": low, "maxPixelStability": high} for low, high in
            ((15, 900), (15, 3600), (2, 900), (4, 900), (8, 900), (30, 900))],
}
# What bench/quality/search found best: peer to (settings, area), to be entered here.
BEST = {
    "mog2": ({"history": 500, "varThreshold": 4}, 0.004),
    "knn": ({"history": 500, "dist2Threshold": 200}, 0.001),
    "cnt": ({"minPixelStability": 2, "maxPixelStability": 900}, 0.001),
}


def make(kind, settings):
    """Shadows are detected, as by default, and count as background."""
    if kind == "mog2":
        return cv2.createBackgroundSubtractorMOG2(detectShadows=True, **settings)
    if kind == "knn":
        return cv2.createBackgroundSubtractorKNN(detectShadows=True, **settings)
    return cv2.bgsegm.createBackgroundSubtractorCNT(useHistory=True, isParallel=False, **settings)


SMALL = cv2.getStructuringElement(cv2.MORPH_ELLIPSE, (3, 3))
LARGE = cv2.getStructuringElement(cv2.MORPH_ELLIPSE, (9, 9))


def cleaned(mask):
    """The usual steps: shadows off, specks off, holes closed."""
    _, mask = cv2.threshold(mask, 200, 255, cv2.THRESH_BINARY)
    mask = cv2.morphologyEx(mask, cv2.MORPH_OPEN, SMALL)
    return cv2.morphologyEx(mask, cv2.MORPH_CLOSE, LARGE)


def contours(mask, share):
    least = share * mask.size
    found, _ = cv2.findContours(mask, cv2.RETR_EXTERNAL, cv2.CHAIN_APPROX_SIMPLE)
    return [Box(*cv2.boundingRect(contour)) for contour in found if cv2.contourArea(contour) >= least]


def images(video):
    capture = cv2.VideoCapture(str(video.source), cv2.CAP_FFMPEG)
    while True:
        good, image = capture.read()
        if not good:
            return
        yield image


class Masks:
    """Masks, packed to bits."""

    def __init__(self):
        self.packed, self.shape = [], None

    def append(self, mask):
        self.shape = mask.shape
        self.packed.append(np.packbits(mask != 0))

    def __getitem__(self, frame):
        height, width = self.shape
        return np.unpackbits(self.packed[frame], count=height * width).reshape(self.shape)


def run_all(kind, settings, areas, video, with_masks=False):
    """Results for every combination of settings and areas, from one reading of the video."""
    subtractors = [make(kind, one) for one in settings]
    frames = {(i, area): [] for i in range(len(settings)) for area in areas}
    masks = [Masks() for _ in settings]
    start = time.monotonic()
    for image in images(video):
        for i, subtractor in enumerate(subtractors):
            mask = cleaned(subtractor.apply(image))
            if with_masks:
                masks[i].append(mask)
            for area in areas:
                frames[i, area].append(contours(mask, area))
    seconds = time.monotonic() - start
    count = len(video.truth.frames)
    out = {}
    for (i, area), boxes in frames.items():
        boxes = (boxes + [[]] * count)[:count]
        out[i, area] = Result(boxes, events_of(boxes, video.truth.fps), masks[i] if with_masks else None, seconds=seconds)
    return out


def system(name):
    kind, _, which = name.partition(":")
    settings, area = BEST[kind] if which == "best" else (GRIDS[kind][0], AREAS[0])
    return lambda video: run_all(kind, [settings], [area], video, with_masks=True)[0, area]
