#!/usr/bin/python3
"""Holds the pictures and sounds that are shipped to what they promise, and to the sources they are made from.

Needs ffmpeg and rsvg-convert. Usage: resources_test.py, with the options of Python's unittest.
"""

import array
import functools
import json
import math
import pathlib
import struct
import subprocess
import tempfile
import unittest

RESOURCES = pathlib.Path(__file__).resolve().parents[3] / "resources"
SOURCE = RESOURCES / "source"
ICONS = RESOURCES / "icons" / "hicolor"
ICONSET = RESOURCES / "Marvelode.iconset"

MARKS = ("Marvelode", "MarvelodeGrey")
LIGHT_PANEL, DARK_PANEL = (244, 244, 245), (34, 34, 38)

RATE = 48000
SOUNDS = sorted(file.stem for file in RESOURCES.glob("*.m4a"))


def output(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True).stdout


def ffmpeg(file, *options):
    return output("ffmpeg", "-nostdin", "-loglevel", "error", "-i", file, *options, "-")


def squares():
    """Every square picture with the size it must have."""
    for name in MARKS:
        for size in (16, 22, 24, 32, 44, 48):
            yield RESOURCES / "status" / f"{name}-{size}.png", size
    for size in (16, 22, 24, 32, 48, 64, 128, 256, 512):
        yield ICONS / f"{size}x{size}" / "apps" / "org.marvelode.Timer.png", size
    for size in (16, 32, 128, 256, 512):
        yield ICONSET / f"icon_{size}x{size}.png", size
        yield ICONSET / f"icon_{size}x{size}@2x.png", 2 * size


def marks():
    """Every picture of the bare mark, which is all of it that a menu bar or panel shows."""
    for name in MARKS:
        yield RESOURCES / f"{name}.png"
        yield from sorted((RESOURCES / "status").glob(f"{name}-*.png"))


def size_of(picture):
    return struct.unpack(">II", picture.read_bytes()[16:24])


@functools.cache
def pixels(picture):
    """The picture's pixels, row by row, as (red, green, blue, opacity)."""
    data = ffmpeg(picture, "-f", "rawvideo", "-pix_fmt", "rgba")
    return list(zip(*(data[channel::4] for channel in range(4))))


def opaque(picture):
    return [pixel[:3] for pixel in pixels(picture) if pixel[3] == 255]


@functools.cache
def luminance(colour):
    linear = [value / 3294.6 if value <= 10 else ((value / 255 + 0.055) / 1.055) ** 2.4 for value in colour]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    darker, lighter = sorted((luminance(one), luminance(other)))
    return (lighter + 0.05) / (darker + 0.05)


def mean(values):
    values = list(values)
    return sum(values) / len(values)


