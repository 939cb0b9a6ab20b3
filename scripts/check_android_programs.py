#!/usr/bin/env python3
"""Compiles the tests, benchmarks and fuzz targets of Android.bp as it says, and links each.

What a module lists is all that its program is made of, so a missing source, wrong flags or a call
that the flags forbid show here. The library's own sources are compiled with the platform build's
global flags, and headers whose copies are fortified as its are: a loop that does not vectorise then
fails here. The stand-ins of scripts/check_android.sh serve as Android's
headers, this machine's Arm libraries as Android's; the result is not run.

    check_android_programs.py STAND_IN_DIR OUTPUT_DIR LIBRARY_DIR

LIBRARY_DIR holds the stand-in for libcutils.
"""
import concurrent.futures
import hashlib
import os
import subprocess
import sys

import android_blueprint as blueprint

TARGET = ["clang++-19", "--target=aarch64-linux-gnu"]
ANDROID = ["-D__ANDROID__", "-D__ANDROID_API__=30", "-std=c++20", "-fPIC"]
PLATFORM = ["-O2", "-D_FORTIFY_SOURCE=2", "-fno-strict-aliasing", "-fstack-protector-strong",
            "-funwind-tables"]
PROGRAM_FOLDERS = ("tests/", "bench/", "fuzz/")
LIBRARY = "libvorel_static"
LIBRARIES = ["-L/usr/lib/aarch64-linux-gnu/android", "-llog", "-lcutils", "-ljansson", "-lgtest", "-lgmock",
             "-lbenchmark", "-lpthread"]


def run(command):
    result = subprocess.run(command, capture_output=True, text=True)
    return "" if result.returncode == 0 else " ".join(command) + "\n" + result.stderr


class Builder:
    def __init__(self, modules, stand_in, output, libraries):
        self.modules = modules
        self.libraries = libraries
        self.stand_in = stand_in
        self.output = output
        self.compiles = {}  # object -> command

    def objects(self, module):
        """The module's own objects, and those of the archives that it takes in whole."""
        flags = self.modules.words(module, "cflags") + self.modules.words(module, "cppflags")
        includes = ["-I" + path for path in self.modules.words(module, "local_include_dirs")]
        found = []
        for source in self.modules.sources(module):
            level = ["-O0"] if source.startswith(PROGRAM_FOLDERS) else PLATFORM
            command = [*TARGET, *ANDROID, *level, "-isystem", self.stand_in,
                       "-isystem", "/usr/include/android", *flags, *includes]
            key = hashlib.sha1(" ".join([source, *command]).encode()).hexdigest()[:10]
            name = f"{self.output}/{os.path.basename(source)[:-4]}-{key}.o"
            self.compiles[name] = [*command, "-c", source, "-o", name]
            found.append(name)
        for archive in self.modules.words(module, "whole_static_libs"):
            found += self.objects(archive)
        return found

    def link(self, module):
        """As a shared object without open names: main() and the fuzzer's are other libraries'."""
        objects = self.objects(module)
        if LIBRARY in self.modules.words(module, "static_libs"):
            objects += self.objects(LIBRARY)
        return [*TARGET, "-fuse-ld=lld", "-shared", "-Wl,-z,defs", *objects,
                *self.modules.words(module, "ldflags"), "-L" + self.libraries, *LIBRARIES,
                "-o", f"{self.output}/{module}.so"]


def main():
    stand_in, output, libraries = (os.path.abspath(path) for path in sys.argv[1:4])
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    os.makedirs(output, exist_ok=True)
    modules = blueprint.Blueprint(blueprint.read(blueprint.FILE))
    builder = Builder(modules, stand_in, output, libraries)
    programs = modules.of_kind("cc_test", "cc_benchmark", "cc_fuzz")
    links = [builder.link(program) for program in programs]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        faults = [text for text in pool.map(run, builder.compiles.values()) if text]
        faults = faults or [text for text in pool.map(run, links) if text]
    for fault in faults:
        print(f"android: {fault}", file=sys.stderr)
    print(f"android: {len(programs)} programs of {len(builder.compiles)} objects, "
          f"{len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
