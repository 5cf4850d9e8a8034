"""Truth and results written by hand."""
from quality.result import Box, Result
from quality.truth import Object, Truth, Visit


def thing(x, y, width, height, id=1, counts=True, group=None):
    return Object(id, x, y, width, height, counts, width * height, id if group is None else group)


def truth(frames, fps=1.0, visits=(), **more):
    """`frames`: lists of objects. One frame per second."""
    return Truth(100, 100, fps, frames=frames, visits=[Visit(*visit, "walks") for visit in visits], **more)


def result(frames, events=(), light=()):
    """`frames`: lists of (x, y, width, height) or (x, y, width, height, id)."""
    return Result([[Box(*box) for box in boxes] for boxes in frames], list(events), light_alone=set(light))
