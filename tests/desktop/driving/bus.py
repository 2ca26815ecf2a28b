"""A client of a message bus that asks and waits for the answer."""

from gi.repository import Gio, GLib


class Bus:
    """A connection of its own to the bus at `address`."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self._connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def call(self, name, path, interface, method, signature="()", *arguments, seconds=10):
        """The method's results as a tuple of plain Python values; raises GLib.Error."""
        result = self._connection.call_sync(name, path, interface, method, GLib.Variant(signature, arguments),
                                            None, Gio.DBusCallFlags.NONE, int(seconds * 1000), None)
        return result.unpack()

    def call_at_once(self, name, path, interface, *methods):
        """Calls methods without arguments one behind the other, before any of them is answered; the errors in order,
        None for success."""
        errors, loop = {}, GLib.MainLoop()

        def answered(connection, result, index):
            try:
                connection.call_finish(result)
                errors[index] = None
            except GLib.Error as error:
                errors[index] = error
            if len(errors) == len(methods):
                loop.quit()
        for index, method in enumerate(methods):
            self._connection.call(name, path, interface, method, None, None, Gio.DBusCallFlags.NONE, 10_000, None,
                                  answered, index)
        loop.run()
        return [errors[index] for index in range(len(methods))]

    def get(self, name, path, interface, property_name):
        """The value of a property."""
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", "(ss)", interface, property_name)[0]

    def get_all(self, name, path, interface):
        """All properties of an interface, by name."""
        return self.call(name, path, "org.freedesktop.DBus.Properties", "GetAll", "(s)", interface)[0]

    def has_owner(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         "(s)", name)[0]

    def process_of(self, name):
        """The pid of the process that owns `name`."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", "(s)", name)[0]

    def hear(self, interface, signal, handler):
        """Calls `handler` with sender, path and arguments of that signal of any program, while events are handled;
        returns what makes it stop."""
        def heard(_connection, sender, path, _interface, _signal, arguments):
            handler(sender, path, *arguments.unpack())
        number = self._connection.signal_subscribe(None, interface, signal, None, None, Gio.DBusSignalFlags.NONE, heard)
        return lambda: self._connection.signal_unsubscribe(number)

    def close(self):
        try:
            self._connection.close_sync(None)
        except GLib.Error:
            pass
