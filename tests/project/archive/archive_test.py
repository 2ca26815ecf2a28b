#!/usr/bin/python3
"""The source archive: the same bytes each time, complete, and able to tell which build it is without git.

CTest runs it; by hand it needs what CTest gives it in the environment: CMAKE and VERSION.
"""

import os
import pathlib
import shutil
import subprocess
import tarfile
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[3]
VERSION = os.environ["VERSION"]
NAME = f"marvelode-timer-{VERSION}"


def git(*words):
    return subprocess.run(["git", *words], cwd=PROJECT, check=True, capture_output=True, text=True).stdout.strip()


def configure(source, build, has_git=False):
    """Sets the build up without what only Linux desktops have; what the build said, and BuildInfo.txt."""
    result = subprocess.run(
        [os.environ["CMAKE"], "-S", source, "-B", build, "-DMARVELODE_TESTS=OFF", "-DMARVELODE_SYSTEM_DESKTOP=OFF",
         f"-DCMAKE_DISABLE_FIND_PACKAGE_Git={not has_git}"], check=True, capture_output=True, text=True)
    return result.stderr, (build / "resources/BuildInfo.txt").read_text()


class SourceArchive(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.archive = cls.made("here", "022", LC_ALL="C.UTF-8", TZ="UTC")
        with tarfile.open(cls.archive) as archive:
            archive.extractall(cls.folder)
        cls.source = cls.folder / NAME

    @classmethod
    def made(cls, folder, umask, **environment):
        place = cls.folder / folder
        place.mkdir()
        subprocess.run(["sh", "-c", f'umask {umask}; exec "$0" "$@"', PROJECT / "packaging/make-source-archive",
                        VERSION, place], check=True, stdout=subprocess.DEVNULL, env=os.environ | environment)
        return place / f"{NAME}.tar.xz"

    def test_it_is_the_same_bytes_elsewhere_with_other_settings(self):
        again = self.made("else where", "077", LC_ALL="C", TZ="Asia/Tokyo")
        self.assertEqual(self.archive.read_bytes(), again.read_bytes())

    def test_it_holds_every_file_of_the_last_commit(self):
        files = {str(path.relative_to(self.source)) for path in self.source.rglob("*") if not path.is_dir()}
        self.assertEqual(files, set(git("ls-tree", "-r", "--name-only", "-z", "HEAD").split("\0")) - {""} | {"BUILD"})

    def test_its_build_knows_number_and_day_without_git(self):
        said, info = configure(self.source, self.folder / "build")
        self.assertEqual(info, f"Build={git('rev-list', '--count', 'HEAD')}\n"
                               f"Date={git('log', '-1', '--format=%cs')}\nVersion={VERSION}\n")
        self.assertEqual(said, "")

    def test_a_tree_without_history_says_that_it_knows_neither(self):
        bare = self.folder / "bare"
        shutil.copytree(self.source, bare)
        (bare / "BUILD").unlink()
        said, info = configure(bare, self.folder / "build of bare")
        self.assertIn("number and day are unknown", said)
        self.assertEqual(info, f"Version={VERSION}\n")

    def test_a_shallow_clone_says_so_too_and_makes_no_archive(self):
        shallow = self.folder / "shallow"
        subprocess.run(["git", "clone", "--quiet", "--depth=1", f"file://{PROJECT}", shallow], check=True)
        said, info = configure(shallow, self.folder / "build of shallow", has_git=True)
        self.assertIn("number and day are unknown", said)
        self.assertEqual(info, f"Version={VERSION}\n")
        refusal = subprocess.run([shallow / "packaging/make-source-archive", VERSION, self.folder], check=False,
                                 capture_output=True, text=True)
        self.assertNotEqual(refusal.returncode, 0)
        self.assertIn("not the whole history", refusal.stderr)


if __name__ == "__main__":
    unittest.main()
