"""Cars, vans and lorries as solids with windows, wheels and lamps."""
from dataclasses import dataclass

import numpy as np

from .sprite import Sprite

PAINT = ((200, 200, 205), (235, 235, 235), (40, 38, 38), (90, 90, 92), (120, 60, 40), (40, 40, 150), (150, 140, 120),
         (70, 110, 70), (95, 60, 55), (60, 90, 130))


@dataclass
class Looks:
    """length, width in metres; `waist` and `roof` are heights; the cabin reaches from `back` to `front` (shares)."""
    length: float
    width: float
    waist: float
    roof: float
    back: float
    front: float
    paint: tuple
    texture: int
    lamps: bool = False

    @classmethod
    def draw(cls, rng, kind=None, lamps=False):
        kind = kind or rng.choice(["car", "car", "car", "estate", "van", "lorry"])
        paint = tuple(np.array(PAINT[rng.integers(len(PAINT))]) * rng.uniform(0.85, 1.1))
        shapes = {"car": (4.2, 1.75, 0.85, 1.42, 0.12, 0.68), "estate": (4.5, 1.8, 0.9, 1.5, 0.02, 0.66),
                  "van": (5.2, 1.95, 1.15, 2.15, 0.0, 0.86), "lorry": (8.0, 2.4, 1.3, 3.1, 0.0, 0.97)}
        length, width, waist, roof, back, front = shapes[str(kind)]
        grow = rng.uniform(0.94, 1.06)
        return cls(length * grow, width, waist * grow, roof * grow, back, front, paint, int(rng.integers(1 << 30)), lamps)


def vehicle(camera, looks, state):
    """Draws a vehicle at x, z with its front towards `heading` (radians; 0 is the direction of x, pi/2 that of z). None: it
    is outside the picture."""
    forward = np.array([np.cos(state.heading), np.sin(state.heading)])
    sideways = np.array([-forward[1], forward[0]])
    half, wide = looks.length / 2, looks.width / 2

    def at(points):
        """Points (share, across, up): `share` runs from -1 (rear) to 1 (front), `across` from -1 to 1; `up` in metres."""
        share, across, up = np.array(points, np.float64).T
        x = state.x + forward[0] * half * share + sideways[0] * wide * across
        z = state.z + forward[1] * half * share + sideways[1] * wide * across
        return np.stack(camera.project(x, up, z), 1)

    corners = at([(s, a, u) for s in (-1, 1) for a in (-1, 1) for u in (0, looks.roof)])
    (left, top), (right, bottom) = corners.min(0), corners.max(0)
    if right < 0 or bottom < 0 or left > camera.width or top > camera.height:
        return None
    sprite = Sprite(left, top, right, bottom)
    paint = np.array(looks.paint)
    # The camera, at the origin, in the vehicle's directions: which faces it sees.
    to_camera = np.array([-state.x, -state.z])
    seen_front = 1 if to_camera @ forward > 0 else -1
    seen_side = 1 if to_camera @ sideways > 0 else -1

    def face(points, shade):
        sprite.polygon(at(points), paint * shade)

    def glass(points, bright=1.0):
        sprite.polygon(at(points), np.array((75, 68, 62)) * bright)

    low, waist, roof = 0.22, looks.waist, looks.roof
    back, front = looks.back * 2 - 1, looks.front * 2 - 1
    a = seen_side
    # Tyres and what is dark below.
    sprite.polygon(at([(-0.95, a, 0.05), (0.95, a, 0.05), (0.95, a, 0.4), (-0.95, a, 0.4)]), (28, 27, 27))
    low_end = seen_front * 0.97
    sprite.polygon(at([(low_end, w, u) for w, u in ((-0.95, 0.05), (0.95, 0.05), (0.95, 0.4), (-0.95, 0.4))]), (22, 22, 22))
    face([(-1, a, low), (1, a, low), (1, a, waist * 0.92), (-1, a, waist)], 0.86)
    face([(-1, a, waist * 0.62), (1, a, waist * 0.6), (1, a, waist * 0.92), (-1, a, waist)], 0.98)
    end = seen_front
    height = waist * 0.92 if end > 0 else waist
    face([(end, -1, low), (end, 1, low), (end, 1, height), (end, -1, height)], 0.76)
    face([(-1, -1, waist), (-1, 1, waist), (1, 1, waist * 0.92), (1, -1, waist * 0.92)], 1.1)
    # The cabin narrows towards the roof.
    slope_back, slope_front, narrow = back + 0.12, front - 0.28 if looks.roof < 2.5 else front - 0.05, 0.82
    cabin_end = (front, slope_front) if end > 0 else (back, slope_back)
    face([(cabin_end[0], -1, waist), (cabin_end[0], 1, waist), (cabin_end[1], narrow, roof), (cabin_end[1], -narrow, roof)],
         0.8)
    if looks.roof < 2.5 or end > 0:
        inset = [(0.1, 0.86), (0.1, -0.86), (0.9, -0.78), (0.9, 0.78)]
        glass([(cabin_end[0] + (cabin_end[1] - cabin_end[0]) * t, w, waist + (roof - waist) * t) for t, w in inset], 1.25)
    face([(back, a, waist), (front, a, waist), (slope_front, a * narrow, roof), (slope_back, a * narrow, roof)], 0.9)
    panes = 1 if looks.roof > 1.9 else 2
    span = (back + 0.1, front - 0.12) if panes == 2 else (front - 0.55, front - 0.12)
    for pane in range(panes):
        start = span[0] + (span[1] - span[0]) * pane / panes + 0.03
        stop = span[0] + (span[1] - span[0]) * (pane + 1) / panes - 0.03
        shift = 0.1 if pane == panes - 1 else 0.0
        glass([(start, a * 0.99, waist + 0.05), (stop, a * 0.99, waist + 0.05),
               (stop - shift, a * narrow, roof - 0.08), (start + (0.06 if pane == 0 else 0), a * narrow, roof - 0.08)])
    face([(slope_back, -narrow, roof), (slope_back, narrow, roof), (slope_front, narrow, roof),
          (slope_front, -narrow, roof)], 1.14)
    for share in (-0.62, 0.62):
        for radius, colour in ((0.33, (25, 25, 26)), (0.19, (135, 135, 138))):
            ring = [(share + radius / half * np.cos(t), a * 1.01, 0.33 + radius * np.sin(t)) for t in np.linspace(0, 6.2, 14)]
            sprite.polygon(at(ring), colour)
    lamp = (235, 250, 255) if end > 0 and looks.lamps else (205, 215, 220) if end > 0 else (40, 35, 190)
    for across in (-0.78, 0.78):
        spread = 0.17
        sprite.polygon(at([(end * 1.005, across + w, waist * u) for w, u in
                           ((-spread, 0.62), (spread, 0.62), (spread, 0.8), (-spread, 0.8))]), lamp)
    plate = [(end * 1.005, w, u) for w, u in ((-0.25, 0.4), (0.25, 0.4), (0.25, 0.52), (-0.25, 0.52))]
    sprite.polygon(at(plate), (210, 220, 220))
    return sprite, camera.project(state.x, 0, state.z), at([(*corner, 0) for corner in ((-1, -1), (1, -1), (1, 1), (-1, 1))])
