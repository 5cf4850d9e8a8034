"""The examples of docs/interfaces.md, as they stand there, with the installed files: all print the same boxes."""
import os
import re
import sys
import tempfile
import unittest

from tests.examples.examples_test import STRICT, square_frames
from tests.support.installation import ENVIRONMENT, LIBRARY_FOLDER, SOURCE, output_of, pkg_config, run

EXAMPLES = {title: (language, text) for title, language, text in re.findall(
    r"^## ([^\n]+)\n(?:(?!^## ).)*?^```(\w+)\n(.*?)^```$", (SOURCE / "docs/interfaces.md").read_text(), re.M | re.S)}


class Interfaces(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = folder.name
        cls.frames = b"".join(square_frames())
        cls.expected = cls.boxes_of(cls, ["cc", "-std=c11"], "C")

    def file_of(self, title):
        language, text = EXAMPLES[title]
        path = os.path.join(self.folder, f"{title}.{language}".replace("+", "p"))
        with open(path, "w") as file:
            file.write(text)
        return path

    def boxes_of(self, compiler, title, *options):
        source = Interfaces.file_of(self, title)
        program = source + ".program"
        output_of(*compiler, *STRICT, source, *pkg_config("--cflags", "--libs"), *options, "-o", program)
        return output_of(program, input=self.frames, text=False).decode()

    def test_are_five(self):
        self.assertEqual(list(EXAMPLES), ["GStreamer", "Python", "OpenCV", "C++", "C"])

    def test_find_the_square_in_every_frame_but_the_first(self):
        # A square of 24 pixels, three layers peeled off on each side, and a margin of one.
        self.assertEqual(self.expected, "".join(f"{2 * number + 2} 50 20 20\n" for number in range(1, 40)))

    def test_cpp(self):
        self.assertEqual(self.boxes_of(["c++", "-std=c++17"], "C++"), self.expected)

    def test_opencv(self):
        self.assertEqual(self.boxes_of(["c++", "-std=c++17"], "OpenCV", "-isystem", "/usr/include/opencv4", "-lopencv_core"),
                         self.expected)

    def test_python(self):
        module = os.environ.get("LIGHTMOTION_MODULE")
        if not module:
            self.skipTest("the Python module is not built")
        done = run(sys.executable, "-B", self.file_of("Python"), environment=dict(ENVIRONMENT, PYTHONPATH=module),
                   input=self.frames, text=False)
        self.assertEqual((done.returncode, done.stdout.decode()), (0, self.expected), done.stderr)

    def test_gstreamer(self):
        environment = dict(ENVIRONMENT, GST_PLUGIN_PATH_1_0=str(LIBRARY_FOLDER / "gstreamer-1.0"),
                           GST_REGISTRY_1_0=os.path.join(self.folder, "registry"))
        done = run("sh", self.file_of("GStreamer"), environment=environment, input=self.frames, text=False)
        self.assertEqual(done.returncode, 0, done)
        # gst-launch escapes the structures within messages.
        sides = re.findall(r"box, x=\(int\)(\d+), y=\(int\)(\d+), width=\(int\)(\d+), height=\(int\)(\d+)",
                           done.stdout.decode().replace("\\", ""))
        self.assertEqual("".join(" ".join(box) + "\n" for box in sides), self.expected)


if __name__ == "__main__":
    unittest.main()
