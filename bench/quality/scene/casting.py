"""Short ways to put people and vehicles into a stage."""
import numpy as np

from . import vehicle, walker
from .actors import Actor, Path
from ..truth import Disturbance


def crosses(stage, start, down, right=True, speed=None, cause="walks through", kind="person", margin=0.13, slope=0.0):
    """Somebody crosses the picture at a row (share of the height)."""
    rng = stage.rng
    ends = [(-margin, down - slope / 2), (1 + margin, down + slope / 2)]
    if not right:
        ends.reverse()
    return goes(stage, ends, start, speed or rng.uniform(1.1, 1.6), cause=cause, kind=kind)


def goes(stage, points, start, speed=1.35, pauses=None, cause="walks through", kind="person", **more):
    """Somebody goes through points of the picture (shares of it; the ground there)."""
    path = Path([stage.camera.at(*point) for point in points], start, speed, pauses)
    return stage.add(Actor(kind, walker.Looks.draw(stage.rng), path, cause, **more))


def drives(stage, points, start, speed=8.0, pauses=None, cause="drives through", kind=None, arrived=True, lamps=False):
    """A vehicle goes through points of the ground: world coordinates."""
    path = Path(points, start, speed, pauses, soft=True)
    return stage.add(Actor("vehicle", vehicle.Looks.draw(stage.rng, kind, lamps), path, cause, arrived))


def passes(stage, start, down, right=True, speed=8.0, **more):
    """A vehicle crosses the picture along x."""
    camera = stage.camera
    depth = camera.at(0.5, down)[1]
    ends = [np.array([camera.at(-0.02, down)[0] - 5, depth]), np.array([camera.at(1.02, down)[0] + 5, depth])]
    if not right:
        ends.reverse()
    return drives(stage, ends, start, speed, **more)


def disturbed(stage, begin, end, cause):
    stage.disturbances.append(Disturbance(begin, end, cause))
