#!/usr/bin/python3
"""The timer can always be reached: without a tray, by a second start, by scripts; and its popup is always seen.

Run as program_test.py is; what is preloaded for two monitors is named as TWO_MONITORS.
"""

import os
import re
import time
import unittest
from pathlib import Path

from gi.repository import GLib

from driving import processes
from driving.desktop import PANEL_HEIGHT, Desktop
from driving.notifications import NotificationArea
from driving.statusitem import WATCHER
from driving.timer import AFTER_FIRST_RUN, NAME, PATH, PROGRAM, Timer
from driving.waiting import wait_until

MANUAL = Path(__file__).resolve().parents[2] / "packaging/linux/marvelode-timer.1"
MENU = ["About Marvelode Timer", "Restart timer", "Mute", "Popup reminders", "Settings", "Quit"]
KEYLESS_SECONDS = 0.5
COLOUR = (32, 96, 64)

OTHER = """
import sys
import gi
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk
window = Gtk.Window(title="Other")
window.override_background_color(0, Gdk.RGBA(32 / 255, 96 / 255, 64 / 255, 1))
window.set_default_size(300, 200)
entry = Gtk.Entry(halign="center", valign="end")
window.add(entry)
if "fullscreen" in sys.argv:
    window.fullscreen()
window.show_all()
Gtk.main()
"""


class Other:
    """Another program, in whose window the user is typing."""

    def __init__(self, desktop, *options):
        self.desktop = desktop
        self.program = desktop.start("/usr/bin/python3", "-c", OTHER, *options)
        self.await_keyboard()
        self.window = wait_until(lambda: next((each for each in desktop.windows() if each.name == "Other"), None),
                                 "the other window's name")

    def has_keyboard(self):
        active = self.desktop.active_window()
        return bool(active) and active[1] == self.program.pid

    def await_keyboard(self):
        wait_until(self.has_keyboard, "the other window to have the keyboard")

    def text(self):
        return self.window.find("text").text


class LockScreen:
    """GNOME's, as programs see it."""

    NAME, PATH, INTERFACE = "org.gnome.Shell.ScreenShield", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver"

    def __init__(self, desktop):
        self._bus = desktop.bus
        desktop.start("/usr/bin/python3", "-m", "dbusmock", "--session", self.NAME, self.PATH, self.INTERFACE)
        wait_until(lambda: self._bus.has_owner(self.NAME), "the lock screen")

    def set(self, is_locked):
        self._mock("AddMethod", "(sssss)", self.INTERFACE, "GetActive", "", "b", f"ret = {is_locked}")
        self._mock("EmitSignal", "(sssav)", self.INTERFACE, "ActiveChanged", "b", [GLib.Variant("b", is_locked)])

    def _mock(self, method, signature, *arguments):
        self._bus.call(self.NAME, self.PATH, "org.freedesktop.DBus.Mock", method, signature, *arguments)


def middle(accessible):
    x, y, width, height = accessible.extents
    return x + width // 2, y + height // 2


def is_seen(desktop, window):
    """Whether the window is what the screen shows at its place, rather than the other program's."""
    x, y, width, height = window.extents
    picture = desktop.screenshot().crop(x, y, width, height)
    return picture.count(lambda *pixel: pixel[:3] in (COLOUR, (0, 0, 0))) < width * height / 50


def kilobytes(pid):
    """How much memory the process takes, by kind."""
    with open(f"/proc/{pid}/smaps_rollup") as file:
        sizes = dict(line.split(":") for line in file.read().splitlines()[1:])
    size = {key: int(value.split()[0]) for key, value in sizes.items()}
    return {"resident": size["Rss"], "proportional": size["Pss"],
            "unshared": size["Private_Clean"] + size["Private_Dirty"]}


