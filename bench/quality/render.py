"""Scenes as video files: rendered once, then taken from the cache."""
import ast
import functools
import hashlib
import os
from pathlib import Path

from .encode import encoder
from .scene import catalogue
from .scene.sensor import Sensor
from .truth import Truth

ROOT = Path(__file__).resolve().parent.parent.parent


def cache_folder():
    """Below build/, or where LIGHTMOTION_SCENES says, so that several working copies can share it."""
    return Path(os.environ.get("LIGHTMOTION_SCENES") or ROOT / "build" / "quality" / "scenes")


@functools.lru_cache
def _version(name):
    """A digest of the code that makes a scene: what scenes share, and the module that has the scene. Comments and the
    layout of the code do not matter."""
    here = Path(__file__).parent
    others = {module for module in catalogue.modules() if module != catalogue.module_of(name)}
    sources = [path for path in sorted((here / "scene").glob("*.py")) if path.stem not in others]
    sources += [here / "encode.py", here / "truth.py"]
    code = "".join(ast.dump(ast.parse(path.read_text())) for path in sources)
    return hashlib.sha256(code.encode()).hexdigest()[:10]


class Video:
    """What a system gets: a video file with its truth."""

    def __init__(self, name, seed, path, truth):
        self.name, self.seed, self.source, self.truth = name, seed, Path(path), truth


def rendered(name, seed):
    """The scene as a Video; renders it when it is not in the cache."""
    folder = cache_folder() / _version(name)
    folder.mkdir(parents=True, exist_ok=True)
    path, truth_path = folder / f"{name}-{seed}.mkv", folder / f"{name}-{seed}.truth"
    if not (path.exists() and truth_path.exists()):
        _render(name, seed, path, truth_path)
    return Video(name, seed, path, Truth.load(truth_path))


def _render(name, seed, path, truth_path):
    stage = catalogue.build(name, seed)
    part, truth_part = (where.with_name(f".{where.name}.{os.getpid()}.part") for where in (path, truth_path))
    write(stage, part).save(truth_part)
    os.replace(truth_part, truth_path)
    os.replace(part, path)


def write(stage, path):
    """Renders a stage to a video file and returns its truth."""
    camera = stage.camera
    sensor = Sensor(stage.rng, (camera.height, camera.width), stage.sigma, blotches=stage.blotches)
    if stage.exposure:
        sensor.exposure = stage.exposure
    truth = stage.truth()
    process = encoder(stage.codec, camera.width, camera.height, stage.fps, path)
    for time, picture in stage.frames(truth):
        process.stdin.write(sensor.take(picture, time).data)
    process.stdin.close()
    if process.wait() != 0:
        raise RuntimeError(f"ffmpeg could not encode {path}")
    return truth
