"""What changes in a picture without being an object: light, weather, water, leaves, the camera's mount."""
import cv2
import numpy as np

from .stage import Effect
from .textures import foliage, noise


class Switched(Effect):
    """A lamp that is on between two times, brightest at a place; the rest of the room is lit less."""

    def __init__(self, camera, begin, end, across, down, gain=0.7, reach=0.5, rise=0.25):
        self.begin, self.end, self.rise = begin, end, rise
        rows, columns = np.mgrid[0:1:48j, 0:1:64j]
        self.map = gain * np.exp(-((columns - across) ** 2 + (rows - down) ** 2) / reach ** 2).astype(np.float32)

    def light(self, time):
        on = np.clip((time - self.begin) / self.rise, 0, 1) * np.clip((self.end - time) / self.rise + 1, 0, 1)
        return None if on == 0 else 1 + np.float32(on) * self.map


class Headlights(Effect):
    """Beams of vehicles out of sight sweep over the picture; spans are (begin, end, row, direction)."""

    def __init__(self, spans, gain=2.5):
        self.spans, self.gain = spans, gain
        self.rows, self.columns = np.mgrid[0:1:48j, 0:1:64j].astype(np.float32)

    def light(self, time):
        total = None
        for begin, end, row, direction in self.spans:
            if begin <= time < end:
                share = (time - begin) / (end - begin)
                centre = -0.3 + 1.6 * (share if direction > 0 else 1 - share)
                wide = 0.16 + 0.1 * share
                spot = np.exp(-((self.columns - centre) / wide) ** 2 - ((self.rows - row) / 0.22) ** 2)
                total = (1 if total is None else total) + self.gain * np.sin(np.pi * share) * spot
        return total


class Clouds(Effect):
    """Soft shadows of clouds that drift over the picture."""

    def __init__(self, rng, depth=0.35, seconds=20):
        field = noise(rng, 96, 256, 2, 3, 0.5)
        self.field = (1 - depth / (1 + np.exp(-3 * field))).astype(np.float32)
        self.speed = 128 / seconds

    def light(self, time):
        return cv2.getRectSubPix(np.hstack([self.field, self.field]), (64, 48), (32 + (time * self.speed) % 256, 40))


class Flicker(Effect):
    """Lamps on 50 Hz: light of 100 Hz, seen row by row by a rolling shutter."""

    def __init__(self, depth=0.05, readout=0.025, drift=0.05):
        self.depth, self.readout, self.frequency = depth, readout, 100 + drift

    def light(self, time):
        rows = np.linspace(0, self.readout, 64)[:, None]
        wave = 1 + self.depth * np.sin(2 * np.pi * self.frequency * (time + rows))
        return np.repeat(wave, 2, 1).astype(np.float32)


class Shake(Effect):
    """A mount in the wind: the picture moves by some pixels and turns a little."""

    def __init__(self, rng, camera, pixels=2.0, calm_until=0.0):
        self.phases, self.pixels, self.camera, self.calm_until = rng.uniform(0, 6.28, 8), pixels, camera, calm_until
        self.rates = rng.uniform(0.7, 3.1, 8)

    def moved(self, time):
        if time < self.calm_until:
            return None
        wave = lambda i: np.sin(2 * np.pi * self.rates[i] * time + self.phases[i])  # noqa: E731
        sway = lambda *which: sum(wave(i) for i in which) / len(which)  # noqa: E731
        gust = 0.4 + 0.6 * (0.5 + 0.5 * np.sin(0.45 * time + self.phases[7])) ** 2
        x, y, turn = (self.pixels * gust * sway(0, 1), self.pixels * gust * sway(2, 3), 0.12 * gust * sway(4, 5))
        matrix = cv2.getRotationMatrix2D((self.camera.width / 2, self.camera.height / 2), turn, 1)
        matrix[:, 2] += x, y
        return matrix.astype(np.float32)