class NoTray(unittest.TestCase):
    """A desktop that shows no status items."""

    def test_it_says_so_and_offers_the_menus_main_actions(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            timer = Timer(desktop, "-TimerInterval", "1200")
            message = notifications.await_message(seconds=6)
            self.assertEqual(message.summary, "Marvelode Timer is running")
            self.assertEqual(list(message.actions), ["default", "Restart timer", "Settings", "Quit"])
            small = timer.window()
            self.assertEqual(small.find("label", "Break in 20 minutes").role, "label")

            wait_until(lambda: timer.get("RemainingSeconds") < 1198, "some time to pass")
            notifications.choose(message, "Restart timer")
            wait_until(lambda: timer.get("RemainingSeconds") >= 1198, "a new interval")

            notifications.choose(message, "Settings")
            settings = wait_until(lambda: next((each for each in desktop.windows()
                                                if each.find("text", "Interval in minutes")), None), "the settings")
            settings.find("push button", "OK").press()
            wait_until(lambda: len(timer.program.helpers()) == 1, "the settings to close")

            timer.window().find("push button", "Hide this window").press()
            timer.await_no_window()
            notifications.choose(message, "default")
            timer.window()
            notifications.choose(message, "Quit")
            timer.expect_end(self)
            self.assertEqual(notifications.messages(), [])

    def test_it_says_nothing_while_the_screen_is_locked(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            lock = LockScreen(desktop)
            lock.set(True)
            timer = Timer(desktop)
            timer.await_state("Timing")
            time.sleep(4)
            self.assertEqual(notifications.messages(), [])
            self.assertIsNone(desktop.window_of(timer.program))
            lock.set(False)
            notifications.await_message(seconds=6)
            timer.window()
            timer.command("Quit")
            timer.expect_end(self)

    def test_the_small_window_takes_the_keyboard_from_nobody(self):
        with Desktop(panel=False) as desktop:
            other = Other(desktop)
            timer = Timer(desktop)
            small = timer.window()
            wait_until(lambda: is_seen(desktop, small), "the small window to be seen")
            desktop.type("hello")
            wait_until(lambda: other.text() == "hello", "what was typed to arrive")
            self.assertTrue(other.has_keyboard())
            timer.command("Quit")
            timer.expect_end(self)

    def test_the_small_window_is_used_with_the_mouse(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            small = timer.window()
            for stored in "true", "false":
                desktop.click(*middle(small.find("toggle button", "Mute")))
                timer.await_setting("Mute", stored)
            desktop.click(*middle(small.find("toggle button", "Popup reminders")))
            timer.await_setting("PopupAlerts", "false")
            desktop.click(*middle(small.find("push button", "Hide this window")))
            timer.await_no_window()
            self.assertTrue(timer.program.is_running())
            self.assertEqual(timer.start_again().status(), 0)
            desktop.click(*middle(timer.window().find("push button", "Quit")))
            timer.expect_end(self)

    def test_the_small_window_is_used_with_the_keyboard_alone(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, settings=AFTER_FIRST_RUN)
            small = timer.window()
            wait_until(lambda: timer.start_again().status() == 0, "the second start")
            small = wait_until(lambda: next((each for each in desktop.windows() if each.has("active")), None),
                               "the small window to have the keyboard")

            def focus(name):
                def has_focus():
                    found = next((each for each in small.walk() if each.has("focused")), None)
                    if found and found.name == name:
                        return True
                    desktop.press_key("Tab")
                    return False
                wait_until(has_focus, f"the keyboard on “{name}”")
            for name in [*MENU, "Hide this window"]:
                focus(name)
            focus("Mute")
            desktop.press_key("space")
            timer.await_setting("Mute", "true")
            desktop.press_key("alt+p")
            timer.await_setting("PopupAlerts", "false")
            desktop.press_key("Escape")
            timer.await_no_window()
            self.assertTrue(timer.program.is_running())
            self.assertEqual(timer.start_again().status(), 0)
            small = wait_until(lambda: next((each for each in desktop.windows() if each.has("active")), None),
                               "the small window to have the keyboard")
            focus("Quit")
            desktop.press_key("Return")
            timer.expect_end(self)

    def test_the_small_window_names_everything_and_follows_the_timer(self):
        with Desktop(panel=False) as desktop:
            timer = Timer(desktop, "-TimerInterval", "14", settings=AFTER_FIRST_RUN)
            small = timer.window()
            controls = [each.name for each in small.walk() if each.role in ("push button", "toggle button")]
            self.assertEqual(controls, [*MENU, "Hide this window"])
            self.assertTrue(small.find("toggle button", "Popup reminders").has("checked"))
            self.assertFalse(small.find("toggle button", "Mute").has("checked"))
            timer.command("ToggleMute")
            wait_until(lambda: self.has(small, "Mute", "checked"), "the switch to follow")
            for words in "Break in 9 seconds", "Break in 8 seconds":
                wait_until(lambda: small.find("label", words), f"“{words}”")

            # While the popup asks, the menu can do nothing.
            popup = timer.window(role="alert", seconds=20)
            wait_until(lambda: all(self.has(small, name, "sensitive") is False for name in MENU),
                       "the menu to be greyed")
            wait_until(lambda: self.has(small, "Hide this window", "sensitive"), "what hides the window")
            wait_until(lambda: small.find("label", "Break due for 2 seconds"), "the time that it is due for")
            popup.find("push button", "Restart").press()
            wait_until(lambda: self.has(small, "Quit", "sensitive"), "the menu to be usable")
            small.find("push button", "Quit").press()
            timer.expect_end(self)

    def has(self, window, name, state):
        """Whether the window's control is in that state; nothing while the window is just drawn anew."""
        for role in "push button", "toggle button":
            if found := window.find(role, name):
                try:
                    return found.has(state)
                except GLib.Error:
                    return None
        return None

    def test_a_tray_that_appears_later_is_taken_up(self):
        with Desktop(panel=False) as desktop:
            notifications = NotificationArea(desktop)
            timer = Timer(desktop)
            notifications.await_message()
            timer.window()
            desktop.start_panel()
            timer.await_in_panel()
            timer.await_no_window()
            wait_until(lambda: not notifications.messages(), "the message to be taken back")

            # A panel that restarts at once is no reason to say anything; one that stays away is.
            desktop.stop_panel()
            desktop.start_panel()
            timer.await_in_panel()
            self.assertEqual(notifications.messages(), [])
            desktop.stop_panel()
            notifications.await_message()
            timer.window()
            timer.command("Quit")
            timer.expect_end(self)

    def test_nothing_of_the_small_window_stays_in_memory(self):
        with Desktop() as desktop:
            timer = Timer(desktop)
            timer.await_in_panel()
            self.assertEqual(timer.start_again().status(), 0)
            timer.window().find("push button", "Hide this window").press()
            timer.await_no_window()
            wait_until(lambda: not timer.program.helpers(), "the helper to end")
            used = kilobytes(timer.program.pid)
            self.assertLessEqual(used["resident"], 8 * 1024, used)
            self.assertLessEqual(used["proportional"], 1.5 * 1024, used)
            self.assertLessEqual(used["unshared"], 1024, used)
            timer.command("Quit")
            timer.expect_end(self)


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
            self.assertIn("does not answer", second.output())


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

            # The window that the first one opens keeps the second from being done, and nobody waits for its closing.
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
                if "ToggleMute" in arguments:
                    self.assertTrue(timer.get("Muted"))
                if "TogglePopups" in arguments:
                    self.assertFalse(timer.get("Popups"))
                if "ShowSettings" in arguments:
                    timer.window().find("push button", "OK").press()
                    timer.await_no_window()
            self.assertEqual(timer.settings(), dict(line.split("=") for line in settings.splitlines()[1:])
                             | {"Mute": "true", "PopupAlerts": "false"})
            self.assertEqual(desktop.start(*quit_command).status(), 0)
            timer.expect_end(self)
            self.assertNotEqual(desktop.start(*quit_command).status(), 0)
            self.assertFalse(desktop.bus.has_owner(NAME))
            for program, *arguments in examples:
                if program == "marvelode-timer":
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


class Popup(unittest.TestCase):
    """The reminder's window is always seen, and eats no keys."""

    def start(self, desktop, interval=3):
        timer = Timer(desktop, "-TimerInterval", str(interval), settings=AFTER_FIRST_RUN | {"Mute": "true"})
        return timer

    def snooze_and_quit(self, timer, popup):
        popup.find("push button", "Snooze").press()
        timer.await_no_window()
        timer.quit(self)

    def test_it_comes_up_on_the_monitor_with_the_pointer(self):
        with Desktop() as desktop:
            timer = Timer(desktop, "-TimerInterval", "2", settings=AFTER_FIRST_RUN | {"Mute": "true"},
                          LD_PRELOAD=os.environ["TWO_MONITORS"])
            half = desktop.width // 2
            for left in half, 0:
                desktop.point_at(left + 50, desktop.height - 50)
                popup = timer.window(role="alert")

                def is_in_the_middle():
                    x, y, width, height = popup.extents
                    return (abs(x + width / 2 - (left + half / 2)) <= 2 and
                            abs(y + height / 2 - desktop.height / 2) <= PANEL_HEIGHT)
                wait_until(is_in_the_middle, "the popup in the middle of the monitor")
                if left > 0:
                    popup.find("push button", "Restart").press()
                    timer.await_no_window()
            self.snooze_and_quit(timer, popup)

    def test_it_stands_above_a_full_screen_window_and_gives_the_keyboard_back(self):
        with Desktop() as desktop:
            timer = self.start(desktop, 6)
            other = Other(desktop, "fullscreen")
            wait_until(lambda: desktop.screenshot().pixel(5, 5)[:3] == COLOUR, "the full screen")
            popup = timer.window()
            wait_until(lambda: is_seen(desktop, popup), "the popup above the full screen")
            wait_until(lambda: popup.has("active"), "the popup to have the keyboard")
            popup.find("push button", "Snooze").press()
            timer.await_no_window()
            other.await_keyboard()
            desktop.type("on I go")
            wait_until(lambda: other.text() == "on I go", "what was typed to arrive")
            timer.command("Quit")
            timer.expect_end(self)

    def test_it_is_on_every_workspace(self):
        with Desktop() as desktop:
            timer = self.start(desktop)
            popup = timer.window()
            for workspace in "1", "2", "0":
                desktop.switch_workspace(workspace)
                wait_until(lambda: is_seen(desktop, popup), f"the popup on workspace {workspace}")
            self.snooze_and_quit(timer, popup)

    def test_it_takes_no_key_in_its_first_half_second(self):
        with Desktop() as desktop:
            other = Other(desktop)
            timer = self.start(desktop, 2)
            for _ in range(10):
                begin = [time.monotonic()]

                def process():
                    """The popup's, as soon as it has the keyboard."""
                    active = desktop.active_window()
                    if not active or active[1] == other.program.pid:
                        begin[0] = time.monotonic()
                        return None
                    return active[1]
                popup = wait_until(process, "the popup to have the keyboard")
                desktop.press_key("Return")
                if time.monotonic() - begin[0] < KEYLESS_SECONDS:
                    wait_until(lambda: time.monotonic() - begin[0] > 2 * KEYLESS_SECONDS, "the key to be heeded")
                    self.assertEqual(timer.program.helpers(), [popup])
                    self.assertEqual(timer.get("State"), "Reminding")
                    desktop.press_key("Return")
                    timer.await_state("Timing")
                    timer.quit(self)
                    return
                desktop.press_key("Return")
                timer.await_state("Timing")
                other.await_keyboard()
            self.fail("the machine was never quick enough for this test")

    def test_the_text_goes_on_counting_while_it_waits(self):
        with Desktop() as desktop:
            timer = self.start(desktop)
            popup = timer.window()
            for seconds in 2, 3, 4:
                timer.await_description(f"Break due for {seconds} seconds")
                self.assertTrue(popup.has("showing"))
                timer.await_in_panel()
            self.snooze_and_quit(timer, popup)


if __name__ == "__main__":
    unittest.main()
