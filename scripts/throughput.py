#!/usr/bin/env python3
"""Static throughput of the hottest kernels' inner loops on Arm cores, by llvm-mca.

Compiles each kernel for 64-bit Arm, takes the loop of the named function that holds the most vector
instructions, and asks llvm-mca for its reciprocal throughput: the cycles of an iteration when every
result is there in time and everything is in the first cache. (The models' latencies are no use
here: they let the pointer of a store with write-back wait for the store.) Memory, which decides
much on a phone, is left out. Prints a Markdown table of cycles per sample, and below it what they
come to for one frame.

    scripts/throughput.py [--size 4000x3000] [--ghz 3.0 2.4] [--show NAME]
"""
import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
CORES = ("cortex-x2", "cortex-a78")
FLAGS = [
    "--target=aarch64-linux-gnu", "-march=armv8.2-a+fp16", "-std=c++20", "-O3", "-DNDEBUG",
    "-ffp-contract=off", "-fPIC", "-fvisibility=hidden", "-mbranch-protection=standard",
    "-fno-exceptions", "-fno-rtti", "-I", str(ROOT), "-I", str(ROOT / "include"),
    "-isystem", "/usr/include/android",
]

LIST = ROOT / "tests/kernels/kernel_list.h"


def listed_kernels(size):
    """Name, loops that each sample passes, samples of a frame, as the kernel list has them.

    `.arm_loops` of a kernel is text, one part (or several, between "||") of "name | samples of a
    frame | loop | loop...", where "luma" are the frame's luma samples and "bordered" those of both
    bordered chroma planes. A loop is "source : part of the function's demangled name : instructions
    that it has (or has not, with a minus) when the function has several loops : bytes that it
    stores per sample", the last for a loop that keeps its sums in registers the samples of an
    iteration as a negative number.
    """
    names = {"luma": size[0] * size[1], "bordered": 2 * (size[0] // 2 + 64) * (size[1] // 2 + 64)}
    kernels = []
    for strings in re.findall(r'\.arm_loops\s*=((?:\s*"[^"]*")+)', LIST.read_text()):
        for part in "".join(re.findall(r'"([^"]*)"', strings)).split("||"):
            name, samples, *loops = (field.strip() for field in part.split("|"))
            fields = [[field.strip() for field in loop.split(" : ")] for loop in loops]
            kernels.append((name, [(*loop[:3], int(loop[3])) for loop in fields],
                            eval(samples, {"__builtins__": {}}, names)))
    if not kernels:
        sys.exit(f"throughput: {LIST} names no loops")
    return kernels


def assembly(source):
    with tempfile.NamedTemporaryFile(suffix=".s") as out:
        subprocess.run(["clang++-19", *FLAGS, "-S", str(ROOT / source), "-o", out.name], check=True)
        text = pathlib.Path(out.name).read_text()
    return subprocess.run(["llvm-cxxfilt-19"], input=text, capture_output=True, text=True,
                          check=True).stdout


def functions(text):
    """Demangled name -> lines of its body."""
    found = {}
    name = None
    for line in text.splitlines():
        begin = re.match(r"\s*\.type\s+(.*),@function", line)
        if begin:
            name = begin.group(1)
            found[name] = []
        elif re.match(r"\s*\.size\s", line):
            name = None
        elif name is not None:
            found[name].append(line)
    return found


def loops(lines):
    """Innermost loops: the instructions between a label and the branch back to it."""
    labels = {}
    code = []
    for line in lines:
        label = re.match(r"(\.L\w+):", line)
        if label:
            labels[label.group(1)] = len(code)
            continue
        line = line.split("//")[0].rstrip()
        if line.strip() and not line.strip().startswith("."):
            code.append(line)
    spans = []
    for end, line in enumerate(code):
        branch = re.match(r"\s*(?:b\.\w+|cbn?z|tbn?z)\s.*?(\.L\w+)$", line)
        if branch and labels.get(branch.group(1), len(code)) <= end:
            spans.append((labels[branch.group(1)], end + 1))
    inner = [s for s in spans if not any(t != s and s[0] <= t[0] and t[1] <= s[1] for t in spans)]
    return [code[a:b] for a, b in inner]


def pick(found, function, words):
    """The loop with the most vector instructions among those that have the words."""
    has = {word for word in words.split() if not word.startswith("-")}
    lacks = {word[1:] for word in words.split() if word.startswith("-")}
    fitting = []
    for key, lines in found.items():
        for loop in loops(lines) if function in key else []:
            names = {line.split()[0] for line in loop}
            if has <= names and not lacks & names and vector_count(loop) > 4:
                fitting.append(loop)
    return max(fitting, key=vector_count, default=None)


def vector_count(loop):
    return sum(bool(re.search(r"\bv\d+\.|\bq\d+", line)) for line in loop)


def stored_bytes(loop):
    total = 0
    for line in loop:
        if "[sp" in line:
            continue
        match = re.match(r"\s*(st[1-4]|stp|stu?r)\s+(.*)", line)
        if not match:
            continue
        mnemonic, operands = match.groups()
        operands = operands.split("[")[0]
        lanes = re.findall(r"v\d+\.(\d+)([bhsd])", operands)
        if lanes:
            total += sum(int(n) * {"b": 1, "h": 2, "s": 4, "d": 8}[k] for n, k in lanes)
        else:
            total += sum({"q": 16, "d": 8, "s": 4, "h": 2, "b": 1}[k]
                         for k in re.findall(r"\b([qdshb])\d+", operands))
    return total


def cycles(loop, core):
    # Labels are gone, so branches are too; one branch an iteration costs nothing here.
    body = "\n".join(line for line in loop if not re.match(r"\s*(b\.|cbn?z|tbn?z)", line))
    out = subprocess.run(["llvm-mca-19", "-mtriple=aarch64", f"-mcpu={core}", "-mattr=+fullfp16",
                          "-all-stats=false", "-all-views=false", "-summary-view"],
                         input=body, capture_output=True, text=True, check=True)
    return float(re.search(r"Block RThroughput:\s+([\d.]+)", out.stdout).group(1))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("--size", default="4000x3000", help="frame size for the sum")
    parser.add_argument("--ghz", nargs=2, type=float, default=(3.0, 2.4), help="clock of each core")
    parser.add_argument("--show", help="print the loops of this kernel too")
    options = parser.parse_args()
    size = tuple(int(n) for n in options.size.split("x"))

    print(f"| kernel | instructions per 16 samples | {CORES[0]} | {CORES[1]} |")
    print("|:--|--:|--:|--:|")
    texts = {}
    frame = [0.0, 0.0]
    for name, pieces, samples in listed_kernels(size):
        instructions = 0.0
        each = [0.0, 0.0]
        for source, function, words, sample_bytes in pieces:
            if source not in texts:
                texts[source] = functions(assembly(source))
            loop = pick(texts[source], function, words)
            if loop is None:
                sys.exit(f"throughput: {function} of {source} has no vector loop with '{words}'")
            if options.show == name:
                print("\n".join(loop))
            per_iteration = -sample_bytes if sample_bytes < 0 else stored_bytes(loop) / sample_bytes
            instructions += len(loop) / per_iteration
            for i, core in enumerate(CORES):
                each[i] += cycles(loop, core) / per_iteration
        for i in range(2):
            frame[i] += each[i] * samples
        print(f"| {name} | {16 * instructions:.1f} | {each[0]:.3f} | {each[1]:.3f} |")
    print()
    for core, total, ghz in zip(CORES, frame, options.ghz):
        print(f"{core} at {ghz} GHz: {total / ghz / 1e6:.1f} ms of one core for {options.size}")


if __name__ == "__main__":
    main()
