"""A status item and its menu, seen and used as a panel does."""

from gi.repository import GLib

from .picture import Picture
from .waiting import wait_until

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


class Entry:
    """An entry of the menu as it was when it was asked for."""

    def __init__(self, number, properties):
        self.number = number
        self.label = properties.get("label", "")
        self.is_separator = properties.get("type") == "separator"
        self.is_enabled = properties.get("enabled", True)
        self.is_checked = properties.get("toggle-state", 0) == 1
        self.shortcut = properties.get("shortcut", [])


class StatusItem:
    """The item that stands in the tray."""

    def __init__(self, bus, name, path):
        self._bus, self._name, self._path = bus, name, path

    @classmethod
    def all(cls, bus):
        """The items that are registered with the panel."""
        addresses = bus.get(WATCHER, "/StatusNotifierWatcher", WATCHER, "RegisteredStatusNotifierItems")
        return [cls(bus, name, "/" + path) for name, path in (each.split("/", 1) for each in addresses)]

    @property
    def properties(self):
        return self._bus.get_all(self._name, self._path, ITEM)

    @property
    def process(self):
        return self._bus.process_of(self._name)

    @property
    def description(self):
        """What assistive software says of the item now."""
        return self.properties.get("IconAccessibleDesc", "")

    def pictures(self):
        """The pictures that the item offers, by size; those of its icon now."""
        return {(width, height): Picture.of_status_item(width, height, bytes(pixels))
                for width, height, pixels in self.properties.get("IconPixmap", [])}

    def _menu(self, method, signature, *arguments):
        return self._bus.call(self._name, self.properties["Menu"], MENU, method, signature, *arguments)

    def entries(self):
        """The entries of the menu, separators included."""
        _, (_, _, children) = self._menu("GetLayout", "(iias)", 0, -1, [])
        return [Entry(number, properties) for number, properties, _ in children]

    def entry(self, label):
        found = [each for each in self.entries() if each.label.replace("_", "") == label]
        assert found, f"the menu has no entry “{label}” but {[each.label for each in self.entries()]}"
        return found[0]

    def pick(self, label):
        """Picks an entry as a panel does when the user clicks it; waits until it is enabled."""
        wait_until(lambda: self.entry(label).is_enabled, f"the entry “{label}” to be enabled")
        entry = self.entry(label)
        self._menu("Event", "(isvu)", entry.number, "clicked", GLib.Variant("s", ""), 0)

    def provide_activation_token(self, token):
        """Hands over an activation token, as a panel does before a pick."""
        self._bus.call(self._name, self._path, ITEM, "ProvideXdgActivationToken", "(s)", token)
