#!/usr/bin/python3
"""The smallest complete host in Python: loads the plug-in, passes it raw frames and prints what moves.

  ./host.py                                     a built-in moving square
  ./host.py WIDTH HEIGHT CHANNELS <frames.raw   8-bit frames, rows without padding; 1, 3 or 4 channels

Prints one line per box: timestamp, left, top, width and height in pixels.
Exit status: 0 success, 1 failure, 2 wrong usage. All input is checked first: Python cannot catch C++ exceptions.
"""
import ctypes
import json
import os
import sys


def stop(what, status):
    print(f"host.py: {what}", file=sys.stderr, flush=True)
    os._exit(status)  # sys.exit would flush standard output again and, when that fails, end with status 120


def load():
    library = ctypes.CDLL("liblightmotion.so.1")  # OSError, AttributeError
    library.initialization.argtypes = [ctypes.c_char_p]
    library.initialization.restype = ctypes.c_bool
    library.frameProc.argtypes = [ctypes.c_char_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_int)]
    library.getRes.argtypes = [ctypes.c_char_p]
    library.terminate.argtypes = []
    return library


def square():
    """40 frames of 160 x 120 grey pixels; from the second on, a bright square moves to the right."""
    for number in range(40):
        frame = bytearray([60]) * (160 * 120)
        for y in range(48, 72) if number > 0 else ():
            start = y * 160 + 2 * number
            frame[start:start + 24] = bytes([200]) * 24
        yield bytes(frame)


def frames_from_input(size):
    while frame := sys.stdin.buffer.read(size):
        if len(frame) < size:
            raise RuntimeError("the input ends within a frame")
        yield frame


def pixels(start, length, size):
    """Start and length of a box in pixels. A box can extend beyond the right or bottom border: clip it before any use."""
    end = min(start + length, 1.0)
    return round(start * size), round((end - start) * size)


def print_boxes(document, width, height):
    result = json.loads(document)
    for box in result["object"] or []:  # null when no box had finite numbers
        left, across = pixels(box["x"], box["width"], width)
        top, down = pixels(box["y"], box["height"], height)
        print(result["timestamp"], left, top, across, down)


def show(width, height, channels, frames):
    corners = [("-1", "-1"), ("2", "-1"), ("2", "2"), ("-1", "2")]  # a region's own left edge is outside it
    whole = {"name": "", "points": [{"x": x, "y": y} for x, y in corners]}
    config = {"frmW": str(width), "frmH": str(height), "frmChn": str(channels), "roi": [whole]}
    library = load()
    if not library.initialization(json.dumps(config).encode()):
        raise RuntimeError("the plug-in refused the configuration")
    for number, frame in enumerate(frames):
        length = ctypes.c_int(0)
        timestamp = str(1 + 40 * number).encode()  # milliseconds, at 25 frames per second
        if library.frameProc(frame, timestamp, ctypes.byref(length)) != 1:
            raise RuntimeError("the plug-in lost its detector")
        document = ctypes.create_string_buffer(length.value + 1)
        if length.value > 0 and library.getRes(document) == 1:
            print_boxes(document.value, width, height)
    library.terminate()
    sys.stdout.flush()  # here, where a failure is caught


def main():
    try:
        if len(sys.argv) == 1:
            show(160, 120, 1, square())
            return
        width, height, channels = (int(text) for text in sys.argv[1:])
        if min(width, height) < 1 or channels not in (1, 3, 4) or width * height * channels >= 2**31:
            raise ValueError
        show(width, height, channels, frames_from_input(width * height * channels))
    except ValueError:
        stop("usage: host.py [WIDTH HEIGHT CHANNELS <frames.raw], with 1, 3 or 4 channels", 2)
    except (OSError, AttributeError, MemoryError, RuntimeError) as error:
        stop(error, 1)


main()
