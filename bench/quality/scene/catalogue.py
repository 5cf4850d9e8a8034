"""The scenes by name. A scene is a function from a random generator to a stage."""
import importlib
import zlib

import numpy as np

SCENES = {}


def scene(function):
    SCENES[function.__name__.replace("_", "-")] = function
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
    return SCENES[name].__module__.rpartition(".")[2]


def build(name, seed):
    """The stage of a scene; the same for the same seed."""
    names()
    stage = SCENES[name](np.random.default_rng([seed, zlib.crc32(name.encode())]))
    stage.about = about(name)
    return stage


def about(name):
    """What happens in a scene, in a sentence."""
    names()
    return " ".join(SCENES[name].__doc__.split())
