#!/usr/bin/env python3
"""Every folder includes itself and what its row lists, folders or single headers. usage: includes_test.py ROOT"""
import pathlib
import re
import sys

# Plain data that all parts of the library pass on.
RECORDS = ["config/polygon.h", "objects/box.h", "objects/component.h", "objects/extent.h"]

BELOW_COMMANDS = ["host/base", "host/source", "host/detector", "host/events", "host/outputs"]

# From the bottom to the top: a row lists only rows above it.
MAY_INCLUDE = {
    "base": [],
    "simd": ["base"],
    "engine": ["base", "simd", *RECORDS],
    "objects": ["base", "simd", "engine", *RECORDS],
    "config": ["base", "simd/samples.h", "engine", *RECORDS],
    "compact": ["base", "simd", "engine", "objects"],
    "plugin": ["base", "engine", "objects", "config", "compact"],
    "lightmotion": ["base", "simd/cpu_level.h", "engine", "objects", "config", "compact", "plugin/result_text.h"],
    "python": ["lightmotion/lightmotion.h"],
    "gst": ["lightmotion/lightmotion.h"],
    # The program: it drives the library by handle or by its entry points, and `check` reads the tables of its configuration.
    "host/base": [],
    "host/source": ["host/base"],
    "host/detector": ["host/base", "host/source", "base", "config", "engine/rules.h", "plugin/entry_points.h",
                      "lightmotion/lightmotion.hpp"],
    "host/events": ["host/base", "host/source", "host/detector", "config"],
    "host/outputs": ["host/base", "host/source", "host/events"],
    "host/commands/run": [*BELOW_COMMANDS],
    "host/commands/archive": [*BELOW_COMMANDS, "host/commands/run"],
    "host/commands/serve": [*BELOW_COMMANDS],
    "host/commands/tune": [*BELOW_COMMANDS],
    "host/commands": [*BELOW_COMMANDS, "host/commands/run", "host/commands/archive", "host/commands/serve",
                      "host/commands/tune"],
}


def folder_of(path):
    return max((folder for folder in MAY_INCLUDE if path.startswith(folder + "/")), key=len, default="")


def broken_rules(root):
    for row, (folder, others) in enumerate(MAY_INCLUDE.items()):
        below = list(MAY_INCLUDE)[:row]
        for other in set(others) - set(RECORDS):
            if folder_of(other + "/") not in below:
                yield f"{folder}: {other} is not below it"
        for file in sorted(root.glob(f"{folder}/**/*.[ch]*")):
            source = file.relative_to(root).as_posix()
            if folder_of(source) != folder:
                continue
            for header in re.findall(r'^\s*#\s*include\s*"([^"]+)"', file.read_text(), re.MULTILINE):
                if not (root / header).is_file():
                    yield f"{source}: {header} is not a path from the root"
                elif header not in others and folder_of(header) not in [folder, *others]:
                    yield f"{source}: {folder}/ may not include {header}"


broken = list(broken_rules(pathlib.Path(sys.argv[1])))
print("\n".join(broken))
sys.exit(1 if broken else 0)
