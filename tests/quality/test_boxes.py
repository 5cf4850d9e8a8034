"""Boxes: areas worked out by hand."""
import pytest
from quality.measures import boxes
from small import result, thing, truth


def test_intersection_over_union():
    # 10x10 each, shifted by 5: 50 shared of 150.
    assert boxes.iou_table([(0, 0, 10, 10)], [(5, 0, 10, 10)])[0, 0] == pytest.approx(1 / 3)
    assert boxes.iou_table([(0, 0, 10, 10)], [(10, 0, 10, 10)])[0, 0] == 0
    assert boxes.iou_table([], [(0, 0, 1, 1)]).shape == (0, 1)


def test_at_each_threshold():
    # IoU 1/3: right at 0.3, wrong at 0.5.
    scene, told = truth([[thing(0, 0, 10, 10)]]), result([[(5, 0, 10, 10)]])
    assert boxes.measure(scene, told, 0.3) == {"precision": 1, "recall": 1, "f1": 1}
    assert boxes.measure(scene, told, 0.5) == {"precision": 0, "recall": 0, "f1": 0}


def test_each_object_has_one_box():
    # Two boxes on one object: one right, one false.
    told = boxes.measure(truth([[thing(0, 0, 10, 10)]]), result([[(0, 0, 10, 10), (0, 0, 10, 9)]]), 0.5)
    assert (told["precision"], told["recall"]) == (0.5, 1)


def test_as_many_pairs_as_possible():
    # The first box fits both objects, the second only the first: greedy choice of the best pair would lose one.
    table = boxes.iou_table([(0, 0, 10, 10), (4, 0, 10, 10)], [(1, 0, 10, 10), (-2, 0, 10, 10)])
    assert sorted(boxes.pairs(table, 0.5)) == [(0, 1), (1, 0)]


def test_objects_that_touch_may_have_one_box_or_one_each():
    pair = [thing(0, 0, 10, 20, 1, group=1), thing(10, 0, 10, 20, 2, group=1)]
    one = boxes.measure(truth([pair]), result([[(0, 0, 20, 20)]]), 0.5)
    each = boxes.measure(truth([pair]), result([[(0, 0, 10, 20), (10, 0, 10, 20)]]), 0.5)
    assert one == each == {"precision": 1, "recall": 1, "f1": 1}
    # One of the two alone: the other is missed. None: one is missed.
    assert boxes.measure(truth([pair]), result([[(0, 0, 9, 20)]]), 0.6)["recall"] == 0.5
    assert boxes.measure(truth([pair]), result([[]]), 0.5)["recall"] == 0


def test_a_box_on_what_need_not_be_found_is_not_false():
    scene = truth([[thing(0, 0, 4, 20, counts=False)]])
    assert boxes.measure(scene, result([[(0, 0, 6, 20)]]), 0.5)["precision"] is None  # 80 of 120 pixels in it
    assert boxes.measure(scene, result([[(0, 0, 9, 20)]]), 0.5)["precision"] == 0     # 80 of 180


def test_precision_recall_and_f1_over_frames():
    person = thing(0, 0, 10, 10)
    # Right, missed, false: 2 x 1 / (2 x 1 + 1 + 1).
    told = boxes.measure(truth([[person], [person], []]), result([[(0, 0, 10, 10)], [], [(50, 50, 5, 5)]]), 0.5)
    assert told == {"precision": 0.5, "recall": 0.5, "f1": 0.5}
