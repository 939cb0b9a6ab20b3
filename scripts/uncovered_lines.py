#!/usr/bin/env python3
"""Counts the lines of the library that a run reached, from an lcov file, and lists the others.

    scripts/uncovered_lines.py LCOV REASONS

A line of REASONS is "file | words | reason": lines of the file that follow each other and were not
reached are out of reach for this reason when the words stand in one of them, or in the line before,
which is the condition. Status 1 when fewer than 95 % of the lines are reached, or when lines are
not and have no reason.
"""

import os
import sys
from pathlib import Path

GOAL = 95.0
ROOMS = {"core", "threading", "tuning", "filters", "convert", "wavelet", "platform", "include"}
ROOT = Path(__file__).resolve().parent.parent


def place_in_tree(path):
    """A source's path in the tree, whatever folder the compiler saw it from; None outside."""
    parts = Path(os.path.normpath(path)).parts
    tails = (Path(*parts[i:]) for i in range(len(parts)) if parts[i] != "/")
    return next((tail for tail in tails if (ROOT / tail).is_file()), None)


def read_lines(path):
    """{file: {line: times reached}} of the library's files."""
    files = {}
    lines = {}
    for text in Path(path).read_text(encoding="utf-8").splitlines():
        key, _, value = text.partition(":")
        if key == "SF":
            name = place_in_tree(value)
            lines = files.setdefault(str(name), {}) if name and name.parts[0] in ROOMS else {}
        elif key == "DA":
            number, times = map(int, value.split(",")[:2])
            lines[number] = lines.get(number, 0) + times
    return files


def read_reasons(path):
    """[(file, words, reason)]"""
    rows = []
    for text in Path(path).read_text(encoding="utf-8").splitlines():
        if text and not text.startswith("#"):
            rows.append(tuple(part.strip() for part in text.split(" | ", 2)))
    return rows


def missed_blocks(lines):
    """[first, last] of lines that were not reached, with no reached one between them."""
    blocks = []
    after_reached = True
    for number in sorted(lines):
        if lines[number] == 0:
            if after_reached:
                blocks.append([number, number])
            blocks[-1][1] = number
        after_reached = lines[number] != 0
    return blocks


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    files = read_lines(sys.argv[1])
    reasons = read_reasons(sys.argv[2])
    needed = set()
    unexplained = 0
    for name in sorted(files):
        source = (ROOT / name).read_text(encoding="utf-8").splitlines()
        for first, last in missed_blocks(files[name]):
            text = "\n".join(source[max(first - 2, 0):last])
            row = next((row for row in reasons if row[0] == name and row[1] in text), None)
            needed.add(row)
            unexplained += row is None
            print(f"{name}:{first}-{last}: {row[2] if row else 'NO REASON GIVEN'}")
    for row in reasons:
        if row not in needed:
            print(f"not needed this time: {row[0]} | {row[1]}")
    total = sum(len(lines) for lines in files.values())
    reached = sum(times > 0 for lines in files.values() for times in lines.values())
    percent = 100.0 * reached / max(total, 1)
    print(f"{reached} of {total} lines of the library reached ({percent:.1f} %), "
          f"{unexplained} places without a reason")
    return 0 if percent >= GOAL and unexplained == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
