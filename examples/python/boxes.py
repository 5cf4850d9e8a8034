#!/usr/bin/python3
"""Draws boxes around what moves in a video. Requires the Python packages lightmotion, numpy and cv2 (OpenCV).

usage: boxes.py VIDEO OUTPUT.avi [--sensitivity 1-5]
"""
import argparse
import sys

import cv2
import lightmotion

GREEN = (0, 255, 0)


def draw(video: str, output: str, sensitivity: int) -> str:
    capture = cv2.VideoCapture(video)
    if not capture.isOpened():
        raise OSError(f"{video}: cannot be opened as a video")
    rate = capture.get(cv2.CAP_PROP_FPS) or 25
    writer = None
    frames = moving = 0
    for image, _, boxes in lightmotion.detect(capture, sensitivity=sensitivity):
        if writer is None:
            height, width, _ = image.shape
            writer = cv2.VideoWriter(output, cv2.VideoWriter_fourcc(*"MJPG"), rate, (width, height))
            if not writer.isOpened():
                raise OSError(f"{output}: cannot be written")
        for box in boxes:
            cv2.rectangle(image, (box.x, box.y), (box.x + box.width - 1, box.y + box.height - 1), GREEN, 2)
        writer.write(image)
        frames += 1
        moving += bool(boxes)
    if writer is not None:
        writer.release()
    return f"{output}: {frames} frames, {moving} with motion"


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0] if __doc__ else None)
    parser.add_argument("video")
    parser.add_argument("output")
    parser.add_argument("--sensitivity", type=int, choices=range(1, 6), default=3)
    arguments = parser.parse_args()
    try:
        print(draw(arguments.video, arguments.output, arguments.sensitivity))
    except (OSError, lightmotion.Error) as error:
        sys.exit(f"boxes.py: {error}")


if __name__ == "__main__":
    main()
