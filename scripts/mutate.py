#!/usr/bin/env python3
"""Puts faults into the library's sources, one at a time, and counts those that the tests catch.

A fault changes one operator, bound, constant or statement (scripts/mutations.py). It is put into a copy
of the tree under build/mutation; what depends on it is built and the folder's own tests run, then those
of whole frames. What they let pass is tried again with sanitizers. A fault that ends a test by a signal or
by the time limit is caught. Faults that do not compile, or leave every program byte for byte the same,
do not count; those that nobody could see stand in harden/mutation_survivors.txt, each with its reason.

Status 1: a survivor is not explained there, or less than 95 % of the faults were caught.
"""
import argparse
import collections
import hashlib
import os
import resource
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

from mutations import Mutation, mutations

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / 'build' / 'mutation'
LIST = ROOT / 'harden' / 'mutation_survivors.txt'
# The tests of a folder, the quickest first.
PROGRAMS = {
    'platform': ['platform_test', 'core_test'],
    'threading': ['threading_test', 'core_test'],
    'tuning': ['tuning_test', 'core_test'],
    'filters': ['filters_test', 'kernels_test', 'core_test'],
    'convert': ['convert_test', 'kernels_test', 'core_test'],
    'wavelet': ['wavelet_test', 'kernels_test', 'core_test'],
    'core': ['core_test'],
}
NOT_BUILT_HERE = ('platform/android/',)
GOAL = 0.95


def say(text: str) -> None:
    print(text, flush=True)


def tracked(*folders: str) -> list[str]:
    listed = subprocess.run(['git', 'ls-files', '-z', '--', *folders], cwd=ROOT, check=True, text=True,
                            capture_output=True).stdout
    return [name for name in listed.split('\0') if name and (ROOT / name).is_file()]


def make_copy() -> None:
    """Only what differs is written, so that a second run builds little."""
    wanted = set(tracked())
    for old in [p for p in COPY.rglob('*') if p.is_file() and p.relative_to(COPY).parts[0] != 'build']:
        if str(old.relative_to(COPY)) not in wanted:
            old.unlink()
    for name in wanted:
        source, target = ROOT / name, COPY / name
        content = source.read_bytes()
        if not target.is_file() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            shutil.copymode(source, target)


