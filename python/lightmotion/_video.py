"""The frames of videos, with PyAV or OpenCV."""
from __future__ import annotations

import os
import time
from collections.abc import Callable, Iterator
from typing import TYPE_CHECKING, Any, NamedTuple

from ._detector import Configuration, Detector, Format
from ._types import Box

if TYPE_CHECKING:
    from ._detector import Picture

_OF_PYAV = {"grey": "gray", "bgr": "bgr24", "rgb": "rgb24", "bgrx": "bgra", "rgbx": "rgba"}
_OF_OPENCV = {"grey": "GRAY", "bgr": "", "rgb": "RGB", "bgrx": "BGRA", "rgbx": "RGBA"}


class Result(NamedTuple):
    """One frame of a video, its time and its boxes."""

    image: Picture
    milliseconds: int
    boxes: list[Box]


def detect(
    source: Any, configuration: Configuration | None = None, *, format: Format = "bgr", **settings: Any
) -> Iterator[Result]:
    """Reads a video and yields a Result per frame.

    ``source`` is a path or address, read with PyAV or, if that is not installed, OpenCV; the number of a camera,
    a cv2.VideoCapture, or a container of PyAV. The detector is made for the first frame, with ``configuration``
    and ``settings`` as for Detector. ``format`` is that of the images: grey, bgr, rgb, bgrx or rgbx.
    """

    def make(image: Picture) -> Detector:
        return Detector.for_frame(image, configuration, format=format, **settings)

    return results(source, make, format)


def results(source: Any, make: Callable[[Picture], Detector], format: str) -> Iterator[Result]:
    if format not in _OF_PYAV:
        raise ValueError(f"format: {format!r}, expected one of {', '.join(_OF_PYAV)}")
    return _processed(_frames_of(source, format), make)


def _processed(frames: Iterator[tuple[Picture, int]], make: Callable[[Picture], Detector]) -> Iterator[Result]:
    detector = None
    for image, milliseconds in frames:
        detector = detector or make(image)
        yield Result(image, milliseconds, detector(image, milliseconds))


def _frames_of(source: Any, format: str) -> Iterator[tuple[Picture, int]]:
    if hasattr(source, "decode"):
        return _decoded(source, format)
    if hasattr(source, "retrieve"):
        return _captured(source, format, live=False)
    if isinstance(source, int):
        return _opened_with_opencv(source, format)
    name = os.fspath(source)
    try:
        import av  # noqa: F401
    except ImportError:
        return _opened_with_opencv(name, format)
    return _opened_with_pyav(name, format)


# ---- PyAV ---------------------------------------------------------------------------------------------------


def _opened_with_pyav(name: str, format: str) -> Iterator[tuple[Picture, int]]:
    import av

    with av.open(name) as container:
        yield from _decoded(container, format)


def _decoded(container: Any, format: str) -> Iterator[tuple[Picture, int]]:
    clock = _Clock(container.streams.video[0].average_rate)
    for frame in container.decode(video=0):
        stated = None if frame.time is None else 1000 * frame.time
        yield frame.to_ndarray(format=_OF_PYAV[format]), clock.time_of(stated)


# ---- OpenCV -------------------------------------------------------------------------------------------------


def _opened_with_opencv(source: str | int, format: str) -> Iterator[tuple[Picture, int]]:
    try:
        import cv2
    except ImportError:
        raise ImportError("reading a video requires PyAV (av) or OpenCV (cv2)") from None
    capture = cv2.VideoCapture(source)
    try:
        if not capture.isOpened():
            raise OSError(f"{source}: cannot be opened as a video")
        yield from _captured(capture, format, live=isinstance(source, int))
    finally:
        capture.release()


def _captured(capture: Any, format: str, live: bool) -> Iterator[tuple[Picture, int]]:
    import cv2

    clock = _Clock(capture.get(cv2.CAP_PROP_FPS))
    while True:
        found, image = capture.read()
        if not found:
            return
        stated = 1000 * time.monotonic() if live else capture.get(cv2.CAP_PROP_POS_MSEC)
        if _OF_OPENCV[format]:
            image = cv2.cvtColor(image, getattr(cv2, f"COLOR_BGR2{_OF_OPENCV[format]}"))
        yield image, clock.time_of(stated)


class _Clock:
    """Rising times: where a video states none, by its frame rate."""

    def __init__(self, rate: Any) -> None:
        self._step = 1000 / float(rate) if rate and rate > 0 else 40.0
        self._last: float | None = None

    def time_of(self, stated: float | None) -> int:
        if self._last is None:
            self._last = max(stated or 0.0, 0.0)
        elif stated is not None and stated > self._last:
            self._last = stated
        else:
            self._last += self._step
        return round(self._last)
