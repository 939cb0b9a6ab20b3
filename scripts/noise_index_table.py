#!/usr/bin/env python3
"""How good the noise index is that `vorel` estimates, on pictures whose clean form is known.

Makes each clean picture noisy at several gains with `vorel noise`, alters it as cameras do, denoises
it at many noise indices, and holds what `vorel measure` suggests against the best of them. Every
picture serves thrice: scaled to 960 pixels, as a part of its full size, and in parts that a drawn
camera takes (camera_pictures.py). Drawn charts are added.
Prints Markdown tables of the chroma PSNR (mean of U and V, dB) with nothing done, with the estimated
index and with the best single one. With --fit it also prints the chromaNoise_values that suit the
tuning best, the weights of tools/measure/noise_verdict.cpp, how much it should take at which doubt, and
how good the first two are on pictures that were held out. Needs python3-numpy and python3-pil
(scripts/setup.sh measure).

    scripts/noise_index_table.py BUILD_DIR PICTURE... [--tuning FILE] [--gains 1 4 16 64] [--fit]
"""
import argparse
import ctypes
import json
import multiprocessing
import os
import pathlib
import shutil
import subprocess
import tempfile
import zlib

import numpy as np
from PIL import Image, ImageDraw

import camera_pictures
from camera_pictures import as_jpeg

ROOT = pathlib.Path(__file__).resolve().parent.parent
INDICES = [round(100 * 2 ** (i / 2)) for i in range(15)]
NV21 = 0x3132564E
LEAST_ERROR = 0.05  # of squared steps: pictures that did not change have a PSNR too
FOLDS = 6
CAMERAS = 5  # that take each part of a picture
# Of doubt(), the constant last.
WEIGHTS = [-2.34, -1.28, 1.72, -.80, .46, -1.05, 3.55, 3.70, 5.88, 17.3, -1.70]
CREDIT, STRONG = .7, .6  # estimates as strong are doubted less
LEVELS = [.11, .23, .32, .46, .65, .97, 1.68, 2.64]  # estimates that belong to 100, 200, ..., 12800
TAKING = .25, 1.5  # the doubt at which half of a change is kept, and how far from it a quarter less is
LEAST_TAKEN, ALL_TAKEN = .2, .95
CAUTION = 1.35  # the odds of harm at which a picture is left alone, a logarithm
CLEAN_WEIGHT = 4  # there are four gains to each clean picture

# Their smooth backgrounds hold grain or JPEG blocks: what is taken out of their clean form is noise.
GRAINY = ["LadyBird", "Kleiber_by_Lukas_Baubkus", "Aqua", "seeding_by_Clements_Engelhardt"]


# --- Pictures ---

def even(image, width, height):
    """The middle, of a size that the library takes without padding."""
    width, height = min(width, image.width) // 32 * 32, min(height, image.height) // 32 * 32
    x, y = (image.width - width) // 2, (image.height - height) // 2
    return image.crop((x, y, x + width, y + height))


def clean_pictures(paths):
    """Of each the two whole forms, and its path for the camera."""
    pictures = {}
    for path in paths:
        image, name = Image.open(path).convert("RGB"), pathlib.Path(path).stem
        scale = min(1, 960 / image.width)
        small = image.resize((round(image.width * scale), round(image.height * scale)), Image.LANCZOS)
        pictures[name, "scaled"] = even(small, 960, 768)
        if image.width > 2000:
            pictures[name, "full size"] = even(image, 768, 768)
        pictures[name, "camera"] = path
    return pictures


def drawn_pictures():
    y, x = np.mgrid[:512, :768]
    chart = Image.new("RGB", (768, 512), (128, 128, 128))
    draw = ImageDraw.Draw(chart)
    for i in range(24):
        left, top = i % 6 * 128, i // 6 * 128
        fill = (i * 97 % 216 + 20, i * 57 % 216 + 20, i * 31 % 216 + 20) if i < 18 else 3 * (50 * (i - 18),)
        draw.rectangle([left + 10, top + 10, left + 117, top + 117], fill=fill)
    night = Image.new("RGB", (768, 512))
    draw = ImageDraw.Draw(night)
    draw.rectangle([0, 0, 300, 200], fill=(255, 255, 255))
    draw.rectangle([300, 200, 767, 511], fill=(30, 25, 22))
    draw.rectangle([600, 50, 700, 250], fill=(120, 125, 130))
    sky = np.stack([60 + y / 6, 110 + y / 7 + x / 40, 200 - y / 25], -1)
    cloth = np.stack([130 + 50 * np.sin(x * .9) * np.sin(y * .7), 110 + 40 * np.sin(x * .5 + y * .6),
                      120 + 45 * np.cos(x * .35 - y * .8)], -1)
    cloth[:, 512:] = sky[:, 512:]
    images = {"chart": chart, "night": night, "sky": sky, "cloth": cloth}
    return {(name, "drawn"): image if isinstance(image, Image.Image) else
            Image.fromarray(image.astype("uint8")) for name, image in images.items()}


