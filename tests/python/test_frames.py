"""Which buffers are taken, without a copy, and what is said of others."""
from __future__ import annotations

import array
import ctypes
import mmap
import re
from collections.abc import Callable
from typing import Any

import lightmotion
import numpy
import pytest
from lightmotion import Detector, FrameError
from scene import HEIGHT, WIDTH, Picture, frames, times


def padded(frame: Picture, before: int, after: int) -> Picture:
    """The same picture as a view into wider rows, whose padding changes from frame to frame."""
    wide = numpy.full((HEIGHT, before + WIDTH + after, *frame.shape[2:]), int(frame.sum()) % 251, numpy.uint8)
    view = wide[:, before : before + WIDTH]
    view[...] = frame
    return view


def with_chroma(frame: Picture) -> Picture:
    return numpy.concatenate([frame, numpy.full((HEIGHT // 2, WIDTH), int(frame.sum()) % 251, numpy.uint8)])


def mapped(frame: Picture) -> mmap.mmap:
    memory = mmap.mmap(-1, frame.nbytes)
    memory[:] = frame.tobytes()
    return memory


def read_only(frame: Picture) -> Picture:
    frame = frame.copy()
    frame.flags.writeable = False
    return frame


FORMS: dict[str, tuple[str, Callable[[Picture], Any]]] = {
    "with three dimensions": ("grey", lambda frame: frame[:, :, numpy.newaxis]),
    "with padding": ("grey", lambda frame: padded(frame, 3, 5)),
    "with padding, colour": ("bgr", lambda frame: padded(frame, 1, 1)),
    "every second row": ("grey", lambda frame: numpy.repeat(frame, 2, axis=0)[::2]),
    "read-only": ("bgrx", read_only),
    "with chroma": ("i420", with_chroma),
    "with chroma and padding": ("nv12", lambda frame: numpy.pad(with_chroma(frame), ((0, 0), (0, 9)))[:, :WIDTH]),
    "bytes": ("bgr", lambda frame: frame.tobytes()),
    "bytes with chroma": ("i420", lambda frame: frame.tobytes() + bytes(2 * 49 * 40)),
    "bytearray": ("grey", lambda frame: bytearray(frame.tobytes())),
    "memoryview": ("grey", lambda frame: memoryview(frame)),  # type: ignore[arg-type]
    "characters": ("grey", lambda frame: memoryview(frame.tobytes()).cast("c")),
    "array": ("grey", lambda frame: array.array("B", frame.tobytes())),
    "mmap": ("grey", mapped),
    "ctypes": ("grey", lambda frame: (ctypes.c_ubyte * frame.size).from_buffer_copy(frame.tobytes())),
}


@pytest.mark.parametrize("form", FORMS)
def test_a_frame_in_another_form_gives_the_same(form: str) -> None:
    format, convert = FORMS[form]
    plain, other = (Detector(width=WIDTH, height=HEIGHT, format=format) for _ in range(2))  # type: ignore[arg-type]
    found = 0
    for frame, time in zip(frames({"bgr": 3, "bgrx": 4}.get(format, 1)), times()):
        boxes = plain(frame, time)
        assert other(convert(frame), time) == boxes
        found += len(boxes)
    assert found > 20


def test_bytes_with_a_stride() -> None:
    plain, other = (Detector(width=WIDTH, height=HEIGHT, format="bgr") for _ in range(2))
    for frame, time in zip(frames(3), times()):
        wide = numpy.pad(frame, ((0, 0), (0, 2), (0, 0))).tobytes()
        assert other(wide[:-6], time, stride=3 * (WIDTH + 2)) == plain(frame, time)


GREY = numpy.zeros((HEIGHT, WIDTH), numpy.uint8)
BGR = numpy.zeros((HEIGHT, WIDTH, 3), numpy.uint8)
REFUSED: list[tuple[str, Any, str]] = [
    ("grey", BGR, 'shape (80, 97, 3), expected (80, 97) for format "grey"'),
    ("bgr", GREY, 'shape (80, 97), expected (80, 97, 3) for format "bgr"'),
    ("grey", GREY.T, "shape (97, 80), expected (80, 97)"),
    ("grey", GREY[1:], "shape (79, 97), expected (80, 97)"),
    ("i420", GREY[1:], "shape (79, 97), expected (80, 97) or (120, 97)"),
    ("grey", numpy.uint8(5), "shape (), expected (80, 97)"),
    ("grey", GREY.astype(numpy.float32), 'elements are of type "f" with 4 bytes, expected unsigned bytes (uint8)'),
    ("grey", GREY.astype(numpy.int8), 'elements are of type "b" with 1 bytes'),
    ("grey", GREY.astype(bool), 'elements are of type "?"'),
    ("grey", GREY[::-1], "rows are -97 bytes apart, expected at least 97"),
    ("grey", GREY[:, ::-1], "pixels are -1 bytes apart, expected 1; numpy.ascontiguousarray"),
    ("grey", numpy.zeros((HEIGHT, 2 * WIDTH), numpy.uint8)[:, ::2], "pixels are 2 bytes apart"),
    ("grey", numpy.broadcast_to(GREY[0], GREY.shape), "rows are 0 bytes apart"),
    ("bgr", BGR[:, :, ::-1], "channels are -1 bytes apart, expected 1"),
    ("bgr", numpy.zeros((HEIGHT, WIDTH, 4), numpy.uint8)[:, :, :3], "pixels are 4 bytes apart, expected 3"),
    ("bgr", bytes(5), "5 bytes, expected 23280 (97 x 80 pixels of 3 bytes)"),
    ("grey", memoryview(bytes(2 * WIDTH * HEIGHT))[::2], "bytes are 2 apart, expected 1"),
]


@pytest.mark.parametrize("format, frame, text", REFUSED)
def test_what_cannot_be_taken_is_refused(format: Any, frame: Any, text: str) -> None:
    detector = Detector(width=WIDTH, height=HEIGHT, format=format)
    with pytest.raises(FrameError, match="^frame: " + re.escape(text)):
        detector(frame)
    assert detector.info.frames == 0


@pytest.mark.parametrize("stride, text", [(96, "stride 96, expected at least 97"), (-97, "stride -97, expected"),
                                          (98, "7760 bytes are too few for 97 x 80 pixels of 1 byte with stride 98"),
                                          (2**62, "too few")])  # fmt: skip
def test_wrong_strides_are_refused(stride: int, text: str) -> None:
    with pytest.raises(FrameError, match=text):
        Detector(width=WIDTH, height=HEIGHT, format="grey")(GREY.tobytes(), stride=stride)


def test_an_array_has_its_own_stride() -> None:
    with pytest.raises(FrameError, match="a stride is for buffers with one dimension"):
        Detector(width=WIDTH, height=HEIGHT, format="grey")(GREY, stride=WIDTH)


def test_what_has_no_buffer_is_a_type_error() -> None:
    detector: Any = Detector(width=WIDTH, height=HEIGHT, format="grey")
    with pytest.raises(TypeError, match="frame: list, expected a numpy array"):
        detector([1, 2])
    wrong: list[tuple[tuple[Any, ...], dict[str, Any]]] = [((), {}), ((GREY, "1"), {}), ((GREY,), {"time": 1})]
    for positional, named in wrong:
        with pytest.raises(TypeError):
            detector(*positional, **named)


def test_times_are_whole_numbers_or_floats_of_any_kind() -> None:
    kinds: list[Callable[[int], Any]] = [int, float, numpy.int64, numpy.float32, lambda time: time + 0.4]
    detectors = [Detector(width=WIDTH, height=HEIGHT, format="grey") for _ in kinds]
    for frame, time in zip(frames(), times()):
        found = [(detector(frame, kind(time)), detector.json()) for kind, detector in zip(kinds, detectors)]
        assert all(result == found[0] for result in found)
    for wrong in float("nan"), float("inf"), 1e300:
        with pytest.raises(ValueError, match="milliseconds"):
            detectors[0](GREY, wrong)
    with pytest.raises(OverflowError):
        detectors[0](GREY, 2**63)
    for unknown in None, -1:
        detectors[0](GREY, unknown)


def test_pictures_are_copied_into_what_is_given() -> None:
    detector = Detector(width=WIDTH, height=HEIGHT, format="bgr")
    for frame, time in zip(frames(3), times()):
        detector(frame, time)
    mask = padded(GREY, 2, 3)
    assert detector.foreground(mask) is mask
    assert numpy.array_equal(mask, detector.foreground())
    wide = padded(BGR, 2, 3)
    assert numpy.array_equal(detector.background(wide), detector.background())
    assert wide.base is not None and not wide.base[:, :2].any()
    plain = bytearray(WIDTH * HEIGHT)
    detector.foreground(plain)
    assert plain == detector.foreground().tobytes()


@pytest.mark.parametrize("out, error", [(GREY[1:], FrameError), (GREY[::-1], FrameError), (BGR, FrameError),
                                        (bytes(WIDTH * HEIGHT), BufferError), (5, TypeError)])  # fmt: skip
def test_pictures_need_a_place_that_fits(out: Any, error: type[Exception]) -> None:
    detector = Detector(width=WIDTH, height=HEIGHT, format="grey")
    detector(GREY, 1)
    with pytest.raises(error):
        detector.foreground(out)
    assert issubclass(FrameError, lightmotion.Error)
