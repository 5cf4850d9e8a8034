"""Annotated footage: a folder written by hand."""
import cv2
import numpy as np
import pytest
from quality import folder, measures
from quality.measures import boxes
from quality.result import Box, Result


@pytest.fixture
def footage(tmp_path, monkeypatch):
    """Six frames of 64x48: truth from the second to the fifth, an object of 10x12 in the third and fourth."""
    monkeypatch.setenv("LIGHTMOTION_SCENES", str(tmp_path / "cache"))
    here = tmp_path / "clip"
    (here / "input").mkdir(parents=True)
    (here / "groundtruth").mkdir()
    for number in range(1, 7):
        cv2.imwrite(str(here / f"input/in{number:06d}.jpg"), np.full((48, 64, 3), 20 * number, np.uint8))
        label = np.zeros((48, 64), np.uint8)
        if number in (3, 4):
            label[9:23, 19:31] = 170  # a band of one pixel
            label[10:22, 20:30] = 255
            label[40:44, 40:50] = 50
        cv2.imwrite(str(here / f"groundtruth/gt{number:06d}.png"), label)
    (here / "temporalROI.txt").write_text("2 5\n")
    region = np.full((48, 64), 255, np.uint8)
    region[:, :10] = 0
    cv2.imwrite(str(here / "ROI.bmp"), region)
    return here


def test_frames_boxes_and_labels(footage):
    truth = folder.read(footage).truth
    assert (truth.width, truth.height, truth.first, len(truth.frames)) == (64, 48, 1, 6)
    assert [len(objects) for objects in truth.frames] == [0, 0, 1, 1, 0, 0]
    assert truth.frames[2][0].box == (20, 10, 10, 12)
    assert truth.whole == [True, False, False, False, False, True]
    assert (truth.mask(2)[:, :10] == 85).all() and truth.mask(2)[9, 19] == 170 and truth.mask(2)[41, 41] == 50


def test_measured(footage):
    truth = folder.read(footage).truth
    told = [[], [], [Box(20, 10, 10, 12)], [], [Box(40, 30, 5, 5)], [Box(0, 0, 5, 5)]]
    figures = measures.measure(truth, Result(told, []))
    # Frames 2 to 5: one found, one missed, one false.
    assert figures["frame_f1"] == 0.5
    assert boxes.measure(truth, Result(told, []), 0.5)["f1"] == 0.5
    assert figures["idf1"] is None


def test_the_video_has_the_frames(footage):
    capture = cv2.VideoCapture(str(folder.read(footage).source))
    levels = []
    while (read := capture.read())[0]:
        levels.append(round(float(read[1].mean())))
    assert levels == [20, 40, 60, 80, 100, 120]


def test_small_parts_and_mostly_unknown_ones_need_not_be_found():
    label = np.zeros((48, 64), np.uint8)
    label[2:6, 2:8] = 255       # 24 pixels
    label[20:40, 20:40] = 170
    label[20:25, 20:40] = 255   # 100 of 400
    assert [item.counts for item in folder.objects(label)] == [False, False]


def test_a_wrong_folder_is_refused(tmp_path):
    with pytest.raises(SystemExit, match="in000001.jpg"):
        folder.read(tmp_path)
