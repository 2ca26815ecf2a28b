"""A stand-in for the part of a desktop that shows notifications: what is on screen there, and clicks on it."""

from gi.repository import GLib

from .waiting import wait_until

NAME = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
MOCK = "org.freedesktop.DBus.Mock"


class Message:
    def __init__(self, number, arguments):
        self.number = number
        self.program, _, self.icon, self.summary, self.body, actions, self.hints, _ = arguments
        self.actions = dict(zip(actions[::2], actions[1::2]))


class NotificationArea:
    def __init__(self, desktop):
        self._bus = desktop.bus
        desktop.start("/usr/bin/python3", "-m", "dbusmock", "--session", "--template", "notification_daemon")
        wait_until(lambda: self._bus.has_owner(NAME), "the notification area")

    def _calls(self, method):
        return [arguments for _, arguments in
                self._bus.call(NAME, PATH, MOCK, "GetMethodCalls", "(s)", method)[0]]

    def messages(self):
        """What is on screen, the oldest first."""
        shown, last = {}, 0
        for arguments in self._calls("Notify"):
            last += not arguments[1]
            number = arguments[1] or last
            shown[number] = Message(number, arguments)
        for [number] in self._calls("CloseNotification"):
            shown.pop(number, None)
        return list(shown.values())

    def await_message(self, seconds=10):
        return wait_until(self.messages, "a notification", seconds)[0]

    def choose(self, message, action):
        """Clicks on one of the message's actions; “default” is the message itself."""
        assert action in message.actions, f"“{action}” is none of {message.actions}"
        self._emit("ActionInvoked", message, action)

    def hand_out(self, message, token):
        """Sends the program an activation token, as notification services do before an action."""
        self._emit("ActivationToken", message, token)

    def _emit(self, signal, message, text):
        self._bus.call(NAME, PATH, MOCK, "EmitSignal", "(sssav)", NAME, signal, "us",
                       [GLib.Variant("u", message.number), GLib.Variant("s", text)])
