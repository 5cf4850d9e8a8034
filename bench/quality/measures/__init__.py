"""The measures. docs/quality.md defines each in words, with its source."""
from . import boxes, events, frames, masks, tracks


def ratio(part, whole):
    return part / whole if whole else None


def f1(right, false, missed):
    """F1 of counts; None when there was nothing to find and nothing was reported."""
    return ratio(2 * right, 2 * right + false + missed)


def measure(truth, result):
    """Every figure of a result, as a flat dictionary."""
    out = frames.measure(truth, result)
    out.update(events.measure(truth, result))
    for name, least in (("03", 0.3), ("05", 0.5)):
        for key, value in boxes.measure(truth, result, least).items():
            out[f"box{name}_{key}"] = value
    out.update(tracks.measure(truth, result))
    if result.masks is not None:
        out.update(masks.measure(truth, result))
    out["seconds"] = result.seconds
    return out
