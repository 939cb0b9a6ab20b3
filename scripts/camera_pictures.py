"""Parts of clean pictures as a camera's JPEG shows them: noisy, demosaiced, filtered, sharpened, stored.

`vorel noise` stops where a camera goes on. Here the chroma noise has passed through one of four
filters, as that of real pictures has, and luma's has been weakened and sharpened. The truth has passed
through all of it but the noise and the JPEG file.
"""
import dataclasses
import io

import numpy as np
from PIL import Image

MARGIN = 16  # around a part, for the filters
SIDE = 512
WHITE_BALANCE = np.array([1.95, 1, 1.62])
COLOUR_MATRIX = np.array([[1.66, -.53, -.13], [-.19, 1.41, -.22], [.02, -.55, 1.53]])
ELECTRONS_AT_ISO_100 = 6e4  # at white, as of a full-frame sensor
READ_NOISE = 2.5
FILTERS = {"no filter": .1, "soft": .25, "along luma": .3, "shrinking": .2, "strong": .15}

# The quantisation in JPEG files of quality 50.
JPEG_CHROMA = [17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99, 24, 26, 56] + [99] * 5 \
    + [47, 66] + [99] * 38
JPEG_LUMA = [16, 11, 10, 16, 24, 40, 51, 61, 12, 12, 14, 19, 26, 58, 60, 55, 14, 13, 16, 24, 40, 57, 69, 56,
             14, 17, 22, 29, 51, 87, 80, 62, 18, 22, 37, 56, 68, 109, 103, 77, 24, 35, 55, 64, 81, 104, 113,
             92, 49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99]


@dataclasses.dataclass
class Camera:
    iso: float
    lens: float  # what lens and sensor blur, in pixels
    fine: bool  # demosaicing looks at gradients
    filter: str
    reach: float  # how different luma may be, or which chroma is taken for noise, 8-bit steps
    luma: float  # what is taken for noise in luma
    sharpening: float
    quality: int
    full_height: bool  # 4:2:2

    @staticmethod
    def drawn(rng):
        chosen = str(rng.choice(list(FILTERS), p=list(FILTERS.values())))
        return Camera(float(np.exp(rng.uniform(np.log(1600), np.log(12800)))), float(rng.uniform(.6, 1)),
                      bool(rng.random() < .7), chosen,
                      float(rng.uniform(2, 8) if chosen == "shrinking" else rng.uniform(4, 16)),
                      float(rng.choice([0, 1, 2.5])), float(rng.random()), int(rng.integers(90, 98)),
                      bool(rng.random() < .5))


