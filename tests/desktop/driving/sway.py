"""A Wayland compositor whose screen is a window on a virtual desktop, where it is seen and used."""

import contextlib
import os
import signal

from .waiting import wait_until

NOBODY = 65534
GROUND = (0x33, 0x66, 0x99)
SETTINGS = "output * bg #%02x%02x%02x solid_color\ndefault_border none\n" % GROUND


class Sway:
    """Used in a `with` statement; `environment` is what its clients need, `area` where its empty screen is."""

    def __init__(self, desktop):
        self._desktop = desktop

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, *_):
        self.stop()

    def start(self):
        folder = self._desktop.folder / "sway"
        folder.mkdir(exist_ok=True)
        for socket in [*folder.glob("wayland-*"), *folder.glob("sway-ipc.*")]:
            socket.unlink()  # of one that was killed
        settings = folder / "config"
        settings.write_text(SETTINGS)
        as_user = []
        if os.geteuid() == 0:  # sway refuses to run as root
            os.chown(folder, NOBODY, NOBODY)
            os.chmod(self._desktop.folder, 0o711)
            as_user = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
        folder.chmod(0o700)
        self._program = self._desktop.start(
            *as_user, "sway", "--config", str(settings), WLR_BACKENDS="x11", WLR_RENDERER="pixman",
            HOME=str(folder), XDG_RUNTIME_DIR=str(folder), XDG_CONFIG_HOME=None, XDG_CACHE_HOME=None)
        display = wait_until(lambda: next((path for path in folder.glob("wayland-?") if path.is_socket()), None),
                             "sway")
        self.environment = {"WAYLAND_DISPLAY": str(display), "GDK_BACKEND": "wayland",
                            "XDG_SESSION_TYPE": "wayland", "XDG_CURRENT_DESKTOP": "sway"}
        self.area = wait_until(self._screen, "the window of sway")

    def stop(self):
        if self._program.is_running():
            self._program.send(signal.SIGKILL)
            self._program.status()

    @contextlib.contextmanager
    def stopped(self):
        """A time in which it answers nothing."""
        self._program.send(signal.SIGSTOP)
        try:
            yield
        finally:
            self._program.send(signal.SIGCONT)

    def _screen(self):
        screen = self._desktop.screenshot()
        begin = screen.pixels.find(bytes((*GROUND, 255)) * 100)
        if begin < 0:
            return None
        x, y = begin // 4 % screen.width, begin // 4 // screen.width

        def length(pixel, longest):
            return next((at for at in range(100, longest) if pixel(at)[:3] != GROUND), longest)
        return (x, y, length(lambda at: screen.pixel(x + at, y), screen.width - x),
                length(lambda at: screen.pixel(x, y + at), screen.height - y))

    def switch_workspace(self, name):
        """Switches to that workspace."""
        [socket] = (self._desktop.folder / "sway").glob("sway-ipc.*")
        self._desktop.start("swaymsg", "--socket", str(socket), "workspace", name).status()

    def screenshot(self):
        """What is on its screen."""
        return self._desktop.screenshot().crop(*self.area)
