"""A Python host, with nothing but ctypes: every way of loading, unloading and loading again gives the same results.

usage: host.py LIBRARY
"""
import _ctypes
import ctypes
import json
import os
import sys

WIDTH, HEIGHT = 64, 48
CORNERS = [("-1", "-1"), ("2", "-1"), ("2", "2"), ("-1", "2")]
DOCUMENT = json.dumps({
    "frmW": str(WIDTH), "frmH": str(HEIGHT), "frmChn": "1", "sensitivity": "-1",
    "roi": [{"name": "café", "points": [{"x": x, "y": y} for x, y in CORNERS]}]}).encode()
MODES = [os.RTLD_NOW | os.RTLD_LOCAL, os.RTLD_NOW | os.RTLD_GLOBAL, os.RTLD_NOW | os.RTLD_LOCAL | os.RTLD_DEEPBIND]


def frame(number):
    """A bright square that moves over a dark ground."""
    pixels = bytearray([50]) * (WIDTH * HEIGHT)
    for y in range(12, 32):
        left = y * WIDTH + number
        pixels[left:left + 20] = bytes([200]) * 20
    return bytes(pixels)


def results(plugin):
    """The result documents of a life of 20 frames."""
    plugin.initialization.argtypes = [ctypes.c_char_p]
    plugin.initialization.restype = ctypes.c_bool
    plugin.frameProc.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_int)]
    documents = []
    ctypes.CDLL(None).srand(1)
    assert plugin.initialization(DOCUMENT)
    assert not plugin.initialization(DOCUMENT)
    for number in range(20):
        length = ctypes.c_int(-1)
        assert plugin.frameProc(frame(number), str(1 + 40 * number).encode(), ctypes.byref(length)) == 1
        text = ctypes.create_string_buffer(length.value + 1)
        assert plugin.getRes(text) == 1 and len(text.value) == length.value
        if length.value:
            documents.append(json.loads(text.value))
    assert plugin.terminate() == 1
    return documents


def main(path):
    seen = []
    for mode in MODES:
        for _ in range(2):
            plugin = ctypes.CDLL(path, mode=mode)
            seen.append(results(plugin))
            _ctypes.dlclose(plugin._handle)
    assert len(seen[0]) > 10 and all(document["object"] for document in seen[0])
    assert all(documents == seen[0] for documents in seen)


if __name__ == "__main__":
    main(sys.argv[1])
