#!/usr/bin/python3
"""Seeds one-line faults into sources, one at a time, and tells which of them no test notices.

    tests/mutation/mutate.py [--share PERCENT | --most NUMBER] [--seed NUMBER] FILE...

All faults are tried, or the share of them or the number in each file that the seed picks, the same ones each time. It
works on a copy of the checkout in a temporary folder, which goes at the end; the checkout itself is only read. The
tests are stories, components, contract, models and the suites of the Linux desktop; of those that need a display, the
tests of the windows and of what is heard. A fault that makes them fail, crash or take far longer than usual is caught;
one that does not compile is none.
"""

import argparse
import contextlib
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter, defaultdict
from pathlib import Path

from faults import faults_in

CHECKOUT = Path(__file__).resolve().parents[2]
# The folders of the suites, in the order in which they are asked.
FOLDERS = ["components", "stories", "linux", "contract", "fuzz", "models"]
DISPLAY_TESTS = ["real_windows", "real_settings", "real_small_window", "layer_windows", "wayland_windows",
                 "sounds_are_heard"]
LONGEST_BUILD = 3600  # seconds, of all that a file is tested by
LONGEST_STEP = 300  # of what one fault touches
PARTS = 8  # of a suite that run side by side
COMPILER = "compiler"
# What most sources include, compiled once.
COMMON_HEADERS = ["algorithm", "array", "charconv", "chrono", "filesystem", "fstream", "functional", "iostream", "map",
                  "memory", "mutex", "numeric", "optional", "regex", "sstream", "string", "string_view", "thread",
                  "variant", "vector", "gio/gio.h", "gmock/gmock.h", "gtest/gtest.h"]
BEGUN = re.compile(rb"\[ RUN      \] ([\w/]+)\.")


