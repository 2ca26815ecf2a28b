"""What assistive software finds in the windows of a desktop, read and used over the accessibility bus."""

import contextlib

from gi.repository import GLib

ACCESSIBLE = "org.a11y.atspi.Accessible"
ACTION = "org.a11y.atspi.Action"
COMPONENT = "org.a11y.atspi.Component"
EDITABLE_TEXT = "org.a11y.atspi.EditableText"
SELECTION = "org.a11y.atspi.Selection"
TEXT = "org.a11y.atspi.Text"

# Positions in an object's set of states.
STATES = {"active": 1, "checked": 4, "enabled": 8, "focused": 12, "sensitive": 24, "showing": 25, "default": 39}
SCREEN_COORDINATES = 0

REGISTRY = "org.a11y.atspi.Registry"


class ScreenReader:
    """Hears which windows and controls get the keyboard. Used in a `with` statement."""

    EVENTS = "window:activate", "object:state-changed:focused"

    def __init__(self, bus):
        self._bus, self._heard = bus, []

    def __enter__(self):
        for event in self.EVENTS:
            self._ask_registry("RegisterEvent", "(sass)", event, [], "")
        self._stops = [self._bus.hear("org.a11y.atspi.Event.Window", "Activate", self._hear),
                       self._bus.hear("org.a11y.atspi.Event.Object", "StateChanged", self._hear_state)]
        return self

    def __exit__(self, *_):
        for event in self.EVENTS:
            self._ask_registry("DeregisterEvent", "(s)", event)
        for stop in self._stops:
            stop()

    def _ask_registry(self, method, signature, *arguments):
        self._bus.call(REGISTRY, "/org/a11y/atspi/registry", REGISTRY, method, signature, *arguments)

    def _hear(self, sender, path, *_):
        each = Accessible(self._bus, sender, path)
        with contextlib.suppress(GLib.Error):  # it has gone
            self._heard.append((each.role, each.name))

    def _hear_state(self, sender, path, state, is_on, *_):
        if state == "focused" and is_on:
            self._hear(sender, path)

    def heard(self):
        """Roles and names, in the order in which they were heard of."""
        while GLib.MainContext.default().iteration(False):
            pass
        return self._heard


class Accessible:
    """An object that a window shows, or the window, or the application."""

    def __init__(self, bus, name, path):
        self._bus, self._name, self._path = bus, name, path

    @classmethod
    def desktop(cls, bus):
        """The root, whose children are the applications."""
        return cls(bus, REGISTRY, "/org/a11y/atspi/accessible/root")

    def _call(self, interface, method, signature="()", *arguments):
        return self._bus.call(self._name, self._path, interface, method, signature, *arguments)

    @property
    def name(self):
        return self._bus.get(self._name, self._path, ACCESSIBLE, "Name")

    @property
    def description(self):
        return self._bus.get(self._name, self._path, ACCESSIBLE, "Description")

    @property
    def role(self):
        name = self._call(ACCESSIBLE, "GetRoleName")[0]
        return "push button" if name == "button" else name  # its name from at-spi 2.56 on

    @property
    def children(self):
        return [Accessible(self._bus, *each) for each in self._call(ACCESSIBLE, "GetChildren")[0]]

    @property
    def process(self):
        return self._bus.process_of(self._name)

    def has(self, state):
        low, high = self._call(ACCESSIBLE, "GetState")[0]
        return bool((high << 32 | low) >> STATES[state] & 1)

    @property
    def extents(self):
        """x, y, width and height on the screen."""
        return self._call(COMPONENT, "GetExtents", "(u)", SCREEN_COORDINATES)[0]

    @property
    def text(self):
        return self._call(TEXT, "GetText", "(ii)", 0, -1)[0]

    def walk(self):
        """This object and all below it that can still be reached."""
        try:
            children = self.children
        except GLib.Error:
            return
        yield self
        for child in children:
            yield from child.walk()

    def find(self, role=None, name=None):
        """The first object below this one with that role and name; nothing if there is none."""
        for each in self.walk():
            try:
                if role in (None, each.role) and name in (None, each.name):
                    return each
            except GLib.Error:
                continue
        return None

    def texts(self):
        """The names of everything that shows, in order."""
        names = []
        for each in self.walk():
            try:
                if each.name and each.has("showing"):
                    names.append(each.name)
            except GLib.Error:
                continue
        return names

    def press(self):
        """Does the object's first action: presses a button, ticks a box, follows a link, picks an entry."""
        if not self.has("sensitive"):
            raise AssertionError(f"“{self.name}” cannot be pressed")
        assert self._call(ACTION, "DoAction", "(i)", 0)[0], f"“{self.name}” cannot be pressed"

    def type(self, text):
        """Replaces the text of a field."""
        assert self._call(EDITABLE_TEXT, "SetTextContents", "(s)", text)[0]

    def select(self, index):
        """Selects a child of a list."""
        assert self._call(SELECTION, "SelectChild", "(i)", index)[0]

    def focus(self):
        assert self._call(COMPONENT, "GrabFocus")[0]

    def outline(self, depth=0):
        """The tree below this object, one line each: for people."""
        line = "  " * depth + f"{self.role} “{self.name}”"
        return "\n".join([line, *(child.outline(depth + 1) for child in self.children)])
