"""Frames: counted by hand."""
import pytest
from quality.measures import frames
from small import result, thing, truth

BOX = (10, 10, 20, 20)
PERSON = thing(*BOX)
ENTERING = thing(0, 0, 3, 20, counts=False)


def test_precision_recall_and_f1():
    # There: frames 0 to 3. Reported: 1, 2, 3 and 5. So 3 right, 1 false, 1 missed.
    told = frames.measure(truth([[PERSON]] * 4 + [[]] * 4), result([[], [BOX], [BOX], [BOX], [], [BOX], [], []]))
    assert (told["frame_precision"], told["frame_recall"]) == (0.75, 0.75)
    assert told["frame_f1"] == 0.75
    assert told["frames_false"] == 1
    assert told["false_share"] == 0.25  # of 4 empty frames


def test_frames_with_nothing_but_objects_that_need_not_be_found_are_left_out():
    told = frames.measure(truth([[PERSON], [ENTERING], [ENTERING], []]), result([[BOX], [BOX], [], []]))
    assert told["frame_f1"] == 1
    assert told["frames_empty"] == 1


def test_frames_for_learning_are_left_out():
    told = frames.measure(truth([[PERSON], [PERSON], []], first=1), result([[], [BOX], []]))
    assert told["frame_f1"] == 1


def test_unknown_frames_are_left_out():
    told = frames.measure(truth([[], [PERSON]], whole=[True, False]), result([[BOX], [BOX]]))
    assert told["frame_f1"] == 1


def test_a_frame_that_counts_as_light_alone_is_not_reported():
    told = frames.measure(truth([[PERSON]] * 4), result([[BOX]] * 4, light=[2]))
    assert told["frame_recall"] == 0.75
    assert told["light_alone"] == 0.25


def test_nothing_to_find_and_nothing_reported_has_no_f1():
    told = frames.measure(truth([[], []]), result([[], []]))
    assert told["frame_f1"] is None
    assert told["false_share"] == pytest.approx(0)
