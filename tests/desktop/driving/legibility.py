"""Whether something that a program drew can be read where a panel shows it: found there and with enough contrast."""

import numpy


def colours(picture):
    """The picture's red, green and blue, from 0 to 1, in rows and columns."""
    pixels = numpy.frombuffer(bytes(picture.pixels), numpy.uint8)
    return pixels.reshape(picture.height, picture.width, 4)[..., :3] / 255


def luminance(picture):
    """How bright each pixel is, from 0 to 1, as the eye weighs the colours."""
    linear = colours(picture)
    linear = numpy.where(linear <= 0.04045, linear / 12.92, ((linear + 0.055) / 1.055) ** 2.4)
    return linear @ (0.2126, 0.7152, 0.0722)


def likeness(one, other):
    """How alike two pictures of one size are, whatever their brightness and contrast: 1 for the same, 0 for none."""
    one, other = colours(one), colours(other)
    one, other = one - one.mean(), other - other.mean()
    norm = numpy.sqrt((one ** 2).sum() * (other ** 2).sum())
    return float((one * other).sum() / norm) if norm else 0.0


def find(screen, picture):
    """Where on the screen the place most like the picture is, as x, y and the likeness there."""
    large, small = colours(screen), colours(picture)
    small = small - small.mean()
    height, width, _ = small.shape
    shape = large.shape[:2]

    def sums(values):  # of all places that the picture could be in
        total = numpy.zeros((shape[0] + 1, shape[1] + 1))
        total[1:, 1:] = values.cumsum(0).cumsum(1)
        return total[height:, width:] - total[:-height, width:] - total[height:, :-width] + total[:-height, :-width]

    products = sum(numpy.fft.irfft2(numpy.fft.rfft2(large[..., part]) * numpy.conj(numpy.fft.rfft2(small[..., part], shape)),
                                    shape) for part in range(3))[:shape[0] - height + 1, :shape[1] - width + 1]
    variance = sums((large ** 2).sum(2)) - sums(large.sum(2)) ** 2 / small.size
    likenesses = products / numpy.sqrt(numpy.maximum(variance, 1e-3) * (small ** 2).sum())
    y, x = numpy.unravel_index(likenesses.argmax(), likenesses.shape)
    return int(x), int(y), float(likenesses[y, x])


def contrast(shown, drawn):
    """The ratio of luminances, from 1 to 21, between the brightest and the darkest tenth of what was drawn, where it
    is shown."""
    shown, drawn = luminance(shown).ravel(), luminance(drawn).ravel()
    order = drawn.argsort()
    tenth = max(1, len(order) // 10)
    dark, bright = shown[order[:tenth]].mean(), shown[order[-tenth:]].mean()
    return float((max(dark, bright) + 0.05) / (min(dark, bright) + 0.05))
