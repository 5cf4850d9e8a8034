"""Masks: pixel by pixel."""
import numpy as np

from ..truth import MOTION, OUTSIDE, UNKNOWN


def measure(truth, result):
    right = false = missed = 0
    for number in range(truth.first, len(truth.frames)):
        if truth.unknown(number):
            continue
        label = truth.mask(number)
        known = (label != UNKNOWN) & (label != OUTSIDE)
        got, want = result.masks[number] != 0, label == MOTION
        right += np.count_nonzero(got & want)
        false += np.count_nonzero(got & ~want & known)
        missed += np.count_nonzero(want & ~got)
    from . import f1, ratio
    return {"mask_precision": ratio(right, right + false), "mask_recall": ratio(right, right + missed),
            "mask_f1": f1(right, false, missed)}
