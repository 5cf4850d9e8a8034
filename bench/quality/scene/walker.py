"""A person: walks, stands, sits; rides a bicycle."""
from dataclasses import dataclass, field

import numpy as np

from .sprite import Sprite

SKIN = ((150, 175, 215), (120, 145, 190), (70, 95, 140), (55, 70, 105))
CLOTHES = ((40, 38, 36), (60, 50, 48), (110, 70, 45), (50, 50, 130), (60, 95, 60), (150, 150, 150), (200, 205, 210),
           (85, 110, 140), (120, 95, 110), (35, 45, 75), (95, 85, 60), (70, 70, 70))
TROUSERS = ((45, 42, 40), (85, 60, 50), (120, 85, 65), (70, 75, 85), (90, 110, 130), (35, 35, 45))
STRIDE = 1.4  # metres of two steps


@dataclass
class Looks:
    """What makes one person different from another."""
    height: float
    skin: tuple
    top: tuple
    bottom: tuple
    hair: tuple
    build: float
    bag: bool
    texture: int
    wobble: np.ndarray = field(repr=False)

    @classmethod
    def draw(cls, rng):
        pick = lambda colours: tuple(np.array(colours[rng.integers(len(colours))]) * rng.uniform(0.8, 1.2))  # noqa: E731
        return cls(rng.uniform(1.58, 1.9), pick(SKIN), pick(CLOTHES), pick(TROUSERS),
                   pick(((30, 35, 40), (40, 60, 85), (90, 100, 110), (25, 25, 25))), rng.uniform(0.9, 1.2),
                   bool(rng.random() < 0.35), int(rng.integers(1 << 30)), rng.uniform(0, 2 * np.pi, 8))


def _swing(wobble, time, index, period):
    return np.sin(2 * np.pi * time / period + wobble[index])


