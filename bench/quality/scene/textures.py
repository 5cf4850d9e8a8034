"""Textures from noise. Colours are blue, green, red; 0 to 255 in float32."""
import cv2
import numpy as np


def noise(rng, height, width, first=4, octaves=5, keep=0.55):
    """Noise of several octaves, mean 0, deviation 1, that tiles; `first` is the number of cells of the coarsest."""
    out = np.zeros((height, width), np.float32)
    weight = 1.0
    for octave in range(octaves):
        cells = first << octave
        if cells > min(height, width):
            break
        grid = rng.standard_normal((cells, cells)).astype(np.float32)
        grid = cv2.copyMakeBorder(grid, 2, 2, 2, 2, cv2.BORDER_WRAP)
        step_y, step_x = height / cells, width / cells
        large = cv2.resize(grid, None, fx=step_x, fy=step_y, interpolation=cv2.INTER_CUBIC)
        top, left = int(2 * step_y), int(2 * step_x)
        out += weight * large[top:top + height, left:left + width]
        weight *= keep
    return (out - out.mean()) / (out.std() + 1e-6)


def tinted(colour, grain, contrast):
    """A plane of one colour, made lighter and darker by noise."""
    return np.asarray(colour, np.float32) * (1 + contrast * grain[..., None])


def on_ground(camera, tile, metres):
    """A tile of that many metres, repeated on the ground, as the camera sees it."""
    x, z = camera.ground_maps()
    size = tile.shape[0] / metres
    # Reduced where several texels share a pixel, so that far ground does not glitter.
    depth = camera.focal / np.maximum(x * camera.sin + z * camera.cos, 0.3)
    fine = cv2.remap(tile, (x * size) % tile.shape[1], (z * size) % tile.shape[0], cv2.INTER_LINEAR,
                     borderMode=cv2.BORDER_WRAP)
    small = cv2.GaussianBlur(tile, (0, 0), 6, borderType=cv2.BORDER_DEFAULT)
    soft = cv2.remap(small, (x * size) % tile.shape[1], (z * size) % tile.shape[0], cv2.INTER_LINEAR,
                     borderMode=cv2.BORDER_WRAP)
    share = np.clip(depth / size * 1.5, 0, 1)
    if tile.ndim == 3:
        share = share[..., None]
    return soft + (fine - soft) * share


def bricks(rng, height, width, colour, course=8):
    """A brick wall with mortar, bricks of slightly different colours, and stains."""
    rows, columns = np.mgrid[0:height, 0:width]
    level = rows // course
    shifted = columns + (level % 2) * course
    brick = level * 997 + shifted // (2 * course) * 31
    shade = rng.standard_normal(4096).astype(np.float32)[brick % 4096]
    wall = tinted(colour, shade, 0.06)
    mortar = (rows % course == 0) | (shifted % (2 * course) == 0)
    wall[mortar] = wall[mortar] * 0.6 + 50
    return wall * (1 + 0.07 * noise(rng, height, width)[..., None])


def windows(picture, rng, columns, rows, top, bottom, glass=(70, 60, 55)):
    """Rows of framed windows between two picture rows."""
    height, width = picture.shape[:2]
    cell_w, cell_h = width / columns, (bottom - top) / rows
    for row in range(rows):
        for column in range(columns):
            x0, y0 = int((column + 0.22) * cell_w), max(int(top + (row + 0.2) * cell_h), 0)
            x1, y1 = int((column + 0.78) * cell_w), int(top + (row + 0.85) * cell_h)
            if x1 - x0 < 4 or y1 - y0 < 4:
                continue
            frame = 1 + (x1 - x0) // 18
            cv2.rectangle(picture, (x0 - frame, y0 - frame), (x1 + frame, y1 + frame), (190, 195, 200), -1)
            ramp = np.linspace(1.5, 0.7, y1 - y0, dtype=np.float32)[:, None, None]
            picture[y0:y1, x0:x1] = np.float32(glass) * ramp * rng.uniform(0.6, 1.5)
            middle = (x0 + x1) // 2
            cv2.line(picture, (middle, y0), (middle, y1), (180, 185, 190), frame)
    return picture


def foliage(rng, height, width, colour=(45, 95, 60)):
    """Leaves: colour and cover (0 to 1)."""
    grain = noise(rng, height, width, 8, 5, 0.75)
    depth = noise(rng, height, width, 3, 3)
    colours = tinted(colour, grain * 0.8 + depth * 0.6, 0.3)
    rows, columns = np.mgrid[-1:1:height * 1j, -1:1:width * 1j]
    cover = 0.9 - np.sqrt(rows ** 2 + columns ** 2) + 0.12 * np.clip(grain, -2, 0.8)
    return np.clip(colours, 8, 230).astype(np.float32), np.clip(cover * 9, 0, 1).astype(np.float32)
