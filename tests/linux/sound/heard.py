#!/usr/bin/python3
"""Plays every sound on a private sound server without a sound card, and listens to what comes out of it.

Usage: heard.py HELPER RESOURCES, where HELPER is the program that plays sounds and RESOURCES the folder they are in.
"""

import array
import contextlib
import math
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import unittest

HELPER, RESOURCES = (pathlib.Path(argument).absolute() for argument in sys.argv[1:3])
BELL = pathlib.Path("/usr/share/sounds/freedesktop/stereo/bell.oga")

RATE = 48000
FULL_SCALE = 32768
AUDIBLE = 100
OCTAVES = [62.5 * 2**octave for octave in range(9)]
PATIENCE = 20


def converted(samples_or_file, *filters):
    """Samples, or the sound in a file, as one channel of 16 bits at the common rate, after ffmpeg's filters."""
    raw = ["-f", "s16le", "-ar", str(RATE), "-ac", "1"]
    is_file = isinstance(samples_or_file, pathlib.Path)
    source = ["-i", samples_or_file] if is_file else [*raw, "-i", "-"]
    command = ["ffmpeg", "-v", "error", *source, "-af", ",".join(["anull", *filters]), *raw, "-"]
    result = subprocess.run(command, input=None if is_file else samples_or_file.tobytes(), check=True,
                            stdin=subprocess.DEVNULL if is_file else None, stdout=subprocess.PIPE)
    return array.array("h", result.stdout)


def audible(samples):
    """From the first to the last sample that a person could hear."""
    loud = [index for index, value in enumerate(samples) if abs(value) > AUDIBLE]
    return samples[loud[0] : loud[-1] + 1] if loud else samples[:0]


def level(samples):
    """The power in decibels below full scale."""
    power = sum(value * value for value in samples) / max(len(samples), 1) / FULL_SCALE**2
    return 10 * math.log10(power + 1e-12)


def spectrum(samples):
    """The level in every octave."""
    return [level(converted(samples, f"bandpass=f={centre}:width_type=o:width=1")) for centre in OCTAVES]


class SoundServer:
    """PulseAudio with a loudspeaker that leads nowhere but into our ear."""

    def __init__(self, folder, environment):
        notifications = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        notifications.bind(str(folder / "notify"))
        notifications.settimeout(PATIENCE)
        script = folder / "server.pa"
        # Without rewinds its buffers are short, so that everything is heard when it is played and not seconds later.
        script.write_text("load-module module-null-sink sink_name=loudspeaker rate=48000 channels=2 norewinds=1\n"
                          f"load-module module-native-protocol-unix socket={folder}/server auth-anonymous=1\n")
        self._log = open(folder / "server.log", "w+b")
        self._process = subprocess.Popen(
            ["pulseaudio", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "-n", "-F", script],
            env={**environment, "NOTIFY_SOCKET": str(folder / "notify")}, stdin=subprocess.DEVNULL,
            stdout=self._log, stderr=self._log)
        with notifications:
            while b"READY=1" not in notifications.recv(1000):
                pass

    def end(self):
        self._process.kill()
        self._process.wait()
        self._log.close()


