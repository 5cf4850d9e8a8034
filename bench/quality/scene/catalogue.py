"""The scenes by name. A scene is a function from a random generator to a stage."""
import importlib
import zlib

import numpy as np

SCENES = {}
LIKE = {}  # scenes that play in the same place with the same people as another, whose random numbers they use


def scene(function, name=None, like=None):
    name = name or function.__name__.replace("_", "-")
    SCENES[name] = function
    LIKE[name] = like or name
    return function


def modules():
    """Names of the modules that fill the catalogue."""
    return ["daylight", "indoors", "light", "noisy", "weather"]


def names():
    for module in modules():
        importlib.import_module(f"{__package__}.{module}")
    return list(SCENES)


def module_of(name):
    names()
    return SCENES[name.partition("~")[0]].__module__.rpartition(".")[2]


def build(name, seed):
    """The stage of a scene; the same for the same seed. NAME~SECONDS: so long, and nobody comes."""
    names()
    name, _, seconds = name.partition("~")
    stage = SCENES[name](np.random.default_rng([seed, zlib.crc32(LIKE[name].encode())]))
    stage.about = about(name)
    if seconds:
        stage.seconds, stage.actors = float(seconds), []
        for item in stage.disturbances:
            item.end = max(item.end, stage.seconds)
    return stage


def about(name):
    """What happens in a scene, in a sentence."""
    names()
    return " ".join(SCENES[name.partition("~")[0]].__doc__.split())
