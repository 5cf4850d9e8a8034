"""The class Detector."""
from __future__ import annotations

import json
import os
import pathlib
import warnings
from collections.abc import Iterator, Mapping
from types import TracebackType
from typing import TYPE_CHECKING, Any, Literal, Self, TypeAlias, TypeVar, get_args, overload

from . import _core
from ._types import ConfigurationWarning, FrameError

if TYPE_CHECKING:
    import array
    import ctypes
    import mmap

    import numpy
    import numpy.typing

    from ._video import Result

    Picture: TypeAlias = numpy.typing.NDArray[numpy.uint8]
    Output: TypeAlias = Picture | bytearray | memoryview | array.array[int] | mmap.mmap | ctypes.Array[Any]
    OutputT = TypeVar("OutputT", bound=Output)
    Frame: TypeAlias = Output | bytes

Format: TypeAlias = Literal["grey", "bgr", "rgb", "bgrx", "rgbx", "i420", "nv12"]
Configuration: TypeAlias = "Mapping[str, Any] | str | os.PathLike[str]"

_FORMATS = ("", *get_args(Format))  # numbered as in lightmotion.h
_FORMAT_OF_CHANNELS: dict[int, Format] = {1: "grey", 3: "bgr", 4: "bgrx"}


class Detector(_core.Detector):
    """Detects motion in the frames of one video.

    >>> detector = Detector(width=1280, height=720, format="bgr", sensitivity=4)
    >>> for box in detector(frame, milliseconds):
    ...     print(box.x, box.y, box.width, box.height, box.regions)

    ``configuration`` is a mapping, JSON text, or the path of a JSON file; ``settings`` are keys that replace those
    of the configuration. ``width``, ``height`` and ``format`` stand for the keys frmW, frmH and format. All keys:
    docs/handles.md.

    Raises ConfigurationError. What is accepted but probably not meant gives a ConfigurationWarning.

    Calling the detector processes one frame and returns its boxes, a list of Box:

    ``detector(frame, milliseconds=None, *, stride=0)``

    * ``frame``: anything with the buffer protocol that has unsigned bytes. Arrays with the shape (height, width) for
      grey, (height, width, 3) or (height, width, 4), with rows of any distance: no copy is made. For i420 and nv12
      the luma plane, or all planes below each other as other libraries have them. Or bytes, with ``stride`` bytes
      per row (0: without padding). FrameError for anything else.
    * ``milliseconds``: the time of the frame, later than the one before; only differences matter. None or negative:
      unknown, the wall clock is used.

    The first frame has no boxes. Other threads run while a frame is processed. Threads that use the same detector
    wait for each other. In a ``with`` statement the detector is closed at its end.
    """

    def __init__(
        self,
        configuration: Configuration | None = None,
        *,
        width: int | None = None,
        height: int | None = None,
        format: Format | None = None,
        **settings: Any,
    ) -> None:
        if format is not None and format not in _FORMATS[1:]:
            raise ValueError(f"format: {format!r}, expected one of {', '.join(_FORMATS[1:])}")
        text = _text_of(configuration, settings)
        messages = self._create(text, width or 0, height or 0, _FORMATS.index(format or ""))
        if settings and isinstance(configuration, (str, os.PathLike)):
            try:
                messages = self._change(_json_of(settings))
            except BaseException:
                self.close()
                raise
        _warn(messages)

    @classmethod
    def for_frame(
        cls,
        frame: Picture,
        configuration: Configuration | None = None,
        *,
        format: Format | None = None,
        **settings: Any,
    ) -> Self:
        """A detector for arrays like ``frame``: grey, bgr or bgrx by its number of channels, or the given format."""
        shape: tuple[int, ...] = frame.shape
        channels = shape[2] if len(shape) == 3 else 1
        if len(shape) not in (2, 3) or channels not in _FORMAT_OF_CHANNELS:
            raise FrameError(f"frame: shape {shape}, expected (height, width) or (height, width, 3 or 4)")
        if format in ("i420", "nv12"):
            raise ValueError(f"format: {format!r} has no size of its own, use width and height")
        format = format or _FORMAT_OF_CHANNELS[channels]
        return cls(configuration, width=shape[1], height=shape[0], format=format, **settings)

    def change(self, changes: Mapping[str, Any] | str | None = None, **settings: Any) -> None:
        """Changes the configuration without learning anew, from the next frame on.

        ``changes`` is a mapping or JSON text; ``settings`` are keys as well. A value of None restores the default.
        The frame size and format cannot be changed. Pixels that were not watched before have no boxes in the next
        frame. Raises ConfigurationError, and nothing has changed.
        """
        if isinstance(changes, str):
            if settings:
                raise TypeError("change: either a text or keywords")
            _warn(self._change(changes))
        else:
            _warn(self._change(_json_of({**(changes or {}), **settings})))

    def relearn(self, x: int, y: int, width: int, height: int, mask: Frame | None = None) -> None:
        """Learns a part of the frame anew, from the next frame on: the place that a parked car has left, for example.

        The pixels of the rectangle are learned from the next frame as from a first one; all others keep what was
        learned. ``mask``: an array with the shape (height, width), such as a part of foreground(); only pixels where
        it is not 0 are learned anew. Raises ValueError for a rectangle that does not lie within the frame.
        """
        self._relearn(x, y, width, height, mask)

    @overload
    def foreground(self, out: None = None) -> Picture: ...
    @overload
    def foreground(self, out: OutputT) -> OutputT: ...
    def foreground(self, out: Any = None) -> Any:
        """The foreground of the last frame: 255 where a pixel differs from the background, else 0.

        Before peeling; 0 outside the watched area and for a first frame. ``out`` is filled if it is given, else
        a new array. Raises NoFrameError before the first frame.
        """
        return self._picture(out, 1, self._foreground)

    @overload
    def background(self, out: None = None) -> Picture: ...
    @overload
    def background(self, out: OutputT) -> OutputT: ...
    def background(self, out: Any = None) -> Any:
        """The learned background as a picture in the format of the frames; the luma plane for i420 and nv12.

        0 where nothing is watched, and in the fourth byte of a pixel. ``out`` and errors as for foreground().
        """
        return self._picture(out, self.info.bytes_per_pixel, self._background)

    def detect(self, source: Any) -> Iterator[Result]:
        """Reads a video and processes its frames; see lightmotion.detect()."""
        from . import _video

        return _video.results(source, lambda _: self, self.info.format)

    def __enter__(self) -> Self:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        if self.closed:
            return f"<{type(self).__name__} closed>"
        info = self.info
        return f"<{type(self).__name__} {info.width} x {info.height} {info.format}, {info.frames} frames>"

    def _picture(self, out: Any, channels: int, copy: Any) -> Any:
        if out is None:
            import numpy

            info = self.info
            sides = (info.height, info.width)
            out = numpy.empty(sides if channels == 1 else (*sides, channels), numpy.uint8)
        copy(out)
        return out


def _json_of(settings: Mapping[str, Any]) -> str:
    return json.dumps(dict(settings), allow_nan=False)


def _text_of(configuration: Configuration | None, settings: Mapping[str, Any]) -> str:
    """The configuration; with the settings, unless it is a text: these are changes to it."""
    if isinstance(configuration, str):
        return configuration
    if isinstance(configuration, os.PathLike):
        return pathlib.Path(configuration).read_text(encoding="utf-8")
    return _json_of({**(configuration or {}), **settings})


def _warn(messages: str) -> None:
    for message in messages.splitlines():
        warnings.warn(message, ConfigurationWarning, stacklevel=3)
