"""The example hosts, built as their first lines say, with the installed package."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from tests.support.installation import ENVIRONMENT, PREFIX, SOURCE, output_of, pkg_config, run

EXAMPLES = PREFIX / "share/doc/liblightmotion-dev/examples"
STRICT = ["-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror"]


def frame_with_square(left, top):
    rows = [bytearray([60] * 160) for _ in range(120)]
    for row in rows[top:top + 24]:
        row[left:left + 24] = bytes([200] * len(row[left:left + 24]))
    return b"".join(rows)


def square_frames():
    """The frames of the hosts without input: 40 grey frames of 160 x 120, a square of 24 that moves by 2."""
    yield frame_with_square(160, 120)
    for number in range(1, 40):
        yield frame_with_square(2 * number, 48)


def boxes_of(output):
    """One tuple per line: timestamp, left, top, width, height."""
    return [tuple(int(word) for word in line.split(" ")) for line in output.splitlines()]


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        output_of("cc", "-std=c11", *STRICT, EXAMPLES / "c/host.c", *pkg_config("--cflags"), "-o", cls.folder / "host")
        output_of("cmake", "-S", EXAMPLES / "cpp", "-B", cls.folder / "cpp", "-DCMAKE_CXX_FLAGS=" + " ".join(STRICT))
        output_of("cmake", "--build", cls.folder / "cpp")
        cls.hosts = [cls.folder / "host", cls.folder / "cpp/host", EXAMPLES / "python/host.py"]

        cls.detector = cls.folder / "detector"
        output_of("cc", "-std=c11", *STRICT, EXAMPLES / "c/detector.c", *pkg_config("--cflags", "--libs"), "-o", cls.detector)

        cls.stand_in = cls.folder / "stand-in"
        cls.stand_in.mkdir()
        output_of("cc", "-shared", "-fPIC", "-Wl,-soname,liblightmotion.so.1", f"-I{SOURCE}",
                  SOURCE / "tests/examples/refusing_plugin.c", "-o", cls.stand_in / "liblightmotion.so.1")

    def of_all(self, *arguments, **more):
        return [run(host, *arguments, **more) for host in self.hosts]

    def assert_fails(self, done, status, words):
        self.assertEqual(done.returncode, status, done)
        self.assertRegex(done.stderr if isinstance(done.stderr, str) else done.stderr.decode(), words)

    def test_are_less_than_120_lines_each(self):
        for file in EXAMPLES.rglob("host*"):
            self.assertLess(len(file.read_text().splitlines()), 120, file)

    def test_find_the_square_in_every_frame_that_it_moved_in(self):
        for done in self.of_all():
            self.assertEqual(done.returncode, 0, done.stderr)
            boxes = boxes_of(done.stdout)
            # Not in the first frame, which seeds the model; 25 frames per second from 1 ms on.
            self.assertEqual([box[0] for box in boxes], list(range(41, 1562, 40)))
            for number, (_, left, top, width, height) in enumerate(boxes, start=1):
                self.assertAlmostEqual(left + width / 2, 2 * number + 12, delta=3)
                self.assertAlmostEqual(top + height / 2, 60, delta=3)

    def test_clip_boxes_to_the_frame(self):
        # The plug-in makes boxes at the right and bottom border as wide and high as the frame.
        frames = frame_with_square(160, 120) + frame_with_square(136, 96)
        outputs = [done.stdout for done in self.of_all("160", "120", "1", input=frames, text=False)]
        [(_, left, top, width, height)] = boxes_of(outputs[0].decode())
        self.assertEqual((left + width, top + height), (160, 120))
        self.assertAlmostEqual(left, 136, delta=3)
        self.assertAlmostEqual(top, 96, delta=3)
        self.assertEqual(outputs, outputs[:1] * len(self.hosts))

    def test_read_frames_from_their_input(self):
        expected = run(self.hosts[0]).stdout.encode()
        for done in self.of_all("160", "120", "1", input=b"".join(square_frames()), text=False):
            self.assertEqual((done.returncode, done.stdout), (0, expected), done.stderr)

    def test_read_frames_with_colours(self):
        expected = run(self.hosts[0]).stdout.encode()
        for channels in 3, 4:
            frames = b"".join(bytes(value for value in frame for _ in range(channels)) for frame in square_frames())
            for done in self.of_all("160", "120", str(channels), input=frames, text=False):
                self.assertEqual((done.returncode, done.stdout), (0, expected), done.stderr)

    def test_detectors_by_handle_give_what_the_hosts_give(self):
        inputs = {"1": b"".join(square_frames())}
        for channels in "3", "4":
            inputs[channels] = bytes(value for value in inputs["1"] for _ in range(int(channels)))
        self.assertEqual(run(self.detector).stdout, run(self.hosts[0]).stdout)
        for channels, frames in inputs.items():
            done = [run(host, "160", "120", channels, input=frames, text=False) for host in (self.hosts[0], self.detector)]
            self.assertEqual((done[1].returncode, done[1].stdout, done[1].stderr), (0, done[0].stdout, b""))

    def test_detectors_by_handle_report_what_is_wrong(self):
        for sizes, words in ((("160", "120"), "usage"), (("160", "x", "3"), "usage"), (("0", "120", "3"), "frmW"),
                             (("160", "120", "2"), "1, 3 or 4"), (("99999", "99999", "1"), "too large")):
            self.assert_fails(run(self.detector, *sizes, stdin=subprocess.DEVNULL), 2, words)
        done = run(self.detector, "160", "120", "1", input=bytes(160 * 120 + 1), text=False)
        self.assert_fails(done, 1, "ends within a frame")

    def test_end_quietly_with_an_empty_input(self):
        for done in self.of_all("160", "120", "3", stdin=subprocess.DEVNULL):
            self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)

    def test_refuse_sizes_that_are_none(self):
        for sizes in ("0", "120", "3"), ("160", "-1", "3"), ("160", "120x", "3"), ("160", "120", ""), ("wide", "1", "1"):
            for done in self.of_all(*sizes, stdin=subprocess.DEVNULL):
                self.assert_fails(done, 2, "size|usage")

    def test_refuse_channels_that_the_plug_in_does_not_know(self):
        for channels in "2", "5":
            for done in self.of_all("160", "120", channels, stdin=subprocess.DEVNULL):
                self.assert_fails(done, 2, "channels")

    def test_refuse_frames_of_more_than_31_bits(self):
        for sizes in ("46341", "46341", "1"), ("99999999999999999999", "1", "1"), ("2147483647", "2147483647", "4"):
            for done in self.of_all(*sizes, stdin=subprocess.DEVNULL):
                self.assert_fails(done, 2, "large|size|usage")

    def test_refuse_other_numbers_of_arguments(self):
        for arguments in ("160",), ("160", "120"), ("160", "120", "3", "4"):
            for done in self.of_all(*arguments, stdin=subprocess.DEVNULL):
                self.assert_fails(done, 2, "usage")

    def test_report_an_input_that_ends_within_a_frame(self):
        for done in self.of_all("160", "120", "1", input=bytes(160 * 120 + 1), text=False):
            self.assert_fails(done, 1, "ends within a frame")

    def test_report_that_standard_output_is_full(self):
        # Python reports it at the first line without a buffer, and when it flushes the buffer with one.
        buffered = {name: value for name, value in ENVIRONMENT.items() if name != "PYTHONUNBUFFERED"}
        for environment in buffered, dict(buffered, PYTHONUNBUFFERED="1"):
            for host in self.hosts:
                with open("/dev/full", "w") as full:
                    done = subprocess.run([host], stdout=full, stderr=subprocess.PIPE, text=True, env=environment)
                self.assert_fails(done, 1, "\nhost(.py)?: .*(cannot write|space).*\n$")

    def test_report_that_the_library_is_missing(self):
        nowhere = dict(os.environ, LC_ALL="C", LD_LIBRARY_PATH=str(self.folder))
        bare = shutil.copy(self.hosts[1], self.folder / "bare")  # CMake noted where the library was
        output_of("cmake", "-P", self.write_script(f'file(RPATH_REMOVE FILE "{bare}")'))
        for host, status in (self.hosts[0], 1), (bare, 127), (self.hosts[2], 1):
            self.assert_fails(run(host, environment=nowhere), status, "liblightmotion.so.1: cannot open shared object")

    def write_script(self, text):
        script = self.folder / "script.cmake"
        script.write_text(text)
        return script

    def with_stand_in(self, refuse_at):
        # Before the place that CMake noted in the program.
        environment = dict(ENVIRONMENT, REFUSE_AT=refuse_at, LD_PRELOAD=str(self.stand_in / "liblightmotion.so.1"))
        return [run(host, environment=environment) for host in self.hosts]

    def test_report_a_refused_configuration(self):
        for done in self.with_stand_in("start"):
            self.assert_fails(done, 1, "refused the configuration")

    def test_report_that_the_detector_is_gone(self):
        for done in self.with_stand_in("frame"):
            self.assert_fails(done, 1, "lost its detector")


if __name__ == "__main__":
    unittest.main()
