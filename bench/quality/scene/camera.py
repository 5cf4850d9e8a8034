"""A camera above flat ground: where points of the world are in the picture, and the reverse."""
import numpy as np


class Camera:
    """World: x to the right, z away from the camera, y up, in metres. `yaw` turns the world below the camera."""

    def __init__(self, width, height, above, horizon=-0.15, lens=0.9, yaw=0.0):
        self.width, self.height = width, height
        self.above = above  # height of the camera in metres
        self.horizon = horizon * height  # row
        self.focal = lens * width
        self.cos, self.sin = np.cos(yaw), np.sin(yaw)

    def project(self, x, y, z):
        """Picture column and row of a point; points behind the camera are put right before it."""
        side = x * self.cos - z * self.sin
        depth = np.maximum(x * self.sin + z * self.cos, 0.3)
        return self.width / 2 + self.focal * side / depth, self.horizon + self.focal * (self.above - y) / depth

    def ground(self, column, row):
        """World x and z of the ground that a pixel shows."""
        depth = self.focal * self.above / np.maximum(row - self.horizon, 1e-3)
        side = (column - self.width / 2) * depth / self.focal
        return side * self.cos + depth * self.sin, -side * self.sin + depth * self.cos

    def at(self, across, down):
        """World x and z of the ground at fractions of the picture."""
        return np.array(self.ground(across * self.width, down * self.height))

    def scale(self, x, z):
        """Pixels per metre there."""
        return self.focal / max(x * self.sin + z * self.cos, 0.3)

    def ground_maps(self):
        """World x and z for every pixel below the horizon; far away above it."""
        rows, columns = np.mgrid[0:self.height, 0:self.width].astype(np.float32)
        x, z = self.ground(columns + 0.5, np.maximum(rows + 0.5, self.horizon + 1))
        return x.astype(np.float32), z.astype(np.float32)
