"""How long programs take from their start to their place in the tray."""

import os
import signal
import time

from gi.repository import Gio, GLib

from driving.statusitem import WATCHER
from driving.waiting import wait_until

DEVICES = [(os.POSIX_SPAWN_OPEN, number, "/dev/null", os.O_RDWR, 0) for number in (0, 1, 2)]
PATIENCE = 20  # seconds


class Registrations:
    """Hears when items are registered with the tray. Used in a `with` statement."""

    def __init__(self, desktop):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self._connection = Gio.DBusConnection.new_for_address_sync(
            desktop.environment["DBUS_SESSION_BUS_ADDRESS"], flags, None, None)
        self._loop, self._times = GLib.MainLoop(), []
        self._connection.signal_subscribe(WATCHER, WATCHER, "StatusNotifierItemRegistered", None, None,
                                          Gio.DBusSignalFlags.NONE, self._heard)
        self._connection.call_sync("org.freedesktop.DBus", "/", "org.freedesktop.DBus.Peer", "Ping", None, None,
                                   Gio.DBusCallFlags.NONE, -1, None)  # from here on it hears everything

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._connection.close_sync(None)

    def _heard(self, *_):
        self._times.append(time.monotonic())
        self._loop.quit()

    def next(self):
        """When the next item is registered; waits for it."""
        limit = GLib.timeout_add_seconds(PATIENCE, self._loop.quit)
        self._loop.run()
        assert self._times, "no item was registered"
        GLib.source_remove(limit)
        return self._times.pop()


def spawn(desktop, *command):
    """Starts a program without delay; its pid, once it has begun."""
    return os.posix_spawn(command[0], command, desktop.environment, file_actions=DEVICES)


def end(pid):
    os.kill(pid, signal.SIGTERM)
    os.waitpid(pid, 0)


def registered(desktop, *command):
    """Milliseconds from the start of a program to its item's registration in the tray."""
    with Registrations(desktop) as registrations:
        begin = time.monotonic()
        pid = spawn(desktop, *command)
        took = registrations.next() - begin
    desktop.status_item(pid)
    end(pid)
    wait_until(lambda: not items(desktop), "the tray to be empty again")
    return took * 1000


def items(desktop):
    return desktop.bus.get(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")
