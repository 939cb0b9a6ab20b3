#!/usr/bin/env python3
"""Holds the JSON Schema of tuning files to what it must accept and refuse, with Debian's validator.

It accepts the samples, and of the checker's broken files it refuses those whose fault a schema can
say: kinds, ranges, lengths, unknown keys, a missing gate or missing levels.
"""
import glob
import json
import os
import re
import sys

import jsonschema

SCHEMA = "tuning/vorel_tuning.schema.json"
CASES = "tests/tools/tuning/data/broken.txt"
# Findings that a schema can tell too.
TELLS = re.compile(
    r"is outside|unknown key|is needed|values, \d+ are read|holds no level|is longer|does not fit|"
    r"too big|the root is|(noiseIndex_values|enableNoiseIndex): is missing|"
    r"\b(?P<level>\d+) is not above (?P=level) ")
# It takes 45 for a real and 8.0 for an integer.
CANNOT = re.compile(r"is an integer, a real|is a real number, an integer")


def unescaped(text):
    """The bytes that a case means by \\n and \\xHH."""
    return re.sub(rb"\\x([0-9A-F]{2})", lambda found: bytes([int(found[1], 16)]),
                  text.encode().replace(b"\\n", b"\n"))


def text_of(body, whole):
    if " => " not in body:
        return unescaped(body)
    data = whole
    for edit in body.split("\n"):
        old, new = edit.split(" => ", 1)
        data = data.replace(unescaped(old), unescaped(new))
    return data


def cases():
    with open(CASES, encoding="utf-8") as file:
        parts = re.split(r"^=== (.*)\n", file.read(), flags=re.M)[1:]
    whole = parts[1].split("\n---\n")[0].encode()
    for name, rest in zip(parts[::2], parts[1::2]):
        body, findings = rest.split("---\n", 1)
        if not body.startswith("folder "):  # those set a key or two, and the schema wants a gate
            yield name, text_of(body.rstrip("\n"), whole), findings


def main():
    os.chdir(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    faults = []
    counts = {True: 0, False: 0}
    for path in glob.glob("tuning/samples/*.json"):
        with open(path, encoding="utf-8") as file:
            faults += [f"{path}: {error.message}" for error in validator.iter_errors(json.load(file))]
    for name, data, findings in cases():
        try:
            tuning = json.loads(data.decode())
        except ValueError:
            continue  # no JSON: editors tell without a schema
        must_refuse = any(TELLS.search(line) and not CANNOT.search(line)
                          for line in findings.splitlines())
        refused = not validator.is_valid(tuning)
        counts[refused] += 1
        if refused != must_refuse:
            faults.append(f"case {name}: {'refused' if refused else 'accepted'}; {findings}")
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"schema: {counts[True]} cases refused, {counts[False]} accepted, {len(faults)} faults")
    return 1 if faults or counts[True] < 30 else 0


if __name__ == "__main__":
    sys.exit(main())
