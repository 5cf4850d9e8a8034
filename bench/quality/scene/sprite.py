"""Something drawn with soft edges that can be put into a picture."""
import cv2
import numpy as np

SHIFT = 4  # fractional bits of OpenCV's drawing


class Sprite:
    """Drawing surface for a part of the picture; coordinates are those of the whole picture, in pixels."""

    def __init__(self, left, top, right, bottom, margin=3):
        self.left, self.top = int(np.floor(left)) - margin, int(np.floor(top)) - margin
        self.width = max(int(np.ceil(right)) + margin - self.left, 2)
        self.height = max(int(np.ceil(bottom)) + margin - self.top, 2)
        # Drawn larger and reduced: soft edges that are exact to a fraction of a pixel.
        self.factor = 4 if self.height < 120 else 3 if self.height < 220 else 2
        self.surface = np.zeros((self.height * self.factor, self.width * self.factor, 4), np.uint8)

    def _points(self, points):
        local = (np.asarray(points, np.float64) - (self.left, self.top)) * self.factor - 0.5
        return np.round(local * (1 << SHIFT)).astype(np.int32).reshape(-1, 1, 2)

    def polygon(self, points, colour):
        cv2.fillPoly(self.surface, [self._points(points)], (*_bytes(colour), 255), cv2.LINE_8, SHIFT)

    def line(self, start, end, width, colour):
        ends = self._points([start, end])
        thickness = max(int(round(width * self.factor)), 1)
        cv2.line(self.surface, ends[0, 0].tolist(), ends[1, 0].tolist(), (*_bytes(colour), 255), thickness,
                 cv2.LINE_8, SHIFT)

    def ellipse(self, centre, half_width, half_height, colour, angle=0.0):
        axes = [max(int(round(half * self.factor * (1 << SHIFT))), 1) for half in (half_width, half_height)]
        cv2.ellipse(self.surface, self._points([centre])[0, 0].tolist(), axes, angle, 0, 360, (*_bytes(colour), 255),
                    -1, cv2.LINE_8, SHIFT)

    def finish(self, moved=(0.0, 0.0), softness=0.5):
        """Patch of the colours times the alpha, and the alpha, blurred along the way moved while the shutter is open."""
        patch = cv2.resize(self.surface, (self.width, self.height), interpolation=cv2.INTER_AREA).astype(np.float32)
        length = float(np.hypot(*moved))
        if length > 0.7:
            patch = _grown(patch, self, int(np.ceil(length / 2)) + 1)
            patch = _smeared(patch, moved, length)
        if softness:
            patch = cv2.GaussianBlur(patch, (0, 0), softness, borderType=cv2.BORDER_CONSTANT)
        # OpenCV averages the colours with the black around them: they are times the alpha already.
        return np.ascontiguousarray(patch[..., :3]), patch[..., 3] * (1 / 255)


def _bytes(colour):
    return tuple(int(min(max(value, 0), 255)) for value in colour)


def _grown(patch, sprite, by):
    sprite.left, sprite.top = sprite.left - by, sprite.top - by
    return cv2.copyMakeBorder(patch, by, by, by, by, cv2.BORDER_CONSTANT)


def _smeared(patch, moved, length):
    """Long ways at a part of the resolution, which they blur anyway."""
    reduced = int(np.ceil(length / 9))
    if reduced == 1:
        return cv2.filter2D(patch, -1, _streak(moved), borderType=cv2.BORDER_CONSTANT)
    height, width = patch.shape[:2]
    small = cv2.resize(patch, (max(width // reduced, 1), max(height // reduced, 1)), interpolation=cv2.INTER_AREA)
    small = cv2.filter2D(small, -1, _streak(np.array(moved) / reduced), borderType=cv2.BORDER_CONSTANT)
    return cv2.resize(small, (width, height), interpolation=cv2.INTER_LINEAR)


def _streak(moved):
    half = int(np.ceil(np.hypot(*moved) / 2)) + 1
    kernel = np.zeros((2 * half + 1, 2 * half + 1), np.float32)
    ends = [(half + sign * moved[0] / 2, half + sign * moved[1] / 2) for sign in (-1, 1)]
    for share in np.linspace(0, 1, 4 * half + 1):
        x, y = (ends[0][i] + (ends[1][i] - ends[0][i]) * share for i in (0, 1))
        column, row = int(np.floor(x)), int(np.floor(y))
        for at_row, at_column, weight in ((row, column, (1 - x + column) * (1 - y + row)),
                                          (row, column + 1, (x - column) * (1 - y + row)),
                                          (row + 1, column, (1 - x + column) * (y - row)),
                                          (row + 1, column + 1, (x - column) * (y - row))):
            if at_row <= 2 * half and at_column <= 2 * half:
                kernel[at_row, at_column] += weight
    return kernel / kernel.sum()
