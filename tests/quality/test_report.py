"""Tables of records written by hand."""
from quality import report, table


def record(scene="rain", seed=1, **figures):
    base = {"system": "lightmotion", "scene": scene, "seed": seed, "frame_f1": 1.0, "box05_f1": 0.5, "box03_f1": 0.6, "idf1": 0.4,
            "mask_f1": None, "events_true": 2, "events_found": 2, "events_missed": 0, "events_false": 0, "events_fragments": 0,
            "event_delay": 0.5, "false_share": 0.0, "light_alone": 0.0, "box05_precision": 0.5, "box05_recall": 0.5}
    return {**base, **figures}


def cells(text):
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in text.splitlines()[2:]]


def test_differences_name_what_became_worse():
    before = [record(), record("snow", frame_f1=0.4, events_false=3), record("quiet", frame_f1=None), record("lamp")]
    after = [record(), record("snow", frame_f1=0.5, events_false=0, remark="Proposed: a change."),
             record("quiet", frame_f1=None), record("lamp", frame_f1=0.9, idf1=0.5)]
    lines = table.differences(before, after).splitlines()
    assert lines == ["snow 1: frame_f1 0.4 -> 0.5, events_false 3 -> 0. Proposed: a change.",
                     "lamp 1: frame_f1 1 -> 0.9 (worse), idf1 0.4 -> 0.5. ",
                     "4 scenes: 2 equal, 1 better, 1 worse in some figure"]


def test_systems_are_means_over_scenes_the_worst_first():
    better = {"rain": [record(box05_f1=0.9), record(seed=2, box05_f1=0.7)]}
    worse = {"rain": [record(box05_f1=0.3, events_found=1, events_missed=1, events_false=3, events_fragments=2)]}
    rows = cells(report.systems_table({"lightmotion": better, "mog2": worse}))
    assert [row[0] for row in rows] == ["`mog2`", "`lightmotion`"]
    assert [row[1] for row in rows] == ["1", "1, 2"]
    assert rows[0][4:7] == ["1 of 2", "3", "3.00"]  # one found in three events
    assert rows[1][9] == "0.800"


def test_seeds_have_a_row_each():
    scenes = {"rain": [record(box05_f1=0.9), record(seed=2, box05_f1=0.6)], "snow": [record("snow", box05_f1=0.5)]}
    rows = cells(report.seeds_table({"lightmotion": scenes}, ["lightmotion"]))
    assert [(row[1], row[9]) for row in rows] == [("1", "0.700"), ("2", "0.600")]


def test_scenes_with_the_smallest_frame_f1_come_first_and_those_without_last():
    scenes = {"rain": [record()], "quiet": [record("quiet", frame_f1=None)], "snow": [record("snow", frame_f1=0.4)]}
    every = {"lightmotion": scenes, "mog2": {"snow": [record("snow", box05_f1=0.8)]}}
    rows = cells(report.scenes_table(every, "lightmotion", ["mog2"]))
    assert [row[0] for row in rows] == ["`snow`", "`rain`", "`quiet`"]
    assert rows[0][11] == "0.800 (mog2)" and rows[1][11] == "– (–)"


def test_incomplete_systems_are_left_out():
    every = {"lightmotion": {"rain": [record()], "snow": [record("snow")]}, "mog2": {"rain": [record()]}}
    assert list(report.complete(every)) == ["lightmotion"]


def test_the_terminal_table_adds_up_events_and_takes_means_of_the_rest():
    told = table.mean([record(frame_f1=0.5), record(frame_f1=1.0), record(frame_f1=None)])
    assert told["frame_f1"] == 0.75 and told["events_true"] == 6
