"""Frames to video files, as cameras encode them."""
import subprocess


def encoder(codec, width, height, fps, path):
    """FFmpeg, to which frames in blue, green, red are written."""
    kind, _, rate = codec.partition("-")
    if kind == "lossless":
        how = ["-c:v", "ffv1", "-pix_fmt", "bgr0"]
    elif kind == "mjpeg":
        how = ["-c:v", "mjpeg", "-q:v", rate, "-pix_fmt", "yuvj420p"]
    else:  # as network cameras encode: no frames that refer forward, a key frame every four seconds
        how = ["-c:v", "libx264", "-preset", "superfast", "-bf", "0", "-g", str(int(4 * fps)), "-pix_fmt", "yuv420p",
               "-threads", "1"]
        how += ["-b:v", rate, "-maxrate", rate, "-bufsize", rate] if rate.endswith("k") else ["-crf", rate]
    return subprocess.Popen(["ffmpeg", "-v", "error", "-y", "-f", "rawvideo", "-pix_fmt", "bgr24", "-s", f"{width}x{height}",
                             "-r", f"{fps}", "-i", "-", *how, "-f", "matroska", str(path)], stdin=subprocess.PIPE)
