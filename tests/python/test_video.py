"""Frames of videos, with each library that is installed; the example that draws boxes."""
from __future__ import annotations

import os
import pathlib
import re
import subprocess
import sys
from collections.abc import Iterator
from typing import Any

import lightmotion
import numpy
import pytest
from lightmotion import _video

PAGE = pathlib.Path(__file__).parents[2] / "docs/python.md"
EXAMPLE = pathlib.Path(__file__).parents[2] / "examples/python/boxes.py"
READERS = {"av": _video._opened_with_pyav, "cv2": _video._opened_with_opencv}


@pytest.fixture(scope="module")
def video(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    """20 frames at 25 frames per second; from the second on, a bright square moves."""
    av = pytest.importorskip("av")
    file = tmp_path_factory.mktemp("video") / "square.avi"
    with av.open(str(file), "w") as container:
        stream = container.add_stream("ffv1", rate=25)
        stream.width, stream.height, stream.pix_fmt = 160, 120, "bgr0"
        for number in range(20):
            image = numpy.full((120, 160, 3), 60, numpy.uint8)
            if number > 0:
                image[40:70, 7 * number : 7 * number + 24] = (50, 100, 200)
            container.mux(stream.encode(av.VideoFrame.from_ndarray(image, format="bgr24")))
        container.mux(stream.encode())
    return file


@pytest.mark.parametrize("library", READERS)
def test_results_come_with_image_and_time(video: pathlib.Path, library: str) -> None:
    pytest.importorskip(library)
    detector = lightmotion.Detector(width=160, height=120, format="bgr")
    found = list(_video._processed(READERS[library](str(video), "bgr"), lambda _: detector))
    assert [result.milliseconds for result in found] == list(range(0, 800, 40))
    assert [len(result.boxes) for result in found] == [0] + [1] * 19
    assert found[10].image[50, 75].tolist() == [50, 100, 200]
    assert abs(found[10].boxes[0].x - 70) <= 5


@pytest.mark.parametrize("library", READERS)
@pytest.mark.parametrize("format, pixel", [("rgb", [200, 100, 50]), ("bgrx", [50, 100, 200, 255]),
                                           ("rgbx", [200, 100, 50, 255]), ("grey", 124)])  # fmt: skip
def test_images_have_the_format_asked_for(video: pathlib.Path, library: str, format: str, pixel: Any) -> None:
    pytest.importorskip(library)
    image, _ = list(READERS[library](str(video), format))[10]
    assert numpy.abs(image[50, 75].astype(int) - pixel).max() <= 1


def test_a_video_is_named_or_handed_over_open(video: pathlib.Path) -> None:
    expected = [result.boxes for result in lightmotion.detect(video, sensitivity=4)]
    assert any(expected)
    sources: list[Any] = [str(video)]
    if av := pytest.importorskip("av"):
        sources.append(av.open(str(video)))
    try:
        import cv2

        sources.append(cv2.VideoCapture(str(video)))
    except ImportError:
        pass
    for source in sources:
        assert [result.boxes for result in lightmotion.detect(source, sensitivity=4)] == expected
    detector = lightmotion.Detector(width=160, height=120, format="bgr", sensitivity=4)
    assert [result.boxes for result in detector.detect(video)] == expected
    assert detector.info.frames == 20


def test_errors_name_what_is_wrong(video: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    with pytest.raises(OSError, match="none.avi"):
        list(lightmotion.detect("none.avi"))
    with pytest.raises(ValueError, match="format: 'nv12', expected one of grey, bgr"):
        lightmotion.detect(video, format="nv12")
    with pytest.raises(lightmotion.FrameError):
        list(lightmotion.Detector(width=5, height=5, format="bgr").detect(video))
    for library in READERS:
        monkeypatch.setitem(sys.modules, library, None)  # type: ignore[misc]
    with pytest.raises(ImportError, match="requires PyAV .av. or OpenCV .cv2."):
        list(lightmotion.detect(video))


def test_times_rise_where_a_video_states_none_or_the_same() -> None:
    clock = _video._Clock(10)
    assert [clock.time_of(stated) for stated in (None, None, 0, 250, 250, 100, 900)] == [0, 100, 200, 250, 350, 450, 900]
    assert [_video._Clock(0).time_of(None), _video._Clock(None).time_of(-5)] == [0, 0]


def test_the_example_draws_boxes(video: pathlib.Path, tmp_path: pathlib.Path) -> None:
    cv2 = pytest.importorskip("cv2")
    output = tmp_path / "boxes.avi"
    command = [sys.executable, "-B", str(EXAMPLE), str(video), str(output), "--sensitivity", "4"]
    done = subprocess.run(command, env=os.environ, capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout == f"{output}: 20 frames, 19 with motion\n"
    capture = cv2.VideoCapture(str(output))
    images = []
    while (read := capture.read())[0]:
        images.append(read[1])
    assert len(images) == 20
    green = [numpy.count_nonzero((image[:, :, 1] > 180) & (image[:, :, 2] < 120)) for image in images]
    assert min(green[3:]) > 50 and max(green[:1]) == 0


def test_the_code_of_the_documentation_runs(
    video: pathlib.Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture[str]
) -> None:
    pytest.importorskip("cv2")
    of_a_video, of_frames = re.findall(r"^```python\n(.*?)^```", PAGE.read_text(), re.MULTILINE | re.DOTALL)
    monkeypatch.chdir(video.parent)
    exec(of_a_video.replace("street.avi", video.name), {})

    def frames() -> Iterator[tuple[Any, int]]:
        for number in range(9):
            frame = numpy.full((720, 1280, 3), 60, numpy.uint8)
            if number > 0:
                frame[200:400, 100 + 50 * number : 300 + 50 * number] = 200
            yield frame, 40 * number

    exec(of_frames, {"lightmotion": lightmotion, "frames": frames})
    assert len(capsys.readouterr().out.splitlines()) == 8
