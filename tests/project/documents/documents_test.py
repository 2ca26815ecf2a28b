#!/usr/bin/python3
"""What the documents link to is there, and so is each file that they name by its path."""

import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[3]
DOCUMENTS = [*PROJECT.glob("*.md"), *PROJECT.glob("docs/*.md"), *PROJECT.glob("tests/**/*.md")]
FOLDERS = "alerts|app|cmake|config|docs|packaging|platform|resources|statusbar|tests|windows"

LINK = re.compile(r"\]\(([^)#:]+)(?:#[^)]*)?\)")
PLACEHOLDER = re.compile(r"\b(NAME|VERSION)\b")  # stands for any name
PATH = re.compile(rf"`((?:{FOLDERS})/[\w./-]+)(?: [^`]*)?`")


def is_there(path):
    """A header and its source may be named together, without an ending."""
    return path.exists() or any(path.with_name(path.name + ending).exists() for ending in (".hpp", ".cpp", ".mm"))


class Documents(unittest.TestCase):
    def assert_there(self, document, expression, folder):
        names = [name for name in expression.findall(document.read_text()) if not PLACEHOLDER.search(name)]
        for name in names:
            with self.subTest(document.relative_to(PROJECT), name=name):
                self.assertTrue(is_there(folder / name))
        return len(names)

    def test_link_to_what_is_there(self):
        self.assertGreater(sum(self.assert_there(each, LINK, each.parent) for each in DOCUMENTS), 0)

    def test_name_files_that_are_there(self):
        self.assertGreater(sum(self.assert_there(each, PATH, PROJECT) for each in DOCUMENTS), 0)


if __name__ == "__main__":
    unittest.main()
