"""A Python host that uses only ctypes: every way of loading, unloading and loading again gives the same results.

Every way runs in its own process, because results depend on the state of rand(), which a new detector changes.

usage: host.py LIBRARY          runs itself once per mode and compares the results
       host.py LIBRARY MODE     prints the results of two detectors; MODE: flags for dlopen
"""
import _ctypes
import ctypes
import json
import os
import subprocess
import sys

WIDTH, HEIGHT = 64, 48
CORNERS = [("-1", "-1"), ("2", "-1"), ("2", "2"), ("-1", "2")]
DOCUMENT = json.dumps({
    "frmW": str(WIDTH), "frmH": str(HEIGHT), "frmChn": "1", "sensitivity": "-1",
    "roi": [{"name": "café", "points": [{"x": x, "y": y} for x, y in CORNERS]}]}).encode()
MODES = [os.RTLD_NOW | os.RTLD_LOCAL, os.RTLD_NOW | os.RTLD_GLOBAL, os.RTLD_NOW | os.RTLD_LOCAL | os.RTLD_DEEPBIND]


def frame(number):
    """A bright square that moves over a dark background."""
    pixels = bytearray([50]) * (WIDTH * HEIGHT)
    for y in range(12, 32):
        left = y * WIDTH + number
        pixels[left:left + 20] = bytes([200]) * 20
    return bytes(pixels)


def results(plugin):
    """The result documents of a detector that gets 20 frames."""
    plugin.initialization.argtypes = [ctypes.c_char_p]
    plugin.initialization.restype = ctypes.c_bool
    plugin.frameProc.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_int)]
    documents = []
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


def load_and_unload(path, mode):
    documents = []
    for _ in range(2):
        plugin = ctypes.CDLL(path, mode=mode)
        documents.append(results(plugin))
        _ctypes.dlclose(plugin._handle)
    print(json.dumps(documents))


def main(path):
    outputs = []
    for mode in MODES:
        done = subprocess.run([sys.executable, __file__, path, str(mode)], stdout=subprocess.PIPE, check=True)
        outputs.append(json.loads(done.stdout.splitlines()[-1]))
    for documents in outputs[0]:
        assert len(documents) > 10 and all(document["object"] for document in documents)
    assert all(documents == outputs[0] for documents in outputs)


if __name__ == "__main__":
    if len(sys.argv) == 3:
        load_and_unload(sys.argv[1], int(sys.argv[2]))
    else:
        main(sys.argv[1])
