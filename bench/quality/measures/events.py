"""Events: one for each time that something is there, from its begin on, and none else."""
from .frames import wanted

GAP = 2.0     # seconds: presence with shorter pauses is one period
MARGIN = 1.0  # seconds around a period in which an event may begin or end


def periods(truth):
    """(begin, end) of the times when objects are there."""
    times = [number / truth.fps for number in range(truth.first, len(truth.frames)) if wanted(truth, number)]
    found = []
    for time in times:
        if found and time - found[-1][1] <= GAP + 1e-9:
            found[-1][1] = time
        else:
            found.append([time, time])
    return [tuple(period) for period in found]


def undecided(truth):
    """Times of frames that are left out."""
    return [number / truth.fps for number in range(len(truth.frames)) if wanted(truth, number) is None]


def _overlap(a, b):
    return min(a[1], b[1]) - max(a[0], b[0])


def measure(truth, result):
    there = periods(truth)
    open_times = undecided(truth)
    step = 1 / truth.fps
    found = [[] for _ in there]
    false, right, merged = [], 0, 0
    false_seconds = 0.0
    for event in result.events:
        if event.kind != "motion":
            continue
        span = (event.begin, event.end + step)
        length = span[1] - span[0]
        inside = sum(max(0.0, _overlap(span, (begin - MARGIN, end + step + MARGIN))) for begin, end in there)
        inside += step * sum(span[0] <= time < span[1] and not any(b - MARGIN <= time <= e + MARGIN for b, e in there)
                             for time in open_times)
        false_seconds += max(0.0, length - inside)
        hit = [i for i, (begin, end) in enumerate(there) if _overlap(span, (begin, end + step)) > 0]
        if inside < length / 2:
            false.append((round(event.begin, 2), round(event.end, 2)))
            continue
        right += bool(hit)
        merged += max(len(hit) - 1, 0)
        for i in hit:
            found[i].append(event.begin)
    fragments = 0
    for (begin, end), events in zip(there, found):
        visits = sum(visit.begin <= end and visit.end >= begin for visit in truth.visits) if truth.visits else 1
        fragments += max(0, len(events) - max(visits, 1))
    delays = [max(0.0, min(events) - begin) for (begin, _), events in zip(there, found) if events]
    complete = sum(bool(events) for events in found)
    return {"events_true": len(there), "events_found": complete, "events_missed": len(there) - complete,
            "events_false": len(false), "events_fragments": fragments, "events_merged": merged,
            "event_delay": sum(delays) / len(delays) if delays else None, "event_false_seconds": false_seconds,
            "false_events": [{"begin": begin, "end": end, "cause": _cause(truth, begin, end)} for begin, end in false]}


def _cause(truth, begin, end):
    """What the truth knows that could have made it."""
    causes = [item.cause for item in truth.disturbances if item.begin <= end and item.end >= begin]
    return ", ".join(dict.fromkeys(causes)) or "nothing known"
