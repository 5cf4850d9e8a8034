"""The generator: what its truth says is in its pictures, and nothing else is."""
import cv2
import numpy as np
import pytest
from quality.scene import catalogue, places
from quality.scene.casting import crosses, drives, passes
from quality.scene.stage import Stage
from quality.truth import MOTION, SHADOW, STATIC, UNKNOWN, Truth


def street(seed=1, seconds=6.0, fps=4):
    return Stage(np.random.default_rng(seed), places.street(np.random.default_rng(seed), 160, 120, above=5.5), fps, seconds)


def played(stage):
    truth = stage.truth()
    return [picture for _, picture in stage.frames(truth)], truth


def test_pictures_differ_from_the_background_where_the_truth_says_so():
    stage = street()
    crosses(stage, 0.5, 0.8, True, 3.0)
    pictures, truth = played(stage)
    there = 0
    for number, picture in enumerate(pictures):
        label = truth.mask(number)
        change = np.abs(picture - stage.background).max(2)
        assert change[label == STATIC].max() < 15  # soft edges reach a little further
        if np.count_nonzero(label == MOTION) > 50:
            there += 1
            assert (change > 3)[label == MOTION].mean() > 0.85
    assert there > 5


def test_the_box_is_that_of_the_mask():
    stage = street()
    crosses(stage, 0.5, 0.8, True, 3.0)
    _, truth = played(stage)
    for number, objects in enumerate(truth.frames):
        for item in objects:
            if item.counts:
                assert item.box == cv2.boundingRect((truth.mask(number) == MOTION).view(np.uint8))


def test_an_object_counts_when_two_fifths_of_it_are_visible():
    stage = street()
    crosses(stage, 0.5, 0.8, True, 3.0)
    _, truth = played(stage)
    largest = max(item.pixels for objects in truth.frames for item in objects)
    for objects in truth.frames:
        for item in objects:
            if item.pixels < 0.25 * largest:
                assert not item.counts
            if item.pixels > 0.75 * largest:
                assert item.counts


def test_a_hidden_object_is_not_there():
    stage = street()
    stage.hidden.append((np.ones((120, 160), np.float32), 1000))  # a wall before everything
    crosses(stage, 0.5, 0.8, True, 3.0)
    _, truth = played(stage)
    assert all(not objects for objects in truth.frames)


def test_what_was_there_from_the_start_counts_from_its_first_movement_and_its_place_never():
    stage = street(seconds=10.0)
    at = stage.camera.at(0.5, 0.75)
    drives(stage, [at, at + (25, 0)], 0, 6.0, pauses={0: 4.0}, arrived=False)
    _, truth = played(stage)
    assert all(not objects for objects in truth.frames[:16])
    assert truth.frames[18][0].counts
    assert truth.visits[0].begin == pytest.approx(4.0, abs=0.3)
    assert not truth.frames[-1] and not (truth.mask(39) == MOTION).any()


def test_what_stands_still_counts_for_a_minute():
    stage = street(seconds=70.0, fps=1)
    at = stage.camera.at(0.5, 0.75)
    drives(stage, [at, at + (1, 0)], 0, 6.0, pauses={0: 100})
    _, truth = played(stage)
    assert [objects[0].counts for objects in truth.frames] == [True] * 61 + [False] * 9


def test_shadows_are_no_objects():
    stage = street()
    stage.shadow = (0.8, 0.1, 0.5)
    crosses(stage, 0.5, 0.75, True, 3.0)
    pictures, truth = played(stage)
    number = max(range(len(pictures)), key=lambda i: np.count_nonzero(truth.mask(i) == SHADOW))
    shadow = truth.mask(number) == SHADOW
    assert shadow.sum() > 30
    assert pictures[number][shadow].mean() < 0.94 * stage.background[shadow].mean()


def test_touching_objects_share_a_group():
    stage = street()
    first = crosses(stage, 0.5, 0.8, True, 3.0)
    crosses(stage, 0.6, 0.8, True, 3.0)
    passes(stage, 20, 0.5)
    _, truth = played(stage)
    groups = {tuple(sorted(item.group for item in objects)) for objects in truth.frames if len(objects) == 2}
    assert any(len(set(group)) == 1 for group in groups)
    assert first.id == 1


def test_the_same_seed_gives_the_same_pictures_another_one_others():
    def first(seed):
        stage = catalogue.build("path", seed)
        stage.seconds = 0.2
        return played(stage)[0][-1]
    assert np.array_equal(first(1), first(1))
    assert not np.array_equal(first(1), first(2))


def test_every_scene_has_a_sentence_and_an_exact_length():
    for name in catalogue.names():
        assert catalogue.about(name).endswith(".") or catalogue.about(name).endswith("360x240.")


def test_truth_is_saved_and_loaded(tmp_path):
    stage = street()
    crosses(stage, 0.5, 0.8, True, 3.0)
    _, truth = played(stage)
    truth.save(tmp_path / "truth")
    again = Truth.load(tmp_path / "truth")
    assert again.frames == truth.frames and again.visits == truth.visits
    assert all(np.array_equal(again.mask(i), truth.mask(i)) for i in range(len(truth.masks)))
