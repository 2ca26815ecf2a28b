#!/usr/bin/python3
"""Makes the source archive of the last commit and from it the packages of three kinds of system, as their builders do.

They are compared with one another, and the Debian package with itself, made again elsewhere. CTest gives in the
environment: CMAKE, CPACK, VERSION, ALL_AT_ONCE, with which CMake compiles many sources together, and is done sooner, and
CLANG if there is one.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[3]
CMAKE, CPACK = os.environ["CMAKE"], os.environ["CPACK"]
VERSION = os.environ["VERSION"]
NAME = f"marvelode-timer-{VERSION}"

FLAGS = "-O2 -Wp,-D_FORTIFY_SOURCE=3"  # as distributions give them
LIBRARIES = ("algorithm", "chrono", "filesystem", "functional", "memory", "string", "variant", "vector", "gio/gio.h")
NOBODY = 65534
PRIVATELY = ("sh", "-c", 'umask 077; exec "$0" "$@"')
LIFE = """
"$0" &
gdbus wait --session --timeout 10 org.marvelode.Timer || exit
gdbus call --session --dest org.marvelode.Timer --object-path /org/marvelode/Timer \\
    --method org.marvelode.Timer.Quit || exit
wait $!
"""
A_YEAR_LATER = ("faketime", "-f", "+400d")


def output(*command, folder=None, **environment):
    """What `command` prints, run without what the person who tests has in the environment."""
    command = [str(word) for word in command]
    result = subprocess.run(command, capture_output=True, text=True, check=False, cwd=folder, stdin=subprocess.DEVNULL,
                            env={"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                                 "CMAKE_TOOLCHAIN_FILE": os.environ["ALL_AT_ONCE"], **environment})
    if result.returncode != 0:
        raise AssertionError(f"{shlex.join(command)}\n{result.stdout[-5000:]}{result.stderr[-5000:]}")
    return result.stdout


def contents(package):
    """The files in a Debian package with their dates, by their paths."""
    lines = [line.split() for line in output("dpkg-deb", "--contents", package, TZ="UTC").splitlines()]
    return {line[5].removeprefix("./"): line[3] for line in lines if not line[5].endswith("/")}


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.folder.chmod(0o755)
        output(PROJECT / "packaging/make-source-archive", VERSION, cls.folder)
        cls.archive = cls.folder / f"{NAME}.tar.xz"
        cls.build_for_debian()
        cls.build_for_fedora()
        cls.build_for_arch()

    @classmethod
    def build_for_debian(cls):
        """By somebody who lets nobody look."""
        output(*PRIVATELY, "tar", "--extract", "--file", cls.archive, "--directory", cls.folder)
        cls.build = cls.folder / "build"
        output(*PRIVATELY, CMAKE, "-S", cls.folder / NAME, "-B", cls.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
               "-DMARVELODE_TESTS=OFF", "-DCMAKE_INSTALL_PREFIX=/usr", CXXFLAGS=FLAGS, TZ="UTC")
        output(*PRIVATELY, CMAKE, "--build", cls.build, TZ="UTC")
        cls.debian = cls.packed(cls.build, cls.folder / "here", PRIVATELY)

    @classmethod
    def build_for_fedora(cls):
        """In another place and at another time, by somebody else, in another language."""
        output("localedef", "-i", "tr_TR", "-f", "UTF-8", cls.folder / "tr_TR.UTF-8")
        cls.abroad = {"LOCPATH": str(cls.folder), "LC_ALL": "tr_TR.UTF-8", "TZ": "Asia/Tokyo"}
        top = cls.folder / "some" / "other" / "place"
        top.mkdir(parents=True)
        output(*A_YEAR_LATER, "rpmbuild", "-tb", "--noclean", "--nodeps", f"--define=_topdir {top}",
               f"--define=optflags {FLAGS}", cls.archive, HOME=str(cls.folder), **cls.abroad)
        cls.build_elsewhere = next(top.glob(f"BUILD/**/{NAME}/build"))  # rpm 4.20 has a folder around it
        cls.fedora = next(top.glob(f"RPMS/*/{NAME}-*.rpm"))  # beside it may be packages for debugging

    @classmethod
    def build_for_arch(cls):
        """By an ordinary user, since makepkg serves no other; that one may have no way into the checkout."""
        place = cls.folder / "arch"
        place.mkdir()
        for file in (cls.archive, PROJECT / "packaging/arch/PKGBUILD"):
            shutil.copy(file, place)
        toolchain = cls.hasty_toolchain(place)
        as_user = []
        if os.getuid() == 0:
            as_user = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
            for path in (place, *place.iterdir()):
                os.chown(path, NOBODY, NOBODY)
        output(*as_user, "makepkg", "--nodeps", folder=place, HOME=str(place), CXXFLAGS=FLAGS,
               CMAKE_TOOLCHAIN_FILE=str(toolchain))
        cls.arch = next(place.glob("*.pkg.tar*"))

    @staticmethod
    def hasty_toolchain(place):
        """For a package of which only the files' names are compared: each source is compiled by itself, as it is
        elsewhere, but not optimised; and if there is clang, by that, which reads once what they include of libraries,
        whether they are for a library or a program, with exceptions or without."""
        lines = ["set(CMAKE_INTERPROCEDURAL_OPTIMIZATION OFF)"]
        flags = "-O0"
        if clang := os.environ["CLANG"]:
            headers, precompiled = place / "libraries.hpp", place / "libraries.pch"
            headers.write_text("".join(f"#include <{name}>\n" for name in LIBRARIES))
            output(clang, "-std=c++20", *FLAGS.split(), "-O0", "-fPIC", "-fno-rtti",
                   *output("pkg-config", "--cflags", "gio-2.0").split(),
                   "-x", "c++-header", headers, "-o", precompiled)
            flags += f" -Xclang -fno-validate-pch -include-pch {precompiled}"
            lines.append(f"set(CMAKE_CXX_COMPILER {clang})")
        toolchain = place / "InHaste.cmake"
        toolchain.write_text("\n".join([*lines, f'set(CMAKE_CXX_FLAGS_RELEASE "{flags}" CACHE STRING "")', ""]))
        return toolchain

    @staticmethod
    def packed(build, place, prefix=(), **environment):
        place.mkdir()
        output(*prefix, CPACK, "--config", build / "CPackConfig.cmake", "-B", place, **environment)
        return next(place.glob("*.deb"))

    def test_the_debian_package_is_the_same_bytes_elsewhere_a_year_later_in_another_language_by_somebody_else(self):
        again = self.packed(self.build_elsewhere, self.folder / "again", A_YEAR_LATER, **self.abroad)
        same = again.read_bytes() == self.debian.read_bytes()
        self.assertTrue(same, "" if same else self.difference(self.debian, again))

    @staticmethod
    def difference(*packages):
        for package in packages:
            output("dpkg-deb", "--raw-extract", package, package.with_suffix(".tree"))
        return subprocess.run(["diff", "--recursive", *(package.with_suffix(".tree") for package in packages)],
                              capture_output=True, text=True, check=False).stdout or "only how they are packed"

    def test_the_debian_package_has_the_date_of_the_last_commit_or_the_one_that_is_asked_for(self):
        day = subprocess.run(["git", "log", "-1", "--format=%cs"], cwd=PROJECT, check=True, capture_output=True,
                             text=True).stdout.strip()
        self.assertEqual(set(contents(self.debian).values()), {day})
        dated = self.packed(self.build, self.folder / "dated", SOURCE_DATE_EPOCH="1000000000")
        self.assertEqual(set(contents(dated).values()), {"2001-09-09"})

    def installed(self, place):
        """The folder in which the Debian package lies as it does in a system's."""
        tree = self.folder / place
        output("dpkg-deb", "--extract", self.debian, tree)
        return tree / "usr"

    def said_in_a_life(self, tree):
        """What the program prints from its start to its end, which both have to come."""
        return output("dbus-run-session", "--", "sh", "-c", LIFE, tree / "bin/marvelode-timer", HOME=str(self.folder))

    def test_the_program_in_the_debian_package_starts_and_ends(self):
        self.said_in_a_life(self.installed("whole"))

    def test_the_program_does_without_sounds_and_without_sense_in_its_build_information(self):
        tree = self.installed("damaged")
        for sound in (tree / "share/marvelode-timer").glob("*.m4a"):
            sound.unlink()
        (tree / "share/marvelode-timer/BuildInfo.txt").write_text("Nonsense=1\n")
        self.assertIn("Failed to initialize custom audio", self.said_in_a_life(tree))

    def test_the_flags_of_the_distribution_win(self):
        for build in (self.build, self.build_elsewhere):
            commands = (build / "compile_commands.json").read_text()
            self.assertIn(FLAGS, commands)
            self.assertNotIn("_FORTIFY_SOURCE=2", commands)

    def test_the_functions_of_a_tick_stand_together_and_the_rare_ones_apart(self):
        sections = output("readelf", "--sections", "--wide", self.build / "bin/marvelode-timer")
        size = {name: int(size, 16) for name, size in re.findall(r"(\.text\S*) +PROGBITS +\S+ \S+ (\S+)", sections)}
        self.assertIn(size[".text.tick"], range(4096, 40960), size)
        self.assertGreater(size[".text.rare"], 20480, size)

    def test_fedoras_holds_the_same_files(self):
        files = set(output("rpm", "--query", "--list", "--noartifact", self.fedora, HOME=str(self.folder)).splitlines())
        folders = {str(parent) for file in files for parent in pathlib.PurePosixPath(file).parents}
        self.assertEqual({file.replace(NAME, "marvelode-timer") for file in files - folders if "build-id" not in file},
                         {"/" + path.replace("zsh/vendor-completions", "zsh/site-functions")
                          for path in contents(self.debian)} | {"/usr/share/licenses/marvelode-timer/LICENSE"})

    def test_archs_holds_the_same_files(self):
        files = output("bsdtar", "--list", "--file", self.arch).splitlines()
        self.assertEqual({file for file in files if not file.startswith(".") and not file.endswith("/")},
                         {path.replace("zsh/vendor-completions", "zsh/site-functions").replace("libexec", "lib")
                          for path in contents(self.debian)} | {"usr/share/licenses/marvelode-timer/LICENSE"})


if __name__ == "__main__":
    unittest.main()
