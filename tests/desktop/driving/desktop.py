"""A private desktop on a virtual screen: window manager, panel, session bus, a stand-in for the system bus, its own
home. Programs run on it as on a real one; nothing of it outlives it, and it shares nothing with other desktops."""

import os
import shutil
import signal
import socket
import subprocess
import tempfile
from pathlib import Path

from gi.repository import GLib

from . import processes
from .accessible import Accessible, ScreenReader
from .bus import Bus
from .picture import Picture
from .program import Program
from .statusitem import WATCHER, StatusItem
from .waiting import wait_until

# Where programs find icons and launchers: of an installation elsewhere too, if MARVELODE_DATA says where.
DATA_FOLDERS = ":".join([*filter(None, [os.environ.get("MARVELODE_DATA")]), "/usr/local/share", "/usr/share"])

PANEL_HEIGHT = 28
TRAY_PICTURE = 22
TRAY_WIDTH = 4 * TRAY_PICTURE  # at the right end of the panel, as wide as no test fills it

PANEL_SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="length" type="uint" value="100"/>
      <property name="size" type="uint" value="{height}"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="icon-size" type="int" value="{picture}"/>
      <property name="square-icons" type="bool" value="false"/>
    </property>
  </property>
</channel>
"""

SYSTEM_BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path={path}</listen>
  <policy context="default">
    <allow user="*"/>
    <allow send_type="*"/>
    <allow receive_type="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Desktop:
    """Used in a `with` statement: it stands when the statement begins and is gone when it ends."""

    def __init__(self, width=1280, height=800, dark=False, panel=True, background=(0, 0, 0)):
        self.width, self.height = width, height
        self._dark, self._wants_panel, self._background = dark, panel, background
        self._programs = 0

    def __enter__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="marvelode-desktop-"))
        self._buses, self._services = [], []
        processes.adopt_orphans()
        try:
            self._start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for bus in self._buses:
            bus.close()
        try:
            processes.end_descendants()
            for process in self._services:
                process.wait()
        finally:
            shutil.rmtree(self.folder, ignore_errors=True)

    def _start(self):
        self.home = self.folder / "home"
        folders = {"XDG_CONFIG_HOME": self.home / ".config", "XDG_DATA_HOME": self.home / ".local/share",
                   "XDG_STATE_HOME": self.home / ".local/state", "XDG_CACHE_HOME": self.home / ".cache",
                   "XDG_RUNTIME_DIR": self.folder / "runtime"}
        for path in folders.values():
            path.mkdir(parents=True, mode=0o700)
        self.config = folders["XDG_CONFIG_HOME"]
        self.environment = {
            **{name: str(path) for name, path in folders.items()},
            "PATH": "/usr/local/bin:/usr/bin:/bin", "HOME": str(self.home), "LANG": "C.UTF-8",
            "XDG_CURRENT_DESKTOP": "XFCE", "XDG_SESSION_TYPE": "x11", "GDK_BACKEND": "x11",
            "XDG_CONFIG_DIRS": "/etc/xdg", "XDG_DATA_DIRS": DATA_FOLDERS,
            "GSETTINGS_BACKEND": "memory"}
        self.environment |= {name: os.environ[name] for name in ("ASAN_OPTIONS", "TSAN_OPTIONS") if name in os.environ}
        self._write_settings()
        self._start_display()
        self._start_session_bus()
        self._start_system_bus()
        self._start_accessibility()
        self._start_window_manager()
        if self._wants_panel:
            self.start_panel()

    def _write_settings(self):
        gtk = self.config / "gtk-3.0"
        gtk.mkdir()
        (gtk / "settings.ini").write_text(
            "[Settings]\ngtk-font-name=DejaVu Sans 10\ngtk-enable-animations=0\ngtk-icon-theme-name=Adwaita\n"
            f"gtk-application-prefer-dark-theme={int(self._dark)}\n")
        channels = self.config / "xfce4/xfconf/xfce-perchannel-xml"
        channels.mkdir(parents=True)
        (channels / "xfce4-panel.xml").write_text(PANEL_SETTINGS.format(
            dark=str(self._dark).lower(), height=PANEL_HEIGHT, picture=TRAY_PICTURE))

    def _start_display(self):
        screens = self.folder / "screens"
        screens.mkdir(exist_ok=True)
        reader, writer = os.pipe()
        earlier = [self.environment["DISPLAY"]] if "DISPLAY" in self.environment else []
        self._display = self._start_service(
            "Xvfb", *earlier, "-displayfd", str(writer), "-screen", "0", f"{self.width}x{self.height}x24",
            "-fbdir", str(screens), "-dpi", "96", "-nolisten", "tcp", "-noreset", "-nocursor", pass_fds=(writer,))
        os.close(writer)
        with open(reader) as answer:
            number = answer.readline().strip()
        assert number, "the display does not start"
        self.environment["DISPLAY"] = ":" + number
        self._frame_buffer = screens / "Xvfb_screen0"

    def _start_window_manager(self):
        self._window_manager = self.start("openbox", "--sm-disable")
        wait_until(lambda: self._xdotool("get_num_desktops", check=False).returncode == 0, "the window manager")
        subprocess.run(["xsetroot", "-solid", "#%02x%02x%02x" % self._background], env=self.environment, check=True)

    def _start_session_bus(self):
        address = f"unix:path={self.environment['XDG_RUNTIME_DIR']}/bus"
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = address
        self.session_bus_process = self._start_service("dbus-daemon", "--session", "--nofork", "--nopidfile",
                                                       f"--address={address}")
        self.bus = self._connect(address)

    def _start_system_bus(self):
        """Starts a system bus with no other service than a login manager."""
        path = self.folder / "system-bus"
        settings = self.folder / "system-bus.conf"
        settings.write_text(SYSTEM_BUS.format(path=path))
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={path}"
        self._system_bus_process = self._start_service("dbus-daemon", f"--config-file={settings}", "--nofork",
                                                       "--nopidfile")
        self._system_bus = self._connect(f"unix:path={path}")
        self.start_logind()

    def _start_accessibility(self):
        address = self.bus.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
        self._accessibility_bus = self._connect(address)

    def _start_service(self, *command, pass_fds=()):
        process = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, pass_fds=pass_fds,
                                   preexec_fn=processes.end_with_parent)
        self._services.append(process)
        return process

    def _connect(self, address):
        def connect():
            try:
                return Bus(address)
            except GLib.Error:
                return None
        bus = wait_until(connect, f"the bus at {address}")
        self._buses.append(bus)
        return bus

    # Programs

    def start(self, *command, **environment):
        """Starts a program on this desktop; a variable given as None is removed from its environment."""
        self._programs += 1
        variables = {**self.environment, **environment}
        program = Program(command, {name: value for name, value in variables.items() if value is not None},
                          self.folder / f"output-{self._programs}")
        self._services.append(program.process)
        return program

    def start_panel(self):
        """Starts the panel and waits for its tray."""
        self.panel = self.start("xfce4-panel", "--disable-wm-check")
        wait_until(lambda: self.bus.has_owner(WATCHER), "the panel's tray")

    def stop_panel(self):
        self.panel.send(signal.SIGKILL)
        self.panel.status()
        wait_until(lambda: not self.bus.has_owner(WATCHER), "the panel's tray to go")

    # What the user sees

    def screenshot(self):
        return Picture.of_frame_buffer(self._frame_buffer)

    def status_item(self, process):
        """The status item of the process with that pid; waits for it."""
        def item():
            for each in StatusItem.all(self.bus):
                try:
                    if each.process == process:
                        return each
                except GLib.Error:
                    continue
            return None
        return wait_until(item, "the status item")

    def pixels(self, x, y, width):
        """The bytes of so many pixels of a line, read without delay."""
        with open(self._frame_buffer, "rb") as file:
            header = file.read(80)
            header_size, colours = (int.from_bytes(header[at:at + 4], "big") for at in (0, 76))
            file.seek(header_size + colours * 12 + 4 * (y * self.width + x))
            return file.read(4 * width)

    def centre_pixel(self):
        return self.pixels(self.width // 2, self.height // 2, 1)

    def tray_pixels(self):
        """Those half-way up the panel's tray."""
        return self.pixels(self.width - TRAY_WIDTH, PANEL_HEIGHT // 2, TRAY_WIDTH)

    def picture_in_panel(self, picture):
        """Where in the panel's tray this picture of a status item is drawn; nothing if it is not (yet)."""
        left = self.width - TRAY_WIDTH
        tray = self.screenshot().crop(left, 0, TRAY_WIDTH, PANEL_HEIGHT)
        found = tray.find(picture.scaled(TRAY_PICTURE, TRAY_PICTURE).on(tray.pixel(0, PANEL_HEIGHT // 2)))
        return found and (left + found[0], found[1])

    def item_in_panel(self, item):
        """Where in the panel the item's present picture is drawn; nothing if it is not (yet).

        This panel takes the largest picture that is offered, whatever its own size."""
        pictures = item.pictures()
        return self.picture_in_panel(pictures[max(pictures)]) if pictures else None

    def screen_reader(self):
        """Assistive software that hears what gets the keyboard."""
        return ScreenReader(self._accessibility_bus)

    def windows(self):
        """The windows that assistive software finds, of whatever program."""
        try:
            applications = Accessible.desktop(self._accessibility_bus).children
        except GLib.Error:
            return []
        found = []
        for application in applications:
            try:
                found += [each for each in application.children if each.has("showing")]
            except GLib.Error:
                continue
        return found

    def window_of(self, program, role=None):
        """The first window that a program's helpers show, of a role if one is given; nothing if there is none."""
        helpers = program.helpers()
        for window in self.windows() if helpers else []:
            try:
                if window.process in helpers and role in (None, window.role):
                    return window
            except GLib.Error:
                continue
        return None

    # What the user does

    def _xdotool(self, *arguments, check=True):
        return subprocess.run(["xdotool", *arguments], env=self.environment, check=check, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)

    def click(self, x, y, button=1):
        self._xdotool("mousemove", str(x), str(y), "click", str(button))

    def hold_button(self, x, y):
        """Presses the mouse's button there and keeps it down."""
        self._xdotool("mousemove", str(x), str(y), "mousedown", "1")

    def release_button(self):
        self._xdotool("mouseup", "1")

    def point_at(self, x, y):
        """Moves the mouse there; it is not drawn."""
        self._xdotool("mousemove", str(x), str(y))

    def press_key(self, *keys):
        self._xdotool("key", "--delay", "20", *keys)

    def type(self, text):
        self._xdotool("type", "--delay", "20", text)

    def switch_workspace(self, number):
        """Switches to one of three workspaces, counted from 0."""
        self._xdotool("set_num_desktops", "3")
        self._xdotool("set_desktop", number)
        wait_until(lambda: self._xdotool("get_desktop").stdout.strip() == number, f"workspace {number}")

    def active_window(self):
        """The number of the window that has the keyboard, and the pid of its process."""
        number = self._xdotool("getactivewindow", check=False).stdout.strip()
        process = self._xdotool("getwindowpid", number, check=False).stdout.strip() if number else ""
        return (number, int(process)) if process else None

    def window_icon(self, number):
        """The first icon of the window with that number: the window manager's if it came with none."""
        answer = subprocess.run(["xprop", "-id", number, "-f", "_NET_WM_ICON", "32x", "_NET_WM_ICON"],
                                env=self.environment, check=True, text=True, stdout=subprocess.PIPE).stdout
        width, height, *pixels = (int(each, 16) for each in answer.partition(" = ")[2].split(","))
        argb = b"".join(pixel.to_bytes(4, "big") for pixel in pixels[:width * height])
        return Picture.of_status_item(width, height, argb)

    # What happens to the machine

    def start_logind(self):
        """Starts a stand-in for the login manager, which tells of sleep and waking."""
        self._logind = self._start_service("/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind")
        wait_until(lambda: self._system_bus.has_owner("org.freedesktop.login1"), "the stand-in for logind")

    def stop_logind(self):
        self._logind.kill()
        self._logind.wait()
        wait_until(lambda: not self._system_bus.has_owner("org.freedesktop.login1"), "the stand-in to go")

    def fall_asleep(self):
        """Tells that the machine is about to fall asleep."""
        self._prepare_for_sleep(True)

    def wake(self):
        """Tells that the machine has woken."""
        self._prepare_for_sleep(False)

    def _prepare_for_sleep(self, begins):
        self._system_bus.call("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.DBus.Mock",
                              "EmitSignal", "(sssav)", "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
                              [GLib.Variant("b", begins)])

    def stop_display(self):
        """Ends the display server, and with it every window."""
        self._display.kill()
        self._display.wait()
        self._display_keeper = socket.socket(socket.AF_UNIX)  # lest another server takes the number
        self._display_keeper.bind(f"\0/tmp/.X11-unix/X{self.environment['DISPLAY'][1:]}")
        self._window_manager.status()

    def start_display(self):
        """Starts the display server again under the same number."""
        self._display_keeper.close()
        self._start_display()
        self._start_window_manager()

    def stop_system_bus(self):
        self._system_bus_process.kill()
        self._system_bus_process.wait()

    def stop_session_bus(self):
        self.session_bus_process.kill()
        self.session_bus_process.wait()

    def start_session_bus_again(self):
        """Brings a session bus to where the last one was, and a panel on it."""
        self.panel.status()
        self._start_session_bus()
        self._start_accessibility()
        self.start_panel()
