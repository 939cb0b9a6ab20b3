#!/usr/bin/env python3
"""Compiles the sources of some folders with every warning that clang has, but for those listed here.

    harden/all_warnings.py BUILD_DIR FOLDER...

BUILD_DIR holds compile_commands.json. Prints what is found; status 1 when something is.
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

# Each with its reason.
LEFT_OUT = {
    "c++98-compat": "C++20 is the language",
    "c++98-compat-pedantic": "C++20 is the language",
    "c++20-compat": "C++20 is the language",
    "pre-c++20-compat-pedantic": "C++20 is the language",
    "pre-c++17-compat-pedantic": "C++20 is the language",
    "pre-c++14-compat": "C++20 is the language",
    "padded": "fields stand in the order in which they are read about",
    "unsafe-buffer-usage": "kernels walk over planes by pointers; sanitizers and guard pages watch them",
    "undefined-func-template": "templates of kernels are instantiated in one file each",
    "double-promotion": "wanted where it stands: values for the log, and a mean that is rounded once",
    "float-equal": "exact comparisons with 0 and with themselves are the rule",
    "switch-default": "switches over enums name every value, which -Wswitch holds them to",
    "implicit-float-conversion": "half precision narrows on purpose; the rules say where it rounds",
}


def findings(entry, options):
    command = shlex.split(entry["command"])
    command = command[next(i for i, word in enumerate(command) if "clang" in word):]
    at = command.index("-o")
    del command[at:at + 2]
    command = [word for word in command if word not in ("-c", "-Werror")]
    run = subprocess.run(command + ["-fsyntax-only"] + options, cwd=entry["directory"],
                         capture_output=True, text=True, check=False)
    found = set()
    for line in run.stderr.splitlines():
        match = re.match(r"(\S+:\d+):\d+: (warning|error): (.*)", line)
        if match:
            place = os.path.relpath(os.path.join(entry["directory"], match.group(1)), ROOT)
            found.add(f"{place}: {match.group(3)}")
    return found


def main():
    with open(os.path.join(sys.argv[1], "compile_commands.json"), encoding="utf-8") as text:
        entries = {os.path.relpath(entry["file"], ROOT): entry for entry in json.load(text)}
    folders = sys.argv[2:]
    chosen = {name: entry for name, entry in entries.items() if name.split("/")[0] in folders}
    options = ["-Weverything"] + [f"-Wno-{name}" for name in LEFT_OUT]
    found = set()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = []
        for entry in chosen.values():
            runs.append(pool.submit(findings, entry, options))
        for run in runs:
            found |= run.result()
    for line in sorted(found):
        print(line)
    print(f"{len(chosen)} files with all of clang's warnings but {len(LEFT_OUT)}: "
          f"{len(found)} findings")
    return 1 if found or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
