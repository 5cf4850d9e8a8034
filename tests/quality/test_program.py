"""The program on a small scene, against figures that follow from the scene's truth."""
import os
from types import SimpleNamespace

import numpy as np
import pytest
from quality import measures, render
from quality.scene import places
from quality.scene.casting import crosses, disturbed
from quality.scene.effects import Switched
from quality.scene.stage import Stage
from quality.systems import program

pytestmark = pytest.mark.skipif("LIGHTMOTION_PROGRAM" not in os.environ, reason="LIGHTMOTION_PROGRAM is not set")


@pytest.fixture(scope="module")
def told(tmp_path_factory):
    """Somebody crosses a street of 480x360, twice, each time for two to four seconds; nothing else happens."""
    rng = np.random.default_rng(11)
    stage = Stage(rng, places.street(rng, 480, 360, above=5), 8, 26)
    stage.codec = "lossless"
    crosses(stage, 4, 0.8, True, 2.5)
    crosses(stage, 15, 0.78, False, 2.5)
    return measured(stage, tmp_path_factory.mktemp("street") / "scene.mkv")


def measured(stage, path, arguments=None):
    truth = render.write(stage, path)
    options = SimpleNamespace(program=os.environ["LIGHTMOTION_PROGRAM"], arguments=arguments)
    run = program.system("lightmotion", options)
    return truth, measures.measure(truth, run(render.Video("scene", 0, path, truth)))


def test_each_visit_is_one_event(told):
    truth, figures = told
    assert len(truth.visits) == 2  # as the scene says
    assert (figures["events_true"], figures["events_found"]) == (2, 2)
    assert figures["events_false"] == figures["events_fragments"] == figures["events_merged"] == 0


def test_events_begin_with_their_visit(told):
    assert told[1]["event_delay"] <= 2 / 8  # two frames


def test_nearly_every_frame_with_somebody_has_a_box_and_no_other(told):
    truth, figures = told
    # People are there for so many frames that three may be missed at each of the four ends.
    assert figures["frames_true"] >= 40
    assert figures["frame_recall"] >= 1 - 12 / figures["frames_true"]
    assert figures["frames_false"] <= 4


def test_boxes_are_where_people_are(told):
    assert told[1]["box03_recall"] >= 0.8 and told[1]["box03_precision"] >= 0.8


def test_tuned_without_marks_is_the_same_where_nothing_is_wrong(tmp_path):
    rng = np.random.default_rng(11)
    stage = Stage(rng, places.street(rng, 480, 360, above=5), 8, 14)
    stage.codec = "lossless"
    crosses(stage, 4, 0.8, True, 2.5)
    truth = render.write(stage, tmp_path / "scene.mkv")
    video = render.Video("scene", 0, tmp_path / "scene.mkv", truth)
    options = SimpleNamespace(program=os.environ["LIGHTMOTION_PROGRAM"], arguments=None)
    start, tuned = (program.system(name, options)(video) for name in ("lightmotion", "lightmotion:tuned"))
    assert start.frames == tuned.frames and any(start.frames)
    assert tuned.remark.startswith("The starting configuration is kept")


def test_a_lamp_is_no_motion(tmp_path):
    rng = np.random.default_rng(12)
    stage = Stage(rng, places.office(rng, 480, 360), 8, 20)
    stage.codec = "lossless"
    stage.background *= 0.6
    stage.effects.append(Switched(stage.camera, 8, 100, 0.5, 0.2))
    disturbed(stage, 8, 12, "lamp")
    truth, figures = measured(stage, tmp_path / "lamp.mkv")
    assert figures["events_true"] == 0
    assert figures["events_false"] == 0
