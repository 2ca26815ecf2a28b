#!/usr/bin/python3
"""Every address of the project's that stands anywhere is one of those in cmake/Addresses.cmake."""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[3]
ADDRESSES = PROJECT / "cmake/Addresses.cmake"
PLACES = ("*.md", "NEWS", ".github/**/*", "app/*", "alerts/*", "config/*", "docs/*.md", "packaging/**/*", "platform/**/*",
          "statusbar/*", "windows/*")


def addresses():
    values = {}
    for name, value in re.findall(r"^set\((\w+) \"?(.*?)\"?\)$", ADDRESSES.read_text(), re.MULTILINE):
        values[name] = re.sub(r"\$\{(\w+)\}", lambda match: values[match[1]], value)
    return values


class Addresses(unittest.TestCase):
    def test_each_stands_in_one_place_or_is_the_same_as_there(self):
        values = addresses()
        domain = values["MARVELODE_HOMEPAGE"].removeprefix("https://")
        found = {(match, str(path.relative_to(PROJECT)))
                 for pattern in PLACES for path in PROJECT.glob(pattern) if path.is_file() and path.suffix != ".png"
                 for match in re.findall(rf"(?:https?://|[\w.]+@){re.escape(domain)}[\w/-]*", path.read_text())}
        self.assertTrue(found)
        self.assertEqual({each for each in found if each[0] not in values.values()}, set())

    def test_no_code_has_one_of_its_own(self):
        domain = addresses()["MARVELODE_HOMEPAGE"].removeprefix("https://")
        for folder in ("alerts", "app", "config", "platform", "statusbar", "windows"):
            for path in (PROJECT / folder).rglob("*.[chm]*"):
                self.assertNotIn(domain, path.read_text(), path)


if __name__ == "__main__":
    unittest.main()
