"""What belongs to an installation, and how tests ask questions to one.

CTest gives the tests in the environment: CMAKE, CPACK, BUILD (the build folder) and VERSION. The tools they call are in
the packages that packaging/dependencies lists.
"""

import configparser
import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[3]
BUILD = os.environ["BUILD"]
VERSION = os.environ["VERSION"]

NAME = "org.marvelode.Timer"
PROGRAM = "bin/marvelode-timer"
HELPERS = {f"libexec/marvelode-timer/marvelode-timer-{helper}" for helper in ("command", "hold", "sound", "window")}
SOUNDS = {file.name for file in (PROJECT / "resources").glob("*.m4a")}
RESOURCES = {f"share/marvelode-timer/{file}" for file in SOUNDS | {
    "BuildInfo.txt", "Marvelode.png", "MarvelodeGrey.png"}}
LAUNCHER = f"share/applications/{NAME}.desktop"
AUTOSTART = f"share/marvelode-timer/autostart/{NAME}.desktop"
INTERFACE = f"share/dbus-1/interfaces/{NAME}.xml"
SERVICE = f"share/dbus-1/services/{NAME}.service"
UNIT = "share/systemd/user/marvelode-timer.service"
METAINFO = f"share/metainfo/{NAME}.metainfo.xml"
MANUAL = "share/man/man1/marvelode-timer.1.gz"
CHANGELOG = "share/doc/marvelode-timer/changelog.gz"
BASH_COMPLETION = "share/bash-completion/completions/marvelode-timer"
ZSH_COMPLETION = "share/zsh/site-functions/_marvelode-timer"
FISH_COMPLETION = "share/fish/vendor_completions.d/marvelode-timer.fish"
COPYRIGHT = "share/doc/marvelode-timer/copyright"
ICONS = {f"share/icons/hicolor/{size}x{size}/apps/{NAME}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256, 512)} | {
    f"share/icons/hicolor/scalable/apps/{NAME}.svg", f"share/icons/hicolor/symbolic/apps/{NAME}-symbolic.svg"}
FILES = ICONS | HELPERS | RESOURCES | {
    PROGRAM, LAUNCHER, AUTOSTART, INTERFACE, SERVICE, UNIT, METAINFO, MANUAL, CHANGELOG, COPYRIGHT, BASH_COMPLETION,
    ZSH_COMPLETION, FISH_COMPLETION}
FILES_IN_DEBIAN = FILES - {ZSH_COMPLETION} | {"share/zsh/vendor-completions/_marvelode-timer"}


class Failed(AssertionError):
    """A command that is missing, or that did not succeed."""


def output(*command, **options):
    """What `command` prints; with its messages it is the failure where the command does not succeed."""
    command = [str(word) for word in command]
    if not shutil.which(command[0]):
        raise Failed(f"{command[0]} is not installed; its package is in packaging/dependencies")
    result = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False, **options)
    if result.returncode != 0:
        raise Failed(f"{shlex.join(command)} ended with status {result.returncode}:\n{result.stdout}{result.stderr}")
    return result.stdout


def without_desktop(home, **more):
    """An environment in which there is no desktop and nothing of the person who runs the test."""
    return {"PATH": os.environ["PATH"], "HOME": str(home), "LC_ALL": "C.UTF-8", **more}


def install(tree):
    """Installs the program into the folder `tree`, which is also the answer."""
    output(os.environ["CMAKE"], "--install", BUILD, "--prefix", tree)
    return tree


def files_in(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


def key_file(path):
    parser = configparser.ConfigParser(interpolation=None, delimiters="=", comment_prefixes="#", strict=True)
    parser.optionxform = str
    parser.read_string(path.read_text())
    return parser


class PackagingTest(unittest.TestCase):
    """Questions to an installation."""

    @classmethod
    def setUpClass(cls):
        cls.temporary = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))

    def assert_complete(self, tree, files=FILES):
        installed = files_in(tree)
        self.assertEqual(files - installed, set(), "missing")
        beyond = {file for file in installed - files if not file.startswith("share/marvelode-timer/")}
        self.assertEqual(beyond, set(), "not in the list of files")

    def assert_names_the_program(self, tree, prefix):
        """Whether what lies in `tree` calls the program that will lie in `prefix`."""
        program = f"{prefix}/{PROGRAM}"
        for file, section in ((LAUNCHER, "Desktop Entry"), (AUTOSTART, "Desktop Entry"), (SERVICE, "D-BUS Service")):
            self.assertEqual(shlex.split(key_file(tree / file)[section]["Exec"]), [program], file)
        self.assertEqual(key_file(tree / AUTOSTART)["Desktop Entry"]["TryExec"], program)
