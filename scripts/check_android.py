#!/usr/bin/env python3
"""Holds Android.bp to the CMake lists, and the library's sources to what Android 11 has.

    check_android.py            checks
    check_android.py --update   writes the source lists of Android.bp anew
"""
import os
import re
import subprocess
import sys

BLUEPRINT = "Android.bp"
SOURCES = "cmake/Sources.cmake"
HOST_ONLY = {"VOREL_PLATFORM_HOST_SOURCES", "VOREL_TUNING_CHECK_SOURCES"}
LIBRARY_FOLDERS = ("core", "threading", "tuning", "filters", "convert", "wavelet", "platform")

# Functions of glibc that bionic lacks at API level 30. The host form of the platform folder may use
# them.
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


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def cmake_lists():
    text = re.sub(r"#.*", "", read(SOURCES))
    return {name: words.split() for name, words in re.findall(r"set\((\w+)([^)]*)\)", text)}


def blueprint_name(cmake_name):
    return cmake_name.lower()


LIST = re.compile(r"^(\w+_sources) = \[\n(.*?)\]$", re.MULTILINE | re.DOTALL)


def blueprint_lists(text):
    return {name: re.findall(r'"([^"]+)"', body) for name, body in LIST.findall(text)}


def update():
    wanted = {blueprint_name(name): files for name, files in cmake_lists().items()}

    def with_files(found):
        files = "".join(f'    "{file}",\n' for file in wanted.get(found.group(1), []))
        return f"{found.group(1)} = [\n{files}]"

    text = LIST.sub(with_files, read(BLUEPRINT))
    with open(BLUEPRINT, "w", encoding="utf-8") as file:
        file.write(text)


def check_lists(text):
    wanted = {blueprint_name(name): files
              for name, files in cmake_lists().items() if name not in HOST_ONLY}
    found = blueprint_lists(text)
    modules = LIST.sub("", text)
    faults = []
    for name in sorted(wanted.keys() | found.keys()):
        if name not in found:
            faults.append(f"{BLUEPRINT} has no list {name}")
        elif wanted.get(name) != found[name]:
            faults.append(f"{name} differs from {SOURCES}; check_android.py --update mends it")
        elif not re.search(rf"\b{name}\b", modules):
            faults.append(f"no module of {BLUEPRINT} compiles {name}")
    if "/host/" in text:
        faults.append(f"{BLUEPRINT} names a file of hosts")
    for pattern in re.findall(r'(?<!name: )"([^":]+\.(?:cpp|json|map)|LICENSE)"', text):
        if not list_files(pattern):
            faults.append(f"{BLUEPRINT}: {pattern} matches no file")
    return faults


def list_files(pattern):
    output = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", f":(glob){pattern}"],
                            check=True, capture_output=True, text=True).stdout
    return output.split()


def check_syntax():
    """bpfix ends with status 0 even where it cannot read the file, and says so on stderr."""
    result = subprocess.run(["bpfix", "-d", BLUEPRINT], capture_output=True, text=True)
    faults = []
    if result.returncode != 0 or result.stderr.strip():
        faults.append(f"bpfix does not read {BLUEPRINT}:\n{result.stderr}")
    if result.stdout.strip():
        faults.append(f"bpfix would write {BLUEPRINT} differently:\n{result.stdout}")
    return faults


def check_calls():
    word = re.compile(r"\b(" + "|".join(ABSENT) + r")\s*\(")
    faults = []
    for folder in LIBRARY_FOLDERS:
        for path in list_files(f"{folder}/**"):
            if not path.endswith((".cpp", ".h")) or path.startswith("platform/host/"):
                continue
            for number, line in enumerate(read(path).split("\n"), 1):
                found = word.search(line.split("//")[0])
                if found:
                    faults.append(f"{path}:{number}: {found.group(1)} is not on Android 11")
    return faults


def main():
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    if sys.argv[1:] == ["--update"]:
        update()
    faults = check_lists(read(BLUEPRINT)) + check_syntax() + check_calls()
    for fault in faults:
        print(f"android: {fault}", file=sys.stderr)
    print(f"android: {BLUEPRINT} and sources, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
