"""Frames for the tests: noise, and squares that move over it."""
from __future__ import annotations

from collections.abc import Iterator

import numpy
import numpy.typing

Picture = numpy.typing.NDArray[numpy.uint8]

WIDTH, HEIGHT, COUNT, STEP = 97, 80, 30, 40
CHANNELS = {"grey": 1, "bgr": 3, "rgb": 3, "bgrx": 4, "rgbx": 4, "i420": 1, "nv12": 1}


def frames(channels: int = 1, count: int = COUNT) -> Iterator[Picture]:
    """From the second frame on, two squares of 24 pixels move, one to the right and one down."""
    random = numpy.random.RandomState(7)
    shape = (HEIGHT, WIDTH) if channels == 1 else (HEIGHT, WIDTH, channels)
    for number in range(count):
        frame: Picture = random.randint(60, 64, shape).astype(numpy.uint8)
        if number > 0:
            frame[40:64, 2 * number : 2 * number + 24] = 200
            frame[number : number + 24, 66:90] = 20
        yield frame


def times(count: int = COUNT) -> range:
    return range(1, 1 + STEP * count, STEP)
