#!/usr/bin/env python3
"""Opens the command's pages in a real browser and holds them to what they promise.

  scripts/check_page.py BUILD_DIR [SCREENSHOT_DIR]

Chromium is driven through chromedriver: pages load without a message on the console and without a
request, the divider moves by keys and by the pointer, and each half of the screen shows the samples
of the right picture. With SCREENSHOT_DIR pictures of every page are left there, light and dark,
wide and narrow.
"""
import base64
import json
import os
import re
import subprocess
import sys
import tempfile
import urllib.error
import urllib.request
import zlib

WIDE = (1280, 900)
NARROW = (420, 900)
KEYS = {"right": "\ue014", "left": "\ue012", "page up": "\ue00e", "home": "\ue011",
        "end": "\ue010"}


def write_png(path, width, height, sample):
    rows = b"".join(b"\0" + bytes(c for x in range(width) for c in sample(x, y))
                    for y in range(height))

    def chunk(kind, content):
        whole = kind + content
        return len(content).to_bytes(4, "big") + whole + zlib.crc32(whole).to_bytes(4, "big")
    header = width.to_bytes(4, "big") + height.to_bytes(4, "big") + b"\x08\x02\0\0\0"
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                   chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class Png:
    """An 8-bit RGB or RGBA picture without interlacing."""

    def __init__(self, content):
        self.width = int.from_bytes(content[16:20], "big")
        self.height = int.from_bytes(content[20:24], "big")
        step = {2: 3, 6: 4}[content[25]]
        packed, at = b"", 8
        while at < len(content):
            length = int.from_bytes(content[at:at + 4], "big")
            if content[at + 4:at + 8] == b"IDAT":
                packed += content[at + 8:at + 8 + length]
            at += 12 + length
        self.step, self.rows = step, []
        data, stride = zlib.decompress(packed), self.width * step
        before = bytearray(stride)
        for y in range(self.height):
            start = y * (stride + 1)
            row = bytearray(data[start + 1:start + 1 + stride])
            self.unfilter(data[start], row, before)
            self.rows.append(row)
            before = row

    def unfilter(self, kind, row, above):
        for i in range(len(row) if kind else 0):
            a = row[i - self.step] if i >= self.step else 0
            b, c = above[i], above[i - self.step] if i >= self.step else 0
            nearest = min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]
            row[i] = (row[i] + (a, b, (a + b) // 2, nearest)[kind - 1]) & 255

    def at(self, x, y):
        return tuple(self.rows[y][x * self.step:x * self.step + 3])


class Browser:
    def __init__(self, directory):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            found = re.search(r"on port (\d+)", line)
            if found and "successfully" in line:
                break
        self.root = f"http://127.0.0.1:{found.group(1)}/session"
        flags = ["headless", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run",
                 "disable-background-networking", "disable-component-update", "disable-sync",
                 f"user-data-dir={directory}"]
        options = {"args": ["--" + flag for flag in flags]}
        self.root += "/" + self.send("", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"},
            "timeouts": {"script": 100000, "pageLoad": 100000}}}})["sessionId"]

    def send(self, path, content=None, method="POST"):
        body = None if content is None else json.dumps(content).encode()
        request = urllib.request.Request(self.root + path, body, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            sys.exit(f"page: the browser refuses {path}: {json.load(error)['value']['message']}")

    def close(self):
        try:
            self.send("", method="DELETE")
        finally:
            self.driver.terminate()
            self.driver.wait()

    def cdp(self, command, **parameters):
        return self.send("/goog/cdp/execute", {"cmd": command, "params": parameters})

    def run(self, script):
        return self.send("/execute/sync", {"script": script, "args": []})

    def look(self, size, scheme):
        self.cdp("Emulation.setDeviceMetricsOverride", width=size[0], height=size[1],
                 deviceScaleFactor=1, mobile=False)
        self.cdp("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": scheme}])

    def settle(self):
        """Waits until what was asked for is drawn."""
        self.send("/execute/async", {"args": [], "script": """
            const done = arguments[0];
            const wait = () => document.documentElement.classList.contains('live') ?
                requestAnimationFrame(() => requestAnimationFrame(done)) : setTimeout(wait, 20);
            wait();"""})

    def open(self, path):
        self.send("/url", {"url": "file://" + path})
        self.settle()

    def element(self, selector):
        return list(self.send("/element", {"using": "css selector", "value": selector}).values())[0]

    def keys(self, selector, *names):
        text = "".join(KEYS.get(name, name) for name in names)
        self.send(f"/element/{self.element(selector)}/value", {"text": text})
        self.settle()

    def drag(self, selector, dx, kind):
        element = {"element-6066-11e4-a52e-4f735466cecf": self.element(selector)}
        self.send("/actions", {"actions": [{"type": "pointer", "id": kind, "parameters": {
            "pointerType": kind}, "actions": [
                {"type": "pointerMove", "origin": element, "x": 0, "y": 0, "duration": 0},
                {"type": "pointerDown", "button": 0},
                {"type": "pointerMove", "origin": "pointer", "x": dx, "y": 40, "duration": 50},
                {"type": "pointerUp", "button": 0}]}]})
        self.settle()

    def choose(self, selector, value):
        self.run(f"const s = document.querySelector('{selector}'); s.value = '{value}';"
                 "s.dispatchEvent(new Event('change'));")
        self.settle()

    def screenshot(self, selector):
        path = f"/element/{self.element(selector)}/screenshot"
        return base64.b64decode(self.send(path, method="GET"))

    def whole_page(self):
        size = self.cdp("Page.getLayoutMetrics")["cssContentSize"]
        return base64.b64decode(self.cdp("Page.captureScreenshot", captureBeyondViewport=True,
                                         clip={**size, "scale": 1})["data"])