def parts(image):
    """The busiest part and a quieter one, at full, half and quarter size."""
    for scale in (1, .5, .25):
        size = round(image.width * scale), round(image.height * scale)
        if scale < 1 and min(size) < 448:
            return
        pixels = np.asarray(image.resize(size, Image.LANCZOS))
        height, width = (min(SIDE, (side - 2 * MARGIN) // 32 * 32) for side in pixels.shape[:2])
        if min(width, height) < 192:
            return
        found = []
        for y in range(0, max(size[1] - height - 2 * MARGIN, 1), 256):
            for x in range(0, max(size[0] - width - 2 * MARGIN, 1), 256):
                part = pixels[y:y + height + 2 * MARGIN, x:x + width + 2 * MARGIN]
                colours = np.diff(part[::2, ::2].astype(float), axis=2)
                found.append((np.square(np.diff(colours, axis=0)).mean(), y, x, part))
        found.sort(key=lambda one: one[:3])
        yield found[-1][3]
        if len(found) > 2 and scale > .25:
            yield found[len(found) // 3][3]


def shifted(plane, y, x):
    return np.roll(plane, (-y, -x), (0, 1))


def blurred(plane, sigma):
    reach = int(np.ceil(3 * sigma))
    kernel = np.exp(-np.square(np.arange(-reach, reach + 1)) / (2 * sigma * sigma))
    for axis in (0, 1):
        plane = sum(weight * np.roll(plane, -i, axis)
                    for i, weight in zip(range(-reach, reach + 1), kernel / kernel.sum()))
    return plane


def shrunk(plane, amount):
    return np.sign(plane) * np.maximum(np.abs(plane) - amount, 0)


def demosaiced(mosaic, fine):
    row, column = np.indices(mosaic.shape) % 2
    beside, above = ((shifted(mosaic, y, x) + shifted(mosaic, -y, -x)) / 2 for y, x in ((0, 1), (1, 0)))
    slanted = sum(shifted(mosaic, y, x) for y in (-1, 1) for x in (-1, 1)) / 4
    around = (beside + above) / 2
    if fine:
        x2, y2 = (shifted(mosaic, y, x) + shifted(mosaic, -y, -x) for y, x in ((0, 2), (2, 0)))
        around = around + (mosaic - (x2 + y2) / 4) / 2
        beside, above = (mean + (5 * mosaic - along - 4 * slanted + across / 2) / 8
                         for mean, along, across in ((beside, x2, y2), (above, y2, x2)))
        slanted = slanted + .75 * (mosaic - (x2 + y2) / 4)
    green = np.where(row == column, around, mosaic)
    red, blue = (np.where((row == place) & (column == place), mosaic,
                          np.where(row == place, beside, np.where(column == place, above, slanted)))
                 for place in (0, 1))
    return np.stack([red, green, blue], -1)


def filtered(chroma, luma, camera):
    if camera.filter == "no filter":
        return chroma
    if camera.filter == "shrinking":
        fine, coarse = blurred(chroma, 1.5), blurred(blurred(chroma, 1.5), 3)
        return coarse + shrunk(fine - coarse, camera.reach / 2) + .7 * shrunk(chroma - fine, camera.reach)
    if camera.filter != "along luma":
        return blurred(chroma, 1 if camera.filter == "soft" else 2.5)
    total, weights, guide = 0, 0, blurred(luma, .7)
    for y in range(-4, 5):
        for x in range(-4, 5):
            weight = np.exp(-np.square((shifted(guide, y, x) - guide) / camera.reach) / 2
                            - (y * y + x * x) / 9.7)
            total, weights = total + weight * shifted(chroma, y, x), weights + weight
    return total / weights


def developed(mosaic, camera):
    """Luma, and both chroma planes at full size."""
    light = np.clip(demosaiced(mosaic, camera.fine) * WHITE_BALANCE @ COLOUR_MATRIX.T, 0, 1)
    r, g, b = 255 * np.moveaxis(np.where(light <= .0031308, 12.92 * light,
                                         1.055 * light ** (1 / 2.4) - .055), -1, 0)
    luma = .299 * r + .587 * g + .114 * b
    chroma = [128 + filtered(plane, luma, camera) for plane in (.564 * (b - luma), .713 * (r - luma))]
    smooth = blurred(luma, 1)
    luma = smooth + shrunk(luma - smooth, camera.luma)
    luma = luma + camera.sharpening * (luma - blurred(luma, 1))
    return [plane[MARGIN:-MARGIN, MARGIN:-MARGIN] for plane in [luma] + chroma]


def as_jpeg(plane, quality, table=JPEG_CHROMA):
    scale = 5000 // quality if quality < 50 else 200 - 2 * quality
    table = [min(255, max(1, (value * scale + 50) // 100)) for value in table]
    file = io.BytesIO()
    Image.fromarray(plane).save(file, "JPEG", qtables=[table])
    return np.asarray(Image.open(file).convert("L"))


def whole(plane):
    return np.clip(np.rint(plane), 0, 255).astype(np.uint8)


def taken(part, camera, rng):
    """Planes as the JPEG file of a part holds them, and their truth, chroma at half width and height."""
    values = part / 255
    light = np.where(values <= .04045, values / 12.92, ((values + .055) / 1.055) ** 2.4)
    light = np.stack([blurred(plane, camera.lens) for plane in np.moveaxis(light, -1, 0)], -1)
    light = np.maximum(light @ np.linalg.inv(COLOUR_MATRIX).T / WHITE_BALANCE, 0)
    clean = light[..., 1].copy()
    clean[::2, ::2], clean[1::2, 1::2] = light[::2, ::2, 0], light[1::2, 1::2, 2]
    white = ELECTRONS_AT_ISO_100 * 100 / camera.iso
    electrons = clean * white
    noise = np.sqrt(electrons + READ_NOISE ** 2) * rng.standard_normal(clean.shape)
    luma, u, v = developed(np.minimum((electrons + noise) / white, 1), camera)
    stored = [as_jpeg(whole(luma), camera.quality, JPEG_LUMA)]
    for plane in (u, v):
        plane = (plane[:, ::2] + plane[:, 1::2]) / 2
        if not camera.full_height:
            plane = (plane[::2] + plane[1::2]) / 2
        plane = as_jpeg(whole(plane), camera.quality)
        if camera.full_height:
            plane = whole((plane[::2].astype(float) + plane[1::2]) / 2)
        stored.append(plane)
    luma, *chroma = developed(clean, camera)
    return stored, [luma] + [sum(p[y::2, x::2] for y in (0, 1) for x in (0, 1)) / 4 for p in chroma]
