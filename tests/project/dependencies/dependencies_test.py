#!/usr/bin/python3
"""packaging/install-dependencies, with scripts in place of Debian's programs and a folder in place of what is installed."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[3] / "packaging/install-dependencies"
LIST = """
build    compiler         compiles
build    old-name|name    draws, on an older release and on a newer one
test     checker          checks
"""
PROGRAMS = {
    "dpkg-query": 'test -e "$FOLDER/installed/${@: -1}" && echo installed',
    "apt-cache": 'test -e "$FOLDER/known/$2"',
    "apt-get": 'for word; do if [[ -e $FOLDER/known/$word ]]; then touch "$FOLDER/installed/$word"; fi; done',
    "sudo": 'while [[ $1 == -* ]]; do shift; done; "$@"',
}


class InstallDependencies(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name in ("bin", "installed", "known"):
            (self.folder / name).mkdir()
        (self.folder / "dependencies").write_text(LIST)
        shutil.copy(SCRIPT, self.folder)
        for name, commands in PROGRAMS.items():
            (self.folder / "bin" / name).write_text(f"#!/bin/bash\n{commands}\n")
            (self.folder / "bin" / name).chmod(0o755)

    def run_for(self, *purposes, known):
        """What the script says is missing after it has installed what it could."""
        for name in known:
            (self.folder / "known" / name).touch()
        return subprocess.run([self.folder / SCRIPT.name, *purposes], check=False, capture_output=True, text=True,
                              stdin=subprocess.DEVNULL, env={"PATH": f"{self.folder}/bin:/usr/bin:/bin",
                                                             "FOLDER": str(self.folder)}).stdout

    def installed(self):
        return {path.name for path in (self.folder / "installed").iterdir()}

    def test_what_is_missing_is_installed(self):
        self.assertEqual(self.run_for("build", "test", known=["compiler", "old-name", "checker"]), "")
        self.assertEqual(self.installed(), {"compiler", "old-name", "checker"})

    def test_another_purpose_is_not_asked_for(self):
        self.run_for("test", known=["compiler", "old-name", "checker"])
        self.assertEqual(self.installed(), {"checker"})

    def test_of_two_names_the_one_that_the_release_has_is_installed(self):
        self.assertEqual(self.run_for("build", known=["compiler", "name"]), "")
        self.assertEqual(self.installed(), {"compiler", "name"})

    def test_either_of_two_names_will_do(self):
        (self.folder / "installed/name").touch()
        self.run_for("build", known=["compiler", "old-name", "name"])
        self.assertEqual(self.installed(), {"compiler", "name"})

    def test_what_cannot_be_had_is_named_with_its_purpose(self):
        self.assertEqual(self.run_for("build", "test", known=["compiler"]), "build: old-name|name\ntest: checker\n")


if __name__ == "__main__":
    unittest.main()
