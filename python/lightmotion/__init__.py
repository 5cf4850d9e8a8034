"""Motion detection for video.

>>> import lightmotion
>>> for result in lightmotion.detect("street.avi", sensitivity=4):
...     print(result.milliseconds, result.boxes)

Frames from elsewhere: see Detector. The keys of a configuration: docs/handles.md.
"""
from ._core import version as __version__
from ._detector import Detector
from ._types import (
    Box,
    ClosedError,
    ConfigurationError,
    ConfigurationWarning,
    Error,
    FrameError,
    Info,
    InternalError,
    NoFrameError,
)
from ._video import Result, detect

__all__ = [
    "Box",
    "ClosedError",
    "ConfigurationError",
    "ConfigurationWarning",
    "Detector",
    "Error",
    "FrameError",
    "Info",
    "InternalError",
    "NoFrameError",
    "Result",
    "__version__",
    "detect",
]
