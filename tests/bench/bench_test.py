#!/usr/bin/python3
"""That the benchmark would tell if something cost too much. CTest names the programs in the environment, as `./bench` does."""

import contextlib
import importlib.machinery
import importlib.util
import io
import os
import subprocess
import sys
import time
import unittest
from pathlib import Path
from unittest import mock

import costs
import goals
import idle
import rounds
import windows
from start import end, registered, spawn

from driving.desktop import Desktop
from driving.waiting import wait_until


def script(name):
    """One of the scripts in this folder, as a module."""
    loader = importlib.machinery.SourceFileLoader(name, str(Path(__file__).with_name(name)))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    loader.exec_module(module)
    return module


def run(module):
    """What its main function returns and prints."""
    with contextlib.redirect_stdout(io.StringIO()) as output:
        return module.main(), output.getvalue()


SMALL = costs.Memory(6, 1.2, 0.8)
GOOD = {"memory": SMALL, "memory_later": SMALL, "bare_memory": SMALL, "start": 16, "bare_start": 10, "window": 13,
        "window_when_due": 14, "bare_window": 10}
SHORT_THREAD = """
import sys, threading, time
def work():
    for _ in range(50):
        time.sleep(0.001)
    while time.thread_time() < 0.1:
        pass
    print(flush=True)
    sys.stdin.readline()
threading.Thread(target=work).start()
time.sleep(60)
"""
TICK, ITEM = idle.Minute(60, 3), idle.Minute(61, 4)


class Goals(unittest.TestCase):
    def judge(self, changes, lonely=idle.Minute(60, 6), xfce=idle.Minute(62, 7), other=idle.Minute(68, 7)):
        """The exit status of the benchmark, and which figures are said to miss their goals."""
        measure = script("measure")
        with mock.patch.object(rounds, "medians", lambda *_: rounds.Round(**GOOD | changes)), \
                mock.patch.object(measure.hosts, "lonely_minutes", lambda *_: (TICK, lonely)), \
                mock.patch.object(measure.hosts, "minutes", lambda *_: (TICK, ITEM, {"xfce": xfce, "other": other})):
            status, output = run(measure)
        return status, [line.split("  ")[0] for line in output.splitlines() if line.endswith("missed")]

    def test_what_is_just_good_enough_passes(self):
        self.assertEqual(self.judge({}), (0, []))

    def test_each_goal_that_is_missed_fails(self):
        for changes, name in (({"start": 16.1}, "exec to the tray"), ({"window": 13.1}, "a helper's exec"),
                              ({"memory": costs.Memory(6, 1.31, 0.8)}, "PSS idle"),
                              ({"memory_later": costs.Memory(6, 1.2, 0.91)}, "USS after")):
            with self.subTest(name):
                status, [missed] = self.judge(changes)
                self.assertEqual((status, missed[:len(name)]), (1, name))

    def test_each_minute_that_costs_too_much_fails(self):
        for minutes, name in (({"lonely": idle.Minute(60, 6.1)}, "processor time a minute without a panel"),
                              ({"xfce": idle.Minute(63, 7)}, "wake-ups a minute in xfce"),
                              ({"other": idle.Minute(69, 7)}, "wake-ups a minute in other")):
            with self.subTest(name):
                status, [missed] = self.judge({}, **minutes)
                self.assertEqual((status, missed[:len(name)]), (1, name))

    def test_a_figure_without_a_goal_is_neither_kept_nor_missed(self):
        self.assertIsNone(goals.Figure("size", 5, floor=1).is_met)


class Measuring(unittest.TestCase):
    def floor(self, name):
        return os.path.join(os.environ["FLOORS"], "bare-" + name)

    def test_a_bare_item_comes_into_the_tray(self):
        with Desktop() as desktop:
            self.assertGreater(registered(desktop, self.floor("item")), 1)

    def test_a_bare_window_comes_to_the_screen(self):
        with Desktop() as desktop:
            self.assertGreater(windows.bare_window(desktop, self.floor("window")), 1)

    def test_a_bare_tick_wakes_up_and_uses_the_processor(self):
        with Desktop(panel=False) as desktop:
            pid = spawn(desktop, self.floor("tick"))
            time.sleep(1)
            before = costs.wakeups(pid), costs.milliseconds(pid)
            time.sleep(2)
            wakeups, milliseconds = costs.wakeups(pid) - before[0], costs.milliseconds(pid) - before[1]
            end(pid)
        self.assertIn(wakeups, (1, 2, 3))
        self.assertTrue(0 < milliseconds < 100, milliseconds)

    def test_what_a_program_has_started_costs_as_well(self):
        with Desktop(panel=False) as desktop:
            alone = spawn(desktop, "/bin/sleep", "60")
            both = spawn(desktop, "/bin/sh", "-c", "/bin/sleep 60; :")
            time.sleep(0.5)
            self.assertEqual(len(costs.family(both)), 2)
            self.assertGreater(costs.memory(both).resident, costs.memory(alone).resident)

    def test_a_thread_that_has_ended_still_counts(self):
        with subprocess.Popen([sys.executable, "-c", SHORT_THREAD], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              text=True) as program:
            program.stdout.readline()
            seen = costs.wakeups(program.pid), costs.milliseconds(program.pid)
            program.stdin.write("end the thread\n")
            program.stdin.flush()
            wait_until(lambda: len(costs.threads(program.pid)) == 1, "the thread to end")
            wakeups, milliseconds = costs.wakeups(program.pid), costs.milliseconds(program.pid)
            program.kill()
        self.assertGreaterEqual(seen[0], 50)
        self.assertGreaterEqual(wakeups, seen[0])
        self.assertGreaterEqual(milliseconds, max(seen[1], 100))

    def test_a_popup_comes_to_the_screen(self):
        with Desktop() as desktop:
            for popup in windows.popup, windows.popup_when_due:
                self.assertGreater(popup(desktop, os.environ["MARVELODE_TIMER"]), 1)


class Peers(unittest.TestCase):
    def test_it_says_so_if_there_are_none(self):
        with mock.patch.dict(os.environ, {"PATH": "/nonexistent"}):
            status, output = run(script("peers"))
        self.assertEqual(status, 0)
        self.assertIn("is installed", output)
        self.assertEqual(len(output.splitlines()), 1)

    def test_each_figure_is_followed_by_how_many_times_the_timers_it_is(self):
        peers = script("peers")
        first, second, *_ = peers.rows({"timer": [2] * len(peers.FIGURES), "other": [5] * len(peers.FIGURES)})
        self.assertEqual((first[1:], second[1:]), (["2.00", "5.00"], ["1.00", "2.50"]))


if __name__ == "__main__":
    unittest.main()
