"""Systems under test, by name. Each makes a Result of a Video."""
from . import library, motioncells, program, subtractors


def find(name, options):
    """A function from a Video to a Result."""
    kind = name.split(":")[0]
    if kind == "lightmotion":
        return program.system(name, options)
    if kind == "library":
        return library.system(name, options)
    if kind in subtractors.GRIDS and name in (kind, f"{kind}:best"):
        return subtractors.system(name)
    if name in ("motioncells", "motioncells:best"):
        return motioncells.system(name)
    raise SystemExit(f"--systems: unknown system {name!r}; there are {', '.join(known())}")


def known():
    peers = [*subtractors.GRIDS, "motioncells"]
    own = ["lightmotion", "lightmotion:PRESET", "lightmotion:tuned", "library", "library:PRESET"]
    return own + [name + which for name in peers for which in ("", ":best")]
