"""IDF1: counted by hand."""
import pytest
from quality.measures import tracks
from small import result, thing, truth

A, B = (0, 0, 10, 10), (50, 50, 10, 10)
WALK = [[thing(*A, id=1)]] * 10


def idf1(frames, boxes):
    return tracks.measure(truth(frames), result(boxes))["idf1"]


def test_one_identity_all_the_time():
    assert idf1(WALK, [[(*A, "t")]] * 10) == 1


def test_a_new_identity_in_the_middle():
    # The longer of the two, 6 of 10 frames, is right: 2 x 6 / (10 + 10).
    assert idf1(WALK, [[(*A, "t")]] * 6 + [[(*A, "u")]] * 4) == pytest.approx(0.6)


def test_missed_frames():
    # 2 x 5 / (10 + 5)
    assert idf1(WALK, [[(*A, "t")]] * 5 + [[]] * 5) == pytest.approx(2 / 3)


def test_swapped_identities():
    # Each keeps its identity for 5 of 10 frames: 2 x 10 / (20 + 20).
    both = [[thing(*A, id=1), thing(*B, id=2)]] * 10
    swapped = [[(*A, "t"), (*B, "u")]] * 5 + [[(*A, "u"), (*B, "t")]] * 5
    assert idf1(both, swapped) == 0.5


def test_one_reported_identity_serves_one_object():
    # Object 1 for 4 frames, then object 2 elsewhere for 6, all called "t": 2 x 6 / (10 + 10).
    frames = [[thing(*A, id=1)]] * 4 + [[thing(*B, id=2)]] * 6
    assert idf1(frames, [[(*A, "t")]] * 4 + [[(*B, "t")]] * 6) == pytest.approx(0.6)


def test_false_boxes_count():
    # 2 x 10 / (10 + 20)
    assert idf1(WALK, [[(*A, "t"), (*B, "u")]] * 10) == pytest.approx(2 / 3)


def test_boxes_without_identities_are_linked_by_overlap():
    moving = [[(5 + number, 5, 10, 10)] for number in range(6)]
    ids = tracks.linked(result(moving).frames, 5.0)
    assert ids == [[1]] * 6
    apart = result([[A], [B], [A]]).frames
    assert tracks.linked(apart, 5.0) == [[1], [2], [1]]  # the first is waited for one second, 5 frames
    assert tracks.linked(result([[A]] + [[]] * 6 + [[A]]).frames, 5.0)[-1] == [2]


def test_masks_alone_have_no_identities():
    assert tracks.measure(truth(WALK, identities=False), result([[A]] * 10))["idf1"] is None
