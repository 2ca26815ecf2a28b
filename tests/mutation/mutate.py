#!/usr/bin/python3
"""Seeds one-line faults into sources, one at a time, and tells which of them no test notices.

    tests/mutation/mutate.py [--share PERCENT | --most NUMBER] [--seed NUMBER] FILE...

All faults are tried, or the share of them or the number in each file that the seed picks, the same ones each time. It
works on a copy of the checkout in a temporary folder, which goes at the end; the checkout itself is only read. The
tests are stories, components, contract, models and the suites of the Linux desktop without a display. A fault that
makes them fail, crash or take far longer than usual is caught; one that does not compile is none.
"""

import argparse
import json
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
LABELS = ["components", "stories", "linux", "window", "sound", "contract", "fuzz", "models"]  # in this order
LONGEST_BUILD = 3600  # seconds, of all
LONGEST_STEP = 300  # of what one fault touches


def run(command, limit, **options):
    """The status of a command; None if it takes longer than the limit in seconds, and is killed with all it started."""
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          start_new_session=True, **options) as process:
        try:
            return process.wait(limit)
        except subprocess.TimeoutExpired:
            return None
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass


class Suite:
    """A test program, run as a whole."""

    def __init__(self, label, command, environment):
        self.label = label
        self.name = Path(command[0]).name
        self.program = Path(command[0])
        self.command = [part for part in command if not part.startswith("--gtest_filter")]
        self.environment = dict(os.environ, GTEST_FAIL_FAST="1", RC_PARAMS="seed=1",
                                **dict(setting.split("=", 1) for setting in environment))
        self.limit = 300.0

    def passes(self):
        return run(self.command, self.limit, env=self.environment, cwd=self.program.parent) == 0

    def measure(self):
        """Runs without a fault, and allows for as much time as a busy machine might make of that."""
        begin = time.monotonic()
        if not self.passes() and not self.passes():
            sys.exit(f"{self.name} fails without any fault")
        self.limit = 20 + 5 * (time.monotonic() - begin)


class Copy:
    """A copy of the checkout, built."""

    def __init__(self, folder):
        self.folder = folder
        self.build = folder / "build/mutation"
        files = subprocess.check_output(["git", "-C", CHECKOUT, "ls-files", "-z", "--cached", "--others",
                                         "--exclude-standard"]).decode().split("\0")
        for name in filter(None, files):
            if (CHECKOUT / name).is_file():
                (folder / name).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(CHECKOUT / name, folder / name)
        subprocess.run(["cmake", "-S", folder, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                        "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST", "--log-level=ERROR"],
                       check=True, stdout=subprocess.DEVNULL)
        if self.make([], LONGEST_BUILD) != 0:
            sys.exit("the checkout does not build")
        self.suites = self._suites()
        for suite in self.suites:
            suite.measure()

    def make(self, targets, limit=LONGEST_STEP):
        return run(["cmake", "--build", self.build, "--", "--quiet", *targets], limit)

    def _suites(self):
        known = json.loads(subprocess.check_output(["ctest", "--test-dir", self.build, "--show-only=json-v1"]))
        suites = {}
        for test in known["tests"]:
            properties = {each["name"]: each["value"] for each in test["properties"]}
            label = next((label for label in LABELS if label in properties.get("LABELS", [])), None)
            if label and "desktop" not in properties["LABELS"] and test["command"][0].startswith(str(self.build)):
                suites.setdefault(test["command"][0],
                                  Suite(label, test["command"], properties.get("ENVIRONMENT", [])))
        return sorted(suites.values(), key=lambda suite: (LABELS.index(suite.label), suite.name))

    def what_catches(self, name, source, fault):
        """The name of the suite that notices the fault in the file of that name; None for none."""
        lines = source.split("\n")
        lines[fault.number - 1] = fault.after
        begin = time.time()
        try:
            (self.folder / name).write_text("\n".join(lines))
            if self.make([str(suite.program.relative_to(self.build)) for suite in self.suites]) != 0:
                return "compiler"
            for suite in self.suites:
                if suite.program.stat().st_mtime >= begin and not suite.passes():
                    return suite.name
            return None
        finally:
            (self.folder / name).write_text(source)


def try_file(copy, name, picked):
    """Prints what becomes of the faults in one file."""
    source = (copy.folder / name).read_text()
    catchers, survivors = Counter(), []
    for fault in picked(faults_in(source)):
        catcher = copy.what_catches(name, source, fault)
        catchers[catcher] += 1
        if catcher is None:
            survivors.append(fault)
            print(f"{name}:{fault}", flush=True)
    not_compiled = catchers.pop("compiler", 0)
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

    with tempfile.TemporaryDirectory(prefix="marvelode-mutation-") as folder:
        copy = Copy(Path(folder))
        results = [try_file(copy, str(file.resolve().relative_to(CHECKOUT)), picked) for file in options.files]
    caught, total = map(sum, zip(*results))
    print(f"{caught} of {total} caught ({100 * caught / max(total, 1):.1f} %)")


if __name__ == "__main__":
    main()
