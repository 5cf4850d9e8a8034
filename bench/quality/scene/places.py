"""Places: a camera and what it sees when nobody is there. Every seed makes another one of the same kind."""
import cv2
import numpy as np

from . import vehicle
from .actors import State
from .camera import Camera
from .textures import bricks, foliage, noise, on_ground, tinted, windows


class Place:
    """`hidden`: covers (0 to 1) that stand before objects whose feet are above that row."""

    def __init__(self, camera, picture, hidden=()):
        self.camera, self.picture, self.hidden = camera, picture, list(hidden)


def _asphalt(rng, camera, colour=(105, 105, 103)):
    tile = tinted(colour, noise(rng, 512, 512, 4, 7, 0.8), 0.06)
    stains = np.clip(noise(rng, 512, 512, 2, 4) - 0.8, 0, 2)[..., None]
    return on_ground(camera, (tile * (1 - 0.12 * stains)).astype(np.float32), 9.0)


def _grass(rng, camera, colour=(45, 95, 75)):
    tile = tinted(colour, noise(rng, 512, 512, 4, 8, 0.85), 0.16)
    tile[..., 2] *= 1 + 0.1 * noise(rng, 512, 512, 3, 4)
    return on_ground(camera, tile.astype(np.float32), 6.0)


def _paving(rng, camera, colour=(150, 150, 150)):
    rows, columns = np.mgrid[0:512, 0:512]
    slab = (rows // 64) * 8 + columns // 64
    tile = tinted(colour, rng.standard_normal(64).astype(np.float32)[slab] * 0.7 + noise(rng, 512, 512, 4, 7, 0.8), 0.05)
    tile[(rows % 64 < 2) | (columns % 64 < 2)] *= 0.72
    return on_ground(camera, tile.astype(np.float32), 4.0)


def _put(picture, mask, other):
    """Soft edges: the mask is 0 to 1."""
    mask = mask[..., None]
    picture *= 1 - mask
    picture += mask * other


def _between(value, low, high, soft):
    return np.clip((value - low) / soft + 0.5, 0, 1) * np.clip((high - value) / soft + 0.5, 0, 1)


def _post(place, rng, across, down, height, thick=0.12, colour=(95, 100, 100), lamp=True):
    """A lamp post with its foot at a place of the picture."""
    camera, picture = place.camera, place.picture
    x, z = camera.at(across, down)
    metre = camera.scale(x, z)
    cover = np.zeros(picture.shape[:2], np.uint8)
    foot = (int(across * camera.width), int(down * camera.height))
    top = (foot[0], int(foot[1] - height * metre))
    cv2.line(cover, foot, top, 255, max(int(thick * metre), 1), cv2.LINE_AA)
    if lamp:
        cv2.line(cover, top, (int(foot[0] + 0.9 * metre), int(top[1] - 0.2 * metre)), 255, max(int(0.1 * metre), 1),
                 cv2.LINE_AA)
    soft = cover.astype(np.float32) / 255
    _put(picture, soft, np.float32(colour) * rng.uniform(0.8, 1.1))
    place.hidden.append((soft, foot[1]))


def _bush(place, rng, across, down, metres, hides=True, colour=(40, 85, 60)):
    camera, picture = place.camera, place.picture
    x, z = camera.at(across, down)
    metre = camera.scale(x, z)
    width, height = max(int(metres * 1.4 * metre), 8), max(int(metres * metre), 8)
    colours, cover = foliage(rng, height, width, colour)
    left, bottom = int(across * camera.width - width / 2), int(down * camera.height)
    whole = np.zeros(picture.shape[:2], np.float32)
    paint = np.zeros_like(picture)
    y0, y1 = max(bottom - height, 0), min(bottom, camera.height)
    x0, x1 = max(left, 0), min(left + width, camera.width)
    if y0 >= y1 or x0 >= x1:
        return
    here = (slice(y0 - bottom + height, y1 - bottom + height), slice(x0 - left, x1 - left))
    whole[y0:y1, x0:x1] = cover[here]
    paint[y0:y1, x0:x1] = colours[here]
    _put(picture, whole, paint)
    if hides:
        place.hidden.append((whole, bottom))


def parked(place, rng, across, down, heading, kind=None):
    """A vehicle that belongs to the background."""
    x, z = place.camera.at(across, down)
    state = State(x, z, heading, 0, 0, 0, 0, 0)
    drawn = vehicle.vehicle(place.camera, vehicle.Looks.draw(rng, kind), state)
    if drawn is None:
        return
    sprite, foot, base = drawn
    colours, alpha = sprite.finish()
    whole = np.zeros(place.picture.shape[:2], np.float32)
    paint = np.zeros_like(place.picture)
    ground = np.zeros(place.picture.shape[:2], np.uint8)
    cv2.fillConvexPoly(ground, np.round(np.array(base)).astype(np.int32), 255)
    place.picture *= 1 - 0.5 * cv2.blur(ground, (7, 7)).astype(np.float32)[..., None] / 255
    y0, x0 = max(sprite.top, 0), max(sprite.left, 0)
    y1, x1 = min(sprite.top + alpha.shape[0], whole.shape[0]), min(sprite.left + alpha.shape[1], whole.shape[1])
    if y0 >= y1 or x0 >= x1:
        return
    here = (slice(y0 - sprite.top, y1 - sprite.top), slice(x0 - sprite.left, x1 - sprite.left))
    whole[y0:y1, x0:x1] = alpha[here]
    paint[y0:y1, x0:x1] = colours[here]
    place.picture *= 1 - whole[..., None]
    place.picture += paint
    place.hidden.append((whole, foot[1]))


def _finish(place, rng):
    """Uneven light, and the softness of a lens."""
    height, width = place.picture.shape[:2]
    uneven = cv2.resize(noise(rng, 64, 64, 2, 3), (width, height), interpolation=cv2.INTER_CUBIC)
    place.picture *= (1 + 0.05 * uneven)[..., None]
    rows, columns = np.mgrid[-1:1:height * 1j, -1:1:width * 1j].astype(np.float32)
    place.picture *= (1 - 0.1 * (rows ** 2 + columns ** 2) / 2)[..., None]
    place.picture = np.clip(cv2.GaussianBlur(place.picture, (0, 0), 0.55), 4, 250).astype(np.float32)
    return place


def street(rng, width=640, height=480, above=6.0, horizon=-0.15, cars=1, posts=1):
    """Pavement, road and lawn before a building."""
    camera = Camera(width, height, above, horizon, 1.0, yaw=rng.uniform(-0.12, 0.12))
    picture = _paving(rng, camera, np.array((150, 152, 155)) * rng.uniform(0.8, 1.05))
    x, z = camera.ground_maps()
    row = lambda down: camera.at(0.5, down)[1]  # noqa: E731
    # Lines along x, at rows that differ a little.
    wall, kerb, verge = row(0.2 + rng.uniform(-0.03, 0.03)), row(0.36), row(0.66 + rng.uniform(-0.03, 0.03))
    soft = np.maximum(z * 0.004, 0.02)
    _put(picture, _between(z, verge, kerb, soft), _asphalt(rng, camera))
    for line in (verge, kerb):
        _put(picture, _between(z, line - 0.07, line + 0.07, soft), np.float32((175, 178, 180)))
    middle = (verge + kerb) / 2
    dash = _between(z, middle - 0.06, middle + 0.06, soft) * (np.mod(x, 3.0) < 1.4)
    _put(picture, dash.astype(np.float32), np.float32((205, 208, 208)))
    lawn = row(0.86)
    if rng.random() < 0.7:
        edge = lawn + 0.3 * np.sin(x * 0.5 + rng.uniform(0, 6))
        _put(picture, np.clip((edge - z) / soft, 0, 1), _grass(rng, camera))
    # The wall stands on its line.
    masonry = bricks(rng, height, width, np.array(((70, 90, 140), (110, 125, 135), (85, 105, 120))[rng.integers(3)]),
                     6 if height < 400 else 8)
    scale = camera.scale(0, wall)
    top = int(camera.project(0, 0, wall)[1])
    storey = int(3.2 * scale)
    storeys = max(1, round(top / max(storey, 1)))
    windows(masonry, rng, int(rng.integers(5, 9)), storeys, top - storey * storeys, top * 0.96)
    mask = np.clip((z - wall) / (wall * 0.004), 0, 1)
    _put(picture, mask.astype(np.float32), masonry)
    place = Place(camera, picture)
    for _ in range(int(rng.integers(1, 4))):
        _bush(place, rng, rng.uniform(0, 1), rng.uniform(0.24, 0.32), rng.uniform(0.8, 1.6))
    for _ in range(cars):
        parked(place, rng, rng.uniform(0.15, 0.85), camera.project(0, 0, kerb - 1.2)[1] / height, rng.choice([0, np.pi]))
    for _ in range(posts):
        _post(place, rng, rng.uniform(0.2, 0.8), rng.uniform(0.68, 0.75), 6.5)
    return _finish(place, rng)


def highway(rng, width=320, height=240):
    """Two carriageways that run away from the camera, between guard rails and bushes."""
    camera = Camera(width, height, 8.5, -0.06, 1.15, yaw=rng.uniform(0.18, 0.3))
    picture = _grass(rng, camera, (50, 80, 70))
    x, z = camera.ground_maps()
    soft = np.maximum(camera.ground_maps()[1] * 0.006, 0.05)
    x = x - (camera.at(0.42, 0.75)[0])
    place = Place(camera, picture)
    place.shift = camera.at(0.42, 0.75)[0]
    _put(picture, _between(x, -9.8, -1.2, soft), _asphalt(rng, camera, (112, 112, 110)))
    _put(picture, _between(x, 1.2, 12.6, soft), _asphalt(rng, camera, (118, 118, 116)))
    ochre = np.float32((110, 140, 150))
    slabs = (np.mod(z, 1.6) < 1.1)[..., None] * ochre + np.float32((40, 50, 55))
    _put(picture, _between(x, -0.9, 0.9, soft), slabs)
    for line in (-9.4, -1.6, 1.6, 9.2):
        _put(picture, _between(x, line - 0.11, line + 0.11, soft), np.float32((215, 215, 215)))
    for line in (-5.5, 5.4):
        dash = _between(x, line - 0.1, line + 0.1, soft) * (np.mod(z, 9) < 4)
        _put(picture, dash.astype(np.float32), np.float32((210, 210, 210)))
    for line in (-10.6, 13.2):
        _put(picture, _between(x, line - 0.18, line + 0.18, soft), np.float32((150, 155, 155)))
        _put(picture, _between(x, line + 0.18, line + 0.5, soft), np.float32((55, 60, 60)))
    for _ in range(26):
        far = rng.uniform(18, 90)
        side = place.shift + rng.choice([-1, -1, -1, 1]) * rng.uniform(14, 30)
        column, row = camera.project(side, 0, far)
        if 0.02 < row / height < 0.9:
            _bush(place, rng, column / width, row / height, rng.uniform(1.5, 4), hides=False, colour=(42, 70, 58))
    return _finish(place, rng)


def office(rng, width=360, height=240):
    """A room: wall with window and shelf, floor, a table in front."""
    camera = Camera(width, height, 2.5, 0.12, 0.75)
    floor = on_ground(camera, tinted((95, 110, 125), noise(rng, 512, 512, 8, 6, 0.9), 0.08).astype(np.float32), 3.0)
    edge = int(height * 0.5)
    wall = tinted(np.array((175, 190, 198)) * rng.uniform(0.85, 1.05), noise(rng, height, width, 2, 6, 0.5), 0.025)
    wall *= np.linspace(1.1, 0.8, width, dtype=np.float32)[None, :, None]
    picture = floor
    picture[:edge] = wall[:edge]
    picture[edge - 3:edge] = (120, 130, 140)
    box = lambda x0, y0, x1, y1, colour: cv2.rectangle(  # noqa: E731
        picture, (int(x0 * width), int(y0 * height)), (int(x1 * width), int(y1 * height)), colour, -1)
    shift = rng.uniform(-0.05, 0.05)
    box(0.1 + shift, 0.05, 0.32 + shift, 0.33, (205, 212, 215))
    for blind in np.arange(0.07, 0.32, 0.022):
        box(0.115 + shift, blind, 0.305 + shift, blind + 0.011, (238, 240, 236))
    box(0.62 + shift, 0.08, 0.9 + shift, 0.5, (70, 95, 130))
    for shelf in range(3):
        left = 0.63 + shift
        while left < 0.87 + shift:
            book = rng.uniform(0.008, 0.02)
            tall = rng.uniform(0.075, 0.11)
            bottom = 0.2 + 0.14 * shelf
            box(left, bottom - tall, left + book - 0.002, bottom, tuple(float(v) for v in rng.uniform(40, 200, 3)))
            left += book
    box(0.4 + shift, 0.1, 0.53 + shift, 0.27, tuple(float(v) for v in rng.uniform(60, 200, 3)))
    inner = picture[int(0.12 * height):int(0.25 * height), int((0.415 + shift) * width):int((0.515 + shift) * width)]
    inner[:] = tinted((140, 150, 120), noise(rng, *inner.shape[:2], 2, 3), 0.3)
    place = Place(camera, picture)
    # The table's top and front hide who is behind it.
    cover = np.zeros(picture.shape[:2], np.uint8)
    top = np.array([(0.3, 0.68), (0.62, 0.68), (0.68, 0.77), (0.26, 0.77)]) * (width, height)
    cv2.fillPoly(cover, [top.astype(np.int32)], 255, cv2.LINE_AA)
    front = np.zeros_like(cover)
    cv2.rectangle(front, (int(0.26 * width), int(0.77 * height)), (int(0.68 * width), int(0.8 * height)), 255, -1)
    for leg in (0.28, 0.65):
        cv2.rectangle(front, (int(leg * width), int(0.8 * height)), (int((leg + 0.015) * width), int(0.97 * height)), 255, -1)
    _put(picture, cover.astype(np.float32) / 255, tinted((85, 120, 160), noise(rng, height, width, 2, 6, 0.8), 0.07))
    _put(picture, front.astype(np.float32) / 255, np.float32((55, 80, 110)))
    screen = np.zeros_like(cover)
    cv2.rectangle(screen, (int(0.32 * width), int(0.56 * height)), (int(0.42 * width), int(0.69 * height)), 255, -1)
    _put(picture, screen.astype(np.float32) / 255, np.float32((45, 42, 40)))
    hidden = np.maximum(np.maximum(cover, front), screen).astype(np.float32) / 255
    place.hidden.append((hidden, 0.97 * height))
    box(0.0, 0.55, 0.05, 0.98, tuple(float(v) for v in rng.uniform(50, 120, 3)))
    return _finish(place, rng)


def path(rng, width=360, height=240):
    """A path over a lawn between trees."""
    camera = Camera(width, height, 4.0, 0.05, 1.0)
    picture = _grass(rng, camera)
    x, z = camera.ground_maps()
    soft = np.maximum(z * 0.008, 0.04)
    middle = camera.at(0.5, 0.62)[1]
    bend = middle + 0.6 * np.sin(x * 0.18 + rng.uniform(0, 6))
    _put(picture, _between(z, bend - 1.1, bend + 1.5, soft), _paving(rng, camera, (145, 155, 162)))
    place = Place(camera, picture)
    far = int(0.22 * height)
    hedge, _ = foliage(rng, far + 20, width, (40, 75, 58))
    mask = np.zeros((height, width), np.float32)
    mask[:far] = 1
    ragged = (noise(rng, 64, width, 8, 4)[0] * 4).astype(int)
    for column in range(width):
        mask[far:far + max(ragged[column] + 4, 0), column] = 1
    whole = np.zeros_like(picture)
    whole[:far + 20] = hedge
    _put(picture, mask, whole)
    for across in (rng.uniform(0.1, 0.25), rng.uniform(0.7, 0.9)):
        _post(place, rng, across, rng.uniform(0.42, 0.5), 6.0, 0.5, (55, 70, 85), lamp=False)
    _post(place, rng, rng.uniform(0.4, 0.6), 0.9, 5.0, 0.1)
    return _finish(place, rng)


def lot(rng, width=640, height=480, above=9.0, full=0.6, keep=()):
    """A car park with marked bays; `keep` are numbers of bays that stay empty."""
    camera = Camera(width, height, above, -0.12, 1.0, yaw=rng.uniform(-0.06, 0.06))
    picture = _asphalt(rng, camera, np.array((110, 110, 108)) * rng.uniform(0.85, 1.1))
    x, z = camera.ground_maps()
    soft = np.maximum(z * 0.004, 0.03)
    row = camera.at(0.5, 0.36)[1]
    bay = _between(z, row - 2.6, row + 2.6, soft)
    lines = _between(np.mod(x, 2.7), 1.35 - 0.06, 1.35 + 0.06, soft) * bay
    _put(picture, lines.astype(np.float32), np.float32((205, 205, 205)))
    _put(picture, np.clip((z - row - 3.2) / soft, 0, 1), _grass(rng, camera))
    place = Place(camera, picture)
    place.row = row
    for _ in range(7):
        far = row + rng.uniform(4, 9)
        column, line = camera.project(rng.uniform(-12, 12), 0, far)
        _bush(place, rng, column / width, line / height, rng.uniform(1.2, 2.4), hides=False)
    place.bays = []
    for number in range(-3, 4):
        centre = 2.7 * number
        column, line = camera.project(centre, 0, row)
        if not 0.03 < column / width < 0.97:
            continue
        place.bays.append(centre)
        if number in keep or rng.random() > full:
            continue
        parked(place, rng, column / width, line / height, rng.choice([-1, 1]) * np.pi / 2, rng.choice(["car", "estate"]))
    place.post = lambda: _post(place, rng, rng.uniform(0.2, 0.8), rng.uniform(0.8, 0.88), 7)
    return _finish(place, rng)


def shore(rng, width=480, height=360):
    """A quay, water, and the other bank."""
    place = street(rng, width, height, 6.0, -0.05, cars=0, posts=1)
    camera, picture = place.camera, place.picture
    z = camera.ground_maps()[1]
    far, near = camera.at(0.5, 0.3)[1], camera.at(0.5, 0.6)[1]
    place.water = _between(z, near, far, np.maximum(z * 0.004, 0.03)).astype(np.float32)
    quay = _paving(rng, camera, (140, 145, 150))
    _put(picture, (z < near).astype(np.float32), quay)
    _put(picture, place.water, np.float32((105, 90, 70)))
    return place


def dark(place, rng, ambient=0.2, lamps=2):
    """The place at night, with pools of light."""
    camera = place.camera
    x, z = camera.ground_maps()
    light = np.full(place.picture.shape[:2], ambient, np.float32)
    for _ in range(lamps):
        at_x, at_z = camera.at(rng.uniform(0.1, 0.9), rng.uniform(0.35, 0.7))
        light += 0.5 * np.exp(-((x - at_x) ** 2 + (z - at_z) ** 2) / 18).astype(np.float32)
    place.light = light
    place.picture = place.picture * light[..., None] * np.float32((0.8, 0.95, 1.1))
    return place
