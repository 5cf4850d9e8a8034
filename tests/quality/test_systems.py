"""What systems under test print, read back."""
import json

from quality.systems import motioncells, program
from small import truth


def test_result_lines_and_events():
    scene = truth([[]] * 10)
    line = {"frame": 2, "time": 2.0, "boxes": [{"x": 0.1, "y": 0.2, "width": 0.3, "height": 0.4, "regions": ["frame"], "id": 7}]}
    other = {"frame": 6, "time": 6.0, "boxes": [{"x": 0, "y": 0, "width": 1, "height": 1}]}
    note = {"frame": 7, "time": 7.0, "note": "a gap"}
    events = {"events": [{"kind": "motion", "start": 2.0, "end": 4.0, "first_frame": 2, "last_frame": 4},
                         {"kind": "light", "start": 6.0, "end": 6.0, "first_frame": 6, "last_frame": 6}]}
    result = program.read(scene, "\n".join(map(json.dumps, (line, other, note))), events)
    (box,) = result.frames[2]
    assert [round(value, 6) for value in box.box] == [10, 20, 30, 40] and box.id == 7
    assert result.light_alone == {6}
    assert [(event.begin, event.end, event.kind) for event in result.events] == [(2, 4, "motion"), (6, 6, "light")]


def test_boxes_of_a_lighting_change_are_no_boxes():
    scene = truth([[]] * 3)
    line = json.dumps({"frame": 1, "boxes": [{"x": 0, "y": 0, "width": 1, "height": 1, "kind": "light"}]})
    assert program.read(scene, line, {"events": []}).frames == [[], [], []]


def test_cells_become_boxes():
    scene = truth([[]] * 3)  # 100x100, one frame per second
    text = ('Got message #1 from element "motioncells0" (element): motion, motion_cells_indices=(string)"7:9\\,6:9\\,0:0", '
            'motion_begin=(guint64)1000000000;\n'
            'Got message #2 from element "motioncells0" (element): motion, motion_cells_indices=(string)2:3, '
            'motion=(guint64)2000000000;\n')
    frames = motioncells.read(scene, text, 10).frames
    assert [box.box for box in frames[1]] == [(0, 0, 10, 10), (90, 60, 10, 20)]
    assert [box.box for box in frames[2]] == [(30, 20, 10, 10)]
