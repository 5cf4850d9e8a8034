"""Masks: pixels counted by hand."""
import numpy as np
from quality.measures import masks
from quality.result import Result
from small import truth


def test_pixels():
    scene = truth([[]])
    label = np.zeros((100, 100), np.uint8)
    label[0:10, 0:10] = 255   # 100 pixels of an object
    label[20:30, 0:10] = 50   # shadow: background
    label[40:50, 0:10] = 170  # unknown
    label[60:70, 0:10] = 85   # outside the region
    scene.add_mask(label)
    mask = np.zeros((100, 100), np.uint8)
    mask[0:5, 0:10] = 1       # 50 right, 50 missed
    mask[20:22, 0:10] = 1     # 20 false
    mask[40:70, 0:10] = 1     # 200 that nobody counts, and 100 of background between: false
    told = masks.measure(scene, Result([[]], [], masks=[mask]))
    assert told["mask_recall"] == 0.5
    assert told["mask_precision"] == 50 / 170
    assert told["mask_f1"] == 100 / (100 + 50 + 120)
