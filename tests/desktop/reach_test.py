#!/usr/bin/python3
"""The timer can always be reached: by a second start and by scripts.

Run as program_test.py is.
"""

import re
import unittest
from pathlib import Path

from gi.repository import GLib

from driving import processes
from driving.desktop import Desktop
from driving.statusitem import WATCHER
from driving.timer import AFTER_FIRST_RUN, MENU, NAME, PATH, PROGRAM, Timer
from driving.waiting import wait_until

MANUAL = Path(__file__).resolve().parents[2] / "packaging/linux/marvelode-timer.1"


class StartedTwice(unittest.TestCase):
    def test_the_menu_of_the_first_comes_up_as_a_window(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            owner = desktop.bus.process_of(NAME)
            second = timer.start_again("-TimerInterval", "60")
            self.assertEqual(second.status(), 0, second.output())
            self.assertIn("running already", second.output())
            small = timer.window()
            wait_until(lambda: small.has("active"), "the window to have the keyboard")
            self.assertEqual([each.name for each in small.walk() if each.role in ("push button", "toggle button")],
                             [*MENU, "Hide this window"])
            self.assertEqual(desktop.bus.process_of(NAME), owner)
            self.assertGreater(timer.get("RemainingSeconds"), 500)
            self.assertEqual(len(desktop.bus.get(WATCHER, "/StatusNotifierWatcher", WATCHER,
                                                 "RegisteredStatusNotifierItems")), 1)
            timer.command("Quit")
            timer.expect_end(self)

    def test_of_many_started_at_once_one_stays(self):
        with Desktop(panel=False) as desktop:
            programs = [desktop.start(PROGRAM) for _ in range(5)]
            wait_until(lambda: sum(each.is_running() for each in programs) == 1, "all but one to end")
            [stays] = [each for each in programs if each.is_running()]
            self.assertEqual(desktop.bus.process_of(NAME), stays.pid)
            self.assertEqual([each.status() for each in programs if each is not stays], [0] * 4)
            desktop.bus.call(NAME, PATH, NAME, "Quit")
            self.assertEqual(stays.status(), 0)

    def test_a_first_one_that_does_not_answer_is_told_of(self):
        with Desktop(panel=False) as desktop:
            desktop.bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                             "(su)", NAME, 4)  # and nothing is there to show a menu
            second = desktop.start(PROGRAM)
            self.assertEqual(second.status(), 1)
            self.assertIn("cannot show its menu", second.output())


