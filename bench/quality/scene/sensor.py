"""From light to the numbers of a camera: exposure, softness, noise."""
import cv2
import numpy as np


class Sensor:
    """`sigma`: noise in grey levels at middle grey; half of it remains in the dark, more in the light. `blotches`: pixels
    over which it is smoothed."""

    def __init__(self, rng, shape, sigma=1.6, colour_noise=0.7, sharpness=0.35,
                 blotches=0.0):
        self.rng, self.sigma, self.sharpness = rng, sigma, sharpness
        height, width = shape
        bank = []
        for _ in range(6):
            grey = rng.standard_normal((height + 64, width + 64), np.float32)
            colour = rng.standard_normal((height + 64, width + 64, 3), np.float32)
            if colour_noise:
                colour = cv2.GaussianBlur(colour, (3, 3), 0) * 2.0  # chroma is interpolated between pixels
            mixed = grey[..., None] + colour_noise * colour
            if blotches:
                mixed = cv2.GaussianBlur(mixed, (0, 0), blotches)
            bank.append(mixed / np.float32(mixed[::4, ::4].std()))
        self.bank = bank
        self.exposure = lambda time, picture: 1.0

    def take(self, picture, time):
        height, width = picture.shape[:2]
        factor = float(self.exposure(time, picture))
        if self.sharpness:
            picture = cv2.GaussianBlur(picture, (3, 3), self.sharpness + 0.3)
        if not self.sigma:
            return cv2.convertScaleAbs(picture, alpha=factor)
        plane = self.bank[self.rng.integers(len(self.bank))]
        y, x = self.rng.integers(0, 64, 2)
        # The noise follows the light, for which a small picture will do.
        small = cv2.resize(picture, (width // 4, height // 4), interpolation=cv2.INTER_AREA)
        small = cv2.sqrt(np.maximum(small, 0) * (0.75 / 128 * factor * self.sigma ** 2) + 0.25 * self.sigma ** 2)
        grain = cv2.multiply(plane[y:y + height, x:x + width], cv2.resize(small, (width, height)))
        taken = cv2.addWeighted(picture, factor, grain, 1, 0)
        return cv2.convertScaleAbs(cv2.max(taken, 0))
