"""Tracks: does an object keep its identity?"""
import numpy as np

from .boxes import iou_table, mostly_in, pairs

LEAST = 0.5  # intersection over union


def linked(frames, fps, least=0.3, wait=1.0):
    """Ids for boxes that have none: each box continues the track whose last box, at most `wait` seconds ago, it overlaps
    most. Returns a list of lists of ids."""
    tracks, ids, next_id = {}, [], 0
    for number, boxes in enumerate(frames):
        live = {id: box for id, (box, seen) in tracks.items() if number - seen <= wait * fps}
        keys = list(live)
        table = iou_table([live[key] for key in keys], [box.box for box in boxes])
        given = {column: keys[row] for row, column in pairs(table, least)}
        row_ids = []
        for column, box in enumerate(boxes):
            if column not in given:
                next_id += 1
                given[column] = next_id
            tracks[given[column]] = (box.box, number)
            row_ids.append(given[column])
        ids.append(row_ids)
    return ids


def measure(truth, result):
    """IDF1. Without identities in the truth (masks only) there is none."""
    if not truth.identities:
        return {"idf1": None}
    frames = [[] if number in result.light_alone else boxes for number, boxes in enumerate(result.frames)]
    own = any(box.id is not None for boxes in frames for box in boxes)
    ids = [[box.id for box in boxes] for boxes in frames] if own else linked(frames, truth.fps)
    together, true_total, reported_total = {}, 0, 0
    for number, objects in enumerate(truth.frames):
        if number < truth.first or truth.unknown(number):
            continue
        must = [item for item in objects if item.counts]
        may = [item.box for item in objects if not item.counts]
        reported = [box.box for box in frames[number]]
        table = iou_table([item.box for item in must], reported)
        matched = pairs(table, LEAST)
        taken = {column for _, column in matched}
        for row, column in matched:
            key = must[row].id, ids[number][column]
            together[key] = together.get(key, 0) + 1
        true_total += len(must)
        reported_total += sum(i in taken or not mostly_in(box, may) for i, box in enumerate(reported))
    right = best_sum(together)
    whole = true_total + reported_total
    return {"idf1": 2 * right / whole if true_total else None, "own_ids": own}


def best_sum(together):
    """The largest number of common frames over all one-to-one assignments of true to reported ids."""
    if not together:
        return 0
    from scipy.optimize import linear_sum_assignment
    rows = {id: i for i, id in enumerate(dict.fromkeys(pair[0] for pair in together))}
    columns = {id: i for i, id in enumerate(dict.fromkeys(pair[1] for pair in together))}
    table = np.zeros((len(rows), len(columns)))
    for (true, reported), count in together.items():
        table[rows[true], columns[reported]] = count
    return int(table[linear_sum_assignment(table, maximize=True)].sum())
