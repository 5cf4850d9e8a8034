"""Events: worked out by hand, one frame per second unless stated."""
import pytest
from quality.measures import events
from quality.result import Event, events_of
from small import result, thing, truth

PERSON = thing(10, 10, 20, 20)
BOX = (10, 10, 20, 20)


def there(*seconds, of=40, **more):
    """A truth with the person in these frames."""
    return truth([[PERSON] if number in seconds else [] for number in range(of)], **more)


def reported(*events_, of=40):
    return result([[]] * of, events_)


def test_periods_join_over_pauses_of_two_seconds():
    # 5, 6, 8 belong together (8 - 6 is 2); 11 is a period of its own.
    assert events.periods(there(5, 6, 8, 11)) == [(5, 8), (11, 11)]


def test_found_with_the_delay_of_its_begin():
    told = events.measure(there(*range(10, 21)), reported(Event(12, 20)))
    assert (told["events_true"], told["events_found"], told["events_missed"]) == (1, 1, 0)
    assert told["events_false"] == told["events_fragments"] == 0
    assert told["event_delay"] == 2


def test_an_early_begin_is_no_negative_delay():
    assert events.measure(there(*range(10, 21)), reported(Event(9, 20)))["event_delay"] == 0


def test_missed_and_false():
    told = events.measure(there(*range(10, 14)), reported(Event(25, 30)))
    assert (told["events_found"], told["events_missed"], told["events_false"]) == (0, 1, 1)
    assert told["event_false_seconds"] == 6  # its frames 25 to 30 last 6 seconds


def test_a_lighting_event_is_no_event():
    told = events.measure(there(*range(10, 14)), reported(Event(10, 14, "light"), Event(25, 30, "light")))
    assert (told["events_found"], told["events_false"]) == (0, 0)


def test_one_visit_in_three_events_has_two_fragments():
    visit = there(*range(10, 31), visits=[(1, 10, 30)])
    told = events.measure(visit, reported(Event(10, 14), Event(18, 20), Event(27, 30)))
    assert (told["events_found"], told["events_fragments"]) == (1, 2)


def test_one_event_for_each_of_two_visitors_is_no_fragment():
    both = there(*range(10, 31), visits=[(1, 10, 30), (2, 15, 20)])
    told = events.measure(both, reported(Event(10, 30), Event(15, 20)))
    assert told["events_fragments"] == 0


def test_an_event_is_false_when_less_than_half_of_it_is_true():
    # 10 to 13 with a second before and after is 9 to 15: 6 seconds. 9 to 20 lasts 12 frames, half of it true.
    assert events.measure(there(10, 11, 12, 13), reported(Event(9, 20)))["events_false"] == 0
    told = events.measure(there(10, 11, 12, 13), reported(Event(9, 21)))
    assert (told["events_false"], told["events_found"]) == (1, 0)


def test_one_event_over_two_periods_merges_them():
    told = events.measure(there(*range(10, 15), *range(20, 26)), reported(Event(10, 25)))
    assert (told["events_found"], told["events_merged"]) == (2, 1)


def test_times_that_are_left_out_are_neither_true_nor_false():
    entering = thing(0, 0, 3, 20, counts=False)
    partly = truth([[entering] if 10 <= number < 20 else [] for number in range(40)])
    told = events.measure(partly, reported(Event(10, 19)))
    assert (told["events_true"], told["events_false"]) == (0, 0)


def test_a_false_event_names_what_could_have_made_it():
    from quality.truth import Disturbance
    lamp = there(of=40, disturbances=[Disturbance(24, 28, "lamp"), Disturbance(35, 36, "rain")])
    told = events.measure(lamp, reported(Event(25, 30)))
    assert told["false_events"] == [{"begin": 25, "end": 30, "cause": "lamp"}]


def test_events_of_boxes_follow_the_rule_of_the_program():
    boxes = [[BOX] if number in (3, 4, 6, 9, 20) else [] for number in range(30)]
    # Gap 2 s: 3 to 6; 9 is 3 s later and, like 20, too short.
    assert [(event.begin, event.end) for event in events_of(boxes, 1.0)] == [(3, 6)]
    assert [(event.begin, event.end) for event in events_of(boxes, 1.0, min_event=0)] == [(3, 6), (9, 9), (20, 20)]
    assert [(event.begin, event.end) for event in events_of(boxes, 10.0, min_event=0.5)] == [(0.3, 2.0)]


@pytest.mark.parametrize("count", [0, 1])
def test_without_objects_every_event_is_false(count):
    assert events.measure(there(), reported(*[Event(5, 8)] * count))["events_false"] == count
