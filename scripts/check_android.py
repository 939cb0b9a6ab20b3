#!/usr/bin/env python3
"""Holds Android.bp to the CMake lists, and the library's sources to what Android 11 has.

    check_android.py            checks
    check_android.py --update   writes the source lists of Android.bp anew
"""
import os
import re
import subprocess
import sys

import android_blueprint as blueprint

SOURCES = "cmake/Sources.cmake"
TESTS = "tests/CMakeLists.txt"
HOST_FOLDERS = {"tools", "gstreamer"}  # tests of what phones do not get
LIBRARY_FOLDERS = ("core", "threading", "tuning", "filters", "convert", "wavelet", "platform")

# Functions of glibc that bionic lacks at API level 30.
ABSENT = """
    backtrace backtrace_symbols backtrace_symbols_fd
    pthread_cancel pthread_setcancelstate pthread_setcanceltype pthread_testcancel
    pthread_setaffinity_np pthread_getaffinity_np pthread_tryjoin_np pthread_timedjoin_np
    pthread_mutex_consistent pthread_mutexattr_setrobust
    preadv2 pwritev2 copy_file_range close_range posix_spawn_file_actions_addchdir_np
    getcontext makecontext swapcontext mq_open shm_open shm_unlink aio_read aio_write wordexp
    qsort_r euidaccess strverscmp canonicalize_file_name secure_getenv get_current_dir_name
    mallinfo2 gnu_get_libc_version
    """.split()


def cmake_lists():
    text = re.sub(r"#.*", "", blueprint.read(SOURCES))
    return {name.lower(): words.split()
            for name, words in re.findall(r"set\((\w+)([^)]*)\)", text)}


def update():
    wanted = cmake_lists()

    def with_files(found):
        files = "".join(f'    "{file}",\n' for file in wanted.get(found.group(1), []))
        return f"{found.group(1)} = [\n{files}]"

    text = blueprint.LIST.sub(with_files, blueprint.read(blueprint.FILE))
    with open(blueprint.FILE, "w", encoding="utf-8") as file:
        file.write(text)


def check_lists(text):
    wanted = cmake_lists()
    found = blueprint.lists(text)
    modules = blueprint.LIST.sub("", text)
    faults = []
    for name in sorted(wanted.keys() | found.keys()):
        if name not in found:
            faults.append(f"{blueprint.FILE} has no list {name}")
        elif wanted.get(name) != found[name]:
            faults.append(f"{name} differs from {SOURCES}; check_android.py --update mends it")
        elif not re.search(rf"\b{name}\b", modules):
            faults.append(f"no module of {blueprint.FILE} compiles {name}")
    for pattern in re.findall(r'(?<!name: )"([^":]+\.(?:cpp|json|map)|[^":]+\*|LICENSE)"', text):
        if not blueprint.list_files(pattern):
            faults.append(f"{blueprint.FILE}: {pattern} matches no file")
    return faults


def check_modules(text):
    """The library takes nothing from the environment, and every folder of tests has its module."""
    modules = blueprint.Blueprint(text)
    faults = []
    for name in modules.of_kind("cc_library_static", "cc_library_shared"):
        faults += [f"{name} compiles {path}, which phones must not have"
                   for path in modules.sources(name)
                   if path.startswith(("platform/environment/", "tools/", "tests/"))]
    tests = modules.of_kind("cc_test")
    for folder in re.findall(r"^ *vorel_add_test\((\w+)", blueprint.read(TESTS), re.MULTILINE):
        if folder in HOST_FOLDERS:
            continue
        name = f"vorel_{folder}_test"
        if name not in tests:
            faults.append(f"tests/{folder} has no module {name}")
            continue
        if f"tests/{folder}/*_test.cpp" not in modules.words(name, "srcs"):
            faults.append(f"{name} does not compile tests/{folder}/*_test.cpp")
        data = modules.words(name, "data")
        if os.path.isdir(f"tests/{folder}/data") and f"tests/{folder}/data/**/*" not in data:
            faults.append(f"{name} does not install tests/{folder}/data")
    return faults


def check_syntax():
    """bpfix ends with status 0 even where it cannot read the file, and says so on stderr."""
    result = subprocess.run(["bpfix", "-d", blueprint.FILE], capture_output=True, text=True)
    faults = []
    if result.returncode != 0 or result.stderr.strip():
        faults.append(f"bpfix does not read {blueprint.FILE}:\n{result.stderr}")
    if result.stdout.strip():
        faults.append(f"bpfix would write {blueprint.FILE} differently:\n{result.stdout}")
    return faults


def check_calls():
    word = re.compile(r"\b(" + "|".join(ABSENT) + r")\s*\(")
    faults = []
    for folder in LIBRARY_FOLDERS:
        for path in blueprint.list_files(f"{folder}/**"):
            if not path.endswith((".cpp", ".h")):
                continue
            for number, line in enumerate(blueprint.read(path).split("\n"), 1):
                found = word.search(line.split("//")[0])
                if found:
                    faults.append(f"{path}:{number}: {found.group(1)} is not on Android 11")
    return faults


def main():
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    if sys.argv[1:] == ["--update"]:
        update()
    text = blueprint.read(blueprint.FILE)
    faults = check_lists(text) + check_modules(text) + check_syntax() + check_calls()
    for fault in faults:
        print(f"android: {fault}", file=sys.stderr)
    print(f"android: {blueprint.FILE} and sources, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
