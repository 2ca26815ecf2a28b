#!/usr/bin/python3
"""Stands for the program on the session bus, runs commands, and prints as JSON what each asked of it.

Usage: recorder.py COMMAND..., each command one word for the shell's rules.
"""

import json
import shlex
import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402 (the version comes first)

NAME, PATH = "org.marvelode.Timer", "/org/marvelode/Timer"
INTERFACE = Gio.DBusNodeInfo.new_for_xml("""
<node>
  <interface name="org.marvelode.Timer">
    <method name="Restart"/> <method name="ToggleMute"/> <method name="TogglePopups"/>
    <method name="Hold"><arg type="x" direction="in"/></method> <method name="Release"/>
    <method name="ShowSettings"/> <method name="ShowAbout"/> <method name="ShowMenu"/> <method name="Quit"/>
    <property name="State" type="s" access="read"/> <property name="Text" type="s" access="read"/>
    <property name="RemainingSeconds" type="x" access="read"/>
    <property name="Muted" type="b" access="read"/> <property name="Popups" type="b" access="read"/>
  </interface>
</node>""").interfaces[0]
VALUES = {"s": GLib.Variant("s", ""), "x": GLib.Variant("x", 0), "b": GLib.Variant("b", False)}
LONGEST_WAIT = 5  # seconds, for a command that leaves without waiting for its answer

asked = []


def on_method(_bus, _sender, _path, _interface, method, parameters, invocation):
    asked.append(" ".join([method, *map(str, parameters.unpack())]))
    invocation.return_value(None)


def on_read(_bus, _sender, _path, _interface, name):
    asked.append(name)
    return VALUES[INTERFACE.lookup_property(name).signature]


def what_is_asked_by(command):
    asked.clear()
    process = Gio.Subprocess.new(shlex.split(command), Gio.SubprocessFlags.STDOUT_SILENCE)
    ended = []
    process.wait_async(None, lambda *_: ended.append(True))
    late = []
    GLib.timeout_add_seconds(LONGEST_WAIT, lambda: late.append(True))
    while not late and not (ended and asked):
        GLib.MainContext.default().iteration(True)
    return list(asked)


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
bus.register_object(PATH, INTERFACE, on_method, on_read, None)
bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
              GLib.Variant("(su)", (NAME, 0)), None, Gio.DBusCallFlags.NONE, -1, None)
print(json.dumps([what_is_asked_by(command) for command in sys.argv[1:]]))
