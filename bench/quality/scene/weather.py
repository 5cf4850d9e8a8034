"""Wind, rain, snow, water."""
from . import places
from .casting import crosses, disturbed
from .catalogue import scene
from .effects import Rain, Shake, Snow, Tree, Water
from .stage import Stage


@scene
def tree(rng):
    """A tree sways, in gusts strongly; people walk by in front and behind."""
    stage = Stage(rng, places.path(rng, 480, 360), 12, 60)
    gusts = [(12, 18), (44, 51)]
    stage.effects.append(Tree(rng, stage.camera, rng.uniform(0.25, 0.75), 0.22, 0.55, gusts))
    disturbed(stage, 0, 60, "tree")
    crosses(stage, 25, 0.7, True)
    crosses(stage, 33, 0.63, False)
    return stage


@scene
def rain(rng):
    """Rain; people walk through."""
    stage = Stage(rng, places.street(rng), 12, 50)
    stage.effects.append(Rain(rng, stage.camera, begin=3))
    disturbed(stage, 3, 50, "rain")
    crosses(stage, 14, 0.78, True)
    crosses(stage, 33, 0.72, False)
    return stage


@scene
def snow(rng):
    """Light snow; people walk through."""
    stage = Stage(rng, places.street(rng), 12, 50)
    stage.effects.append(Snow(rng, stage.camera, 90))
    disturbed(stage, 0, 50, "snow")
    crosses(stage, 14, 0.78, True)
    crosses(stage, 33, 0.72, False)
    return stage


@scene
def snow_heavy(rng):
    """Heavy snow; somebody walks through."""
    stage = Stage(rng, places.street(rng), 12, 45)
    stage.effects.append(Snow(rng, stage.camera, 420))
    disturbed(stage, 0, 45, "snow")
    crosses(stage, 18, 0.8, True)
    return stage


@scene
def water(rng):
    """Waves on a canal; people walk along the quay."""
    place = places.shore(rng)
    stage = Stage(rng, place, 12, 50)
    stage.effects.append(Water(rng, stage.camera, place.water))
    disturbed(stage, 0, 50, "water")
    crosses(stage, 14, 0.8, True)
    crosses(stage, 32, 0.86, False)
    return stage


@scene
def shake(rng):
    """The camera shakes in the wind; people walk through."""
    stage = Stage(rng, places.street(rng), 12, 50)
    stage.effects.append(Shake(rng, stage.camera, 2.5))
    disturbed(stage, 0, 50, "shake")
    crosses(stage, 14, 0.78, True)
    crosses(stage, 34, 0.82, False)
    return stage


@scene
def quiet(rng):
    """Nobody comes: leaves move, clouds pass. Every event is false."""
    from .effects import Clouds
    stage = Stage(rng, places.street(rng), 10, 60)
    stage.effects.append(Tree(rng, stage.camera, rng.uniform(0.1, 0.9), 0.16, 0.3, calm=0.15))
    stage.effects.append(Clouds(rng, 0.2, 40))
    disturbed(stage, 0, 60, "leaves and clouds")
    return stage
