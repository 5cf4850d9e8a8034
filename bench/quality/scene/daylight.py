"""Outdoors by day, in calm air and steady light."""
import numpy as np

from . import places
from .casting import crosses, disturbed, drives, goes, passes
from .catalogue import scene
from .stage import Stage


@scene
def walkers_near(rng):
    """People walk by close to the camera."""
    stage = Stage(rng, places.street(rng, above=4.5), 12, 45)
    for start in (6, 19, 31):
        crosses(stage, start + rng.uniform(0, 2), rng.uniform(0.7, 0.95), right=bool(rng.random() < 0.5))
    return stage


@scene
def walkers_far(rng):
    """People on the far pavement of a wide street, 25 to 45 pixels tall."""
    stage = Stage(rng, places.street(rng, 768, 576, above=15, horizon=-0.02), 10, 50)
    for start in (5, 21):
        crosses(stage, start + rng.uniform(0, 3), rng.uniform(0.3, 0.5), right=bool(rng.random() < 0.5), speed=1.9, margin=0.05)
    return stage


@scene
def stands_still(rng):
    """Somebody comes, stands still for a minute and leaves."""
    stage = Stage(rng, places.street(rng, above=5.5), 10, 95)
    side = rng.choice([-0.12, 1.12])
    at = (rng.uniform(0.35, 0.65), rng.uniform(0.72, 0.85))
    goes(stage, [(side, at[1] - 0.03), at, (1 - side, at[1] + 0.02)], 8, pauses={1: 58}, cause="stands still for a minute",
         turns=rng.choice([1.2, -1.2]))
    return stage