class Pictures(unittest.TestCase):
    def test_marks_have_the_proportions_of_the_status_item_and_pixels_for_twice_the_largest_use(self):
        for name in MARKS:
            width, height = size_of(RESOURCES / f"{name}.png")
            self.assertEqual(width * 26, height * 16, name)
            self.assertGreaterEqual(height, 512, name)

    def test_squares_have_the_size_in_their_name(self):
        for picture, size in squares():
            self.assertEqual(size_of(picture), (size, size), picture)

    def test_backgrounds_are_transparent(self):
        for picture in (*(RESOURCES / f"{name}.png" for name in MARKS), *(picture for picture, _ in squares())):
            width, height = size_of(picture)
            grid = pixels(picture)
            self.assertEqual(len(grid), width * height, picture)
            corners = [grid[position][3] for position in (0, width - 1, width * (height - 1), width * height - 1)]
            self.assertEqual(corners, [0, 0, 0, 0], picture)
            self.assertIn(255, [pixel[3] for pixel in grid], picture)

    def test_the_gap_between_the_panes_stays_open(self):
        for picture in marks():
            width, height = size_of(picture)
            grid = pixels(picture)
            for row in range(height):
                gap = grid[row * width + width // 2 - 1 : row * width + width // 2 + 1]
                self.assertEqual([pixel[3] for pixel in gap], [0, 0], f"{picture}, row {row}")

    def test_marks_stand_out_from_light_and_from_dark_panels(self):
        for picture in marks():
            for panel in (LIGHT_PANEL, DARK_PANEL):
                seen = [contrast(colour, panel) for colour in opaque(picture)]
                self.assertGreater(mean(seen), 2.5, f"{picture} on {panel}")
                self.assertGreater(mean(value > 1.5 for value in seen), 0.8, f"{picture} on {panel}")

    def test_only_the_picture_of_a_running_timer_is_coloured(self):
        for picture in marks():
            colourfulness = mean(max(colour) - min(colour) for colour in opaque(picture))
            if picture.stem.startswith("MarvelodeGrey"):
                self.assertLess(colourfulness, 10, picture)
            else:
                self.assertGreater(colourfulness, 60, picture)

    def test_the_two_marks_differ_in_drawing_too(self):
        def sun(picture):
            width, height = size_of(picture)
            rows = [
                position // width
                for position, pixel in enumerate(pixels(picture))
                if pixel[3] == 255 and luminance(pixel[:3]) > 0.75
            ]
            self.assertTrue(rows, f"no sun in {picture}")
            return mean(rows) / height

        for running, due in zip(list(marks())[:7], list(marks())[7:]):
            self.assertGreater(sun(due) - sun(running), 0.15, running)

    def test_pictures_are_what_their_drawings_render_to(self):
        with tempfile.TemporaryDirectory() as folder:
            fresh = pathlib.Path(folder)
            output(SOURCE / "render", fresh)
            rendered = sorted(file.relative_to(fresh) for file in fresh.rglob("*.png"))
            kept = sorted(file.relative_to(RESOURCES) for file in RESOURCES.rglob("*.png"))
            self.assertEqual(kept, rendered)
            for name in rendered:
                self.assertEqual(size_of(RESOURCES / name), size_of(fresh / name), name)
                # Another release of the renderer may round an edge differently; it may not draw another picture.
                if (RESOURCES / name).read_bytes() == (fresh / name).read_bytes():
                    continue
                bytes_of = lambda file: ffmpeg(file, "-f", "rawvideo", "-pix_fmt", "rgba")
                differences = [abs(one - other) for one, other in zip(bytes_of(RESOURCES / name), bytes_of(fresh / name))]
                self.assertLess(mean(differences), 0.5, name)
                self.assertLess(mean(difference > 24 for difference in differences), 0.01, name)

    def test_the_scalable_icons_are_the_drawings(self):
        for icon, drawing in (("scalable/apps/org.marvelode.Timer.svg", "application.svg"),
                              ("symbolic/apps/org.marvelode.Timer-symbolic.svg", "symbolic.svg")):
            self.assertEqual((ICONS / icon).read_bytes(), (SOURCE / drawing).read_bytes())

    def test_the_symbolic_icon_is_of_one_colour_with_an_open_gap(self):
        with tempfile.TemporaryDirectory() as folder:
            picture = pathlib.Path(folder) / "symbolic.png"
            output("rsvg-convert", "--width", "16", "--height", "16", SOURCE / "symbolic.svg", "--output", picture)
            grid = pixels(picture)
        self.assertEqual({pixel[:3] for pixel in grid if pixel[3] == 255}, {(0x2E, 0x34, 0x36)})
        self.assertEqual({grid[row * 16 + column][3] for row in range(16) for column in (7, 8)}, {0})

    def test_the_macos_icon_holds_the_images_of_the_iconset(self):
        content = (RESOURCES / "Marvelode.icns").read_bytes()
        self.assertEqual(content[:8], b"icns" + struct.pack(">I", len(content)))
        held, position = {}, 8
        while position < len(content):
            kind, length = struct.unpack(">4sI", content[position : position + 8])
            held[kind.decode()] = content[position + 8 : position + length]
            position += length
        images = {
            "ic11": "16x16@2x", "ic12": "32x32@2x", "ic07": "128x128", "ic13": "128x128@2x",
            "ic08": "256x256", "ic14": "256x256@2x", "ic09": "512x512", "ic10": "512x512@2x",
        }
        self.assertEqual(held.keys(), images.keys())
        for kind, image in images.items():
            self.assertEqual(held[kind], (ICONSET / f"icon_{image}.png").read_bytes(), kind)


def decibels(level):
    return 20 * math.log10(max(level, 1e-9))


def level(samples):
    """The root mean square of the samples, in decibels below full scale."""
    return decibels(math.sqrt(mean(value * value for value in samples)))


def crossings(samples):
    """How often a second the samples rise through zero: the pitch of a pure tone."""
    return sum(1 for one, next_one in zip(samples, samples[1:]) if one < 0 <= next_one) * RATE / len(samples)


class Sounds(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.samples = {name: cls.decode(RESOURCES / f"{name}.m4a") for name in SOUNDS}
        cls.seconds = {name: round(len(samples) / 2 / RATE, 1) for name, samples in cls.samples.items()}

    @staticmethod
    def decode(file):
        """Both channels of a file, interleaved."""
        return array.array("f", ffmpeg(file, "-f", "f32le", "-ar", RATE, "-ac", 2))

    def part(self, name, start, end):
        """The left channel between two times in seconds."""
        return self.samples[name][2 * round(start * RATE) : 2 * round(end * RATE) : 2]

    def test_they_are_aac_in_an_mp4_container(self):
        for name in SOUNDS:
            report = json.loads(
                output("ffprobe", "-loglevel", "error", "-show_format", "-show_streams", "-of", "json", RESOURCES / f"{name}.m4a")
            )
            self.assertIn("m4a", report["format"]["format_name"].split(","), name)
            self.assertEqual(report["format"]["tags"]["major_brand"].strip(), "M4A", name)
            self.assertEqual([stream["codec_name"] for stream in report["streams"]], ["aac"], name)

    def test_they_last_from_one_to_three_seconds(self):
        for name, seconds in self.seconds.items():
            self.assertTrue(1 <= seconds <= 3, name)

    def measured(self, name):
        """Integrated loudness in LUFS and true peak in decibels below full scale, by EBU R 128."""
        report = subprocess.run(
            ["ffmpeg", "-nostdin", "-hide_banner", "-i", RESOURCES / f"{name}.m4a", "-af", "loudnorm=print_format=json", "-f", "null", "-"],
            check=True, capture_output=True, text=True,
        ).stderr
        values = json.loads(report[report.rindex("{") : report.rindex("}") + 1])
        return float(values["input_i"]), float(values["input_tp"])

    def test_they_are_equally_loud(self):
        loudness = {name: self.measured(name)[0] for name in SOUNDS}
        self.assertLessEqual(max(loudness.values()) - min(loudness.values()), 2, loudness)

    def test_they_peak_near_six_decibels_below_full_scale(self):
        for name in SOUNDS:
            self.assertAlmostEqual(self.measured(name)[1], -6, delta=1.2, msg=name)

    def test_they_do_not_clip(self):
        for name, samples in self.samples.items():
            peak = max(map(abs, samples))
            flat = sum(1 for one, next_one in zip(samples[0::2], samples[2::2]) if abs(one) > 0.98 * peak and one == next_one)
            self.assertLess(peak, 0.9, name)
            self.assertEqual(flat, 0, name)

    def test_they_start_softly(self):
        for name, samples in self.samples.items():
            self.assertLess(max(map(abs, self.part(name, 0, 0.001))), 0.1 * max(map(abs, samples)), name)

    def test_they_end_in_silence_without_a_click(self):
        for name, seconds in self.seconds.items():
            self.assertLess(decibels(max(map(abs, self.part(name, seconds - 0.04, seconds + 1)))), -80, name)
            ending = self.part(name, seconds * 0.85, seconds)
            steepest = max(abs(one - next_one) for one, next_one in zip(ending, ending[1:]))
            self.assertLess(decibels(steepest), -45, name)

    def test_they_decay(self):
        for name, seconds in self.seconds.items():
            start, middle = level(self.part(name, 0, seconds / 2)), level(self.part(name, seconds / 2, seconds))
            self.assertGreater(start - middle, 3, name)

    def test_the_sonar_is_one_pitch_whose_echo_returns(self):
        self.assertAlmostEqual(crossings(self.part("Sonar", 0.2, 0.6)), 932, delta=10)
        self.assertAlmostEqual(crossings(self.part("Sonar", 1.0, 1.3)), 932, delta=10)
        before, echo = level(self.part("Sonar", 0.75, 0.83)), level(self.part("Sonar", 0.88, 0.96))
        self.assertGreater(echo - before, 3)

    def test_the_bowl_swells_and_fades_by_beating(self):
        first, fading, swelling = (level(self.part("Bowl", at, at + 0.1)) for at in (0.75, 1.35, 1.7))
        self.assertGreater(first - fading, 4)
        self.assertGreater(swelling - fading, 2)

    def test_the_whistle_is_two_notes_a_fourth_apart(self):
        low, high = crossings(self.part("Whistle", 0.06, 0.16)), crossings(self.part("Whistle", 0.28, 0.45))
        self.assertAlmostEqual(low, 880, delta=20)
        self.assertAlmostEqual(12 * math.log2(high / low), 5, delta=0.4)

    def test_they_are_what_their_source_synthesises(self):
        with tempfile.TemporaryDirectory() as folder:
            fresh = pathlib.Path(folder)
            output(SOURCE / "synthesise", fresh)
            self.assertEqual(sorted(file.name for file in fresh.iterdir()), sorted(file.name for file in RESOURCES.glob("*.m4a")))
            for name in SOUNDS:
                again = self.decode(fresh / f"{name}.m4a")
                self.assertEqual(len(again), len(self.samples[name]), name)
                # Another release of the encoder may hide its noise elsewhere; it may not make it heard.
                difference = [one - other for one, other in zip(self.samples[name], again)]
                self.assertLess(level(difference) - level(again), -30, name)


if __name__ == "__main__":
    unittest.main()
