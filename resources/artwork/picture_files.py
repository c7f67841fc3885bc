"""Canvases as the files that resource compilers read."""
from struct import pack

INFO_HEADER_BYTES = 40


def _info_header(width, height, bits_per_pixel):
    return pack("<IiiHHIIiiII", INFO_HEADER_BYTES, width, height, 1, bits_per_pixel, 0, 0, 0, 0, 0, 0)


def _bytes_of(colour):
    red, green, blue = (round(value) for value in colour)
    return bytes((blue, green, red))


def bitmap(canvas):
    """24 bits a pixel, rows from the bottom up; the canvas has to be opaque."""
    padding = bytes(-3 * canvas.width % 4)
    pixels = b"".join(b"".join(_bytes_of(colour) for colour, _ in row) + padding for row in reversed(canvas.rows))
    header = _info_header(canvas.width, canvas.height, 24)
    pixels_at = 14 + len(header)
    return pack("<2sIHHI", b"BM", pixels_at + len(pixels), 0, 0, pixels_at) + header + pixels


def cursor(canvas, hot_spot):
    """32 bits with opacity, and the mask of whole pixels for systems without it. The width is a multiple of 32."""
    pixels, mask = b"", b""
    for row in reversed(canvas.rows):
        pixels += b"".join(_bytes_of(colour) + bytes([round(255 * opacity)]) for colour, opacity in row)
        bits = "".join("1" if opacity < 0.5 else "0" for _, opacity in row)
        mask += int(bits, 2).to_bytes(len(bits) // 8, "big")
    image = _info_header(canvas.width, 2 * canvas.height, 32) + pixels + mask  # counts the rows of the mask, too
    directory = pack("<HHH", 0, 2, 1)
    entry = pack("<BBBBHHII", canvas.width, canvas.height, 0, 0, *hot_spot, len(image), 6 + 16)
    return directory + entry + image