class Tree(Effect):
    """A crown whose leaves and branches sway; in gusts, (begin, end) in seconds, more."""

    def __init__(self, rng, camera, across, down, size, gusts=(), calm=0.25, strength=6.0):
        self.gusts, self.calm = gusts, calm
        self.side = side = int(size * camera.height)
        self.colours, self.cover = foliage(rng, side, side)
        self.left, self.top = int(across * camera.width - side / 2), int(down * camera.height - side / 2)
        rows, columns = np.mgrid[0:side, 0:side].astype(np.float32)
        self.rows, self.columns = rows, columns
        self.phase = (noise(rng, side, side, 3, 3) * 1.5).astype(np.float32)
        self.strength = strength * side / 200 * np.clip(1.15 - rows / side, 0, 1)
        self.rates = rng.uniform(0.35, 1.4, 3)

    def before(self, picture, owner, time):
        force = self.calm
        for begin, end in self.gusts:
            force = max(force, np.clip(min(time - begin, end - time) / 1.5, 0, 1))
        swing = lambda rate, more: np.sin(2 * np.pi * rate * time + more)  # noqa: E731
        shift = force * self.strength
        whole = 0.5 * swing(self.rates[0], 0) + 0.5 * force
        x = self.columns + shift * (whole + 0.8 * swing(self.rates[1] * 1.7, self.phase))
        y = self.rows + 0.5 * shift * swing(self.rates[2] * 1.5, self.phase + 1)
        colours = cv2.remap(self.colours, x, y, cv2.INTER_LINEAR)
        cover = cv2.remap(self.cover, x, y, cv2.INTER_LINEAR)
        height, width = picture.shape[:2]
        y0, y1 = max(self.top, 0), min(self.top + self.side, height)
        x0, x1 = max(self.left, 0), min(self.left + self.side, width)
        here = (slice(y0 - self.top, y1 - self.top), slice(x0 - self.left, x1 - self.left))
        alpha = cover[here][..., None]
        part = picture[y0:y1, x0:x1]
        part *= 1 - alpha
        part += alpha * colours[here]
        # Gaps between leaves through which a few pixels of an object show are no gaps.
        hides = cv2.morphologyEx((cover[here] > 0.4).view(np.uint8), cv2.MORPH_CLOSE, np.ones((9, 9), np.uint8))
        owner[y0:y1, x0:x1][hides != 0] = 0


class Beam(Effect):
    """Light on the ground ahead of a vehicle in the picture."""

    def __init__(self, camera, actor, gain=1.6):
        self.camera, self.actor, self.gain = camera, actor, gain
        self.rows, self.columns = np.mgrid[0:1:48j, 0:1:64j].astype(np.float32)

    def light(self, time):
        state = self.actor.state(time)
        if state is None:
            return None
        ahead = 7.0
        x, z = state.x + ahead * np.cos(state.heading), state.z + ahead * np.sin(state.heading)
        column, row = self.camera.project(x, 0, z)
        wide = 4.0 * self.camera.scale(x, z) / self.camera.width
        across = (self.columns - column / self.camera.width) / wide
        return 1 + self.gain * np.exp(-across ** 2 - ((self.rows - row / self.camera.height) / (0.35 * wide)) ** 2)


class Water(Effect):
    """Waves of two directions and their glitter."""

    def __init__(self, rng, camera, cover, rough=1.0):
        self.rough = rough
        rows = np.flatnonzero(cover.max(1) > 0)
        self.top, self.bottom = int(rows[0]), int(rows[-1]) + 1
        self.cover = cover[self.top:self.bottom, :, None]
        self.tiles = [noise(rng, 256, 256, 8, 4, 0.7).astype(np.float32) for _ in range(2)]
        x, z = camera.ground_maps()
        self.x, self.z = (plane[self.top:self.bottom] * 18 for plane in (x, z))
        self.colour = np.float32((120, 105, 85)) * rng.uniform(0.8, 1.1)

    def behind(self, picture, time):
        wave = [cv2.remap(tile, (self.x + vx * time) % 256, (self.z * 0.8 + vz * time) % 256, cv2.INTER_LINEAR,
                          borderMode=cv2.BORDER_WRAP) for tile, vx, vz in zip(self.tiles, (9, -6), (7, 11))]
        height = (wave[0] + wave[1]) * self.rough
        glint = np.clip(height - 1.9, 0, 1) * 90
        part = picture[self.top:self.bottom]
        part += self.cover * (self.colour * (1 + 0.13 * height[..., None]) + glint[..., None] - part)