def person(camera, looks, state):
    """Draws a person. `state`: x, z, heading (radians; 0 walks to the right), walked (metres), stride (0 stands, 1 walks),
    sits (0 to 1), time, bicycle."""
    scale = camera.scale(state.x, state.z)
    foot_x, foot_y = camera.project(state.x, 0, state.z)
    tall = looks.height
    metre = scale * tall / 1.75
    half = 1.05 * metre if state.bicycle else 0.62 * metre
    sprite = Sprite(foot_x - half, foot_y - 1.92 * metre, foot_x + half, foot_y + 0.08 * metre)
    # Seen from the side limbs swing along the picture, from the front hardly.
    along = np.cos(state.heading)
    facing = 1 if along >= 0 else -1
    side = max(abs(along), 0.25)
    wobble, time = looks.wobble, state.time
    calm = 1 - state.stride
    lean = 0.012 * calm * _swing(wobble, time, 0, 5.3) + 0.05 * state.stride * facing * side
    seat = 0.25 if state.bicycle else 0.42 * state.sits
    hips = 0.95 - seat * (0 if state.bicycle else 1)
    if state.bicycle:
        hips = 1.0
    phase = 2 * np.pi * state.walked / STRIDE
    bob = 0.02 * state.stride * np.cos(2 * phase)

    def at(u, v):
        return foot_x + u * metre, foot_y - v * metre

    width = 0.105 * looks.build
    shade = lambda colour, by: tuple(np.array(colour) * by)  # noqa: E731
    hip = np.array([0.0, hips + bob])
    if state.bicycle:
        _bicycle(sprite, at, facing * side, metre, 2 * np.pi * state.walked / 2.1)
        lean = 0.35 * facing * side
    legs = []
    for number in (0, 1):
        turn = phase + np.pi * number
        if state.bicycle:
            pedal = np.array([0.17 * np.cos(turn) * facing * side, 0.32 + 0.17 * np.sin(turn)])
            knee = (hip + pedal) / 2 + np.array([0.2 * facing * side, 0.1])
            legs.append((knee, pedal))
            continue
        thigh = 0.5 * state.stride * np.sin(turn) + state.sits * 1.4
        bend = state.stride * (0.15 + 0.75 * max(0.0, np.cos(turn)) ** 2) + state.sits * 1.4
        apart = (0.05 if number else -0.05) * (1 - 0.6 * side)
        start = hip + np.array([apart, 0])
        knee = start + 0.46 * np.array([np.sin(thigh) * facing * side, -np.cos(thigh)])
        foot = knee + 0.46 * np.array([np.sin(thigh - bend) * facing * side, -np.cos(thigh - bend)])
        foot[1] = max(foot[1], 0.02)
        legs.append((knee, foot))
    shoulder = hip + np.array([0.5 * np.sin(lean), 0.5 * np.cos(lean)])
    arms = []
    for number in (0, 1):
        swing = -0.45 * state.stride * np.sin(phase + np.pi * number)
        upper = swing + lean + 0.03 * calm * _swing(wobble, time, 1 + number, 4.1)
        fore = upper + 0.25 + 0.2 * state.stride
        hold = max(state.sits, 0.9 if state.bicycle else 0)
        upper = upper * (1 - hold) + hold * (0.55 + 0.08 * _swing(wobble, time, 3 + number, 9.7))
        fore = fore * (1 - hold) + hold * (1.5 + 0.1 * _swing(wobble, time, 5, 7.9))
        apart = (0.19 if number else -0.19) * (1 - 0.8 * side) * looks.build
        start = shoulder + np.array([apart, -0.03])
        elbow = start + 0.28 * np.array([np.sin(upper) * facing * side, -np.cos(upper)])
        hand = elbow + 0.26 * np.array([np.sin(fore) * facing * side, -np.cos(fore)])
        arms.append((start, elbow, hand))

    def limb(points, thick, colour):
        for start, end in zip(points, points[1:]):
            sprite.line(at(*start), at(*end), thick * metre, colour)

    def leg(number, by):
        knee, foot = legs[number]
        limb([hip, knee], 1.45 * width, shade(looks.bottom, by))
        limb([knee, foot], 1.05 * width, shade(looks.bottom, by * 0.95))
        toe = foot + np.array([0.13 * facing * side, -0.01])
        limb([foot, toe], 0.08, (35, 33, 32))

    def arm(number, by):
        start, elbow, hand = arms[number]
        limb([start, elbow, hand], 0.085 * looks.build, shade(looks.top, by))
        sprite.ellipse(at(*hand), 0.045 * metre, 0.05 * metre, shade(looks.skin, by))

    leg(1, 0.72)
    arm(1, 0.7)
    broad = (0.14 + 0.09 * (1 - side)) * looks.build
    ends = [hip + (-broad * 0.85, -0.06), hip + (broad * 0.85, -0.06), shoulder + (broad, -0.02),
            shoulder + (broad * 0.6, 0.06), shoulder + (-broad * 0.6, 0.06), shoulder + (-broad, -0.02)]
    sprite.polygon([at(*point) for point in ends], looks.top)
    lit = [ends[0], (ends[0] + ends[1]) / 2, (ends[2] + ends[5]) / 2, ends[5]]
    sprite.polygon([at(*point) for point in lit], shade(looks.top, 1.16))
    leg(0, 1.0)
    turn = 0.03 * _swing(wobble, time, 6, 6.7) * calm
    head = shoulder + np.array([0.04 * facing * side + turn + 0.1 * np.sin(lean), 0.22])
    limb([shoulder, head], 0.09, shade(looks.skin, 0.8))
    sprite.ellipse(at(*head), 0.085 * metre, 0.115 * metre, looks.skin)
    sprite.ellipse(at(head[0] - 0.02 * facing * side, head[1] + 0.045), 0.09 * metre, 0.08 * metre, looks.hair)
    if looks.bag and not state.bicycle and state.sits < 0.5:
        back = shoulder + (-0.2 * facing * side, -0.25)
        sprite.ellipse(at(*back), (0.08 + 0.05 * side) * metre, 0.17 * metre, shade(looks.hair, 1.4))
    arm(0, 1.05)
    if state.sits > 0.7:
        hand = arms[0][2]
        page = [hand + offset for offset in ((-0.1, -0.1), (0.14, -0.04), (0.14, 0.16), (-0.1, 0.1))]
        sprite.polygon([at(*point) for point in page], (215, 225, 230))
    return sprite, (foot_x, foot_y)


def _bicycle(sprite, at, side, metre, turn):
    dark = (45, 45, 50)
    for centre in (-0.52, 0.52):
        points = [(centre * side + 0.34 * side * np.cos(a), 0.34 + 0.34 * np.sin(a)) for a in np.linspace(0, 6.283, 25)]
        for start, end in zip(points, points[1:]):
            sprite.line(at(*start), at(*end), 0.035 * metre, dark)
        for spoke in range(3):
            angle = turn + spoke * 2.094
            sprite.line(at(centre * side, 0.34), at((centre + 0.33 * np.cos(angle)) * side, 0.34 + 0.33 * np.sin(angle)),
                        0.012 * metre, (120, 120, 120))
    frame = [(-0.52, 0.34), (-0.12, 0.85), (0.4, 0.8), (0.0, 0.32), (-0.52, 0.34)]
    for start, end in zip(frame, frame[1:]):
        sprite.line(at(start[0] * side, start[1]), at(end[0] * side, end[1]), 0.045 * metre, (60, 40, 150))
    sprite.line(at(0.52 * side, 0.34), at(0.4 * side, 1.0), 0.04 * metre, dark)