def to_yuv(image):
    r, g, b = np.moveaxis(np.asarray(image, float), -1, 0)
    luma = .299 * r + .587 * g + .114 * b

    def quarter(plane):
        return (plane[::2, ::2] + plane[1::2, ::2] + plane[::2, 1::2] + plane[1::2, 1::2]) / 4
    planes = luma, 128 + quarter(b - luma) * .564, 128 + quarter(r - luma) * .713
    return [np.clip(np.rint(plane), 0, 255).astype(np.uint8) for plane in planes]


# --- What cameras do ---

def blurred(plane, sigma):
    reach = int(np.ceil(3 * sigma))
    kernel = np.exp(-np.arange(-reach, reach + 1) ** 2 / (2 * sigma * sigma))
    kernel /= kernel.sum()
    padded = np.pad(plane.astype(float), reach, "reflect")
    for axis in (0, 1):
        padded = np.apply_along_axis(np.convolve, axis, padded, kernel, "valid")
    return np.clip(np.rint(padded), 0, 255).astype(np.uint8)


def chroma(change):
    return lambda planes: [planes[0], change(planes[1]), change(planes[2])]


# name -> what happens to the noisy picture, and what to the clean one: a filter is no fault of the
# library's.
def soft(sigma):
    return chroma(lambda p: as_jpeg(blurred(p, sigma), 92)), chroma(lambda p: blurred(p, sigma))


AS_IS = chroma(lambda p: p)
KINDS = {"as made": (AS_IS, AS_IS),
         "JPEG 90": (chroma(lambda p: as_jpeg(p, 90)), AS_IS),
         "JPEG 75": (chroma(lambda p: as_jpeg(p, 75)), AS_IS),
         "filtered, JPEG 92": soft(1.0),
         "strongly filtered, JPEG 92": soft(2.0)}


# --- The library and the command ---

