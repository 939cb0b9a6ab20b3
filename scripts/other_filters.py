"""The filters that compare_filters.py holds beside libvorel: how each is run on the chroma planes of
frames, how it is timed, and the settings that it may choose from.

`luma` and `chroma` are arrays of bytes: pictures x rows x columns, and pictures x 2 x rows x columns."""
import itertools
import re
import subprocess
import time

import cv2
import numpy as np


def grid(**values):
    """Every combination of the values, each a dictionary."""
    return [dict(zip(values, chosen)) for chosen in itertools.product(*values.values())]


class Ffmpeg:
    """A filter of ffmpeg. The planes go through it as grey frames."""

    def __init__(self, name, settings):
        self.name, self.filter, self.settings = f"ffmpeg {name}", name, settings

    def ffmpeg(self, chroma, setting, times, sink):
        height, width = chroma.shape[-2:]
        options = ":".join(f"{key}={value}" for key, value in setting.items())
        return subprocess.run(
            ["ffmpeg", "-hide_banner", "-benchmark", "-f", "rawvideo", "-pix_fmt", "gray",
             "-s", f"{width}x{height}", "-i", "pipe:0", "-vf", f"{self.filter}={options}" if setting else "null", "-f", sink, "pipe:1"],
            input=chroma.tobytes() * times, check=True, capture_output=True)

    def run(self, luma, chroma, setting):
        done = self.ffmpeg(chroma, setting, 1, "rawvideo")
        return np.frombuffer(done.stdout, np.uint8).reshape(chroma.shape)

    def seconds(self, chroma, setting, times):
        """Elapsed time and processor time of all threads, as ffmpeg itself tells them."""
        said = self.ffmpeg(chroma, setting, times, "null").stderr.decode()
        user, system, elapsed = (float(re.search(rf"{what}time=([\d.]+)", said)[1]) for what in "usr")
        return np.array([elapsed, user + system])

    def milliseconds(self, luma, chroma, setting):
        """Of one frame. Reading it and starting up is what a run with the filter `null` takes."""
        times = int(np.clip(.5 / max(self.seconds(chroma, setting, 1)[0], .01), 1, 50))
        filtered, read = (np.min([self.seconds(chroma, options, times) for _ in range(3)], axis=0)
                          for options in (setting, {}))
        return 1000 * (filtered - read) / times


def timed(call, seconds=.3):
    """Least elapsed time of a call in this process, and least processor time, milliseconds."""
    begin, taken = time.perf_counter(), []
    while not taken or time.perf_counter() < begin + seconds:
        start = time.perf_counter(), time.process_time()
        call()
        taken.append((time.perf_counter() - start[0], time.process_time() - start[1]))
    return 1000 * np.min(taken, axis=0)


class OpenCv:
    """A function of OpenCV. `call` gets the planes of one picture and the setting's values."""

    def __init__(self, name, settings, call):
        self.name, self.settings, self.call = f"OpenCV {name}", settings, call

    def run(self, luma, chroma, setting):
        return np.array([self.call(y, uv, **setting) for y, uv in zip(luma, chroma)])

    def milliseconds(self, luma, chroma, setting):
        return timed(lambda: self.call(luma[0], chroma[0], **setting))


def each(call):
    return lambda y, uv, **setting: [call(plane, **setting) for plane in uv]


def guided_by_luma(y, uv, radius, eps):
    guide = cv2.resize(y, uv.shape[:0:-1], interpolation=cv2.INTER_AREA)
    return [cv2.ximgproc.guidedFilter(guide, plane, radius, eps ** 2) for plane in uv]


def non_local_means(_, uv, h):
    """Both planes as one picture of two channels, so that each has a say in the other's weights."""
    return cv2.split(cv2.fastNlMeansDenoising(cv2.merge(uv), None, h, 7, 21))


SIGMAS = [.7, 1, 1.5, 2, 3, 4, 6]

FILTERS = [
    Ffmpeg("gblur", grid(sigma=SIGMAS)),
    Ffmpeg("bilateral", grid(sigmaS=[1, 2, 4, 8], sigmaR=[.05, .1, .2, .4])),
    Ffmpeg("nlmeans", grid(s=[4, 6, 8, 12, 18, 25])),
    Ffmpeg("vaguedenoiser", grid(threshold=[2, 4, 8, 16, 32, 64], method=["soft", "garrote"], percent=[100])),
    # With groups it matches blocks; without, it shrinks each block alone.
    Ffmpeg("bm3d", grid(sigma=[8, 16, 32, 64], block=[4, 5]) + grid(sigma=[64, 256], group=[8], mstep=[3])),
    OpenCv("Gaussian", grid(sigmaX=SIGMAS), each(lambda p, sigmaX: cv2.GaussianBlur(p, (0, 0), sigmaX))),
    OpenCv("bilateral", grid(sigmaColor=[10, 20, 40, 80, 160], sigmaSpace=[1, 2, 4]),
           each(lambda p, sigmaColor, sigmaSpace: cv2.bilateralFilter(p, -1, sigmaColor, sigmaSpace))),
    OpenCv("guided", grid(radius=[2, 4, 8], eps=[5, 10, 20, 40, 80]),
           each(lambda p, radius, eps: cv2.ximgproc.guidedFilter(p, p, radius, eps ** 2))),
    OpenCv("guided by luma", grid(radius=[2, 4, 8], eps=[2, 5, 10, 20, 40, 80]), guided_by_luma),
    OpenCv("non-local means", grid(h=[4, 6, 8, 12, 16, 24]), non_local_means),
]
