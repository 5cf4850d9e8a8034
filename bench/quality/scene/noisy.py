"""The same street under noise and compression."""
from . import places
from .casting import crosses
from .catalogue import scene
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


def _blotchy(rng):
    """Two people on a street, noise of 8 grey levels in blotches of some pixels, as cameras leave it that smooth it."""
    stage = _street(rng)
    stage.sigma, stage.codec, stage.blotches = 8, "h264-18", 1.5
    return stage


for _sigma in (0.5, 2, 4, 6, 8, 16):
    scene(_noise(_sigma), f"noise-{_sigma:g}", "noise")
scene(_blotchy, "noise-blotchy", "noise")
for _name, _codec, _text in (("low", "h264-1500k", "H.264 at 1500 kbit/s"), ("middle", "h264-400k", "H.264 at 400 kbit/s"),
                             ("high", "h264-120k", "H.264 at 120 kbit/s"), ("mjpeg", "mjpeg-8", "Motion JPEG")):
    scene(_compressed(_codec, _text), f"compression-{_name}", "compression")