class Scripts(unittest.TestCase):
    def activate_action(self, desktop, action):
        desktop.bus.call(NAME, PATH, "org.freedesktop.Application", "ActivateAction", "(sava{sv})", action, [], {})

    def dialog(self, desktop, timer, text):
        """The window that shows that text; waits for it."""
        return wait_until(lambda: next((each for each in desktop.windows() if text in each.texts()), None),
                          f"a window with “{text}”")

    def test_everything_in_the_menu_can_be_done_and_everything_seen(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, "-TimerInterval", "1200", settings=AFTER_FIRST_RUN)
            item = timer.item_without_panel()
            self.assertEqual((timer.get("State"), timer.get("Text"), timer.get("Muted"), timer.get("Popups")),
                             ("Timing", "20m", False, True))

            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")
            for restart in (lambda: timer.command("Restart"), lambda: self.activate_action(desktop, "restart")):
                restart()
                wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval")
                wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")

            for stored, toggle in (("true", lambda: timer.command("ToggleMute")),
                                   ("false", lambda: self.activate_action(desktop, "toggle-mute"))):
                toggle()
                timer.await_setting("Mute", stored)
                self.assertEqual(timer.get("Muted"), stored == "true")
                self.assertEqual(item.entry("Mute").is_checked, stored == "true")
            for stored, toggle in (("false", lambda: timer.command("TogglePopups")),
                                   ("true", lambda: self.activate_action(desktop, "toggle-popups"))):
                toggle()
                timer.await_setting("PopupAlerts", stored)
                self.assertEqual(timer.get("Popups"), stored == "true")
                self.assertEqual(item.entry("Popup reminders").is_checked, stored == "true")

            for text, show in (("Interval in minutes", lambda: timer.command("ShowSettings")),
                               ("License", lambda: timer.command("ShowAbout")),
                               ("Interval in minutes", lambda: self.activate_action(desktop, "show-settings")),
                               ("License", lambda: self.activate_action(desktop, "show-about"))):
                show()
                dialog = self.dialog(desktop, timer, text)
                with self.assertRaisesRegex(GLib.Error, "org.marvelode.Timer.Error.Busy"):
                    timer.command("Restart")
                with self.assertRaisesRegex(GLib.Error, "org.marvelode.Timer.Error.Busy"):
                    self.activate_action(desktop, "quit")
                self.assertEqual(timer.get("State"), "Timing")
                dialog.find("push button", "OK").press()
                wait_until(lambda: item.entry("Quit").is_enabled, "the window to close")

            with self.assertRaisesRegex(GLib.Error, "InvalidArgs"):
                self.activate_action(desktop, "Restart")
            timer.command("Quit")
            timer.expect_end(self)

    def test_a_break_that_is_due_is_seen(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "2", settings=AFTER_FIRST_RUN)
            timer.await_state("Reminding")
            wait_until(lambda: timer.get("RemainingSeconds") <= -1, "time to be counted up")
            self.assertTrue(timer.get("Text").startswith("+"), timer.get("Text"))
            popup = timer.window()
            with self.assertRaisesRegex(GLib.Error, "org.marvelode.Timer.Error.Busy"):
                timer.command("Restart")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            self.assertEqual(timer.get("State"), "Reminding")
            wait_until(lambda: timer.item().entry("Quit").is_enabled, "the menu to be usable")
            timer.command("Restart")
            timer.await_state("Timing")
            self.activate_quit(desktop)
            timer.expect_end(self)

    def activate_quit(self, desktop):
        self.activate_action(desktop, "quit")

    def test_calls_sent_in_one_go_are_answered_as_they_turn_out(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "1200", settings=AFTER_FIRST_RUN)
            timer.await_in_panel()
            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")

            # The window that the first call opens blocks the second, which is refused at once.
            opened, restarted = desktop.bus.call_at_once(NAME, PATH, NAME, "ShowSettings", "Restart")
            self.assertIsNone(opened)
            self.assertIn("org.marvelode.Timer.Error.Busy", str(restarted))
            settings = self.dialog(desktop, timer, "Interval in minutes")
            self.assertLess(timer.get("RemainingSeconds"), 1198)
            settings.find("push button", "OK").press()
            timer.await_no_window()

            # What was answered has been done.
            self.assertEqual(desktop.bus.call_at_once(NAME, PATH, NAME, "ToggleMute", "Restart"), [None, None])
            self.assertEqual(timer.settings()["Mute"], "true")
            self.assertGreaterEqual(timer.get("RemainingSeconds"), 1198)

            ended, restarted = desktop.bus.call_at_once(NAME, PATH, NAME, "Quit", "Restart")
            self.assertIsNone(ended)
            self.assertIsNotNone(restarted)
            timer.expect_end(self)

    def test_the_examples_in_the_manual_work(self):
        page = MANUAL.read_text()
        examples = [line.split() for line in re.findall(r"^\.Dl (.*)$", page, re.MULTILINE)]
        with Desktop() as desktop:
            settings = re.search(r"^\.Bd.*?\n(.*?)^\.Ed", page, re.MULTILINE | re.DOTALL)[1]
            file = desktop.config / "marvelode-timer/settings"
            file.parent.mkdir()
            file.write_text(settings)
            timer = Timer(desktop)
            timer.await_description("Break in 25 minutes")
            for program, *arguments in examples:
                if program == "marvelode-timer":
                    continue
                if "Quit" in arguments:
                    quit_command = [program, *arguments]
                    continue
                answer = desktop.start(program, *arguments)
                self.assertEqual(answer.status(), 0, answer.output())
                if "get-property" in arguments:
                    self.assertRegex(answer.output(), r'^s "Timing"\ns "25m"\nx 14\d\d\n$')
                if "Hold" in arguments or "Release" in arguments:
                    self.assertEqual(timer.get("Held"), "Hold" in arguments)
                if "ToggleMute" in arguments:
                    self.assertTrue(timer.get("Muted"))
                if "TogglePopups" in arguments:
                    self.assertFalse(timer.get("Popups"))
                if "ShowSettings" in arguments:
                    timer.window().find("push button", "OK").press()
                    timer.await_no_window()
            self.assertEqual(timer.settings(), dict(line.split("=") for line in settings.splitlines() if "=" in line)
                             | {"Mute": "true", "PopupAlerts": "false"})
            self.assertEqual(desktop.start(*quit_command).status(), 0)
            timer.expect_end(self)
            self.assertNotEqual(desktop.start(*quit_command).status(), 0)
            self.assertFalse(desktop.bus.has_owner(NAME))
            for program, *arguments in examples:
                if program == "marvelode-timer" and not arguments[0].startswith("--"):
                    timer = Timer(desktop, *arguments)
                    timer.await_description("Break in")
                    timer.quit(self)

    def test_the_menu_can_be_asked_for(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            for interface, method, signature, arguments in (
                    (NAME, "ShowMenu", "()", ()),
                    ("org.freedesktop.Application", "Activate", "(a{sv})", ({},)),
                    ("org.freedesktop.Application", "Open", "(asa{sv})", ([], {}))):
                desktop.bus.call(NAME, PATH, interface, method, signature, *arguments)
                small = timer.window()
                self.assertIn("Break in 10 minutes", small.texts())
                small.find("push button", "Hide this window").press()
                timer.await_no_window()
            timer.quit(self)

    def test_the_bus_starts_the_program(self):
        with Desktop() as desktop:
            services = desktop.home / ".local/share/dbus-1/services"
            services.mkdir(parents=True)
            (services / f"{NAME}.service").write_text(f'[D-BUS Service]\nName={NAME}\nExec="{PROGRAM}"\n')
            desktop.bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig")
            desktop.bus.call(NAME, PATH, NAME, "ToggleMute")
            pid = desktop.bus.process_of(NAME)
            self.assertEqual(processes.executable(pid), PROGRAM)
            self.assertEqual(desktop.bus.get(NAME, PATH, NAME, "State"), "Timing")
            self.assertTrue(wait_until(lambda: desktop.bus.get(NAME, PATH, NAME, "Muted"), "“Mute” to take effect"))
            item = desktop.status_item(pid)
            wait_until(lambda: desktop.item_in_panel(item), "the item in the panel")
            item.pick("Quit")
            wait_until(lambda: not processes.executable(pid), "the program to end")


if __name__ == "__main__":
    unittest.main()
