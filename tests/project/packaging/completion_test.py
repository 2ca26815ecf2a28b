#!/usr/bin/python3
"""The options, the same in --help, in the manual and in what bash, zsh and fish complete."""

import gzip
import os
import pathlib
import pty
import re
import select
import subprocess
import time
import unittest

from installation import (BASH_COMPLETION, MANUAL, PROGRAM, PROJECT, ZSH_COMPLETION, PackagingTest, install, output,
                          without_desktop)

SETTINGS = set(re.findall(r'^\s*static constexpr std::string_view \w+ = "(\w+)"',
                          (PROJECT / "config/Cfg.hpp").read_text(), re.MULTILINE))
ON_SCREEN = re.compile(rb"\x1b\[[0-9;?]*[A-Za-z]|[\r\a]")


def said_by_terminal(command, keys, **options):
    """What an interactive command writes to its terminal from the keys that are typed at its prompt to the word END."""
    master, slave = pty.openpty()
    process = subprocess.Popen(command, stdin=slave, stdout=slave, stderr=slave, start_new_session=True, **options)
    os.close(slave)

    def read_until(ending):
        text, end = b"", time.monotonic() + 10
        while ending not in text and time.monotonic() < end and select.select([master], [], [], 10)[0]:
            text += ON_SCREEN.sub(b"", os.read(master, 4096))
        return text.decode()

    try:
        read_until(b"> ")
        os.write(master, keys.encode())
        return read_until(b"END")
    finally:
        process.kill()
        process.wait()
        os.close(master)


class Completion(PackagingTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.tree = install(cls.temporary / "tree")
        environment = without_desktop(cls.temporary)
        cls.environment = environment | {"PATH": f"{cls.tree}/bin:{environment['PATH']}", "TERM": "dumb",
                                         "XDG_DATA_DIRS": f"{cls.tree}/share"}
        cls.help = output(cls.tree / PROGRAM, "--help", env=environment)
        cls.options = re.findall(r"^  (-\S+)", cls.help, re.MULTILINE)

    def offered_by_bash(self, *words):
        script = f"""
            . '{self.tree / BASH_COMPLETION}'
            COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
            _marvelode_timer "$1" "${{@: -1}}" "${{@: -2:1}}"
            printf '%s\\n' "${{COMPREPLY[@]}}"
        """
        return output("bash", "-c", script, "bash", "marvelode-timer", *words, env=self.environment).split()

    def offered_by_zsh(self, *words):
        """What is listed, and inserted where there is one choice: a widget of zsh's notes all of it and prints it."""
        folder = self.temporary / "zsh"
        folder.mkdir(exist_ok=True)
        (folder / ".zshrc").write_text(f"""
            typeset -U offered; PROMPT='> ' fpath=({(self.tree / ZSH_COMPLETION).parent} $fpath)
            autoload -U compinit && compinit -u -D
            compadd() {{ builtin compadd -A kept "$@"; offered+=($kept); builtin compadd "$@" }}
            print-offered() {{ offered=(); zle complete-word; print -r -- "BEGIN $offered END"}}
            zle -N print-offered; bindkey '^T' print-offered
        """)
        said = said_by_terminal(["zsh", "-i"], " ".join(["marvelode-timer", *words]) + "\x14",
                                env=self.environment | {"ZDOTDIR": str(folder)})
        return said[said.rindex("BEGIN") + 5 : said.rindex("END")].split()

    def offered_by_fish(self, *words):
        line = " ".join(["marvelode-timer", *words])
        lines = output("fish", "--no-config", "--command",
                       f"source {self.tree}/share/fish/vendor_completions.d/marvelode-timer.fish; "
                       f"complete --do-complete '{line}'", env=self.environment).splitlines()
        return [line.split("\t")[0] for line in lines]

    def assert_offered(self, offered):
        self.assertEqual(sorted(offered("-")), sorted(self.options))
        self.assertEqual(offered("-Tim"), ["-TimerInterval"])
        self.assertEqual(offered("--v"), ["--version"])
        self.assertEqual(sorted(offered("-Mute", "")), ["false", "true"])
        self.assertEqual(offered("-Mute", "true", "-AlertSound", "Bo"), ["Bowl"])
        self.assertEqual(offered("-TimerInterval", ""), [], "nobody else knows how long it shall be")

    def test_bash_offers_what_the_help_names(self):
        self.assert_offered(self.offered_by_bash)

    def test_zsh_offers_what_the_help_names(self):
        self.assert_offered(self.offered_by_zsh)

    def test_fish_offers_what_the_help_names(self):
        self.assert_offered(self.offered_by_fish)

    def test_the_help_names_every_setting_that_a_user_gives(self):
        self.assertIn("TimerInterval", SETTINGS)
        self.assertEqual({option[1:] for option in self.options if re.match("-[A-Z]", option)}, SETTINGS - {"Version"})

    def test_the_help_names_every_sound(self):
        sounds = re.search(r"#define MARVELODE_SOUNDS\(each\) (.*)", (PROJECT / "config/Cfg.hpp").read_text()).group(1)
        self.assertIn("  -AlertSound " + "|".join(re.findall(r"each\((\w+)\)", sounds)) + " ", self.help)

    def test_the_manual_explains_every_option(self):
        page = gzip.decompress((self.tree / MANUAL).read_bytes()).decode()
        options = page[page.index("The options are") : page.index(".Sh SETTINGS")]
        explained = {"-" + word.replace("\\-", "-") for word in re.findall(r"^\.It Fl (\S+)", options, re.MULTILINE)}
        settings = {option for option in self.options if re.match("-[A-Z]", option)}
        self.assertEqual(explained - {"-Key"}, set(self.options) - settings)


if __name__ == "__main__":
    unittest.main()
