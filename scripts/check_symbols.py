#!/usr/bin/env python3
"""Holds the arrows between the library's folders at the link: whose symbols a folder may use.

    scripts/check_symbols.py BUILD_DIR

Includes tell only half: a public header names functions of every folder. Here every symbol that a
folder's objects leave undefined must be its own, one of a folder that it may include, or none of
the library's.
"""
import os
import subprocess
import sys

import check_includes

# A folder that may include a single header of another may link that folder.
LINKED = {folder: {os.path.dirname(name) if name.endswith(".h") else name for name in names or []}
          for folder, names in check_includes.ALLOWED.items()}
LIBRARY = ["platform", "threading", "tuning", "filters", "convert", "wavelet", "core"]


def objects(build):
    """Object files of the library and the sources they come from."""
    for folder in LIBRARY + ["environment", "system"]:
        root = os.path.join(build, "CMakeFiles", f"vorel_{folder}.dir")
        for directory, _, names in os.walk(root):
            for name in names:
                path = os.path.join(directory, name)
                source, suffix = os.path.splitext(os.path.relpath(path, root))
                if suffix == ".o" and os.path.isfile(source):
                    yield path, source


def symbols(paths):
    """Per object file the names that it defines for others and those that it needs."""
    output = subprocess.run(
        ["llvm-nm-19", "--extern-only", "--format=posix", "--print-file-name", *paths],
        check=True, capture_output=True, text=True).stdout
    found = {path: (set(), set()) for path in paths}
    for line in output.splitlines():
        path, name, kind = line.rsplit(": ", 1)[0], *line.rsplit(": ", 1)[1].split()[:2]
        if kind == "U":
            found[path][1].add(name)
        elif kind not in "VWvw":  # templates and inline functions belong to every user
            found[path][0].add(name)
    return found


def may_use(user, owner):
    return owner == user or owner in LINKED[user] or os.path.dirname(owner) == user


def demangled(names):
    output = subprocess.run(["llvm-cxxfilt-19"], input="\n".join(names), check=True,
                            capture_output=True, text=True).stdout
    return dict(zip(names, output.splitlines()))


def main():
    build = os.path.abspath(sys.argv[1]) if len(sys.argv) == 2 else sys.exit(__doc__)
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    sources = dict(objects(build))
    if not sources:
        sys.exit(f"symbols: no objects of the library below {build}; build it first")
    found = symbols(list(sources))
    folder = {path: check_includes.longest_folder(source, LINKED)
              for path, source in sources.items()}
    owners = {name: path for path, (defined, _) in found.items() for name in defined}
    faults = sorted(
        (sources[path], name, sources[owners[name]])
        for path, (_, needed) in found.items() for name in needed
        if name in owners and not may_use(folder[path], folder[owners[name]]))
    readable = demangled([name for _, name, _ in faults])
    for user, name, owner in faults:
        print(f"{user} uses {readable[name]} of {owner}, whose folder it must not link",
              file=sys.stderr)
    print(f"symbols: {len(sources)} objects, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
