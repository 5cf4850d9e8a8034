"""Rooms."""
from . import places
from .casting import crosses, disturbed, goes
from .catalogue import scene
from .effects import Flicker, Screen, Switched
from .stage import Stage


@scene
def office_sits(rng):
    """Somebody comes into an office, sits down, reads for 50 seconds and leaves; 360x240."""
    stage = Stage(rng, places.office(rng), 10, 85)
    seat = rng.uniform(0.5, 0.58)
    actor = goes(stage, [(1.15, 0.8), (seat, 0.76), (1.15, 0.84)], 6, 1.1, pauses={1: 55}, cause="sits down and reads",
                 turns=3.14)
    stops = actor.path.legs[1]
    actor.sits = [(stops[0] + 0.8, stops[1] - 1.5)]
    return stage


@scene
def lamp(rng):
    """A lamp is switched on and off; somebody walks through before and between."""
    stage = Stage(rng, places.office(rng, 480, 360), 12, 60)
    stage.background *= 0.62
    stage.ambient = 0.62
    on, off = 20 + rng.uniform(0, 2), 45 + rng.uniform(0, 2)
    stage.effects.append(Switched(stage.camera, on, off, rng.uniform(0.2, 0.8), 0.2, gain=0.75, reach=0.55))
    disturbed(stage, on, on + 4, "lamp on")
    disturbed(stage, off, off + 4, "lamp off")
    crosses(stage, 6, 0.85, True, 1.2)
    crosses(stage, 31, 0.88, False, 1.2)
    return stage


@scene
def flicker(rng):
    """Lamps on 50 Hz under a rolling shutter: bands of light; somebody walks through."""
    stage = Stage(rng, places.office(rng, 480, 360), 12, 40)
    stage.effects.append(Flicker(depth=rng.uniform(0.03, 0.05), drift=rng.uniform(0.02, 0.1)))
    disturbed(stage, 0, 40, "flicker")
    crosses(stage, 14, 0.86, True, 1.2)
    return stage


@scene
def television(rng):
    """A television runs in a room; somebody walks through. What the screen shows is no object."""
    stage = Stage(rng, places.office(rng, 480, 360), 12, 40)
    stage.effects.append(Screen(rng, 480, 360, 0.07, 0.06, 0.26, 0.26))
    disturbed(stage, 0, 40, "television")
    crosses(stage, 16, 0.86, False, 1.2)
    return stage
