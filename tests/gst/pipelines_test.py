"""The pipelines of docs/gstreamer.md, run as they are written. usage: pipelines_test.py ROOT

Their clip is street.avi of the folder in LIGHTMOTION_CLIPS or, without it, a short one that is made here.
"""
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop(1))
CLIPS = os.environ.get("LIGHTMOTION_CLIPS")


def commands():
    text = (ROOT / "docs/gstreamer.md").read_text()
    return re.findall(r"^    (gst-launch-1\.0 .*)$", text, re.MULTILINE)


def reports(output):
    """(element, type, fields) of every message of the element."""
    message = r'from element "([^"]+)" \(element\): lightmotion, type=\(string\)([a-z-]+), (.*);$'
    found = re.findall(message, output, re.MULTILINE)
    return [(name, kind, dict(re.findall(r"([a-z-]+)=\(\w+\)([^,;]+)", fields))) for name, kind, fields in found]


class Pipelines(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        clip = pathlib.Path(CLIPS or self.folder, "street.avi")
        if clip.exists():
            (self.folder / "street.avi").symlink_to(clip)
        else:
            self.run_line("gst-launch-1.0 videotestsrc pattern=ball num-buffers=75 ! "
                          "video/x-raw,format=I420,framerate=25/1 ! jpegenc ! avimux ! filesink location=street.avi")

    def run_line(self, line):
        done = subprocess.run(shlex.split(line), cwd=self.folder, capture_output=True, text=True, timeout=120)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertNotIn("WARNING: from element", done.stdout + done.stderr)
        return done.stdout

    def test_are_three(self):
        self.assertEqual(len(commands()), 3)

    def test_events_of_a_test_picture(self):
        found = reports(self.run_line(commands()[0]))
        self.assertEqual([kind for _, kind, _ in found], ["event-begin", "event-end"])
        begin, end = found[0][2], found[1][2]
        self.assertLess(int(begin["running-time"]), 200_000_000)
        self.assertEqual(int(begin["running-time"]) + int(end["duration"]), int(end["running-time"]))
        self.assertEqual(end["reason"], "eos")

    def test_a_file_with_outlines(self):
        self.run_line(commands()[1])
        self.assertGreater((self.folder / "boxes.avi").stat().st_size, 100_000)

    def test_two_detectors(self):
        found = reports(self.run_line(commands()[2]))
        self.assertEqual({name for name, _, _ in found}, {"road", "all"})
        for name, hold in ("road", "2000000000"), ("all", "5000000000"):
            mine = [(kind, fields) for other, kind, fields in found if other == name]
            self.assertEqual([kind for kind, _ in mine], ["event-begin", "event-end"] * (len(mine) // 2))
            self.assertEqual({fields["hold"] for _, fields in mine}, {hold})


if __name__ == "__main__":
    unittest.main()
