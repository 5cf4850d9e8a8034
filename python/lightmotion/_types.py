"""What detectors return and raise."""
from typing import NamedTuple


class Box(NamedTuple):
    """One box around something that moves, with a margin of one pixel, clipped to the frame."""

    #: Left side in pixels.
    x: int
    #: Top side in pixels.
    y: int
    #: Width in pixels; x + width is at most the width of the frame.
    width: int
    #: Height in pixels; y + height is at most the height of the frame.
    height: int
    #: Left side as a fraction of the frame's width.
    rel_x: float
    #: Top side as a fraction of the frame's height.
    rel_y: float
    #: Width as a fraction of the frame's width.
    rel_width: float
    #: Height as a fraction of the frame's height.
    rel_height: float
    #: Names of the regions of interest that it touches, at least one.
    regions: tuple[str, ...]
    #: The same as indices of the configuration's ``roi``, rising.
    region_indices: tuple[int, ...]


class Info(NamedTuple):
    """What is known of a detector."""

    #: Size of a frame in pixels.
    width: int
    height: int
    #: "grey", "bgr", "rgb", "bgrx", "rgbx", "i420" or "nv12".
    format: str
    #: 1, 3 or 4.
    bytes_per_pixel: int
    #: Names of the regions of interest; "" for a region without a name.
    regions: tuple[str, ...]
    #: Share of the frame inside the regions of interest and outside exclusion regions.
    watched: float
    #: Processed since creation or reset.
    frames: int
    #: Frames per second, from the last timestamps; 30 until there are two.
    frame_rate: float
    #: Bytes allocated for pixels; grows with the first frame.
    memory: int


class Error(Exception):
    """Base of the exceptions of this module."""


class ConfigurationError(Error, ValueError):
    """The configuration is refused; the message names the key, the value and what would be right."""


class FrameError(Error, ValueError):
    """A frame or an output array has the wrong shape, element type or strides."""


class NoFrameError(Error):
    """No frame has been processed since creation or reset."""


class ClosedError(Error, ValueError):
    """The detector is closed."""


class InternalError(Error, RuntimeError):
    """A bug in the library: please report it."""


class ConfigurationWarning(UserWarning):
    """The configuration is accepted, but probably not what was meant, such as a misspelt key."""
