"""Prints the results of the four entry points on the frames of the tests. usage: entry_points.py CONFIGURATION"""
import ctypes
import json
import sys

from c_interface import LIBRARY
from scene import frames, times

configuration = sys.argv[1]
library = ctypes.CDLL(LIBRARY)
library.initialization.restype = ctypes.c_bool
assert library.initialization(configuration.encode())
for frame, time in zip(frames(int(json.loads(configuration)["frmChn"])), times()):
    length = ctypes.c_int()
    library.frameProc(frame.tobytes(), str(time).encode(), ctypes.byref(length))
    text = ctypes.create_string_buffer(length.value + 1)
    if length.value > 0:
        library.getRes(text)
    print(json.dumps(text.value.decode()))