class Build:
    """One preset's build of the copy, and what its programs are without a fault."""

    def __init__(self, preset: str, programs: list[str]):
        self.preset = preset
        self.folder = COPY / 'build' / preset
        self.environment = {**os.environ, 'TEST_TMPDIR': f'{COPY}/build/tmp/'}
        self.made = collections.defaultdict(dict)  # program -> digest, seconds
        subprocess.run(['cmake', '--preset', preset, '-DVOREL_WERROR=OFF', '-DVOREL_BUILD_BENCH=OFF',
                        '-DVOREL_BUILD_GSTREAMER=OFF', '-DVOREL_BUILD_TOOLS=OFF'], cwd=COPY, check=True,
                       stdout=subprocess.DEVNULL)
        if not self.make(programs):
            sys.exit(f'mutate: {preset} does not build')
        for program in programs:
            start = time.monotonic()
            if self.run(program, 600) != 0:
                sys.exit(f'mutate: {program} ({preset}) fails without a fault')
            self.made[program] = {'digest': self.digest(program), 'seconds': time.monotonic() - start}

    def make(self, programs: list[str]) -> bool:
        return subprocess.run(['ninja', '-C', str(self.folder), *programs], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def digest(self, program: str) -> str:
        return hashlib.sha256((self.folder / 'tests' / program).read_bytes()).hexdigest()

    def run(self, program: str, limit: float) -> int | None:
        """The exit status; None when time is up."""
        Path(self.environment['TEST_TMPDIR']).mkdir(exist_ok=True)
        process = subprocess.Popen(
            [self.folder / 'tests' / program, '--gtest_brief=1', '--gtest_fail_fast'], env=self.environment,
            cwd=COPY, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            start_new_session=True, preexec_fn=limit_process)
        try:
            return process.wait(limit)
        except subprocess.TimeoutExpired:
            return None
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
            shutil.rmtree(self.environment['TEST_TMPDIR'], ignore_errors=True)

    def verdict(self, programs: list[str]) -> str:
        same = True
        for program in programs:
            if not self.make([program]):
                return 'does not compile'
            if self.digest(program) == self.made[program]['digest']:
                continue
            same = False
            status = self.run(program, 20 + 10 * self.made[program]['seconds'])
            if status != 0:
                how = 'time limit' if status is None else f'signal {-status}' if status < 0 else 'failure'
                return f'caught by {program} ({how}{", " + self.preset if self.preset != "host" else ""})'
        return 'no difference' if same else 'survived'


def limit_process() -> None:
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def try_mutation(build: Build, mutation: Mutation) -> str:
    target = COPY / mutation.path
    original = target.read_text()
    target.write_text(original[:mutation.start] + mutation.text + original[mutation.end:])
    try:
        return build.verdict(PROGRAMS[mutation.path.split('/')[0]])
    finally:
        target.write_text(original)


def key(mutation: Mutation) -> str:
    return f'{mutation.path}: {mutation.before}  ->  {mutation.after}'


def explained(candidates: list[Mutation]) -> dict[str, str]:
    """Faults with their reasons: lines "FILE: BEFORE  ->  AFTER", then one indented line that begins with
    "same" (nothing to be seen) or "kept" (a difference that no test looks at, counted as missed)."""
    reasons: dict[str, str] = {}
    waiting: list[str] = []
    known = {key(m) for m in candidates}
    for number, line in enumerate(LIST.read_text().splitlines(), 1):
        if not line or line.startswith('#'):
            continue
        if not line.startswith(' '):
            if line not in known:
                sys.exit(f'{LIST.name}:{number}: no such line in the sources any more: {line}')
            waiting.append(line)
        elif line.split()[0] not in ('same:', 'kept:') or not waiting:
            sys.exit(f'{LIST.name}:{number}: a reason begins with "same:" or "kept:" and follows a fault')
        else:
            reasons.update((fault, line.strip()) for fault in waiting)
            waiting = []
    return reasons


def ranked(candidates: list[Mutation], seed: str) -> list[Mutation]:
    """A draw that an edit elsewhere leaves alone: each fault's place follows from its own text."""
    seen: collections.Counter[str] = collections.Counter()

    def rank(mutation: Mutation) -> str:
        text = key(mutation)
        seen[text] += 1
        return hashlib.sha256(f'{seed} {seen[text]} {text}'.encode()).hexdigest()

    return [m for _, m in sorted((rank(m), m) for m in candidates)]


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--count', type=int, default=200, help='faults that count (200)')
    parser.add_argument('--seed', default='1', help='another draw (1)')
    parser.add_argument('--files', nargs='+', default=list(PROGRAMS), metavar='PATH',
                        help='folders or files to put faults into')
    parser.add_argument('--match', default='', help='only faults whose line, as --list prints it, has this text')
    parser.add_argument('--faults', metavar='FILE', type=Path, help='just those that FILE lists as '
                        'harden/mutation_survivors.txt does, the known ones too')
    parser.add_argument('--own-tests', action='store_true', help='not those of whole frames')
    parser.add_argument('--no-sanitizers', action='store_true', help='do not try survivors again')
    parser.add_argument('--list', action='store_true', help='print the faults in order of the draw and end')
    options = parser.parse_args()

    sources = [name for name in tracked(*PROGRAMS) if name.endswith(('.cpp', '.h'))
               and not name.startswith(NOT_BUILT_HERE)]
    candidates = [m for name in sources for m in mutations(name, (ROOT / name).read_text())]
    reasons = explained(candidates)
    chosen = set(tracked(*options.files))
    draw = ranked([m for m in candidates if m.path in chosen and options.match in str(m)], options.seed)
    if options.faults:
        listed = set(options.faults.read_text().splitlines())
        draw = [m for m in draw if key(m) in listed]
        reasons = {fault: reason for fault, reason in reasons.items() if not reason.startswith('same:')}
    if options.list:
        print(*draw, sep='\n')
        return 0

    if options.own_tests:
        for folder in PROGRAMS:
            PROGRAMS[folder] = PROGRAMS[folder][:-1] or PROGRAMS[folder]
    make_copy()
    programs = sorted({p for m in draw for p in PROGRAMS[m.path.split('/')[0]]})
    host = Build('host', programs)
    say(f'mutate: {len(draw)} possible faults; without one the tests take '
        f'{sum(m["seconds"] for m in host.made.values()):.0f} s')
    counts: collections.Counter[str] = collections.Counter()
    survivors: list[Mutation] = []
    taken = 0

    def counted() -> int:
        return counts['caught'] + len(survivors)

    while counted() < options.count and taken < len(draw):
        batch = draw[taken:taken + options.count - counted()]
        taken += len(batch)
        # File by file: a file that was put right need not be compiled before its next fault.
        for mutation in sorted(batch):
            if reasons.get(key(mutation), '').startswith('same:'):
                counts['known to change nothing'] += 1
                continue
            verdict = try_mutation(host, mutation)
            say(f'{verdict:32}  {mutation}')
            if verdict == 'survived':
                survivors.append(mutation)
            else:
                counts['caught' if verdict.startswith('caught') else verdict] += 1

    if survivors and not options.no_sanitizers:
        programs = sorted({p for m in survivors for p in PROGRAMS[m.path.split('/')[0]]})
        sanitized = Build('asan-ubsan', programs)
        for mutation in sorted(survivors):
            verdict = try_mutation(sanitized, mutation)
            say(f'{verdict:32}  {mutation}')
            if verdict.startswith('caught'):
                survivors.remove(mutation)
                counts['caught by sanitizers'] += 1

    caught = counts['caught'] + counts['caught by sanitizers']
    total = caught + len(survivors)
    open_survivors = [m for m in survivors if key(m) not in reasons]
    for mutation in survivors:
        say(f'survivor: {key(mutation)}\n    {reasons.get(key(mutation), "not explained")}')
    say(f'mutate: {counts["does not compile"]} did not compile, {counts["no difference"]} gave the same '
        f'programs, {counts["known to change nothing"]} are known to change nothing')
    say(f'result: {caught} of {total} faults caught ({100 * caught / max(total, 1):.1f} %), '
        f'{counts["caught by sanitizers"]} of them by sanitizers alone; {len(survivors)} survivors, '
        f'{len(open_survivors)} not explained')
    return 1 if open_survivors or total == 0 or caught < GOAL * total else 0


if __name__ == '__main__':
    sys.exit(main())
