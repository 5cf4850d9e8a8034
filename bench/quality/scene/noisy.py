"""The same street under noise and compression."""
from . import places
from .casting import crosses
from .catalogue import SCENES
from .stage import Stage


def _street(rng, width=480, height=360):
    stage = Stage(rng, places.street(rng, width, height, above=5.5), 10, 40)
    crosses(stage, 9, rng.uniform(0.72, 0.85), True)
    crosses(stage, 25, rng.uniform(0.68, 0.78), False)
    return stage


def _noise(sigma):
    def make(rng):
        stage = _street(rng)
        stage.sigma, stage.codec = sigma, "lossless"
        return stage
    make.__doc__ = f"Two people on a street, noise of {sigma:g} grey levels, not compressed."
    return make


def _compressed(codec, text):
    def make(rng):
        stage = _street(rng, 640, 480)
        stage.sigma, stage.codec = 2.0, codec
        return stage
    make.__doc__ = f"Two people on a street, {text}."
    return make


for _sigma in (0.5, 2, 4, 6, 8):
    SCENES[f"noise-{_sigma:g}"] = _noise(_sigma)
for _name, _codec, _text in (("low", "h264-1500k", "H.264 at 1500 kbit/s"), ("middle", "h264-400k", "H.264 at 400 kbit/s"),
                             ("high", "h264-120k", "H.264 at 120 kbit/s"), ("mjpeg", "mjpeg-8", "Motion JPEG")):
    SCENES[f"compression-{_name}"] = _compressed(_codec, _text)
