#!/usr/bin/python3
"""Seeds one-line faults into sources, one at a time, and tells which of them no test notices.

    tests/mutation/mutate.py [--share PERCENT | --most NUMBER] [--seed NUMBER] FILE...

All faults are tried, or the share of them or the number in each file that the seed picks, the same ones each time. It
works on a copy of the checkout in a temporary folder, which goes at the end; the checkout itself is only read. The
tests are stories, components, contract, models and the suites of the Linux desktop without a display. A fault that
makes them fail, crash or take far longer than usual is caught; one that does not compile is none.
"""

import argparse
import contextlib
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter
from pathlib import Path

from faults import faults_in

CHECKOUT = Path(__file__).resolve().parents[2]
# The folders of the suites, in the order in which they are asked.
FOLDERS = ["components", "stories", "linux", "contract", "fuzz", "models"]
LONGEST_BUILD = 3600  # seconds, of all that a file is tested by
LONGEST_STEP = 300  # of what one fault touches
PARTS = 8  # of a suite that run side by side
COMPILER = "compiler"


def end(processes):
    """Ends them with all that they have started; Ninja ends its compilers only if it is asked to end."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        for process in processes:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, number)
        for process in processes:
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(5)


def all_succeed(commands, limit):
    """Whether commands that are run side by side all succeed within the limit in seconds; the first failure ends all."""
    running = []
    try:
        for command, options in commands:
            running.append(subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                            stderr=subprocess.DEVNULL, start_new_session=True, **options))
        deadline = time.monotonic() + limit
        while running and time.monotonic() < deadline:
            for process in list(running):
                status = process.poll()
                if status is not None:
                    running.remove(process)
                    end([process])
                if status:
                    return False
            time.sleep(0.01)
        return not running
    finally:
        end(running)


class Suite:
    """A test program, run as a whole. Its tests mostly wait, so many of them run at a time."""

    def __init__(self, program, arguments=()):
        self.program = program
        self.command = [program, *arguments]
        self.parts = 1 if arguments else PARTS
        self.limit = None

    def passes(self):
        environment = dict(os.environ, GTEST_FAIL_FAST="1", RC_PARAMS="seed=1", GTEST_TOTAL_SHARDS=str(self.parts))
        return all_succeed([(self.command, {"cwd": self.program.parent,
                                            "env": environment | {"GTEST_SHARD_INDEX": str(part)}})
                            for part in range(self.parts)], self.limit or LONGEST_STEP)

    def measure(self):
        """Runs without a fault, the first time, and allows for as much time as a busy machine might make of that."""
        if self.limit is None:
            begin = time.monotonic()
            if not self.passes() and not self.passes():
                sys.exit(f"{self.program.name} fails without any fault")
            self.limit = 20 + 5 * (time.monotonic() - begin)


class Copy:
    """A copy of the checkout, of which as much is built as is needed."""

    def __init__(self, folder):
        self.folder = folder
        self.build = folder / "build/mutation"
        files = subprocess.check_output(["git", "-C", CHECKOUT, "ls-files", "-z", "--cached", "--others",
                                         "--exclude-standard"]).decode().split("\0")
        for name in filter(None, files):
            if (CHECKOUT / name).is_file():
                (folder / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(CHECKOUT / name, folder / name)
        subprocess.run(["cmake", "-S", folder, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
                        "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST", "--log-level=ERROR"],
                       check=True, stdout=subprocess.DEVNULL)
        self.suites = list(self._suites())

    def _suites(self):
        for folder in FOLDERS:
            tests = self.build / "tests" / folder
            for script in sorted(tests.rglob("*[[]1[]]_include.cmake")):  # CTest's, one for each program
                yield Suite(script.with_name(script.name.removesuffix("[1]_include.cmake")))
            for seeds in sorted((self.folder / "tests" / folder).glob("seeds/*")):
                yield Suite(tests / f"fuzz_{seeds.name}", [seeds])

    def make(self, suites, limit):
        return all_succeed([(["ninja", "-C", self.build, "--quiet",
                              *(suite.program.relative_to(self.build) for suite in suites)], {})], limit)

    def suites_of(self, name):
        """The suites that the file of that name is linked into, built and known to pass."""
        def is_linked(suite):
            inputs = subprocess.check_output(["ninja", "-C", self.build, "-t", "inputs",
                                              suite.program.relative_to(self.build)]).decode()
            return name in inputs

        suites = [suite for suite in self.suites if is_linked(suite)]
        if not self.make(suites, LONGEST_BUILD):
            sys.exit("the checkout does not build")
        for suite in suites:
            suite.measure()
        return suites

    def what_catches(self, name, source, fault, suites):
        """The name of the suite that notices the fault in the file of that name; None for none."""
        lines = source.split("\n")
        lines[fault.number - 1] = fault.after
        try:
            (self.folder / name).write_text("\n".join(lines))
            for suite in suites:
                if not self.make([suite], LONGEST_STEP):
                    return COMPILER
                if not suite.passes():
                    return suite.program.name
            return None
        finally:
            (self.folder / name).write_text(source)


def try_file(copy, name, picked):
    """Prints what becomes of the faults in one file."""
    source = (copy.folder / name).read_text()
    suites = copy.suites_of(name)
    catchers, survivors = Counter(), []
    for fault in picked(faults_in(source)):
        catcher = copy.what_catches(name, source, fault, suites)
        catchers[catcher] += 1
        if catcher is None:
            survivors.append(fault)
            print(f"{name}:{fault}", flush=True)
    not_compiled = catchers.pop(COMPILER, 0)
    total = sum(catchers.values())
    caught = total - len(survivors)
    print(f"{name}: {caught} of {total} caught ({100 * caught / max(total, 1):.1f} %), {not_compiled} did not compile;"
          f" by {', '.join(f'{who} {count}' for who, count in catchers.most_common() if who) or 'none'}\n", flush=True)
    return caught, total


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--share", type=float, default=100, help="of the faults of each file, in percent")
    parser.add_argument("--most", type=int, help="faults in each file")
    parser.add_argument("--seed", type=int, default=1, help="picks the faults if not all are tried")
    parser.add_argument("files", nargs="+", type=Path, metavar="FILE")
    options = parser.parse_args()

    def picked(faults):
        count = min(len(faults), options.most or len(faults), round(len(faults) * options.share / 100))
        return sorted(random.Random(options.seed).sample(faults, count), key=lambda fault: fault.number)

    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended"))  # by way of all that cleans up
    with tempfile.TemporaryDirectory(prefix="marvelode-mutation-") as folder:
        copy = Copy(Path(folder))
        results = [try_file(copy, str(file.resolve().relative_to(CHECKOUT)), picked) for file in options.files]
    caught, total = map(sum, zip(*results))
    print(f"{caught} of {total} caught ({100 * caught / max(total, 1):.1f} %)")


if __name__ == "__main__":
    main()