class Faults:
    def __init__(self):
        self.count = 0

    def expect(self, holds, what):
        if not holds:
            self.count += 1
            print(f"page: {what}", file=sys.stderr)


def divider(browser):
    return int(browser.run("return document.getElementById('divider').getAttribute('aria-valuenow')"))


def shown_samples(browser, size):
    """Yields (x, y, is_left, colour) for samples of the picture that can be seen whole, clear of
    the divider and of the names."""
    shot = Png(browser.screenshot("#pixels"))
    factor = int(browser.run("return document.getElementById('zoom').textContent").split(":")[0])
    split = round(shot.width * divider(browser) / 100)
    left = (shot.width - size[0] * factor + 1) // 2
    top = (shot.height - size[1] * factor + 1) // 2
    for y in range(size[1]):
        for x in range(size[0]):
            px, py = left + x * factor, top + y * factor
            clear = abs(px + factor / 2 - split) > 24 + factor and py > 48
            if clear and 0 <= px and px + factor <= shot.width and py + factor <= shot.height:
                # Corners too: a sample is a square of one colour.
                colours = {shot.at(px, py), shot.at(px + factor - 1, py + factor - 1)}
                yield x, y, px < split, colours


def check_samples(faults, browser, name, left, right):
    checked = [0, 0]
    for x, y, is_left, colours in shown_samples(browser, (left.width, left.height)):
        picture = left if is_left else right
        checked[is_left] += 1
        if colours != {picture.at(x, y)}:
            faults.expect(False, f"{name}: ({x}, {y}) on the {'left' if is_left else 'right'} is "
                                 f"{colours}, not {picture.at(x, y)}")
            return
    faults.expect(min(checked) > 200, f"{name}: only {checked} samples of the halves were seen")


def check_divider(faults, browser, name):
    faults.expect(divider(browser) == 50, f"{name}: the divider does not start in the middle")
    for keys, value in ((["right", "right"], 52), (["left"], 51), (["page up"], 61), (["end"], 100),
                        (["home"], 0), (["right", "page up"], 11)):
        browser.keys("#divider", *keys)
        faults.expect(divider(browser) == value, f"{name}: {keys} lead to {divider(browser)}, not {value}")
    width = browser.run("return document.getElementById('stage').clientWidth")
    for kind, target in (("mouse", 70), ("touch", 30)):
        browser.drag("#divider", round(width * (target - divider(browser)) / 100), kind)
        faults.expect(abs(divider(browser) - target) <= 1,
                      f"{name}: dragging by {kind} leads to {divider(browser)}, not {target}")


def check_views(faults, browser, name, size):
    browser.choose("#view", "chroma")
    for _, _, _, colours in shown_samples(browser, size):
        r, g, b = colours.pop()
        clipped = {0, 255} & {r, g, b}
        if abs(0.299 * r + 0.587 * g + 0.114 * b - 128) > 1 and not clipped:
            faults.expect(False, f"{name}: chroma only shows luma in {(r, g, b)}")
            break
    browser.choose("#view", "difference")
    reference = browser.run("return document.getElementById('reference').value")
    browser.choose("#left", reference)
    grey = [colours == {(128, 128, 128)}
            for _, _, is_left, colours in shown_samples(browser, size) if is_left]
    faults.expect(grey and all(grey), f"{name}: the difference from itself is not grey")
    browser.choose("#view", "colour")
    before = browser.run("return document.getElementById('zoom').textContent")
    browser.keys("#stage", "-", "right")
    after = browser.run("return document.getElementById('zoom').textContent")
    faults.expect(before != after, f"{name}: the minus key does not zoom")


