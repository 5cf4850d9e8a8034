"""Light that changes, and night."""
import numpy as np

from . import places
from .casting import crosses, disturbed, passes
from .catalogue import scene
from .effects import Beam, Clouds, Headlights
from .stage import Stage


@scene
def clouds(rng):
    """Shadows of clouds drift over a street; people walk through."""
    stage = Stage(rng, places.street(rng), 10, 60)
    stage.effects.append(Clouds(rng))
    disturbed(stage, 0, 60, "clouds")
    crosses(stage, 14, 0.78, True)
    crosses(stage, 38, 0.83, False)
    return stage


@scene
def exposure_jumps(rng):
    """The exposure answers to a white lorry that fills much of the picture."""
    stage = Stage(rng, places.street(rng, above=5), 12, 45)
    mean = float(stage.background.mean())
    memory = [1.0, 0.0]

    def exposure(time, picture):
        wanted = mean / max(float(picture[::8, ::8].mean()), 1.0)
        memory[0] += (np.clip(wanted, 0.6, 1.5) - memory[0]) * min(1.0, (time - memory[1]) / 0.5)
        memory[1] = time
        return memory[0]

    stage.exposure = exposure
    crosses(stage, 5, 0.78, True)
    lorry = passes(stage, 22, 0.6, True, 6.0, kind="lorry")
    lorry.looks.paint = (235, 235, 235)
    crosses(stage, 32, 0.74, False, 1.5)
    disturbed(stage, 21, 32, "exposure")
    return stage


def _night(rng, fps, seconds, ambient=0.22, **more):
    place = places.dark(places.street(rng, **more), rng, ambient)
    stage = Stage(rng, place, fps, seconds)
    stage.ambient = ambient * 1.6
    stage.sigma = 3.0
    return stage


@scene
def night(rng):
    """A street at night with the noise of a high gain; people in dark clothes."""
    stage = _night(rng, 10, 50)
    crosses(stage, 6, 0.78, True)
    crosses(stage, 27, 0.72, False)
    return stage


@scene
def headlights(rng):
    """At night beams of cars out of sight sweep over the picture; one car drives through it."""
    stage = _night(rng, 12, 60)
    spans = [(8, 10.5, 0.3, 1), (17, 19, 0.5, -1), (44, 46.5, 0.35, 1)]
    stage.effects.append(Headlights(spans))
    for begin, end, *_ in spans:
        disturbed(stage, begin, end, "beam of headlights")
    car = passes(stage, 28, 0.5, True, 7.0, lamps=True)
    stage.effects.append(Beam(stage.camera, car))
    disturbed(stage, car.path.begin, car.path.end, "beam of headlights")
    return stage
