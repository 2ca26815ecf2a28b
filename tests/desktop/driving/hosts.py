"""The panels of the usual desktops, and how each shows a status item. They are set up as on a fresh account, with a
tray and not much else, and run on a desktop that has no panel yet."""

import os
import signal
from pathlib import Path

from gi.repository import GLib

from . import processes
from .legibility import contrast, find, likeness
from .picture import Picture
from .statusitem import WATCHER
from .sway import Sway
from .waiting import wait_until

RESOURCES = Path(__file__).resolve().parents[3] / "resources"
WRITE_LABEL = str(Path(__file__).resolve().with_name("write-label"))


class Host:
    """A panel. Used in a `with` statement: it shows items as long as the statement runs."""

    name = ""
    process = ""          # of the one that collects the items, as far as the kernel keeps its name; of several releases
    area = (0, 0, 1280, 30)
    size = 22             # the height of the item's picture on the screen
    menu_button = 1       # the button of the mouse that opens the item's menu
    takes_keys = True     # whether its menus can be used with the keyboard
    environment = {}
    screen = (0, 0, 1280, 800)  # where the desktop is that it belongs to
    client_environment = {}     # of the programs there

    def __init__(self, desktop, dark=False):
        self.desktop, self.dark = desktop, dark
        self._programs = []

    def __enter__(self):
        self.configure()
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()

    def configure(self):
        """Writes its settings."""

    def commands(self):
        """What has to run, in order."""
        raise NotImplementedError

    def start(self):
        self._programs = [self.desktop.start(*command, **self.environment) for command in self.commands()]
        self.await_watcher()

    def await_watcher(self):
        wait_until(lambda: self.desktop.bus.has_owner(WATCHER), f"{self.name} to collect items")
        with open(f"/proc/{self.desktop.bus.process_of(WATCHER)}/comm") as file:
            found = file.read().strip()
        assert found in self.process.split("|"), f"{self.name} collects items in a process called {found}"

    def stop(self):
        """Kills it, with all its helpers."""
        for program in self._programs:
            if program.is_running():
                program.send(signal.SIGKILL)
                program.status()
        try:
            os.kill(self.desktop.bus.process_of(WATCHER), signal.SIGKILL)
        except (GLib.Error, ProcessLookupError):
            pass  # it has gone with its panel
        wait_until(lambda: not self.desktop.bus.has_owner(WATCHER), f"{self.name} to go")
        processes.reap()

    # What it shows

    def screenshot(self):
        """The part of the screen where it is."""
        return self.desktop.screenshot().crop(*self.area)

    def drawn(self, item):
        """What is to be seen of the item now, as the program believes; nothing before it has something to show."""
        picture = self.chosen(item.pictures())
        if not picture:
            return None
        x, _, width, height = self.area
        return picture.scaled(round(picture.width * self.size / picture.height), self.size)

    def chosen(self, pictures):
        """The one that it takes of the pictures on offer, which come by width and height."""
        return next((picture for (_, height), picture in pictures.items() if height == self.size), None)

    def text_in(self, picture):
        """The part of the picture that holds the text."""
        return 0, 0, picture.width, picture.height * 20 // 22  # a bar is below it

    def ground(self, screen):
        """The panel's colour."""
        return screen.pixel(screen.width // 2, screen.height // 2)

    def legible(self, item):
        """Where on the screen the item's text stands and can be read, as x, y, width and height; else nothing."""
        drawn = self.drawn(item)
        return self.legible_picture(drawn) if drawn else None

    def legible_picture(self, drawn):
        """The same for a picture that the item had, as `drawn()` gives it."""
        screen = self.screenshot()
        x, y, found = find(screen, drawn.on(self.ground(screen)))
        if found < 0.95:
            return None
        shown = screen.crop(x, y, drawn.width, drawn.height)
        text = self.text_in(drawn)
        drawn_text, shown_text = drawn.on(self.ground(screen)).crop(*text), shown.crop(*text)
        if likeness(drawn_text, shown_text) < 0.97 or contrast(shown_text, drawn_text) < 4.5:
            return None
        return self.area[0] + x, self.area[1] + y, drawn.width, drawn.height


class Xfce(Host):
    name, process = "xfce", "panel-2-systray|wrapper-2.0"

    def commands(self):
        return [["xfce4-panel", "--disable-wm-check"]]

    def chosen(self, pictures):
        return pictures[max(pictures)] if pictures else None


class Lxqt(Host):
    name, process, menu_button = "lxqt", "lxqt-panel", 3

    def configure(self):
        folder = self.desktop.config / "lxqt"
        folder.mkdir(exist_ok=True)
        (folder / "lxqt.conf").write_text(
            f"[General]\ntheme={'dark' if self.dark else 'light'}\nicon_theme=Adwaita\n")
        (folder / "panel.conf").write_text(
            "panels=panel1\n[panel1]\nplugins=taskbar,statusnotifier\nposition=Top\npanelSize=28\niconSize=22\n"
            "[taskbar]\ntype=taskbar\n[statusnotifier]\ntype=statusnotifier\nalignment=Right\n")

    def commands(self):
        return [["lxqt-panel"]]


class WidePictures(Host):
    """A panel that shows pictures as wide as they are."""

    def text_in(self, picture):
        left = picture.width * 2 // 5  # the icon is before it
        return left, 0, picture.width - left, picture.height


class Mate(WidePictures):
    name, process, size = "mate", "notification-ar", 24
    menu_button = 3
    environment = {"XDG_CURRENT_DESKTOP": "MATE", "GSETTINGS_BACKEND": "keyfile"}

    def configure(self):
        folder = self.desktop.config / "glib-2.0/settings"
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "keyfile").write_text(
            "[org/mate/panel/general]\ntoplevel-id-list=['top']\nobject-id-list=['notification-area']\n\n"
            "[org/mate/panel/toplevels/top]\nexpand=true\norientation='top'\nsize=24\n\n"
            "[org/mate/panel/objects/notification-area]\nobject-type='applet'\n"
            "applet-iid='NotificationAreaAppletFactory::NotificationArea'\ntoplevel-id='top'\nposition=0\n"
            "panel-right-stick=true\n")

    def commands(self):
        return [["mate-panel"]]