def check_page(faults, browser, name, path, left, right):
    browser.look(WIDE, "light")
    browser.open(path)
    check_samples(faults, browser, name, left, right)
    check_divider(faults, browser, name)
    check_samples(faults, browser, name + ", divider moved", left, right)
    check_views(faults, browser, name, (left.width, left.height))
    slider = [node for node in browser.cdp("Accessibility.getFullAXTree")["nodes"]
              if node.get("role", {}).get("value") == "slider"]
    faults.expect(len(slider) == 1 and slider[0]["name"]["value"].startswith("Divider"),
                  f"{name}: a screen reader finds no divider")
    empty = browser.run("return [...document.querySelectorAll('select, button, [tabindex]')].filter(e"
                        " => !e.labels?.length && !e.ariaLabel && !e.textContent.trim()).length")
    faults.expect(empty == 0, f"{name}: {empty} controls have no name")
    for entry in browser.send("/se/log", {"type": "browser"}):
        faults.expect(False, f"{name}: on the console: {entry['message']}")
    asked = browser.run("return performance.getEntriesByType('resource').map(e => e.name)"
                        ".filter(n => !n.startsWith('data:'))")
    faults.expect(not asked, f"{name}: asks for {asked}")


def check_curves(faults, browser, name):
    drawn = browser.run("""return [...document.querySelectorAll('.curves canvas')].map(c => new Set(
        c.getContext('2d').getImageData(0, 0, c.width, c.height).data).size)""")
    faults.expect(drawn and min(drawn) > 10, f"{name}: curves are not drawn: {drawn}")


def take_screenshots(browser, name, path, directory):
    for size, scheme in ((WIDE, "light"), (WIDE, "dark"), (NARROW, "dark")):
        browser.look(size, scheme)
        browser.open(path)
        kind = "wide" if size == WIDE else "narrow"
        with open(os.path.join(directory, f"{name}-{kind}-{scheme}.png"), "wb") as file:
            file.write(browser.whole_page())


def smooth(x, y):
    return (x * 5) % 256, (90 + y * 3) % 256, (x + y) % 256


def patterned(x, y):
    return (x * 37 + y * 11) % 256, (x * 7 + y * 59 + 128) % 256, (x * y * 3) % 256


def make_pages(vorel, folder):
    """Writes pages of all verbs: name -> left and right picture."""
    def run(*arguments):
        subprocess.run([vorel, *arguments], check=True, cwd=folder, stdout=subprocess.DEVNULL)

    def png(name):
        with open(os.path.join(folder, name), "rb") as file:
            return Png(file.read())
    # A name that would break a page that trusts it.
    odd = "a <b> & \"c\" {{title}}.png"
    write_png(os.path.join(folder, odd), 160, 120, patterned)
    write_png(os.path.join(folder, "clean.png"), 160, 120, smooth)
    run("noise", "clean.png", "-o", "noisy.png", "--gain", "16")
    run("compare", odd, "clean.png", "--page", "compare.html")
    run("denoise", "noisy.png", "-o", "out.png", "-n", "1600", "--truth", "clean.png",
        "--page", "denoise.html")
    run("sweep", "noisy.png", "--key", "denoiseThrChroma1", "--values", "5,10,20,200", "-n", "1600",
        "--truth", "clean.png", "--page", "sweep.html", "-o", "sheet.png")
    run("tune", "clean.png", "-o", "tuned.json", "--clean", "-n", "400,1600",
        "--page", "tune.html")
    return {"compare": (png(odd), png("clean.png")), "denoise": (png("noisy.png"), png("out.png"))}


def main():
    vorel = os.path.abspath(os.path.join(sys.argv[1], "tools/vorel"))
    faults = Faults()
    with tempfile.TemporaryDirectory() as folder:
        halves = make_pages(vorel, folder)
        profile = os.path.join(folder, "profile")
        os.mkdir(profile)
        browser = Browser(profile)
        try:
            for name in ("compare", "denoise", "sweep", "tune"):
                path = os.path.join(folder, name + ".html")
                browser.look(WIDE, "light")
                browser.open(path)
                left, right = halves.get(name) or pictures_of(browser)
                check_page(faults, browser, name, path, left, right)
                if name in ("sweep", "tune"):
                    check_curves(faults, browser, name)
                if len(sys.argv) > 2:
                    take_screenshots(browser, name, path, sys.argv[2])
        finally:
            browser.close()
    print(f"page: 4 pages, {faults.count} faults")
    return 1 if faults.count else 0


def pictures_of(browser):
    """The two pictures that a page says it shows."""
    found = browser.run("""return ['left', 'right'].map(id => document.querySelectorAll('.source img')
        [document.getElementById(id).value].src)""")
    return [Png(base64.b64decode(url.split(",")[1])) for url in found]


if __name__ == "__main__":
    sys.exit(main())
