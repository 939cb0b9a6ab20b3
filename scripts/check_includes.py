#!/usr/bin/env python3
"""Holds the direction of the arrows: which folder's headers a folder may include.

Kernels see the platform and the public headers and nothing else; nothing reaches back. System
headers that belong behind a seam (log, JSON, threads) are held to their folders too.
"""
import os
import re
import subprocess
import sys

PUBLIC = "include/vorel"
EVERYTHING = None

# Folder -> folders whose headers it may include, besides its own. The longest matching folder
# counts. A name with an extension is a single header.
ALLOWED = {
    PUBLIC: [],
    "platform": [PUBLIC],
    "filters": [PUBLIC, "platform"],
    "convert": [PUBLIC, "platform"],
    "wavelet/kernels": [PUBLIC, "platform"],
    "wavelet": [PUBLIC, "platform", "threading/run_jobs.h"],
    "threading": [PUBLIC, "platform"],
    "tuning": [PUBLIC, "platform"],
    "core": [PUBLIC, "platform", "threading", "tuning", "filters", "convert", "wavelet"],
    "tools": [],
    "tools/verbs": ["tools/files", "tools/pictures", "tools/measure", "tools/tuning",
                    "tools/tune", "tools/library", "tools/report"],
    "tools/tune": [PUBLIC, "tools/files", "tools/pictures", "tools/measure", "tools/tuning",
                   "tools/library"],
    "tools/library": [PUBLIC, "tools/files", "tools/pictures", "tools/tuning",
                      "tuning/sensors.h"],
    "tools/report": ["tools/files", "tools/pictures"],
    "tools/measure": ["tools/files", "tools/pictures", "tuning/used_object.h",
                      "platform/vectorize.h"],
    "tools/pictures": ["tools/files"],
    "tools/tuning": [PUBLIC, "tools/files", "tools/did_you_mean.h", "tuning",
                     "filters/range_weights.h"],
    "tools/files": [],
    "gstreamer": [PUBLIC, "tools/measure/noise_index.h", "tools/measure/chroma_noise.h",
                  "tools/measure/partial_removal.h", "tools/measure/removal.h"],
    "examples": [PUBLIC],
    "abi": [PUBLIC],
    "scripts/android-stand-in": [],
    "tests": EVERYTHING,
    "bench": EVERYTHING,
    "fuzz": EVERYTHING,
    "harden": EVERYTHING,
}

# What a kernel must not know although its folder could reach it.
POOL_AND_CLOCK = ["include/vorel/thread_pool.h", "include/vorel/debug.h", "include/vorel/vorel.h"]
DENIED = {
    "filters": POOL_AND_CLOCK,
    "convert": POOL_AND_CLOCK,
    "wavelet/kernels": POOL_AND_CLOCK + ["platform/log.h", "platform/stage_timer.h"],
}

# System headers behind a seam -> folders that may include them.
SEAMS = {
    r"android/log\.h": ["platform", "tools", "gstreamer", "tests", "bench", "fuzz", "harden"],
    r"cutils/.*": ["platform"],
    r"gst/.*": ["gstreamer", "tests"],
    r"jansson\.h": ["tuning", "core", "tools", "tests", "bench", "fuzz", "harden"],
    r"pthread\.h": ["platform", "threading", "core", "tests", "fuzz", "harden", "examples"],
    r"(thread|mutex|condition_variable|future)": ["tools", "tests", "bench", "fuzz", "harden", "examples"],
    r"sys/(syscall|resource|prctl)\.h|sched\.h": ["platform", "tests", "tools", "bench", "harden"],
}

C_HEADERS = ("export.h", "frame.h", "trace.h", "vorel.h")

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def longest_folder(path, folders):
    matching = [folder for folder in folders if path.startswith(folder + "/")]
    return max(matching, key=len) if matching else None


def is_below(path, entries):
    return any(path == entry or path.startswith(entry + "/") for entry in entries)


def own_file(name):
    """The file of this tree that an include names, or None for a system header."""
    for candidate in (name, os.path.join("include", name)):
        if os.path.isfile(candidate):
            return candidate
    return None


def check_line(path, folder, quoted, name):
    target = own_file(name)
    if target is None:
        if quoted:
            return f'"{name}" is no file of this tree; name it from the top'
        for pattern, folders in SEAMS.items():
            if re.fullmatch(pattern, name) and not is_below(path, folders):
                return f"<{name}> belongs to {', '.join(folders)}"
        return None
    allowed = ALLOWED[folder]
    own = longest_folder(target, ALLOWED)
    if target in DENIED.get(folder, []):
        return f"{folder} must not know {target}"
    if allowed is EVERYTHING or own == folder or is_below(target, allowed):
        return None
    if folder == os.path.dirname(own or ""):  # wavelet may use wavelet/kernels, not the reverse
        return None
    return f"{folder} must not include {target}"


def check_file(path):
    folder = longest_folder(path, ALLOWED)
    if folder is None:
        return [f"{path}: its folder has no rule in {sys.argv[0]}"]
    faults = []
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            found = INCLUDE.match(line)
            if not found:
                continue
            fault = check_line(path, folder, found.group(1) == '"', found.group(2))
            if fault:
                faults.append(f"{path}:{number}: {fault}")
    return faults


def compile_public_headers():
    """Each public header compiles alone; those of the C interface as C, too."""
    strict = ["-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror",
              "-Wno-empty-translation-unit", "-Iinclude"]
    cxx = ["clang++-19", "-x", "c++", "-std=c++17", "-fno-exceptions", "-fno-rtti"] + strict
    faults = []
    for header in tracked("include/*.h"):
        forms = [cxx]
        if os.path.basename(header) in C_HEADERS:
            forms += [["clang-19", "-x", "c", std] + strict for std in ("-std=c99", "-std=c17")]
        for form in forms:
            text = f'#include "{os.path.relpath(header, "include")}"\n'
            result = subprocess.run(form + ["-"], input=text, capture_output=True, text=True)
            if result.returncode != 0:
                faults.append(f"{header} does not compile alone ({form[3]}):\n{result.stderr}")
    return faults


def tracked(*patterns):
    """Files of the repository, those not yet added too."""
    output = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", *patterns],
        check=True, capture_output=True, text=True).stdout.split("\n")
    return sorted(path for path in output if path and os.path.isfile(path))


def main():
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    sources = tracked("*.h", "*.c", "*.cpp")
    faults = [fault for path in sources for fault in check_file(path)]
    faults += compile_public_headers()
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"includes: {len(sources)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
