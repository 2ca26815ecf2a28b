"""What is on a screen, as pixels that a test can ask about and a person can look at."""

import struct
import zlib

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf, GLib  # noqa: E402 (the version has to be named first)


class Picture:
    """A rectangle of red, green, blue and alpha bytes, row by row from the top."""

    def __init__(self, width, height, pixels):
        assert len(pixels) == width * height * 4
        self.width, self.height, self.pixels = width, height, pixels

    @classmethod
    def of_frame_buffer(cls, path):
        """The screen of an Xvfb that was started with `-fbdir`: an X window dump, 32 bits a pixel."""
        with open(path, "rb") as file:
            dump = file.read()
        header = struct.unpack(">25I", dump[:100])
        header_size, width, height, bytes_per_line, colours = header[0], header[4], header[5], header[12], header[19]
        begin = header_size + colours * 12
        rows = (dump[begin + y * bytes_per_line:][:width * 4] for y in range(height))
        pixels = bytearray(b"".join(rows))
        pixels[0::4], pixels[2::4] = pixels[2::4], pixels[0::4]
        pixels[3::4] = b"\xff" * (width * height)
        return cls(width, height, bytes(pixels))

    @classmethod
    def of_file(cls, path):
        """A picture file of any usual kind."""
        pixbuf = GdkPixbuf.Pixbuf.new_from_file(str(path)).add_alpha(False, 0, 0, 0)
        return cls._of_pixbuf(pixbuf)

    @classmethod
    def _of_pixbuf(cls, pixbuf):
        width, height, stride, pixels = (pixbuf.get_width(), pixbuf.get_height(), pixbuf.get_rowstride(),
                                         pixbuf.get_pixels())
        return cls(width, height, b"".join(pixels[y * stride:][:width * 4] for y in range(height)))

    @classmethod
    def of_status_item(cls, width, height, argb):
        """A picture as status items hand it over: alpha first."""
        pixels = bytearray(len(argb))
        pixels[0::4], pixels[1::4], pixels[2::4], pixels[3::4] = argb[1::4], argb[2::4], argb[3::4], argb[0::4]
        return cls(width, height, bytes(pixels))

    def pixel(self, x, y):
        return tuple(self.pixels[(y * self.width + x) * 4:][:4])

    def crop(self, x, y, width, height):
        x, y = max(0, x), max(0, y)
        width, height = min(width, self.width - x), min(height, self.height - y)
        rows = (self.pixels[((y + row) * self.width + x) * 4:][:width * 4] for row in range(height))
        return Picture(width, height, b"".join(rows))

    def enlarged(self, factor):
        """Every pixel as a square of that many pixels a side."""
        rows = []
        for y in range(self.height):
            row = self.pixels[y * self.width * 4:][:self.width * 4]
            wide = b"".join(row[x:x + 4] * factor for x in range(0, len(row), 4))
            rows += [wide] * factor
        return Picture(self.width * factor, self.height * factor, b"".join(rows))

    def beside(self, other):
        """Both, this one on the left; they are of one height."""
        rows = (each.pixels[y * each.width * 4:][:each.width * 4] for y in range(self.height)
                for each in (self, other))
        return Picture(self.width + other.width, self.height, b"".join(rows))

    def count(self, matches):
        """How many pixels `matches(red, green, blue, alpha)` holds for."""
        return sum(1 for at in range(0, len(self.pixels), 4) if matches(*self.pixels[at:at + 4]))

    def difference(self, other):
        """Left, top, right and bottom of the smallest rectangle outside which both are alike; nothing if they are."""
        rows, columns = [], []
        mine, theirs = memoryview(self.pixels).cast("I"), memoryview(other.pixels).cast("I")
        for y in range(self.height):
            row, other_row = (each[y * self.width:(y + 1) * self.width] for each in (mine, theirs))
            if row != other_row:
                different = [x for x, (a, b) in enumerate(zip(row, other_row)) if a != b]
                rows.append(y)
                columns += [different[0], different[-1]]
        return (min(columns), rows[0], max(columns) + 1, rows[-1] + 1) if rows else None

    def scaled(self, width, height):
        """The picture in another size, smoothed as panels smooth it."""
        pixbuf = GdkPixbuf.Pixbuf.new_from_bytes(GLib.Bytes(self.pixels), GdkPixbuf.Colorspace.RGB, True, 8,
                                                 self.width, self.height, self.width * 4)
        return self._of_pixbuf(pixbuf.scale_simple(width, height, GdkPixbuf.InterpType.BILINEAR))

    def on(self, background):
        """The picture as it looks on a ground of one colour."""
        pixels = bytearray(self.pixels)
        for at in range(0, len(pixels), 4):
            alpha = pixels[at + 3]
            for part in range(3):
                pixels[at + part] = (pixels[at + part] * alpha + background[part] * (255 - alpha)) // 255
            pixels[at + 3] = 255
        return Picture(self.width, self.height, bytes(pixels))

    def find(self, other, tolerance=12):
        """Where `other`, which must be opaque, is drawn in this picture; nothing if nowhere."""
        def is_at(left, top):
            for y in range(other.height):
                mine = ((top + y) * self.width + left) * 4
                theirs = y * other.width * 4
                length = other.width * 4
                if any(abs(a - b) > tolerance for a, b in zip(self.pixels[mine:mine + length],
                                                              other.pixels[theirs:theirs + length])):
                    return False
            return True

        for top in range(self.height - other.height + 1):
            for left in range(self.width - other.width + 1):
                if is_at(left, top):
                    return left, top
        return None

    def save(self, path):
        """Writes a PNG file."""
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        stride = self.width * 4
        rows = b"".join(b"\0" + self.pixels[y * stride:(y + 1) * stride] for y in range(self.height))
        with open(path, "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n"
                       + chunk(b"IHDR", struct.pack(">IIBBBBB", self.width, self.height, 8, 6, 0, 0, 0))
                       + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))
