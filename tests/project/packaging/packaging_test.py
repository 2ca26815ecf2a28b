#!/usr/bin/python3
"""Installs the program, and makes a Debian package of it, and holds both to what a desktop and Debian expect.

CTest runs it; by hand it needs what CTest gives it in the environment: CMAKE, CPACK, BUILD (the build folder) and
VERSION. The tools it calls are in the packages that packaging/dependencies lists.
"""

import configparser
import gzip
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import tempfile
import unittest
from xml.etree import ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[3]
BUILD = os.environ["BUILD"]
VERSION = os.environ["VERSION"]

NAME = "org.marvelode.Timer"
PROGRAM = "bin/marvelode-timer"
HELPERS = {f"libexec/marvelode-timer/marvelode-timer-{helper}" for helper in ("sound", "window")}
SOUNDS = {file.name for file in (PROJECT / "resources").glob("*.m4a")}
RESOURCES = {f"share/marvelode-timer/{file}" for file in SOUNDS | {
    "BuildInfo.txt", "Marvelode.png", "MarvelodeGrey.png"}}
LAUNCHER = f"share/applications/{NAME}.desktop"
AUTOSTART = f"share/marvelode-timer/autostart/{NAME}.desktop"
SERVICE = f"share/dbus-1/services/{NAME}.service"
METAINFO = f"share/metainfo/{NAME}.metainfo.xml"
MANUAL = "share/man/man1/marvelode-timer.1.gz"
CHANGELOG = "share/doc/marvelode-timer/changelog.gz"
COPYRIGHT = "share/doc/marvelode-timer/copyright"
ICONS = {f"share/icons/hicolor/{size}x{size}/apps/{NAME}.png" for size in (16, 22, 24, 32, 48, 64, 128, 256, 512)} | {
    f"share/icons/hicolor/scalable/apps/{NAME}.svg"}
FILES = ICONS | HELPERS | RESOURCES | {
    PROGRAM, LAUNCHER, AUTOSTART, SERVICE, METAINFO, MANUAL, CHANGELOG, COPYRIGHT}


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


