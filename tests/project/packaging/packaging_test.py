#!/usr/bin/python3
"""Installs the program, and makes a Debian package of it, and holds both to what a desktop and Debian expect."""

import gzip
import json
import os
import pathlib
import re
import unittest
from xml.etree import ElementTree

from installation import (AUTOSTART, BUILD, CHANGELOG, FILES, FILES_IN_DEBIAN, HELPERS, ICONS, INTERFACE, LAUNCHER,
                          MANUAL, METAINFO, NAME, PROGRAM, PROJECT, SERVICE, UNIT, VERSION, Failed, PackagingTest,
                          files_in, install, key_file, output, without_desktop)


def what_is_asked_by(commands, home):
    """What each of `commands` asks of the running program, on a bus of their own."""
    recorder = pathlib.Path(__file__).with_name("recorder.py")
    return json.loads(output("dbus-run-session", "--", "/usr/bin/python3", recorder, *commands,
                             env=without_desktop(home)))


def described(document):
    """What a description of interfaces says of the program's own, in an order of its own."""
    interface = ElementTree.fromstring(document).find(f"interface[@name='{NAME}']")
    return sorted(" ".join(f"{part.tag} {sorted(part.items())}" for part in member.iter()) for member in interface)


class Installation(PackagingTest):
    """`cmake --install`, to a place that was chosen only then and has a space in its name."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.tree = install(cls.temporary / "some where")

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
        self.assertNotIn("DBusActivatable", launcher["Desktop Entry"], "the program would not hear of the display")
        actions = launcher["Desktop Entry"]["Actions"].strip(";").split(";")
        self.assertEqual({action: launcher[f"Desktop Action {action}"]["Name"] for action in actions},
                         {"restart": "Restart timer", "toggle-mute": "Mute", "quit": "Quit",
                          "hold-for-an-hour": "Hold reminders for an hour", "release": "Release"})

    def test_the_launcher_does_what_it_offers(self):
        launcher = key_file(self.tree / LAUNCHER)
        commands = [launcher[f"Desktop Action {action}"]["Exec"]
                    for action in ("restart", "toggle-mute", "hold-for-an-hour", "release", "quit")]
        self.assertEqual(what_is_asked_by(commands, self.temporary),
                         [["Restart"], ["ToggleMute"], ["Hold 3600"], ["Release"], ["Quit"]])

    def test_the_autostart_file_is_valid(self):
        output("desktop-file-validate", self.tree / AUTOSTART)

    def test_the_program_turns_its_autostart_on_and_off(self):
        config = self.temporary / "config"
        environment = without_desktop(self.temporary, XDG_CONFIG_HOME=str(config))

        def autostart(word):
            return output(self.tree / PROGRAM, "--autostart", word, env=environment)
        self.assertEqual(autostart("status"), "off\n")
        self.assertEqual(autostart("on"), "on\n")
        self.assertEqual((config / f"autostart/{NAME}.desktop").read_text(), (self.tree / AUTOSTART).read_text())
        self.assertEqual(autostart("status"), "on\n")
        self.assertEqual(autostart("off"), "off\n")
        self.assertEqual(files_in(config), set())
        with self.assertRaisesRegex(Failed, "--autostart takes on, off or status"):
            autostart("maybe")

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

    def test_the_interface_is_installed_as_the_program_offers_it(self):
        environment = without_desktop(self.temporary, XDG_DATA_DIRS=str(self.tree / "share"))
        offered = output("dbus-run-session", "--", "gdbus", "introspect", "--session", "--xml", "--dest", NAME,
                         "--object-path", "/org/marvelode/Timer", env=environment)
        installed = (self.tree / INTERFACE).read_text()
        self.assertEqual(described(installed), described(offered))
        self.assertIn("method [('name', 'Restart')]", described(installed))

    def test_systemd_understands_the_unit_and_keeps_it_from_the_network(self):
        environment = without_desktop(self.temporary, XDG_RUNTIME_DIR=str(self.temporary))
        self.assertEqual(output("systemd-analyze", "--user", "--man=no", "verify", self.tree / UNIT, env=environment), "")
        self.assertIn(f'ExecStart="{self.tree / PROGRAM}"\n', (self.tree / UNIT).read_text())
        report = output("systemd-analyze", "--user", "--no-pager", "security", "--offline=true", self.tree / UNIT,
                        env=environment)
        self.assertRegex(report, r"✓ RestrictAddressFamilies=~AF_\(INET\|INET6\)")
        self.assertRegex(report, r"✓ NoNewPrivileges=")

    def test_the_end_of_the_unit_ends_no_browser_that_was_opened_from_it(self):
        self.assertIn("\nKillMode=process\n", (self.tree / UNIT).read_text())

    def test_software_centres_understand_the_description(self):
        before_1 = re.search(r"version: 0\.", output("appstreamcli", "--version"))
        report = output("appstreamcli", "validate", "--no-net", "--strict", "--pedantic", "--no-color",
                        *(["--override=unknown-tag=pedantic"] if before_1 else []), self.tree / METAINFO)
        # the capital letter belongs to the name on the bus; and the element for the developer came with version 1
        self.assertEqual(re.findall(r"^\s*[EWIP]: .*?: ?(?:\d+:)?\s*(\S+ \S+)", report, re.MULTILINE),
                         [f"cid-contains-uppercase-letter {NAME}"] + ["unknown-tag developer"] * bool(before_1), report)
        description = ElementTree.parse(self.tree / METAINFO)
        self.assertEqual(description.findtext("launchable"), pathlib.Path(LAUNCHER).name)
        self.assertEqual(description.find("releases/release").get("version"), VERSION)

    def test_the_pictures_of_the_description_are_those_of_the_documents(self):
        for image in ElementTree.parse(self.tree / METAINFO).iterfind("screenshots/screenshot/image"):
            self.assertTrue((PROJECT / "docs/images" / pathlib.PurePosixPath(image.text).name).is_file(), image.text)

    def test_the_manual_is_well_formed(self):
        page = self.temporary / "marvelode-timer.1"
        page.write_bytes(gzip.decompress((self.tree / MANUAL).read_bytes()))
        output("mandoc", "-T", "lint", "-W", "warning", page)

    def test_the_examples_in_the_manual_do_what_they_say(self):
        page = gzip.decompress((self.tree / MANUAL).read_bytes()).decode()
        commands = re.findall(r"^\.Dl ((?:busctl|gdbus) .*)$", page, re.MULTILINE)
        self.assertEqual(what_is_asked_by(commands, self.temporary),
                         [["Restart"], ["ToggleMute"], ["TogglePopups"], ["ShowSettings"],
                          ["Hold 3600"], ["Release"], ["Quit"],
                          ["State", "Text", "RemainingSeconds"], ["Restart"]])

    def test_the_manual_explains_every_setting(self):
        declared = re.search(r"struct Key \{.*?\}", (PROJECT / "config/Cfg.hpp").read_text(), re.DOTALL).group()
        keys = set(re.findall(r'= "(\w+)"', declared))
        keys |= set(re.findall(r'text\("(\w+)"\)', (PROJECT / "platform/linux/DesktopSettings.cpp").read_text()))
        page = gzip.decompress((self.tree / MANUAL).read_bytes()).decode()
        explained = set(re.findall(r"^\.It Sy (\w+)$", page, re.MULTILINE))
        self.assertLess({"TimerInterval", "HoldWhile"}, keys)
        self.assertEqual(explained, keys)


class Uninstallation(PackagingTest):
    """What is left after an installation was taken back."""

    def uninstall(self):
        output(os.environ["CMAKE"], "--build", BUILD, "--target", "uninstall")

    def setUp(self):
        for notes in pathlib.Path(BUILD).glob("installed-*.txt"):
            notes.unlink()  # of installations that are gone

    def test_nothing_remains(self):
        place = self.temporary / "a new place"
        install(place / "and a folder in it")
        self.uninstall()
        self.assertFalse(place.exists(), place.exists() and sorted(place.rglob("*")))

    def test_what_was_there_before_stays(self):
        tree = self.temporary / "old place"
        (tree / "share/man/man1").mkdir(parents=True)
        (tree / "bin").mkdir()
        (tree / "bin/other").write_text("")
        install(tree)
        (tree / "share/zsh/site-functions/_other").write_text("")
        install(tree)
        self.uninstall()
        self.assertEqual(files_in(tree), {"bin/other", "share/zsh/site-functions/_other"})
        self.assertEqual({str(path.relative_to(tree)) for path in tree.rglob("*") if path.is_dir()},
                         {"bin", "share", "share/man", "share/man/man1", "share/zsh", "share/zsh/site-functions"})

    def test_a_staging_folder_is_left_alone(self):
        output(os.environ["CMAKE"], "--install", BUILD, "--prefix", self.temporary / "prefix",
               env=os.environ | {"DESTDIR": str(self.temporary / "staging")})
        with self.assertRaisesRegex(Failed, "Nothing was installed"):
            self.uninstall()


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
        self.assert_complete(self.tree, FILES_IN_DEBIAN)
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
        for package in (r"libc6", r"libglib2\.0-0\w*", r"libgtk-3-0\w*", r"libgtk-layer-shell0", r"libatk-bridge2\.0-0\w*",
                        r"libfontconfig1", r"libcanberra0\w*", r"libxcb1", r"libavcodec\d+", r"libavformat\d+",
                        r"dbus-session-bus", r"dbus-bin"):
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
            self.assertRegex(about, r"GNU_STACK .* RW +0x", f"{program}: what lies on its stack can be executed")
        called = output("readelf", "--wide", "--dyn-syms", self.tree / PROGRAM)
        self.assertIn("__snprintf_chk@", called)
        self.assertNotIn(" snprintf@", called)


if __name__ == "__main__":
    unittest.main()
