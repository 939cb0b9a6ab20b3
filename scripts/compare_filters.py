#!/usr/bin/env python3
"""Measures other filters beside libvorel and prints the tables of docs/comparison.md and README.md.

scripts/compare_filters.sh fetches what this needs and runs it. Filters see the chroma planes of
frames that `vorel noise` made noisy; luma stays as it is for all of them. Each has the setting, of
those listed in other_filters.py, that gives the best mean chroma PSNR at that noise level.

    scripts/compare_filters.py BUILD_DIR OUTPUT_DIR [--rounds N]
"""
import argparse
import ctypes
import json
import os
import pathlib
import shutil
import subprocess

import cv2
import numpy as np

from other_filters import FILTERS, timed

ROOT = pathlib.Path(__file__).resolve().parent.parent
LEVELS = {"weak": 1, "middle": 8, "strong": 64}  # gains of vorel noise
WIDEST = 1280          # larger pictures are scaled down, so that they are clean
PIECE = 512, 384       # the middle of each is what is measured
TIMED = 1920, 1080
EDGE_SHARE = 0.05      # of the samples: where the clean picture's chroma changes most
NV21 = 0x3132564E
SAMPLE = ROOT / "samples/meadow.jpg"
BACKGROUNDS = "usr/share/backgrounds"
MEASURED = [
    *(f"mate-backgrounds/{BACKGROUNDS}/mate/{name}.jpg" for name in (
        "nature/Dune", "nature/Garden", "nature/LadyBird", "nature/RainDrops", "nature/TwoWings",
        "abstract/Elephants")),
    f"lomiri-wallpapers-20.04/{BACKGROUNDS}/Kleiber_by_Lukas_Baubkus.jpg",
    *(f"python3-skimage/usr/lib/python3/dist-packages/skimage/data/{name}" for name in (
        "astronaut.png", "coffee.png", "motorcycle_left.png", "rocket.jpg"))]
TUNED_ON = f"lomiri-wallpapers-16.04/{BACKGROUNDS}"
NOT_TUNED_ON = "seeding"  # the sample picture
IN_README = {"OpenCV Gaussian": "Gaussian blur", "OpenCV guided by luma": "guided filter",
             "OpenCV non-local means": "non-local means", "ffmpeg bm3d": "BM3D",
             "libvorel, -n auto": "**libvorel**"}


def run(*command):
    return subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True).stdout


def scaled(path, width):
    image = cv2.imread(str(path))
    scale = min(1, width / image.shape[1])
    return cv2.resize(image, None, fx=scale, fy=scale, interpolation=cv2.INTER_AREA)


# --- Pictures ---

