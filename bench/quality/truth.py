"""What is really in every frame, and the rules by which it counts (docs/quality.md has them in words)."""
import io
import json
import zlib
from dataclasses import asdict, dataclass, field
from pathlib import Path

import cv2
import numpy as np

STATIC, SHADOW, OUTSIDE, UNKNOWN, MOTION = 0, 50, 85, 170, 255  # values of changedetection.net
STILL_LIMIT = 60.0  # seconds after which an object that stands still may or may not be background
MIN_VISIBLE = 0.4   # share of an object that must be visible, and in the frame, to be demanded
MIN_PIXELS = 40


@dataclass
class Object:
    """One object in one frame. `counts`: it must be found; otherwise finding it is neither right nor wrong."""
    id: int
    x: int
    y: int
    width: int
    height: int
    counts: bool
    pixels: int = 0
    group: int = 0  # objects that touch in the picture have the same

    @property
    def box(self):
        return self.x, self.y, self.width, self.height


@dataclass
class Visit:
    """The stay of one object, while it counts."""
    id: int
    begin: float
    end: float
    cause: str


@dataclass
class Disturbance:
    """What is no object and may still be reported: a lamp, rain, the place that a car left."""
    begin: float
    end: float
    cause: str


@dataclass
class Truth:
    width: int
    height: int
    fps: float
    about: str = ""
    frames: list = field(default_factory=list)  # lists of Object
    visits: list = field(default_factory=list)
    disturbances: list = field(default_factory=list)
    first: int = 0  # frames before it are for learning
    identities: bool = True  # whether ids mean the same object in all frames
    masks: list = field(default_factory=list)  # compressed labels
    whole: list = field(default_factory=list)  # frames of which nothing is known: True

    def add_mask(self, label):
        """Keeps the part that is not 0: where it is, in 8 bytes, and its bytes, compressed."""
        x, y, width, height = cv2.boundingRect(label)
        part = label[y:y + height, x:x + width].tobytes()
        self.masks.append(np.uint16((x, y, width, height)).tobytes() + zlib.compress(part, 1))

    def mask(self, frame):
        label = np.zeros((self.height, self.width), np.uint8)
        x, y, width, height = (int(value) for value in np.frombuffer(self.masks[frame][:8], np.uint16))
        part = np.frombuffer(zlib.decompress(self.masks[frame][8:]), np.uint8)
        label[y:y + height, x:x + width] = part.reshape(height, width)
        return label

    def unknown(self, frame):
        return bool(self.whole) and self.whole[frame]

    def save(self, path):
        apart = ("frames", "masks", "visits", "disturbances")
        head = {key: value for key, value in vars(self).items() if key not in apart}
        head["visits"] = [asdict(visit) for visit in self.visits]
        head["disturbances"] = [asdict(item) for item in self.disturbances]
        head["frames"] = [[[o.id, o.x, o.y, o.width, o.height, int(o.counts), o.pixels, o.group] for o in objects]
                          for objects in self.frames]
        head["mask_sizes"] = [len(mask) for mask in self.masks]
        text = zlib.compress(json.dumps(head).encode(), 6)
        Path(path).write_bytes(len(text).to_bytes(8, "little") + text + b"".join(self.masks))

    @classmethod
    def load(cls, path):
        data = io.BytesIO(Path(path).read_bytes())
        head = json.loads(zlib.decompress(data.read(int.from_bytes(data.read(8), "little"))))
        sizes = head.pop("mask_sizes")
        frames = [[Object(*o[:5], bool(o[5]), *o[6:]) for o in objects] for objects in head.pop("frames")]
        visits = [Visit(**visit) for visit in head.pop("visits")]
        disturbances = [Disturbance(**item) for item in head.pop("disturbances")]
        masks = [data.read(size) for size in sizes]
        return cls(**head, frames=frames, visits=visits, disturbances=disturbances, masks=masks)