class Waybar(WidePictures):
    """Waybar on sway, whose screen is a window on this desktop."""

    name, process, size = "waybar", "waybar", 16
    takes_keys = False

    def configure(self):
        folder = self.desktop.config / "waybar"
        folder.mkdir(exist_ok=True)
        (folder / "config").write_text(
            '{"layer": "top", "height": 28, "modules-left": ["clock"], "modules-right": ["tray"]}')
        ground, text = ("#262626", "white") if self.dark else ("#f2f2f2", "black")
        (folder / "style.css").write_text(
            f"* {{ font-family: DejaVu Sans; font-size: 13px; }}\nwindow {{ background: {ground}; color: {text}; }}\n"
            "#tray, #clock { padding: 0 8px; }\n")

    def start(self):
        self._compositor = Sway(self.desktop)
        self._compositor.start()
        self.screen, self.client_environment = self._compositor.area, self._compositor.environment
        x, y, width, _ = self.screen
        self.area = (x, y, width, 30)
        self._programs = [self.desktop.start("waybar", **self.client_environment)]
        self.await_watcher()

    def stop(self):
        self._compositor.stop()
        super().stop()

    def chosen(self, pictures):
        return pictures[max(pictures)] if pictures else None


class Ayatana(Host):
    """Xfce's panel with the indicators that came from Ubuntu."""

    name, process = "ayatana", "ayatana-indicat"
    SERVICE = "/usr/libexec/ayatana-indicator-application/ayatana-indicator-application-service"

    def configure(self):
        self._labels = {}
        settings = self.desktop.config / "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"
        settings.write_text(settings.read_text().replace('value="systray"', 'value="indicator"'))

    def commands(self):
        return [[self.SERVICE], ["xfce4-panel", "--disable-wm-check"]]

    def legible_label(self, text):
        """Where on the screen the text stands as this desktop's programs write it, if it can be read there."""
        if text not in self._labels:
            path = self.desktop.folder / f"label-{len(self._labels)}.png"
            writer = self.desktop.start(WRITE_LABEL, text, str(path), "dark" if self.dark else "light")
            assert writer.status() == 0, writer.output()
            self._labels[text] = Picture.of_file(path)
        drawn, screen = self._labels[text], self.screenshot()
        x, y, found = find(screen, drawn)
        if found < 0.95 or contrast(screen.crop(x, y, drawn.width, drawn.height), drawn) < 4.5:
            return None
        return x, y, drawn.width, drawn.height

    def shows_icon(self, name):
        """Whether the small picture of that resource is on the screen."""
        screen = self.screenshot()
        icon = Picture.of_file(RESOURCES / f"status/{name}-22.png")
        return find(screen, icon.on(self.ground(screen)))[2] > 0.95


HOSTS = [Xfce, Lxqt, Mate, Waybar, Ayatana]
