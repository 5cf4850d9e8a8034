"""From light to the numbers of a camera: exposure, softness, noise."""
import cv2
import numpy as np


class Sensor:
    """`sigma`: noise in grey levels at middle grey; half of it remains in the dark, more in the light."""

    def __init__(self, rng, shape, sigma=1.6, colour_noise=0.7, sharpness=0.35):
        self.rng, self.sigma, self.sharpness = rng, sigma, sharpness
        height, width = shape
        bank = []
        for _ in range(10):
            grey = rng.standard_normal((height + 64, width + 64), np.float32)
            colour = rng.standard_normal((height + 64, width + 64, 3), np.float32)
            if colour_noise:
                colour = cv2.GaussianBlur(colour, (3, 3), 0) * 2.0  # chroma is interpolated between pixels
            mixed = grey[..., None] + colour_noise * colour
            bank.append(mixed / mixed.std())
        self.bank = bank
        self.exposure = lambda time, picture: 1.0

    def take(self, picture, time):
        height, width = picture.shape[:2]
        picture *= np.float32(self.exposure(time, picture))
        if self.sharpness:
            picture = cv2.GaussianBlur(picture, (0, 0), self.sharpness + 0.3)
        if self.sigma:
            plane = self.bank[self.rng.integers(len(self.bank))]
            y, x = self.rng.integers(0, 64, 2)
            grain = plane[y:y + height, x:x + width]
            if self.rng.random() < 0.5:
                grain = grain[:, ::-1]
            weight = np.sqrt(np.clip(picture[..., 1], 0, 255) * (0.75 / 128) + 0.25) * self.sigma
            picture = picture + grain * weight[..., None]
        return cv2.convertScaleAbs(np.clip(picture, 0, 255))
