"""Boxes: is each object in a box of its size?"""
import numpy as np


def iou_table(ours, theirs):
    """Intersection over union of each with each; boxes are x, y, width, height."""
    if not len(ours) or not len(theirs):
        return np.zeros((len(ours), len(theirs)))
    a, b = np.asarray(ours, np.float64)[:, None], np.asarray(theirs, np.float64)[None]
    wide = np.minimum(a[..., 0] + a[..., 2], b[..., 0] + b[..., 2]) - np.maximum(a[..., 0], b[..., 0])
    high = np.minimum(a[..., 1] + a[..., 3], b[..., 1] + b[..., 3]) - np.maximum(a[..., 1], b[..., 1])
    shared = np.clip(wide, 0, None) * np.clip(high, 0, None)
    return shared / np.maximum(a[..., 2] * a[..., 3] + b[..., 2] * b[..., 3] - shared, 1e-12)


def pairs(table, least):
    """Pairs (row, column) with at least that value; as many as possible, then those with the largest sum."""
    good = table >= least
    if not good.any():
        return []
    if good.sum(0).max() == 1 and good.sum(1).max() == 1:
        return list(zip(*np.nonzero(good)))
    from scipy.optimize import linear_sum_assignment
    rows, columns = linear_sum_assignment(np.where(good, 10 + table, 0), maximize=True)
    return [(row, column) for row, column in zip(rows, columns) if good[row, column]]


def union(boxes):
    left, top = min(b[0] for b in boxes), min(b[1] for b in boxes)
    return left, top, max(b[0] + b[2] for b in boxes) - left, max(b[1] + b[3] for b in boxes) - top


def targets(objects, reported, least):
    """What must be in a box, and what may be: objects that touch count as one, unless several of them have a box of their
    own, or one has and no box fits around all."""
    must, may = [], []
    groups = {}
    for item in objects:
        groups.setdefault(item.group, []).append(item)
    for members in groups.values():
        counting = [item.box for item in members if item.counts]
        if not counting:
            may.extend(item.box for item in members)
            continue
        whole = union([item.box for item in members])
        apart = len(pairs(iou_table(counting, reported), least)) if len(members) > 1 else 0
        together = iou_table([whole], reported).max(initial=0) >= least
        if apart == 0 or (apart == 1 and together):
            must.append(whole)
        else:
            must.extend(counting)
            may.extend(item.box for item in members if not item.counts)
    return must, may


def mostly_in(box, areas):
    """Whether at least half of the box is in one of the areas."""
    for area in areas:
        wide = min(box[0] + box[2], area[0] + area[2]) - max(box[0], area[0])
        high = min(box[1] + box[3], area[1] + area[3]) - max(box[1], area[1])
        if wide > 0 and high > 0 and 2 * wide * high >= box[2] * box[3]:
            return True
    return False


def measure(truth, result, least):
    right = false = missed = 0
    for number, objects in enumerate(truth.frames):
        if number < truth.first or truth.unknown(number):
            continue
        reported = [] if number in result.light_alone else [box.box for box in result.frames[number]]
        must, may = targets(objects, reported, least)
        matched = pairs(iou_table(must, reported), least)
        right += len(matched)
        missed += len(must) - len(matched)
        taken = {column for _, column in matched}
        false += sum(i not in taken and not mostly_in(box, may) for i, box in enumerate(reported))
    from . import f1, ratio
    return {"precision": ratio(right, right + false), "recall": ratio(right, right + missed), "f1": f1(right, false, missed)}
