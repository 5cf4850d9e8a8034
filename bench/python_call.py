#!/usr/bin/python3
"""What a call from Python costs beyond the call in C: both process the same small frames. usage: python_call.py [BUILD]

Requires numpy, a C compiler and a build folder (build/release) with the targets lightmotion and lightmotion_python.
"""
import ctypes
import pathlib
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
BUILD = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "build/release")
sys.path.insert(0, str(BUILD / "python/tree"))

import lightmotion  # noqa: E402
import numpy  # noqa: E402

CALLS, ROUNDS = 20_000, 15
LOOP = """
#include "lightmotion/lightmotion.h"
void loop(const char *configuration, const void *pixels, int calls) {
  lightmotion_detector *detector = lightmotion_create(configuration, 0, 0);
  const lightmotion_box *boxes;
  for (int i = 0; i < calls; ++i) lightmotion_process(detector, pixels, 0, 40 * i, &boxes);
  lightmotion_destroy(detector);
}
"""


def c_loop(folder):
    library = pathlib.Path(folder, "loop.so")
    command = ["cc", "-O2", "-shared", "-fPIC", "-x", "c", "-", f"-I{ROOT}", f"-L{BUILD}", "-llightmotion",
               f"-Wl,-rpath,{BUILD.resolve()}", "-o", str(library)]
    subprocess.run(command, input=LOOP, text=True, check=True)
    return ctypes.CDLL(str(library)).loop


def python_loop(detector, frame):
    for i in range(CALLS):
        detector(frame, 40 * i)


def seconds(call, *arguments):
    start = time.perf_counter()
    call(*arguments)
    return time.perf_counter() - start


def main():
    with tempfile.TemporaryDirectory() as folder:
        loop = c_loop(folder)
    print("microseconds per call, best of", ROUNDS)
    for side in 1, 8, 32:
        frame = numpy.zeros((side, side), numpy.uint8)
        text = f'{{"frmW": {side}, "frmH": {side}, "format": "grey"}}'
        both = [(seconds(loop, text.encode(), frame.ctypes.data_as(ctypes.c_void_p), CALLS),
                 seconds(python_loop, lightmotion.Detector(text), frame)) for _ in range(ROUNDS)]
        in_c, in_python = (min(times) / CALLS * 1e6 for times in zip(*both))
        print(f"{side:3} x {side:<3} C {in_c:.2f}  Python {in_python:.2f}  difference {in_python - in_c:.2f}")


main()