@scene
def car_parks(rng):
    """A car comes in and parks; its driver gets out and leaves."""
    place = places.lot(rng, keep=(-1, 0, 1))
    stage = Stage(rng, place, 10, 70)
    bay = place.bays[len(place.bays) // 2]
    lane = stage.camera.at(0.5, 0.62)[1]
    points = [(stage.camera.at(-0.02, 0.62)[0] - 5, lane), (bay - 1.2, lane), (bay, lane + 3), (bay, place.row - 0.3)]
    car = drives(stage, points, 8, 5.0, pauses={3: 80}, cause="parks")
    out = car.path.legs[2][1] + 4
    stage_x, stage_y = stage.camera.project(bay + 1.25, 0, place.row - 1.2)
    goes(stage, [(stage_x / 640, stage_y / 480), (0.75, 0.6), (1.13, 0.75)], out, 1.4, cause="gets out of the car and leaves")
    return stage


@scene
def car_leaves(rng):
    """A car that stood there from the start drives away: its place must not stay an object."""
    place = places.lot(rng, keep=(-1, 0, 1))
    stage = Stage(rng, place, 10, 70)
    bay = place.bays[len(place.bays) // 2]
    lane = stage.camera.at(0.5, 0.62)[1]
    leaves = 14 + rng.uniform(0, 3)
    points = [(bay, place.row), (bay, lane + 2.5), (bay + 2, lane), (stage.camera.at(1.02, 0.62)[0] + 5, lane)]
    car = drives(stage, points, 0, 4.0, pauses={0: leaves}, cause="drives away", kind="car", arrived=False)
    disturbed(stage, leaves, car.path.end, "the car's place")
    disturbed(stage, car.path.end, 70, "the car's place")
    crosses(stage, 48, 0.8, right=False)
    return stage


def _traffic(rng, stage, shift, begin, end, each, cyclists=True):
    """Vehicles on both carriageways, in lanes, with distance between them."""
    for lane, away in ((-7.3, False), (-3.6, False), (3.5, True), (7.3, True)):
        time = begin + rng.uniform(0, each)
        speed = rng.uniform(19, 24)
        while time < end:
            far, near = 95, 5.5
            points = [(shift + lane, near), (shift + lane, far)] if away else [(shift + lane, far), (shift + lane, near)]
            drives(stage, points, time, speed)
            time += rng.uniform(0.6, 1.8) * each
    if cyclists:
        path = [(shift + 10.8, 6), (shift + 10.8, 80)]
        shares = [np.array(stage.camera.project(x, 0, z)) / (stage.camera.width, stage.camera.height) for x, z in path]
        goes(stage, shares, begin + 4, 5.5, kind="bicycle", cause="rides by")


def drift(rng, period=11.0, depth=0.09):
    """Automatic exposure that hunts: a slow wave, and a jump now and then."""
    jumps = [(time, rng.uniform(-0.07, 0.07)) for time in np.cumsum(rng.uniform(4, 9, 12))]

    def exposure(time, _):
        factor = 1 + depth * np.sin(2 * np.pi * time / period) * np.sin(2 * np.pi * time / (2.7 * period))
        return factor + sum(by * np.clip((time - at) / 0.6, 0, 1) * np.exp(-max(time - at, 0) / 4) for at, by in jumps)
    return exposure


@scene
def highway(rng):
    """Traffic on a motorway, 320x240, steady exposure."""
    place = places.highway(rng)
    stage = Stage(rng, place, 15, 45)
    _traffic(rng, stage, place.shift, 5, 36, 6.0)
    return stage


def highway_exposure(rng):
    """Traffic on a motorway, 320x240, with an exposure that drifts and jumps."""
    stage = highway(rng)
    stage.exposure = drift(rng)
    disturbed(stage, 0, 45, "exposure")
    return stage


scene(highway_exposure, like="highway")


@scene
def path(rng):
    """People and a bicycle on a path, 360x240."""
    stage = Stage(rng, places.path(rng), 12, 50)
    for start in (5, 14, 33):
        crosses(stage, start, 0.6 + rng.uniform(-0.03, 0.06), right=bool(rng.random() < 0.5))
    crosses(stage, 25, 0.63, speed=4.5, kind="bicycle", cause="rides by", margin=0.2)
    return stage


@scene
def busy_street(rng):
    """A street where somebody is always to be seen: people in both directions, groups, cars."""
    stage = Stage(rng, places.street(rng, 768, 576, above=8), 10, 60)
    for start in np.cumsum(rng.uniform(1.5, 5.5, 14)) + 3:
        down, right = rng.choice([0.3, 0.72, 0.8, 0.9]), bool(rng.random() < 0.5)
        speed = rng.uniform(1.2, 1.7)
        for follower in range(int(rng.choice([1, 1, 2]))):
            crosses(stage, start + 0.5 * follower, down + 0.025 * follower, right, speed,
                    cause="walks through" if not follower else "walks with another")
    for start in np.cumsum(rng.uniform(6, 12, 5)):
        passes(stage, start, rng.choice([0.46, 0.58]), bool(rng.random() < 0.5), 7.0)
    return stage


@scene
def tiny(rng):
    """People 14 to 22 pixels tall."""
    stage = Stage(rng, places.street(rng, above=26, horizon=0.0, posts=0), 10, 50)
    for start, right in ((5, True), (22, False)):
        crosses(stage, start, rng.uniform(0.45, 0.75), right, speed=2.3, margin=0.03)
    return stage


@scene
def shadows(rng):
    """People and a car in bright sun, with long sharp shadows."""
    stage = Stage(rng, places.street(rng, above=5.5), 12, 45)
    stage.shadow = (rng.choice([-1, 1]) * rng.uniform(0.7, 1.1), rng.uniform(0.12, 0.3), 0.5)
    stage.background *= 1.15
    for start in (5, 18):
        crosses(stage, start, rng.uniform(0.7, 0.82), right=bool(rng.random() < 0.5))
    passes(stage, 33, 0.5)
    return stage


@scene
def low_contrast(rng):
    """People in grey clothes in haze: 8 to 15 grey levels from the background."""
    stage = Stage(rng, places.street(rng, above=5), 12, 45)
    stage.haze = 0.72
    stage.background = stage.background * (1 - stage.haze) + stage.haze * stage.haze_colour
    for start in (5, 24):
        actor = crosses(stage, start, rng.uniform(0.72, 0.85), right=bool(rng.random() < 0.5))
        actor.looks.top, actor.looks.bottom = (110, 112, 112), (80, 80, 82)
    return stage


@scene
def crossing_paths(rng):
    """Pairs who meet, cross and part; one runs."""
    stage = Stage(rng, places.street(rng, above=5.5), 12, 45)
    crosses(stage, 5, 0.76, True, 1.35)
    crosses(stage, 5.5, 0.82, False, 1.3)
    crosses(stage, 22, 0.74, True, 1.3)
    crosses(stage, 26, 0.8, True, 3.6, cause="runs through")
    crosses(stage, 34, 0.78, False, 1.5)
    return stage


@scene
def two_talk(rng):
    """Two people stop to talk; one goes on, the other stays for half a minute."""
    stage = Stage(rng, places.street(rng, above=5.5), 10, 70)
    middle = rng.uniform(0.42, 0.55)
    goes(stage, [(-0.12, 0.78), (middle, 0.8), (-0.12, 0.83)], 6, pauses={1: 14}, cause="stops to talk")
    goes(stage, [(1.12, 0.79), (middle + 0.12, 0.8), (1.12, 0.74)], 6, pauses={1: 38}, cause="stops to talk", turns=3.0)
    return stage


@scene
def street_hd(rng):
    """A street in 1280x720: people, a car."""
    stage = Stage(rng, places.street(rng, 1280, 720, above=7), 10, 40)
    crosses(stage, 5, 0.75, True, 1.8)
    passes(stage, 19, 0.5)
    crosses(stage, 24, 0.32, False, 2.0)
    return stage
