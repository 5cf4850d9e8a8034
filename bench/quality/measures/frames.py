"""Frames: is something reported when something is there?"""


def wanted(truth, number):
    """True: an object is there. False: none is. None: nothing can be said, the frame is left out."""
    if number < truth.first or truth.unknown(number):
        return None
    objects = truth.frames[number]
    if any(item.counts for item in objects):
        return True
    return None if objects else False


def measure(truth, result):
    right = false = missed = empty = light = 0
    for number in range(len(truth.frames)):
        want = wanted(truth, number)
        if want is None:
            continue
        got = bool(result.frames[number]) and number not in result.light_alone
        light += want and bool(result.frames[number]) and number in result.light_alone
        right += want and got
        missed += want and not got
        false += got and not want
        empty += not want
    from . import f1, ratio
    return {"frame_precision": ratio(right, right + false), "frame_recall": ratio(right, right + missed),
            "frame_f1": f1(right, false, missed), "frames_false": false, "frames_empty": empty,
            "frames_true": right + missed, "false_share": ratio(false, empty), "light_alone": ratio(light, right + missed)}