class Pictures:
    """Clean pictures of one size and their noisy forms, as NV21 files and as planes."""

    def __init__(self, vorel, folder, images):
        self.vorel, self.folder = vorel, folder
        self.count, (self.height, self.width) = len(images), images[0].shape[:2]
        folder.mkdir(parents=True, exist_ok=True)
        for i, image in enumerate(images):
            png = folder / f"{i}.png"
            cv2.imwrite(str(png), image)
            run(vorel, "denoise", png, "-o", self.file("clean", i), "--tuning", "none", "-n", 0, "--force")
            for level, gain in LEVELS.items():
                run(vorel, "noise", png, "-o", self.file(level, i), "--gain", gain, "--seed", i, "--force")
        self.luma, self.chroma = {}, {}
        for form in ("clean", *LEVELS):
            self.luma[form], self.chroma[form] = self.read(form)

    def file(self, form, i):
        return self.folder / f"{i}_{form}_{self.width}x{self.height}.nv21"

    def read(self, form):
        frames = np.stack([np.fromfile(self.file(form, i), np.uint8) for i in range(self.count)])
        luma, pairs = np.split(frames, [self.width * self.height], 1)
        pairs = pairs.reshape(self.count, self.height // 2, self.width // 2, 2)
        return luma.reshape(self.count, self.height, self.width), np.stack([pairs[..., 1], pairs[..., 0]], 1)

    def write(self, form, level, chroma):
        for i in range(self.count):
            pairs = np.stack([chroma[i, 1], chroma[i, 0]], -1)
            np.concatenate([self.luma[level][i].ravel(), pairs.ravel()]).tofile(self.file(form, i))

    def edges(self):
        """Where the clean chroma changes most, for each picture and plane."""
        masks = []
        for planes in self.chroma["clean"]:
            smooth = [cv2.GaussianBlur(plane, (0, 0), 1).astype(np.float32) for plane in planes]
            slope = sum(np.hypot(cv2.Sobel(p, -1, 1, 0), cv2.Sobel(p, -1, 0, 1)) for p in smooth)
            masks.append(slope > np.quantile(slope, 1 - EDGE_SHARE))
        return np.array(masks)[:, None]

    def psnr(self, chroma, where=None):
        """Mean over planes and pictures."""
        squares = np.square(chroma.astype(float) - self.chroma["clean"])
        where = np.ones_like(squares) if where is None else where
        errors = (squares * where).sum((2, 3)) / where.sum((2, 3))
        return (10 * np.log10(255 ** 2 / np.maximum(errors, .01))).mean()

    def colour_difference(self, level, chroma):
        self.write("out", level, chroma)
        said = [run(self.vorel, "compare", self.file("out", i), "--truth", self.file("clean", i), "--json")
                for i in range(self.count)]
        return np.mean([json.loads(text)["pictures"][0]["ciede2000"] for text in said])


# --- What is compared ---

class Other:
    """Another filter, with the best setting at each level, and what one setting for all gives."""

    def __init__(self, other, pictures):
        self.name, self.other = other.name, other
        psnr = np.array([[pictures.psnr(other.run(pictures.luma[level], pictures.chroma[level], setting))
                          for setting in other.settings] for level in LEVELS])
        self.chosen = {level: other.settings[row.argmax()] for level, row in zip(LEVELS, psnr)}
        self.one_for_all = dict(zip(LEVELS, psnr[:, psnr.mean(0).argmax()]))
        print(f"{self.name}: {self.chosen}", flush=True)

    def setting(self, level):
        return ", ".join(f"{key} {value}" for key, value in self.chosen[level].items())

    def denoise(self, pictures, level):
        return self.other.run(pictures.luma[level], pictures.chroma[level], self.chosen[level])

    def milliseconds(self, pictures, level):
        return self.other.milliseconds(pictures.luma[level], pictures.chroma[level], self.chosen[level])


class Vorel:
    """libvorel with a tuning file; the noise index is known or estimated."""

    def __init__(self, name, build, tuning, folder, auto):
        self.name, self.tuning, self.auto, self.vorel = name, tuning, auto, build / "tools/vorel"
        folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(tuning, folder / "vorel_NOTHING.json")
        os.environ["VOREL_FIRMWARE_DIR"] = str(folder)
        self.library = ctypes.CDLL(str(build / "libvorel.so"))
        getattr(self.library, "__android_log_set_minimum_priority")(7)
        self.library.vorel_init.restype = ctypes.c_void_p
        self.library.vorel_run.argtypes = [ctypes.c_void_p] * 3 + [ctypes.c_int] * 4
        self.handle = self.library.vorel_init(*TIMED, 0, 0)

    def setting(self, level):
        return "" if self.auto else f"-n {100 * LEVELS[level]}"

    def denoise(self, pictures, level):
        for i in range(pictures.count):
            run(self.vorel, "denoise", pictures.file(level, i), "-o", pictures.file("out", i), "--tuning",
                self.tuning, "-n", "auto" if self.auto else 100 * LEVELS[level], "--force")
        return pictures.read("out")[1]

    def milliseconds(self, pictures, level):
        """Of vorel_run in this process; every frame is the result of the one before."""
        width, height = TIMED
        frame = np.fromfile(pictures.file(level, 0), np.uint8)
        luma = frame.ctypes.data
        return timed(lambda: self.library.vorel_run(self.handle, luma, luma + width * height, width, height,
                                                    NV21, 100 * LEVELS[level]))


def tuned_file(vorel, out):
    """Made by vorel tune from photographs that are not measured."""
    folder, tuning = out / "tuned_on", out / "tuned.json"
    folder.mkdir(exist_ok=True)
    for path in sorted((out / "packages" / TUNED_ON).glob("*.jpg")):
        if NOT_TUNED_ON not in path.name:
            cv2.imwrite(str(folder / f"{path.stem}.png"), scaled(path, WIDEST))
    indices = ",".join(str(100 * gain) for gain in LEVELS.values())
    run(vorel, "tune", folder, "--clean", "--noise-index", indices, "-o", tuning, "--force", "--quiet")
    return tuning


# --- Figures ---

class Tables:
    def __init__(self, pictures, ways):
        edges = pictures.edges()
        self.ways, self.figures, self.times = ways, {}, {}
        for level in LEVELS:
            for way in [None, *ways]:
                chroma = way.denoise(pictures, level) if way else pictures.chroma[level]
                self.figures[level, way and way.name] = np.array([
                    pictures.psnr(chroma), pictures.psnr(chroma, edges),
                    pictures.colour_difference(level, chroma)])
            print(f"measured: {level}", flush=True)

    def time(self, frame, rounds):
        """In turn, so that whatever else the machine does meets all of them."""
        for _ in range(rounds):
            for level in LEVELS:
                for way in self.ways:
                    self.times.setdefault((level, way.name), []).append(way.milliseconds(frame, level))

    def milliseconds(self, level, name):
        """Elapsed, and of the processors."""
        return [f"{value:.1f}" if value < 10 else f"{value:.0f}"
                for value in np.median(self.times[level, name], axis=0)]

    def gains(self, level, name):
        return [f"{value:+.1f}" for value in (self.figures[level, name] - self.figures[level, None])[:2]]

    def print_level(self, level):
        psnr, _, colour = self.figures[level, None]
        print(f"\n### {level.capitalize()} noise, gain {LEVELS[level]}\n\n"
              "| filter | setting | PSNR, dB | gain | at edges | CIEDE2000 | ms | processor, ms |\n"
              f"|:--|:--|--:|--:|--:|--:|--:|--:|\n| noisy | | {psnr:.1f} | | | {colour:.2f} | | |")
        for way in self.ways:
            psnr, _, colour = self.figures[level, way.name]
            cells = [way.name, way.setting(level), f"{psnr:.1f}", *self.gains(level, way.name),
                     f"{colour:.2f}", *self.milliseconds(level, way.name)]
            print(f"| {' | '.join(cells)} |")

    def print_short(self):
        """Of README.md: each with one setting for all levels."""
        print(f"\n| | {' | '.join(f'{level} noise' for level in LEVELS)} | ms at 1080p |\n|:--|--:|--:|--:|--:|")
        for way in self.ways:
            if way.name in IN_README:
                psnr = getattr(way, "one_for_all", {level: self.figures[level, way.name][0] for level in LEVELS})
                gains = [f"{psnr[level] - self.figures[level, None][0]:+.1f}" for level in LEVELS]
                print(f"| {IN_README[way.name]} | {' | '.join(gains)} | {self.milliseconds('middle', way.name)[0]} |")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    options = parser.parse_args()
    out, vorel = options.out, options.build / "tools/vorel"

    images = [scaled(path, WIDEST) for path in [SAMPLE, *(out / "packages" / name for name in MEASURED)]]
    left_top = [((image.shape[1] - PIECE[0]) // 2, (image.shape[0] - PIECE[1]) // 2) for image in images]
    pictures = Pictures(vorel, out / "pieces", [
        image[y:y + PIECE[1], x:x + PIECE[0]] for image, (x, y) in zip(images, left_top)])
    ways = [Other(other, pictures) for other in FILTERS]
    samples = ROOT / "tuning/samples"
    for name, tuning, auto in (("libvorel, -n auto", samples / "vorel_NOTHING.json", True),
                               ("libvorel, tuned file", tuned_file(vorel, out), False),
                               ("libvorel, spatial path alone", samples / "vorel_WT1240.json", False)):
        ways.append(Vorel(name, options.build, tuning, out / "firmware" / name, auto))
    tables = Tables(pictures, ways)
    tables.time(Pictures(vorel, out / "timed", [cv2.resize(cv2.imread(str(SAMPLE)), TIMED,
                                                           interpolation=cv2.INTER_AREA)]), options.rounds)
    for level in LEVELS:
        tables.print_level(level)
    tables.print_short()


if __name__ == "__main__":
    main()