class Rain(Effect):
    """Streaks that last one frame, and a veil."""

    def __init__(self, rng, camera, per_frame=90, begin=0.0, end=1e9, bright=38):
        self.rng, self.camera, self.count, self.begin, self.end, self.bright = rng, camera, per_frame, begin, end, bright
        self.lean = rng.uniform(-0.25, 0.25)

    def before(self, picture, owner, time):
        if not self.begin <= time < self.end:
            return
        height, width = picture.shape[:2]
        layer = np.zeros((height, width), np.uint8)
        near = self.rng.random(self.count) ** 2
        at = self.rng.random((self.count, 2)) * (width * 1.2, height * 1.2) - (width * 0.1, height * 0.1)
        for (x, y), close in zip(at, near):
            length = (0.02 + 0.09 * close) * height
            cv2.line(layer, (int(x), int(y)), (int(x + self.lean * length), int(y + length)),
                     int(self.bright * (0.35 + 0.65 * close)), 1 + int(close > 0.85), cv2.LINE_AA)
        layer = cv2.GaussianBlur(layer, (3, 3), 0).astype(np.float32)
        picture *= 0.96
        picture += layer[..., None] + 5


class Snow(Effect):
    """Flakes that fall and drift; near ones are large, fast and out of focus."""

    def __init__(self, rng, camera, flakes=160, begin=0.0, end=1e9):
        self.begin, self.end = begin, end
        self.near = rng.random(flakes) ** 3
        self.start = rng.random((flakes, 2))
        self.sway = rng.uniform(0, 6.28, flakes)
        self.wind = rng.uniform(-0.12, 0.12)

    def before(self, picture, owner, time):
        if not self.begin <= time < self.end:
            return
        height, width = picture.shape[:2]
        layer = np.zeros((height, width), np.uint8)
        fall = 0.22 + 0.75 * self.near
        x = (self.start[:, 0] + self.wind * time * (1 + self.near) + 0.01 * np.sin(2 * time + self.sway)) % 1.1 - 0.05
        y = (self.start[:, 1] + fall * time) % 1.1 - 0.05
        for index in range(len(fall)):
            close = self.near[index]
            radius = (0.6 + 3.6 * close) * height / 480
            point = (int(x[index] * width * 16), int(y[index] * height * 16))
            cv2.ellipse(layer, point, (max(int(radius * 16), 8), max(int(radius * (1 + close) * 16), 8)), 0, 0, 360,
                        int(190 - 80 * close), -1, cv2.LINE_AA, 4)
        layer = cv2.GaussianBlur(layer, (0, 0), 0.8).astype(np.float32)[..., None] * (1 / 255)
        picture *= 1 - layer
        picture += layer * 235


class Screen(Effect):
    """A television: its picture changes all the time."""

    def __init__(self, rng, width, height, left, top, wide, high):
        self.area = (slice(int(top * height), int((top + high) * height)),
                     slice(int(left * width), int((left + wide) * width)))
        self.rng, self.colour, self.next = rng, np.float32((90, 90, 90)), 0.0
        self.shape = (self.area[0].stop - self.area[0].start, self.area[1].stop - self.area[1].start)
        self.tile = None

    def behind(self, picture, time):
        if time >= self.next:
            self.colour = self.rng.uniform(20, 200, 3).astype(np.float32)
            self.tile = noise(self.rng, *self.shape, 2, 3)[..., None]
            self.next = time + self.rng.uniform(0.4, 2.5)
        picture[self.area] = self.colour * (1 + 0.3 * np.roll(self.tile, int(time * 20), 1))
