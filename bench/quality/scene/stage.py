"""Puts background, objects, weather and light together, frame by frame, and notes the truth."""
import cv2
import numpy as np

from ..truth import MIN_PIXELS, MIN_VISIBLE, MOTION, SHADOW, STATIC, STILL_LIMIT, UNKNOWN, Object, Truth, Visit
from .textures import noise
from .vehicle import vehicle
from .walker import person

SHUTTER = 0.4  # share of the time between frames in which the shutter is open


class Effect:
    """Something that changes the picture and is no object. Each operation may be left out."""

    def behind(self, picture, time):
        """Changes the background, before the objects."""

    def before(self, picture, owner, time):
        """Changes the picture, in front of the objects; sets `owner` to 0 where it hides them."""

    def light(self, time):
        """Factor for the whole picture, or a map of factors at a fraction of the size; None: no change."""
        return None

    def moved(self, time):
        """How the camera moved: a 2x3 matrix; None: not at all."""
        return None


class Stage:
    def __init__(self, rng, place, fps, seconds):
        self.rng, self.camera, self.fps, self.seconds, self.about = rng, place.camera, fps, seconds, ""
        self.background = np.ascontiguousarray(place.picture, np.float32)
        self.hidden = place.hidden
        self.actors, self.effects, self.disturbances = [], [], []
        self.shadow = (0.0, 0.0, 0.0)  # per metre of height: to the right, downwards; then strength
        self.ambient = 1.0  # brightness of objects
        self.haze = 0.0  # share of grey in front of objects: low contrast
        self.haze_colour = np.float32((170, 170, 165))
        self.sigma, self.blotches = 1.6, 0.0  # noise in grey levels, and over how many pixels it is smoothed
        self.codec = "h264-20"
        self.exposure = None  # function of time and picture: factor
        self.grain = noise(np.random.default_rng(5), 128, 128, 8, 4, 0.7).astype(np.float32)

    def add(self, actor):
        actor.id = len(self.actors) + 1
        assert actor.id < 255
        self.actors.append(actor)
        return actor

    def truth(self):
        return Truth(self.camera.width, self.camera.height, self.fps, self.about, disturbances=self.disturbances)

    def frames(self, truth):
        """Yields pictures of the scene before the sensor, float32, and fills in the truth."""
        seen = {}
        for number in range(int(round(self.seconds * self.fps))):
            time = number / self.fps
            picture, owner, label, drawn = self._compose(time)
            self._note(truth, time, owner, label, drawn, seen)
            yield time, picture
        for id, (begin, end) in seen.items():
            truth.visits.append(Visit(id, begin, end, self.actors[id - 1].cause))

    def _compose(self, time):
        camera = self.camera
        picture = self.background.copy()
        for effect in self.effects:
            effect.behind(picture, time)
        owner = np.zeros((camera.height, camera.width), np.uint8)
        label = np.zeros_like(owner)
        states = [(actor, actor.state(time)) for actor in self.actors]
        states = [(actor, state) for actor, state in states if state is not None]
        depth = lambda entry: -(entry[1].x * camera.sin + entry[1].z * camera.cos)  # noqa: E731
        drawn = []
        for actor, state in sorted(states, key=depth):
            if -depth((actor, state)) < 0.8:
                continue
            drawn.append((actor, state, self._draw(picture, owner, label, actor, state)))
        for effect in self.effects:
            effect.before(picture, owner, time)
        for effect in self.effects:
            light = effect.light(time)
            if light is None:
                continue
            if np.ndim(light) == 0:
                picture *= np.float32(light)
            else:
                wide = cv2.resize(light.astype(np.float32), (camera.width, camera.height), interpolation=cv2.INTER_LINEAR)
                picture *= wide[..., None]
        for effect in self.effects:
            matrix = effect.moved(time)
            if matrix is not None:
                size = (camera.width, camera.height)
                picture = cv2.warpAffine(picture, matrix, size, borderMode=cv2.BORDER_REFLECT)
                owner = cv2.warpAffine(owner, matrix, size, flags=cv2.INTER_NEAREST)
                label = cv2.warpAffine(label, matrix, size, flags=cv2.INTER_NEAREST)
        return picture, owner, label, drawn

    def _draw(self, picture, owner, label, actor, state):
        """Returns how many pixels the object has, also those that are hidden or outside."""
        if actor.kind == "vehicle":
            drawn = vehicle(self.camera, actor.looks, state)
            if drawn is None:
                return 0
            sprite, foot, base = drawn
        else:
            sprite, foot = person(self.camera, actor.looks, state)
            base = None
        later = actor.state(state.time + SHUTTER / self.fps)
        moved = (0.0, 0.0)
        if later is not None:
            ahead = self.camera.project(later.x, 0, later.z)
            moved = (float(ahead[0] - foot[0]), float(ahead[1] - foot[1]))
        colours, alpha = sprite.finish(moved)
        full = int(np.count_nonzero(alpha > 0.5))
        self._cast_shadow(picture, label, sprite, alpha, foot, base, state)
        part = _overlap(sprite.left, sprite.top, alpha.shape, owner.shape)
        if part is None:
            return full
        there, here = part
        metre = self.camera.scale(state.x, state.z)
        step = 45 / metre
        seed = actor.looks.texture
        matrix = np.float32([[step, 0, (sprite.left - foot[0]) * step + seed % 977],
                             [0, step, (sprite.top - foot[1]) * step + seed % 769]])
        grain = cv2.warpAffine(self.grain, matrix, alpha.shape[::-1], flags=cv2.INTER_LINEAR | cv2.WARP_INVERSE_MAP,
                               borderMode=cv2.BORDER_WRAP)
        colours = colours * (self.ambient * (1 + (0.11 if base is None else 0.025) * grain))[..., None]
        colours, alpha = colours[here], alpha[here]
        for cover, row in self.hidden:
            if row > foot[1]:
                open_ = 1 - cover[there]
                colours, alpha = colours * open_[..., None], alpha * open_
        if self.haze:
            colours = colours * (1 - self.haze) + alpha[..., None] * (self.haze * self.haze_colour)
        picture[there] = picture[there] * (1 - alpha)[..., None] + colours
        counted = actor.arrived or state.time >= actor.path.first_move
        solid = alpha > 0.5
        owner[there][solid] = actor.id if counted else 0
        edge = (alpha > 0.08) & ~solid & (owner[there] == 0)
        label[there][edge] = UNKNOWN
        label[there][solid] = STATIC
        return full

    def _cast_shadow(self, picture, label, sprite, alpha, foot, base, state):
        right, down, strength = self.shadow
        if base is not None:  # below a vehicle it is dark under every sky
            base = np.asarray(base)
            left, top = np.floor(base.min(0)).astype(int) - 3
            wide, high = np.ceil(base.max(0)).astype(int) + 4 - (left, top)
            if wide < 2000 and high < 2000:
                cover = np.zeros((high, wide), np.uint8)
                cv2.fillConvexPoly(cover, np.round(base - (left, top)).astype(np.int32), 255)
                cover = cv2.blur(cover, (5, 5)).astype(np.float32) / 255
                self._darken(picture, label, left, top, cover, 0.45)
        if strength <= 0:
            return
        height = max(foot[1] - sprite.top, 1)
        reach = int(abs(right) * height) + 4
        high = int(abs(down) * height) + 8 + (sprite.height - int(height) if sprite.height > height else 0)
        left = sprite.left - (reach if right < 0 else 0)
        top = int(foot[1]) - (high if down < 0 else 6)
        # A point at height v above the foot falls on (x + right v, foot + down v).
        matrix = np.float32([[1, -right, sprite.left + right * height - left],
                             [0, -down, foot[1] + down * height - top]])
        cover = cv2.warpAffine(alpha, matrix, (sprite.width + reach, high + 8))
        cover = cv2.GaussianBlur(cover, (0, 0), 0.8 + 0.01 * height)
        self._darken(picture, label, left, top, cover, strength)

    def _darken(self, picture, label, left, top, cover, strength):
        part = _overlap(left, top, cover.shape, label.shape)
        if part is None:
            return
        there, here = part
        dark = cover[here] * strength
        picture[there] *= (1 - dark)[..., None]
        label[there][(dark > 0.06) & (label[there] == STATIC)] = SHADOW

    def _note(self, truth, time, owner, label, drawn, seen):
        objects = []
        for actor, state, full in drawn:
            if not (actor.arrived or time >= actor.path.first_move):
                continue
            mask = owner == actor.id
            pixels = int(np.count_nonzero(mask))
            if pixels == 0:
                continue
            counts = pixels >= max(MIN_VISIBLE * full, MIN_PIXELS) and state.still <= STILL_LIMIT
            objects.append(Object(actor.id, *cv2.boundingRect(mask.view(np.uint8)), counts, pixels))
            label[mask] = MOTION if counts else UNKNOWN
            if counts:
                begin = seen.get(actor.id, (time,))[0]
                seen[actor.id] = (begin, time)
        _group(objects, owner)
        truth.frames.append(objects)
        truth.add_mask(label)


def _group(objects, owner):
    """Objects whose pixels touch get the same group."""
    for item in objects:
        item.group = item.id
    if len(objects) < 2:
        return
    _, parts = cv2.connectedComponents((owner > 0).view(np.uint8), connectivity=8)
    of = {item.id: item for item in objects}
    pairs = np.unique(parts[owner > 0].astype(np.int64) * 256 + owner[owner > 0])
    first = {}
    for part, id in zip(pairs // 256, pairs % 256):
        here = of.get(int(id))
        if here is None:
            continue
        there = first.setdefault(int(part), here)
        if there.group != here.group:
            old = here.group
            for item in objects:
                if item.group == old:
                    item.group = there.group


def _overlap(left, top, shape, whole):
    """Slices of the picture and of a patch put there; None when nothing of it is inside."""
    x0, y0 = max(left, 0), max(top, 0)
    x1, y1 = min(left + shape[1], whole[1]), min(top + shape[0], whole[0])
    if x0 >= x1 or y0 >= y1:
        return None
    return (slice(y0, y1), slice(x0, x1)), (slice(y0 - top, y1 - top), slice(x0 - left, x1 - left))
