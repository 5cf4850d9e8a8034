"""Systems under test, by name. Each makes a Result of a Video."""
from . import program


def find(name, options):
    """A function from a Video to a Result."""
    if name.split(":")[0] == "lightmotion":
        return program.system(name, options)
    raise SystemExit(f"--systems: unknown system {name!r}; known are {', '.join(known())}")


def known():
    return ["lightmotion", "lightmotion:PRESET"]