def end(processes):
    """Ends them with all that they have started; Ninja ends its compilers only if it is asked to end."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        for process in processes:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, number)
        for process in processes:
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(5)


def failure_of(commands, limit):
    """What the first of commands that are run side by side has written when it failed, or when the limit in seconds
    was reached; that ends all. None if all succeed."""
    with contextlib.ExitStack() as stack:
        running = []
        stack.callback(end, running)
        for command, options in commands:
            output = stack.enter_context(tempfile.TemporaryFile())
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL,
                                       start_new_session=True, **options)
            process.output = output
            running.append(process)
        deadline = time.monotonic() + limit
        while running:
            for process in list(running):
                status = process.poll()
                if status or time.monotonic() > deadline:
                    process.output.seek(0)
                    return process.output.read()
                if status == 0:
                    running.remove(process)
                    end([process])
            time.sleep(0.01)
        return None


class Suite:
    """A test program, run as a whole, or what has caught most of it ahead. Its tests mostly wait, so many of them run
    at a time."""

    def __init__(self, program, arguments=()):
        self.programs = [program]
        self.name = program.name
        self.command = [program, *arguments]
        self.parts = 1 if arguments else PARTS
        self.limit = None
        self.catchers = Counter()  # suites of tests within it

    def _failure(self, parts, **environment):
        environment = dict(os.environ, GTEST_FAIL_FAST="1", RC_PARAMS="seed=1", GTEST_TOTAL_SHARDS=str(parts),
                           **environment)
        return failure_of([(self.command, {"cwd": self.programs[0].parent,
                                           "env": environment | {"GTEST_SHARD_INDEX": str(part)}})
                           for part in range(parts)], self.limit or LONGEST_STEP)

    def passes(self):
        best = ":".join(f"{name}.*" for name, _ in self.catchers.most_common(3))
        if best and self._fails_again(best) and self._fails_again(best):
            return False
        failure = self._failure(self.parts)
        if failure is None:
            return True
        catchers = [name.decode() for name in BEGUN.findall(failure)[-1:]]
        self.catchers.update(catchers)
        return bool(catchers) and not self._fails_again(f"{catchers[0]}.*")

    def _fails_again(self, tests):
        """Whether those tests fail, one at a time; what a busy machine has made fail does not."""
        return self._failure(1, GTEST_FILTER=tests) is not None

    def measure(self):
        """Runs without a fault, the first time, and allows for as much time as a busy machine might make of that."""
        if self.limit is None:
            begin = time.monotonic()
            if not self.passes() and not self.passes():
                sys.exit(f"{self.name} fails without any fault: {', '.join(self.catchers)}")
            self.limit = 10 + 5 * (time.monotonic() - begin)
        self.catchers.clear()  # another file has others


def settings_of(test):
    """The environment variables that CTest would give it."""
    return dict(setting.split("=", 1) for each in test["properties"] if each["name"] == "ENVIRONMENT"
                for setting in each["value"])


class DisplayTests(Suite):
    """Scripts that try the same programs, each on a private display."""

    def __init__(self, tests, programs):
        super().__init__(programs[0])
        self.programs = programs
        self.tests = tests

    def passes(self):
        return any(failure_of([([*test["command"], "-f"], {"env": os.environ | settings_of(test)})
                               for test in self.tests], self.limit or LONGEST_STEP) is None for _ in range(2))


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
        self._configure()
        self.suites = list(self._suites())

    def _configure(self):
        """For what is compiled, linked and run once: without optimisation, with the quick linker."""
        headers = self.folder / "build/common.hpp"
        headers.parent.mkdir()
        headers.write_text("".join(f"#include <{name}>\n" for name in COMMON_HEADERS))
        compiled = headers.with_suffix(".pch")
        flags = ["-std=c++20", "-O0", "-pthread"]
        glib = subprocess.check_output(["pkg-config", "--cflags", "gio-unix-2.0"]).decode().split()
        subprocess.check_call(["clang++", *flags, *glib, "-fPIC", "-x", "c++-header", headers, "-o", compiled])
        # Programs are compiled with -fPIE, of which these headers make nothing.
        use = ["-fno-validate-pch", "-include-pch", str(compiled)]
        flags += [word for argument in use for word in ("-Xclang", argument)]
        subprocess.run(["cmake", "-S", self.folder, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
                        "-DCMAKE_CXX_COMPILER=clang++", f"-DCMAKE_CXX_FLAGS={' '.join(flags)}",
                        "-DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON", "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld",
                        "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST", "--log-level=ERROR"],
                       check=True, stdout=subprocess.DEVNULL)

    def _suites(self):
        for folder in FOLDERS:
            tests = self.build / "tests" / folder
            for script in sorted(tests.rglob("*[[]1[]]_include.cmake")):  # CTest's, one for each program
                yield Suite(script.with_name(script.name.removesuffix("[1]_include.cmake")))
            for seeds in sorted((self.folder / "tests" / folder).glob("seeds/*")):
                yield Suite(tests / f"fuzz_{seeds.name}", [seeds])
        yield from self._display_tests()

    def _display_tests(self):
        known = json.loads(subprocess.check_output(["ctest", "--test-dir", self.build, "--show-only=json-v1"]))
        by_programs = defaultdict(list)
        for test in known["tests"]:
            if test["name"] in DISPLAY_TESTS:
                needed = [*test["command"], *settings_of(test).values()]
                programs = [word for word in needed if word.startswith(f"{self.build}/")]
                by_programs[tuple(programs)].append(test)
        for programs, tests in by_programs.items():
            yield DisplayTests(tests, [Path(program) for program in programs])

    def make(self, suites, limit):
        programs = [program.relative_to(self.build) for suite in suites for program in suite.programs]
        return failure_of([(["ninja", "-C", self.build, "--quiet", *programs], {})], limit) is None

    def suites_of(self, name):
        """The suites that the file of that name is linked into, built and known to pass."""
        def is_linked(suite):
            inputs = subprocess.check_output(["ninja", "-C", self.build, "-t", "inputs",
                                              *(program.relative_to(self.build) for program in suite.programs)])
            return name in inputs.decode()

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
                    return suite.name
            return None
        finally:
            (self.folder / name).write_text(source)


def try_file(copy, name, picked):
    """Prints what becomes of the faults in one file."""
    source = (copy.folder / name).read_text()
    suites = copy.suites_of(name)
    catchers, survivors = Counter(), []
    for fault in picked(faults_in(source)):
        catcher = copy.what_catches(name, source, fault, sorted(suites, key=lambda suite: -catchers[suite.name]))
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