class Ear:
    """Hears everything that comes out of the loudspeaker."""

    def __init__(self, environment):
        self._heard = bytearray()
        self._more = threading.Condition()
        self._process = subprocess.Popen(
            ["parec", "--device=loudspeaker.monitor", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=1",
             "--latency-msec=20"], env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL)
        self._thread = threading.Thread(target=self._listen)
        self._thread.start()
        self.wait(0)

    def _listen(self):
        while chunk := os.read(self._process.stdout.fileno(), 65536):
            with self._more:
                self._heard += chunk
                self._more.notify_all()

    def samples(self):
        with self._more:
            return array.array("h", bytes(self._heard[: len(self._heard) // 2 * 2]))

    def wait(self, seconds):
        """Listens until that much more has come, be it silence."""
        with self._more:
            enough = len(self._heard) + max(int(seconds * RATE) * 2, 1)
            assert self._more.wait_for(lambda: len(self._heard) >= enough, PATIENCE), "nothing to hear"

    def wait_for_sound(self):
        with self._more:
            def sounds():
                recent = array.array("h", bytes(self._heard[: len(self._heard) // 2 * 2]))
                return any(abs(value) > AUDIBLE for value in recent)
            assert self._more.wait_for(sounds, PATIENCE), "nothing to hear"

    def end(self):
        self._process.terminate()
        self._thread.join()
        self._process.stdout.close()
        self._process.wait()


class Heard(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="marvelode-sound-"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "home").mkdir()
        (self.folder / "runtime").mkdir(mode=0o700)
        (self.folder / "alsa.conf").touch()
        self.environment = {
            "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "HOME": str(self.folder / "home"),
            "XDG_RUNTIME_DIR": str(self.folder / "runtime"), "PULSE_SERVER": f"unix:{self.folder}/server",
            "ALSA_CONFIG_PATH": str(self.folder / "alsa.conf")}
        self.environment |= {name: os.environ[name] for name in ("ASAN_OPTIONS", "TSAN_OPTIONS") if name in os.environ}

    def start_server(self):
        server = SoundServer(self.folder, self.environment)
        self.addCleanup(server.end)
        return server

    def start_listening(self):
        ear = Ear(self.environment)
        self.addCleanup(ear.end)
        return ear

    @contextlib.contextmanager
    def helper(self, *arguments):
        with subprocess.Popen([HELPER, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as process:
            try:
                yield process
            finally:
                process.kill()

    def run_helper(self, *arguments):
        """Its status and the last line that it wrote to standard error."""
        with self.helper(*arguments) as process:
            errors = process.communicate(timeout=PATIENCE)[1]
            return process.returncode, (errors.splitlines() or [""])[-1]

    def hear(self, *arguments):
        """What is heard of the helper from its start until after its end."""
        self.start_server()
        ear = self.start_listening()
        self.assertEqual(self.run_helper(*arguments), (0, ""))
        ear.wait(0.2)
        return ear.samples()

    def assert_sounds_like(self, heard, expected):
        heard, expected = audible(heard), audible(expected)
        self.assertGreater(len(expected), 0)
        self.assertAlmostEqual(len(heard) / RATE, len(expected) / RATE, delta=0.05, msg="length in seconds")
        self.assertAlmostEqual(level(heard), level(expected), delta=1, msg="level in decibels")
        for octave, ours, theirs in zip(OCTAVES, spectrum(heard), spectrum(expected)):
            self.assertAlmostEqual(max(ours, -60), max(theirs, -60), delta=2, msg=f"decibels around {octave} Hz")

    def assert_fails(self, arguments, sentence):
        status, last_line = self.run_helper(*arguments)
        self.assertEqual(status, 1)
        self.assertRegex(last_line, f"^{sentence}.*\\.$")

    def test_sonar_is_heard(self):
        self.assert_sounds_like(self.hear("play", RESOURCES / "Sonar.m4a"), converted(RESOURCES / "Sonar.m4a"))

    def test_bowl_is_heard(self):
        self.assert_sounds_like(self.hear("play", RESOURCES / "Bowl.m4a"), converted(RESOURCES / "Bowl.m4a"))

    def test_whistle_is_heard(self):
        self.assert_sounds_like(self.hear("play", RESOURCES / "Whistle.m4a"), converted(RESOURCES / "Whistle.m4a"))

    def test_beep_is_the_bell_of_the_sound_theme(self):
        self.assert_sounds_like(self.hear("beep"), converted(BELL))

    def test_beep_is_a_tone_where_the_theme_has_no_bell(self):
        self.environment |= {"XDG_DATA_DIRS": str(self.folder), "XDG_DATA_HOME": str(self.folder)}
        heard = audible(self.hear("beep"))
        self.assertTrue(0.3 < len(heard) / RATE < 0.5, len(heard) / RATE)
        self.assertGreater(level(heard), -30)
        by_octave = spectrum(heard)
        self.assertEqual(OCTAVES[by_octave.index(max(by_octave))], 1000)

    def test_half_the_volume_is_six_decibels_less(self):
        self.assert_sounds_like(self.hear("play", RESOURCES / "Bowl.m4a", "0.5"),
                                converted(RESOURCES / "Bowl.m4a", "volume=0.5"))

    def test_half_the_volume_of_the_bell_is_six_decibels_less(self):
        self.assert_sounds_like(self.hear("beep", "0.5"), converted(BELL, "volume=0.5"))

    def test_no_volume_is_silence_even_without_a_sound_server(self):
        for arguments in (("play", RESOURCES / "Bowl.m4a", "0"), ("beep", "0.0")):
            self.assertEqual(self.run_helper(*arguments), (0, ""))

    def test_without_a_sound_server_the_sound_card_heeds_the_volume_of_the_beep(self):
        recording = self.record_card()
        self.assertEqual(self.run_helper("beep"), (0, ""))
        full = level(audible(converted(BELL)))
        self.assertAlmostEqual(level(audible(converted(recording))), full, delta=1)
        self.assertEqual(self.run_helper("beep", "0.1"), (0, ""))
        self.assertLess(level(audible(converted(recording))), full - 6)

    def record_card(self):
        """A file in place of the sound card, which takes the sound as fast as it comes."""
        recording = self.folder / "card.wav"
        (self.folder / "alsa.conf").write_text(
            f'pcm.!default {{ type file slave.pcm null file "{recording}" format wav }}\npcm.null {{ type null }}\n')
        return recording

    def test_without_a_sound_server_the_sound_card_plays(self):
        recording = self.record_card()
        self.assertEqual(self.run_helper("play", RESOURCES / "Bowl.m4a"), (0, ""))
        self.assert_sounds_like(converted(recording), converted(RESOURCES / "Bowl.m4a"))

    def test_without_server_and_card_it_says_so_and_ends(self):
        for arguments in (("play", RESOURCES / "Bowl.m4a"), ("beep",)):
            self.assert_fails(arguments, "No sound server or sound card would play it: ")

    def test_sound_server_that_dies_ends_the_sound(self):
        server = self.start_server()
        ear = self.start_listening()
        with self.helper("play", RESOURCES / "Bowl.m4a") as process:
            ear.wait_for_sound()
            server.end()
            errors = process.communicate(timeout=PATIENCE)[1]
            self.assertEqual(process.returncode, 1)
            self.assertIn("No sound server or sound card would play it: ", errors.splitlines()[-1])

    def test_files_that_are_no_sounds_are_refused(self):
        text = self.folder / "text.m4a"
        text.write_text("Not a sound.\n")
        silent = self.folder / "silent.m4a"
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "color=s=16x16:d=0.2", "-c:v", "mpeg4",
                        "-f", "mp4", silent], check=True, stdin=subprocess.DEVNULL)
        self.assert_fails(["play", text], "The file cannot be ")
        self.assert_fails(["play", silent], "The file holds no sound")
        self.assert_fails(["play", self.folder / "missing.m4a"], "The file cannot be opened as a sound")

    def test_wrong_arguments_are_explained(self):
        for arguments in ((), ("play",), ("beep", "twice"), ("beep", "1.1"), ("beep", "-0.5"), ("beep", "nan"), ("sing",),
                          ("play", "Bowl.m4a", "0.5", "more")):
            status, line = self.run_helper(*arguments)
            self.assertEqual(status, 2)
            self.assertIn("Usage: ", line)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