def files_in(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


def what_is_asked_by(commands, home):
    """What each of `commands` asks of the running program, on a bus of their own."""
    recorder = pathlib.Path(__file__).with_name("recorder.py")
    return json.loads(output("dbus-run-session", "--", "/usr/bin/python3", recorder, *commands,
                             env=without_desktop(home)))


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

    def assert_complete(self, tree):
        installed = files_in(tree)
        self.assertEqual(FILES - installed, set(), "missing")
        beyond = {file for file in installed - FILES if not file.startswith("share/marvelode-timer/")}
        self.assertEqual(beyond, set(), "not in the list of files")

    def assert_names_the_program(self, tree, prefix):
        """Whether what lies in `tree` calls the program that will lie in `prefix`."""
        program = f"{prefix}/{PROGRAM}"
        for file, section in ((LAUNCHER, "Desktop Entry"), (AUTOSTART, "Desktop Entry"), (SERVICE, "D-BUS Service")):
            self.assertEqual(shlex.split(key_file(tree / file)[section]["Exec"]), [program], file)
        self.assertEqual(key_file(tree / AUTOSTART)["Desktop Entry"]["TryExec"], program)


class Installation(PackagingTest):
    """`cmake --install`, to a place that was chosen only then and has a space in its name."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.tree = cls.temporary / "some where"
        output(os.environ["CMAKE"], "--install", BUILD, "--prefix", cls.tree)

    def test_everything_is_there(self):
        self.assert_complete(self.tree)

    def test_the_program_is_named_where_it_lies(self):
        self.assert_names_the_program(self.tree, self.tree)
        for program in {PROGRAM} | HELPERS:
            self.assertTrue(os.access(self.tree / program, os.X_OK), program)

    def test_a_staging_folder_leaves_no_trace(self):
        staging = self.temporary / "staging"
        output(os.environ["CMAKE"], "--install", BUILD, "--prefix", "/opt/timer",
               env=os.environ | {"DESTDIR": str(staging)})
        self.assert_complete(staging / "opt/timer")
        self.assert_names_the_program(staging / "opt/timer", "/opt/timer")

    def test_the_program_runs_from_there(self):
        environment = without_desktop(self.temporary)
        self.assertIn(VERSION, output(self.tree / PROGRAM, "--version", env=environment))
        self.assertIn("-test", output(self.tree / PROGRAM, "--help", env=environment))

    def test_the_launcher_is_valid_and_offers_the_menu(self):
        output("desktop-file-validate", self.tree / LAUNCHER)
        launcher = key_file(self.tree / LAUNCHER)
        self.assertEqual(launcher["Desktop Entry"]["DBusActivatable"], "true")
        actions = launcher["Desktop Entry"]["Actions"].strip(";").split(";")
        self.assertEqual({action: launcher[f"Desktop Action {action}"]["Name"] for action in actions},
                         {"restart": "Restart timer", "toggle-mute": "Mute", "quit": "Quit"})

    def test_the_launcher_does_what_it_offers(self):
        launcher = key_file(self.tree / LAUNCHER)
        commands = [launcher[f"Desktop Action {action}"]["Exec"] for action in ("restart", "toggle-mute", "quit")]
        self.assertEqual(what_is_asked_by(commands, self.temporary), [["Restart"], ["ToggleMute"], ["Quit"]])

    def test_the_autostart_file_is_valid(self):
        output("desktop-file-validate", self.tree / AUTOSTART)

    def test_the_icon_that_is_named_exists(self):
        for file in (LAUNCHER, AUTOSTART):
            icon = key_file(self.tree / file)["Desktop Entry"]["Icon"]
            self.assertIn(icon, {pathlib.Path(file).stem for file in ICONS})

    def test_the_session_bus_can_start_the_program(self):
        self.assertEqual(key_file(self.tree / SERVICE)["D-BUS Service"]["Name"], NAME)
        environment = without_desktop(self.temporary, XDG_DATA_DIRS=str(self.tree / "share"))
        listing = output("dbus-run-session", "--", "dbus-send", "--session", "--print-reply",
                         "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListActivatableNames",
                         env=environment)
        self.assertIn(f'"{NAME}"', listing)

    def test_software_centres_understand_the_description(self):
        report = output("appstreamcli", "validate", "--no-net", "--pedantic", "--no-color", self.tree / METAINFO)
        # the capital letter belongs to the name on the bus
        self.assertEqual(re.findall(r"^\s*[EWIP]: .*?: ?(?:\d+:)?\s*(\S+)", report, re.MULTILINE),
                         ["cid-contains-uppercase-letter"], report)
        description = ElementTree.parse(self.tree / METAINFO)
        self.assertEqual(description.findtext("launchable"), pathlib.Path(LAUNCHER).name)
        self.assertEqual(description.find("releases/release").get("version"), VERSION)

    def test_the_manual_is_well_formed(self):
        page = self.temporary / "marvelode-timer.1"
        page.write_bytes(gzip.decompress((self.tree / MANUAL).read_bytes()))
        output("mandoc", "-T", "lint", "-W", "warning", page)

    def test_the_examples_in_the_manual_do_what_they_say(self):
        page = gzip.decompress((self.tree / MANUAL).read_bytes()).decode()
        commands = re.findall(r"^\.Dl ((?:busctl|gdbus) .*)$", page, re.MULTILINE)
        self.assertEqual(what_is_asked_by(commands, self.temporary),
                         [["Restart"], ["ToggleMute"], ["TogglePopups"], ["ShowSettings"], ["Quit"],
                          ["State", "Text", "RemainingSeconds"], ["Restart"]])

    def test_the_manual_explains_every_setting(self):
        declared = re.search(r"struct Key \{.*?\}", (PROJECT / "config/Cfg.hpp").read_text(), re.DOTALL).group()
        keys = set(re.findall(r'= "(\w+)"', declared))
        page = gzip.decompress((self.tree / MANUAL).read_bytes()).decode()
        explained = set(re.findall(r"^\.It Sy (\w+)$", page, re.MULTILINE))
        self.assertIn("TimerInterval", keys)
        self.assertEqual(explained, keys)


class DebianPackage(PackagingTest):
    """`cpack`, run by a user with a private umask."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        output(os.environ["CPACK"], "-G", "DEB", "--config", f"{BUILD}/CPackConfig.cmake", "-B", cls.temporary,
               cwd=cls.temporary, umask=0o077)
        packages = list(cls.temporary.glob("*.deb"))
        if len(packages) != 1:
            raise Failed(f"cpack made {packages}")
        cls.package = packages[0]
        cls.root = cls.temporary / "root"
        output("dpkg-deb", "--extract", cls.package, cls.root)
        cls.tree = cls.root / "usr"

    def field(self, name):
        return output("dpkg-deb", "--field", self.package, name).strip()

    def test_everything_is_there(self):
        self.assert_complete(self.tree)
        self.assert_names_the_program(self.tree, "/usr")
        self.assertEqual(list(self.root.iterdir()), [self.tree])

    def test_lintian_has_nothing_to_complain_of(self):
        complaints = output("lintian", "--allow-root", "--fail-on", "error,warning", self.package)
        self.assertEqual(complaints, "")

    def test_it_names_itself(self):
        self.assertEqual(self.field("Package"), "marvelode-timer")
        self.assertEqual(self.field("Version"), VERSION)
        changelog = gzip.decompress((self.tree / CHANGELOG).read_bytes()).decode()
        self.assertTrue(changelog.startswith(f"marvelode-timer ({VERSION}) "), changelog)

    def test_it_depends_on_what_the_programs_need(self):
        depends = self.field("Depends")
        for package in (r"libc6", r"libglib2\.0-0\w*", r"libgtk-3-0\w*", r"libgtk-layer-shell0", r"libcanberra0\w*",
                        r"libavcodec\d+", r"libavformat\d+", r"dbus-session-bus", r"dbus-bin"):
            self.assertRegex(depends, rf"(^|[ ,|]){package}($|[ ,])")

    def test_it_recommends_a_sound_server_and_the_way_to_it(self):
        recommends = self.field("Recommends")
        self.assertIn("pipewire-pulse | pulseaudio", recommends)
        self.assertIn("libcanberra-pulse", recommends)

    def test_everybody_can_read_it_and_only_the_administrator_change_it(self):
        for line in output("dpkg-deb", "--contents", self.package).splitlines():
            mode, owner, *_, path = line.split()
            is_program = path.removeprefix("./usr/") in {PROGRAM} | HELPERS
            self.assertEqual(owner, "root/root", line)
            self.assertEqual(mode, "drwxr-xr-x" if path.endswith("/") else
                             "-rwxr-xr-x" if is_program else "-rw-r--r--", line)

    def test_the_programs_are_stripped_and_hardened(self):
        for program in {PROGRAM} | HELPERS:
            about = output("readelf", "--wide", "--file-header", "--sections", "--segments", "--dynamic",
                           self.tree / program)
            self.assertNotRegex(about, r"\.symtab|\.debug_", program)
            self.assertRegex(about, r"Flags:.*\bPIE\b", program)
            self.assertRegex(about, r"Flags:.*\bNOW\b", program)
            self.assertIn("GNU_RELRO", about, program)


if __name__ == "__main__":
    unittest.main()
