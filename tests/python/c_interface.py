"""The C interface by ctypes, to compare with. The library: LIGHTMOTION_LIBRARY."""
from __future__ import annotations

import ctypes
import os
from collections.abc import Sequence
from typing import Any

import numpy

from scene import Picture

LIBRARY = os.environ["LIGHTMOTION_LIBRARY"]


class CBox(ctypes.Structure):
    _fields_ = [
        *((name, ctypes.c_int32) for name in ("x", "y", "width", "height")),
        *((name, ctypes.c_float) for name in ("rel_x", "rel_y", "rel_width", "rel_height")),
        ("regions", ctypes.POINTER(ctypes.c_int32)),
        ("region_count", ctypes.c_int32),
        ("reserved", ctypes.c_uint32 * 5),
    ]


def load() -> ctypes.CDLL:
    library = ctypes.CDLL(LIBRARY)
    library.lightmotion_create.restype = ctypes.c_void_p
    library.lightmotion_create.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_size_t]
    library.lightmotion_process.argtypes = [
        ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int64, ctypes.POINTER(ctypes.POINTER(CBox))
    ]  # fmt: skip
    for name in "lightmotion_foreground", "lightmotion_background":
        getattr(library, name).argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_size_t]
    library.lightmotion_json.restype = ctypes.c_char_p
    library.lightmotion_json.argtypes = [ctypes.c_void_p, ctypes.POINTER(ctypes.c_size_t)]
    library.lightmotion_destroy.argtypes = [ctypes.c_void_p]
    return library


class CDetector:
    def __init__(self, configuration: str) -> None:
        self.library = load()
        message = ctypes.create_string_buffer(1000)
        self.handle = self.library.lightmotion_create(configuration.encode(), message, len(message))
        assert self.handle, message.value

    def __del__(self) -> None:
        self.library.lightmotion_destroy(self.handle)

    def __call__(self, frame: Picture, milliseconds: int) -> list[tuple[Any, ...]]:
        """Each box as the members of lightmotion.Box without names."""
        frame = numpy.ascontiguousarray(frame)
        boxes = ctypes.POINTER(CBox)()
        count = self.library.lightmotion_process(self.handle, frame.ctypes.data, 0, milliseconds, ctypes.byref(boxes))
        assert count >= 0
        return [members(boxes[i]) for i in range(count)]

    def json(self) -> str:
        text: bytes = self.library.lightmotion_json(self.handle, None)
        return text.decode()

    def picture(self, which: str, shape: Sequence[int]) -> Picture:
        out = numpy.zeros(shape, numpy.uint8)
        assert getattr(self.library, f"lightmotion_{which}")(self.handle, out.ctypes.data, 0) == 0
        return out


def members(box: CBox) -> tuple[Any, ...]:
    numbers = [getattr(box, name) for name in (field[0] for field in CBox._fields_[:8])]
    return (*numbers, tuple(box.regions[: box.region_count]))
