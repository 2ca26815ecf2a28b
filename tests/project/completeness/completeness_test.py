#!/usr/bin/python3
"""Finds tests that are written and run by nothing, and folders that the README names and nothing tests.

Needs CTEST, BUILD and LEFT_OUT in the environment: the program, its build folder, and the folders below tests/ that this
build leaves out, separated by semicolons.
"""

import ast
import json
import os
import re
import subprocess
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]
TESTS = PROJECT / "tests"
LEFT_OUT = [TESTS / name for name in os.environ["LEFT_OUT"].split(";") if name]

TEST_IN_CPP = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)
NAME_IN_PYTHON = re.compile(r"([A-Z]\w*)(?:\.(test_\w+))?")


def registered():
    """All CTest entries, as CTest describes them."""
    listing = subprocess.run([os.environ["CTEST"], "--test-dir", os.environ["BUILD"], "--show-only=json-v1"],
                             check=True, capture_output=True, text=True).stdout
    return json.loads(listing)["tests"]


def is_left_out(path):
    return any(path.is_relative_to(folder) for folder in LEFT_OUT)


def sources(*endings):
    for path in sorted(TESTS.rglob("*")):
        if path.suffix in endings and not is_left_out(path):
            yield path, path.read_text()


class PythonClass:
    def __init__(self, path, node):
        self.path = path
        self.name = node.name
        self.bases = [ast.unparse(base).split(".")[-1] for base in node.bases]
        self.tests = [item.name for item in node.body if getattr(item, "name", "").startswith("test_")]


def python_classes():
    return [PythonClass(path, node) for path, source in sources(".py") for node in ast.parse(source).body
            if isinstance(node, ast.ClassDef)]


class Completeness(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.entries = registered()
        cls.commands = [" ".join(entry.get("command", [])) for entry in cls.entries]

    def test_every_test_in_cpp_is_run(self):
        run = set(re.findall(r"\w+\.\w+", " ".join(self.commands)))
        for path, source in sources(".cpp", ".mm"):
            for suite, name in TEST_IN_CPP.findall(source):
                with self.subTest(path.relative_to(PROJECT), test=f"{suite}.{name}"):
                    self.assertTrue(f"{suite}.{name}" in run, "run by nothing")

    def runs_of(self, path):
        """For each time that a script is run, the names of the cases and tests that are asked for."""
        for command in self.commands:
            if str(path) in command:
                yield [word for word in command.split(str(path))[1].split() if NAME_IN_PYTHON.fullmatch(word)]

    def test_every_test_in_python_is_run(self):
        classes = {each.name: each for each in python_classes()}

        def family(name):
            """The class of that name and those whose tests it inherits."""
            return [classes[name], *(ancestor for base in classes[name].bases for ancestor in family(base))] \
                if name in classes else []

        run = set()
        for each in classes.values():
            for names in self.runs_of(each.path):
                for name in names or [each.name]:
                    case, test = NAME_IN_PYTHON.fullmatch(name).groups()
                    run |= {(member.name, inherited) for member in family(case) for inherited in member.tests
                            if test in (None, inherited)}
        for each in classes.values():
            for test in each.tests:
                with self.subTest(each.path.relative_to(PROJECT), test=f"{each.name}.{test}"):
                    self.assertTrue((each.name, test) in run, "run by nothing")

    def test_every_test_has_a_limit_of_time(self):
        limited = [entry["name"] for entry in self.entries
                   if any(each["name"] == "TIMEOUT" for each in entry.get("properties", []))]
        self.assertEqual(sorted({entry["name"] for entry in self.entries} - set(limited)), [])

    def test_every_folder_in_the_readme_holds_tests_that_are_run(self):
        folders = re.findall(r"`(tests/[\w/]+)`", (PROJECT / "README.md").read_text())
        self.assertIn("tests/stories", folders)
        run = set(re.findall(r"\w+\.\w+", " ".join(self.commands)))
        for folder in folders:
            with self.subTest(folder):
                self.assertTrue((PROJECT / folder).is_dir())
                if not is_left_out(PROJECT / folder):
                    cpp = [".".join(test) for path, source in sources(".cpp") for test in TEST_IN_CPP.findall(source)
                           if path.is_relative_to(PROJECT / folder)]
                    self.assertTrue(run & set(cpp) or any(f"{PROJECT / folder}/" in command for command in self.commands))


if __name__ == "__main__":
    unittest.main()