class Library:
    def __init__(self, build, tuning, directory):
        shutil.copy(tuning, directory / "vorel_NOTHING.json")
        os.environ["VOREL_FIRMWARE_DIR"] = str(directory)
        self.library = ctypes.CDLL(str(build / "libvorel.so"))
        self.library.vorel_init.restype = ctypes.c_void_p
        self.library.vorel_run.argtypes = [ctypes.c_void_p] * 3 + [ctypes.c_int] * 4
        for call in (self.library.vorel_release_frame_buffers, self.library.vorel_deinit):
            call.argtypes = [ctypes.c_void_p]

    def errors(self, planes, truth, strength):
        """Mean squared errors of U and V: untouched, then for each index; mean squared changes of
        each index; and the errors with `strength`, an index and what is kept of its change."""
        luma, u, v = planes
        height, width = luma.shape
        frame = np.concatenate([luma.ravel(), np.stack([v, u], -1).ravel()])
        truth = np.stack(truth[:0:-1], -1)
        before = frame[width * height:].reshape(height // 2, width // 2, 2).astype(float)
        handle = self.library.vorel_init(width, height, 0, 0)

        def denoised(index):
            out = frame.copy()
            start = out.ctypes.data
            self.library.vorel_run(handle, start, start + width * height, width, height, NV21, index)
            self.library.vorel_release_frame_buffers(handle)
            return out[width * height:].reshape(before.shape).astype(float)

        def squares(difference):
            return np.square(difference).mean((0, 1))[::-1].tolist()

        results = [denoised(index) for index in INDICES]
        index, percent = strength
        change = (denoised(index) - before) * percent / 100
        kept = before + np.sign(change) * np.floor(np.abs(change) + .5)
        self.library.vorel_deinit(handle)
        return ([squares(vu - truth) for vu in [before] + results], [squares(vu - before) for vu in results],
                squares(kept - truth))


class Measurement:
    """Of one picture in its forms; each adds a row."""

    def __init__(self, name, form, build, tuning, directory):
        self.name, self.form, self.tuning, self.directory = name, form, tuning, directory
        self.vorel, self.library, self.rows = build / "tools/vorel", Library(build, tuning, directory), []

    def add(self, kind, gain, planes, truth):
        height, width = planes[0].shape
        raw = self.directory / f"f_{width}x{height}.nv21"
        np.concatenate([planes[0].ravel(), np.stack(planes[:0:-1], -1).ravel()]).tofile(raw)
        found = json.loads(subprocess.run([self.vorel, "measure", raw, "--json", "--tuning", self.tuning],
                                          check=True, capture_output=True).stdout)["pictures"][0]
        strength = found["noise_index"] or 0, found["percent"] or 0
        truth = [plane.astype(float) for plane in truth]
        errors, changes, kept = self.library.errors(planes, truth, strength)
        self.rows.append({"name": self.name, "form": self.form, "kind": kind, "gain": gain,
                          "estimate": found["estimate"], "index": strength[0],
                          "percent": strength[1], "trial": found["trial"], "errors": errors,
                          "changes": changes, "kept": kept})

    def add_camera(self, path):
        image, rng = Image.open(path).convert("RGB"), np.random.default_rng(zlib.crc32(self.name.encode()))
        for part in camera_pictures.parts(image):
            for _ in range(CAMERAS):
                camera = camera_pictures.Camera.drawn(rng)
                self.add(f"camera, {camera.filter}", camera.iso / 100,
                         *camera_pictures.taken(part, camera, rng))


def measure_picture(job):
    (name, form), image, build, tuning, gains = job
    os.dup2(os.open(os.devnull, os.O_WRONLY), 2)  # the library's log
    with tempfile.TemporaryDirectory() as temporary:
        directory = pathlib.Path(temporary)
        measurement = Measurement(name, form, build, tuning, directory)
        if form == "camera":
            measurement.add_camera(image)
            return measurement.rows
        image.save(directory / "clean.png")
        for gain in [0] + gains:
            noisy = image
            if gain:
                subprocess.run([measurement.vorel, "noise", directory / "clean.png", "-o", directory / "noisy.png",
                                "--gain", str(gain), "--force"], check=True, stdout=subprocess.DEVNULL)
                noisy = Image.open(directory / "noisy.png").convert("RGB")
            forms = [(kind, a(to_yuv(noisy)), b(to_yuv(image))) for kind, (a, b) in KINDS.items()
                     if gain or kind in ("as made", "JPEG 90")]
            half = image.width // 2 // 16 * 16, image.height // 2 // 16 * 16
            if gain and min(half) >= 192:
                forms.append(("half size",) + tuple(to_yuv(i.resize(half, Image.BOX)) for i in (noisy, image)))
            for kind, planes, truth in forms:
                measurement.add(kind, gain, planes, truth)
    return measurement.rows


# --- Figures ---

def features(rows):
    """What doubt() in tools/measure/noise_verdict.cpp weighs, in its order."""
    def of(t):
        return [np.log(t["purity"] + .05), t["own_share"], t["coarseness"], t["to_luma"], t["bend"],
                t["evenness"], np.log(t["along_luma"] + .02), t["along_chroma"], t["untouched"],
                t["directed"], 1]
    return np.array([of(row["trial"]) if row["trial"] else [0] * len(WEIGHTS) for row in rows])


def psnr(errors):
    """Mean of both planes."""
    return 10 * np.log10(255 ** 2 / np.maximum(errors, LEAST_ERROR)).mean(-1)


class Results:
    def __init__(self, rows):
        self.rows = rows
        self.errors = np.array([row["errors"] for row in rows])
        self.changes = np.array([row["changes"] for row in rows])
        self.psnr = psnr(self.errors)
        self.estimated = psnr(np.array([row["kept"] for row in rows]))
        self.best = self.psnr.max(1)
        self.clean = np.array([row["gain"] == 0 for row in rows])
        self.drawn = np.array([row["form"] == "drawn" for row in rows])
        self.estimate = np.array([row["estimate"] or 1e-3 for row in rows])
        self.camera = np.array([row["form"] == "camera" for row in rows])
        self.taking = TAKING
        self.tried = np.array([row["trial"] is not None for row in rows])
        self.doubt = np.array([row["trial"]["doubt"] if row["trial"] else 0 for row in rows])

    def at(self, octaves, kept=1):
        """With the index 100 * 2 ^ octaves, of whose change a share is kept, not rounded."""
        place = np.clip(2 * octaves, 0, len(INDICES) - 1)
        below = np.minimum(place.astype(int), len(INDICES) - 2)
        rows, above = np.arange(len(self.rows)), (place - below)[:, None]
        error = self.errors[rows, 1 + below] * (1 - above) + self.errors[rows, 2 + below] * above
        change = self.changes[rows, below] * (1 - above) + self.changes[rows, below + 1] * above
        untouched, kept = self.errors[:, 0], np.broadcast_to(kept, len(rows))[:, None]
        return psnr(untouched - kept * (untouched + change - error) + kept ** 2 * change)

    def line(self, label, which, auto):
        gap, harm = (self.best - auto)[which], (self.psnr[:, 0] - auto)[which]
        print(f"| {label} | {which.sum()} | {self.psnr[which, 0].mean():.1f} | {auto[which].mean():.1f} | "
              f"{self.best[which].mean():.1f} | {gap.mean():.2f} | {gap.max():.1f} | "
              f"{(harm > .1).sum()} | {max(harm.max(), 0):.1f} |")

    def tables(self):
        auto = self.estimated
        kinds = list(KINDS) + ["half size"]
        print("| noise, gain | pictures | nothing | auto | best | short of best: mean | worst | "
              "below nothing by 0.1 | worst |\n|---" + 8 * "|---:" + "|")
        for kind in kinds:
            for gain in sorted({row["gain"] for row in self.rows if row["form"] != "camera"} - {0}):
                which = np.array([row["kind"] == kind and row["gain"] == gain for row in self.rows])
                if (which & ~self.drawn).any():
                    self.line(f"{kind}, {gain}", which & ~self.drawn, auto)
        for kind in (f"camera, {name}" for name in camera_pictures.FILTERS):
            which = np.array([row["kind"] == kind for row in self.rows])
            if which.any():
                self.line(kind, which, auto)
        for form in ("scaled", "full size", "camera", "drawn"):
            which = np.array([row["form"] == form for row in self.rows]) & ~self.clean
            if which.any():
                self.line(f"**all, {form}**", which, auto)
        for kind in ("as made", "JPEG 90"):
            self.line(f"no noise, {kind}", self.clean & ~self.drawn & [r["kind"] == kind for r in self.rows],
                      auto)
        print("\nWorst:\n\n| picture | gain | index | kept, % | best | nothing | auto | best |\n|---" + 7 * "|---:" + "|")
        worth = np.where(self.clean, -9, np.maximum(.4 * (self.best - auto), self.psnr[:, 0] - auto))
        for i in np.argsort(-worth)[:12]:
            row = self.rows[i]
            best = ([0] + INDICES)[self.psnr[i].argmax()]
            print(f"| {row['name']}, {row['form']}, {row['kind']} | {row['gain']:.0f} | {row['index']} | "
                  f"{row['percent']} | {best} | {self.psnr[i, 0]:.1f} | {auto[i]:.1f} | {self.best[i]:.1f} |")

    # What the values below should make small: the mean distance from the best index, harm four times
    # as much, and what is done to clean pictures beyond 46 dB.
    def price(self, octaves, kept):
        result = self.at(octaves, kept)
        harm = np.clip(self.psnr[:, 0] - result - .05, 0, 2.5)
        price = np.minimum(self.best - result, 4) + 4 * harm
        price = np.where(self.clean, np.clip(46 - result, 0, 8) / 4 * (kept > 0), price)
        return np.where(self.drawn, .4, 1) * price

    def strength(self, values):
        """Octaves above 100, and what is kept; `values` are the logarithms of the estimates at index
        100, 200, ..., 12800."""
        noise = np.log2(np.maximum(self.estimate, 1e-3))
        halving, spread = self.taking
        kept = 1 / (1 + np.exp((self.doubt - halving) / spread))
        kept = np.where(kept > ALL_TAKEN, 1, np.where(self.tried & (kept >= LEAST_TAKEN), kept, 0))
        return np.interp(noise, values, np.arange(len(values))), kept  # at least the first level's

    def fit(self, which):
        values, step = np.log2(LEVELS), .3
        price = lambda v: self.price(*self.strength(v))[which].mean() + .02 * np.square(np.diff(v, 2)).sum()
        least = price(values)
        for _ in range(9):
            for i in range(len(values)):
                for change in (-2 * step, -step, step, 2 * step):
                    trial = values.copy()
                    trial[i] += change
                    if np.diff(trial).min() > .15 and price(trial) < least:
                        least, values = price(trial), trial
            step *= .7
        return values

    # Weights by which the trial tells harm, by logistic regression; the last is the constant.
    def fit_doubt(self, which):
        grainy = self.clean & np.isin([row["name"] for row in self.rows], GRAINY)
        which = which & self.tried & ~self.drawn & ~self.camera & ~grainy
        place = np.log2([t["noise_index"] / 100 if t else 1 for t in (r["trial"] for r in self.rows)])
        harm = self.psnr[:, 0] - self.at(place)
        x, y = features(self.rows)[which], harm[which] > .03
        weight = np.clip(np.abs(harm[which]), .1, 1.5) * np.where(self.clean[which], CLEAN_WEIGHT, 1)
        scale = np.append(x[:, :-1].std(0), 1)
        x, w = x / scale, np.zeros(x.shape[1])
        stay = .02 * len(y) * np.diag(np.append(np.ones(len(w) - 1), 0))
        for _ in range(30):
            p = 1 / (1 + np.exp(-x @ w))
            slope = x.T @ (weight * (p - y)) + stay @ w
            w -= np.linalg.solve((x * (weight * p * (1 - p) + 1e-6)[:, None]).T @ x + stay, slope)
        w[-1] += CAUTION
        return w / scale

    def fit_taking(self):
        """The doubt that halves what is kept, and the spread about it."""
        def price(taking):
            self.taking = taking
            return self.price(*self.strength(np.log2(LEVELS))).mean()
        choices = [(halving, spread) for halving in np.arange(-2, 2.1, .25)
                   for spread in (.5, .75, 1, 1.5, 2, 3)]
        best = min(choices, key=price)
        self.taking = TAKING
        return best

    def print_fit(self):
        names = sorted({row["name"] for row in self.rows})
        fold = np.array([names.index(row["name"]) % FOLDS for row in self.rows])
        result, x, before = self.psnr[:, 0].copy(), features(self.rows), self.doubt
        credit = CREDIT * (self.estimate > STRONG)
        beyond = (before >= 0) & (x @ WEIGHTS - credit < 0)  # by a bound, not by the weights
        for i in range(FOLDS):
            self.doubt = np.where(beyond, 1, x @ self.fit_doubt(fold != i) - credit)
            result[fold == i] = self.at(*self.strength(self.fit(fold != i)))[fold == i]
        self.doubt = before
        which = ~self.clean & ~self.drawn
        gap, harm = (self.best - result)[which], (self.psnr[:, 0] - result)[which]
        print(f"\nheld out: {gap.mean():.2f} dB short of the best index, {(harm > .1).sum()} of "
              f"{which.sum()} more than 0.1 dB below nothing (worst {harm.max():.1f})")
        print('"chromaNoise_values":', [round(float(v), 2) for v in 2 ** self.fit(fold >= 0)])
        print("weights of doubt:", self.fit_doubt(fold >= 0).round(2))
        print("half is kept at doubt %.2f, with a spread of %.2f" % self.fit_taking())


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("build", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("pictures", nargs="+")
    parser.add_argument("--tuning", default=ROOT / "tuning/samples/vorel_NOTHING.json")
    parser.add_argument("--gains", nargs="+", type=int, default=[1, 4, 16, 64])
    parser.add_argument("--fit", action="store_true")
    options = parser.parse_args()
    if options.fit and len(options.pictures) < 2 * FOLDS:
        parser.error(f"--fit needs {2 * FOLDS} pictures and more")
    pictures = clean_pictures(options.pictures) | drawn_pictures()
    jobs = [(key, image, options.build, options.tuning, options.gains) for key, image in pictures.items()]
    with multiprocessing.Pool(maxtasksperchild=1) as pool:
        rows = [row for part in pool.imap(measure_picture, jobs, 1) for row in part]
    results = Results(rows)
    results.tables()
    if options.fit:
        results.print_fit()


if __name__ == "__main__":
    main()
