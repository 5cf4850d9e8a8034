"""The module gives what the C interface gives."""
from __future__ import annotations

import json
import pathlib
import subprocess
import sys
from typing import Any

import lightmotion
import numpy
import pytest
from c_interface import CDetector
from scene import CHANNELS, HEIGHT, WIDTH, frames, times

TWO_REGIONS = [
    {"name": name, "points": [{"x": x, "y": -1} for x in sides] + [{"x": x, "y": 2} for x in reversed(sides)]}
    for name, sides in (("left", (-1, 0.5)), ("right\u00e9", (0.5, 2)))
]


@pytest.mark.parametrize("format", CHANNELS)
def test_boxes_texts_and_pictures_are_those_of_the_c_interface(format: str) -> None:
    configuration = {"frmW": WIDTH, "frmH": HEIGHT, "format": format, "sensitivity": 4, "roi": TWO_REGIONS}
    names = [region["name"] for region in TWO_REGIONS]
    detector, plain = lightmotion.Detector(configuration), CDetector(json.dumps(configuration))
    total = 0
    for frame, time in zip(frames(CHANNELS[format]), times()):
        boxes, expected = detector(frame, time), plain(frame, time)
        assert [(*box[:8], box.region_indices) for box in boxes] == expected
        assert all(box.regions == tuple(names[i] for i in box.region_indices) for box in boxes)
        assert detector.json() == plain.json()
        total += len(boxes)
    assert total > 20
    assert numpy.array_equal(detector.foreground(), plain.picture("foreground", (HEIGHT, WIDTH)))
    assert numpy.array_equal(detector.background(), plain.picture("background", frame.shape))
    assert 0 < numpy.count_nonzero(detector.foreground()) < WIDTH * HEIGHT / 2


@pytest.mark.parametrize("channels", [1, 3, 4])
def test_texts_are_those_of_the_entry_points(channels: int) -> None:
    corners = [("-1", "-1"), ("2", "-1"), ("2", "2"), ("-1", "2")]
    region = {"name": "all", "points": [{"x": x, "y": y} for x, y in corners]}
    configuration = {"frmW": str(WIDTH), "frmH": str(HEIGHT), "frmChn": str(channels), "roi": [region]}
    script = pathlib.Path(__file__).with_name("entry_points.py")
    command = [sys.executable, "-B", str(script), json.dumps(configuration)]
    done = subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True)
    expected = [json.loads(line) for line in done.stdout.splitlines()]
    detector = lightmotion.Detector(configuration)
    found = []
    for frame, time in zip(frames(channels), times()):
        detector(frame, time)
        found.append(detector.json())
    assert found == expected
    assert sum(map(bool, found)) > 20


def test_every_way_to_configure_means_the_same(tmp_path: pathlib.Path) -> None:
    settings: dict[str, Any] = {"sensitivity": 5, "extent": "full", "absorb_seconds": 60}
    frame = {"frmW": WIDTH, "frmH": HEIGHT, "format": "grey"}
    file = tmp_path / "configuration.json"
    file.write_text(json.dumps({**frame, **settings}))
    size: dict[str, Any] = {"width": WIDTH, "height": HEIGHT, "format": "grey"}
    detectors = [
        lightmotion.Detector({**frame, **settings}),
        lightmotion.Detector(frame, **settings),
        lightmotion.Detector(json.dumps({**frame, **settings})),
        lightmotion.Detector(json.dumps({**frame, "sensitivity": 1}), **settings),
        lightmotion.Detector(file),
        lightmotion.Detector(settings, **size),
        lightmotion.Detector(**size, **settings),
        lightmotion.Detector.for_frame(next(frames()), **settings),
    ]
    found = [[detector(image, time) for image, time in zip(frames(), times())] for detector in detectors]
    assert all(boxes == found[0] for boxes in found)
    plain = lightmotion.Detector(frame)
    assert [plain(image, time) for image, time in zip(frames(), times())] != found[0]


def test_a_change_keeps_what_is_learned() -> None:
    changed, whole = (lightmotion.Detector(width=WIDTH, height=HEIGHT, format="grey") for _ in range(2))
    sequence = list(zip(frames(), times()))
    for image, time in sequence[:10]:
        assert changed(image, time) == whole(image, time)
    changed.change(roi=TWO_REGIONS[:1])
    assert changed.info.regions == ("left",)
    assert changed.info.frames == 10
    image, time = sequence[10]
    boxes = changed(image, time)
    assert [box.regions for box in boxes] == [("left",)]
    assert len(whole(image, time)) == 2
    changed.change({"roi": None})
    assert changed.info.regions == ("frame",)


def test_after_a_reset_the_results_are_those_of_a_new_detector() -> None:
    detector = lightmotion.Detector(width=WIDTH, height=HEIGHT, format="grey")
    runs = []
    for _ in range(2):
        runs.append([detector(image, time) for image, time in zip(frames(), times())])
        detector.reset()
        assert detector.info.frames == 0
    assert runs[0] == runs[1]
    assert any(runs[0])


def test_a_part_that_is_learned_anew_has_no_foreground() -> None:
    detector = lightmotion.Detector(width=WIDTH, height=HEIGHT, format="grey", absorb_seconds="forever")
    pictures = list(frames())
    for frame, time in zip(pictures, times()):
        detector(frame, time)
    mask = detector.foreground()
    assert mask[45, 70] == 255 and mask[45, 60] == 255
    detector.relearn(65, 20, 20, 60)
    detector.relearn(0, 0, 65, HEIGHT, mask[:, :65])
    assert detector(pictures[-1], 5000) == []
    assert not detector.foreground()[:, :85].any()
    detector.relearn(0, 0, WIDTH, HEIGHT, numpy.zeros_like(mask))
    detector(pictures[0], 5040)
    assert detector.foreground()[45, 70] == 255
    with pytest.raises(ValueError, match=r"5 x 6 pixels at \(96, 2\) do not lie within the frame of 97 x 80"):
        detector.relearn(96, 2, 5, 6)
    with pytest.raises(lightmotion.FrameError, match=r"mask: shape \(6, 5\), expected \(5, 6\)"):
        detector.relearn(0, 0, 6, 5, numpy.zeros((6, 5), numpy.uint8))


def test_info_tells_what_is_known() -> None:
    detector = lightmotion.Detector(width=WIDTH, height=HEIGHT, format="rgb", roi=TWO_REGIONS[:1])
    for image, time in zip(frames(3), times()):
        detector(image, time)
    info = detector.info
    assert info[:5] == (WIDTH, HEIGHT, "rgb", 3, ("left",))
    assert 0.45 < info.watched < 0.55
    assert info.frames == 30
    assert 24.9 < info.frame_rate < 25.1
    assert info.memory > 30 * WIDTH * HEIGHT
    assert repr(detector) == "<Detector 97 x 80 rgb, 30 frames>"
    assert lightmotion.__version__.count(".") == 2
