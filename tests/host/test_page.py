"""The property page in its frame: on a desktop of its own, with a file in a loop behind it."""

import struct
import zlib

import pytest

import wav

SHORT = wav.wav("pcm24", wav.tones(11025))  # a quarter of a second


def png_size(content):
    """Width and height, when there is something to see."""
    assert content[:8] == b"\x89PNG\r\n\x1a\n" and content[12:16] == b"IHDR"
    pixels, position = b"", 8
    while position < len(content):
        (length,), kind = struct.unpack(">I", content[position : position + 4]), content[position + 4 : position + 8]
        pixels += content[position + 8 : position + 8 + length] if kind == b"IDAT" else b""
        position += length + 12
    assert len(set(zlib.decompress(pixels))) > 20  # one colour, or two, leave only a few values
    return struct.unpack(">II", content[16:24])


# Beyond the file's end: only a loop comes there.
AUTOMATION = b"threshold,0.5,0.6,-30,-30,linear"


@pytest.mark.parametrize(
    "effect, arguments, expected",
    [
        ("dither:depth=8", [], "dither:depth=8"),
        ("gate", ["in.wav", "--automation", "a.csv"], "gate:threshold=-30"),
    ],
)
def test_picture_of_a_page_and_its_settings_at_the_end(host, effect, arguments, expected):
    host.write("in.wav", SHORT)
    host.write("a.csv", AUTOMATION)
    result = host.show("page", f"{effect}:save=shown", *arguments, "--picture", "page.png", "--json")
    assert result.json() == {"effect": effect.split(":")[0], "picture": "page.png"}
    width, height = png_size(host.read("page.png"))
    assert 200 < width < 1280 and 150 < height < 1024
    host.render("in.wav", "out.wav", "--effect", f"{expected}:save=expected")
    assert host.read("shown") == host.read("expected")


def test_pictures_of_what_the_page_opens(host):
    pictures, widths = set(), []
    for opening in ([], ["--open", "about"], ["--open", "menu"]):
        result = host.show("page", "eq", "--picture", "page.png", "--force", *opening)
        assert (result.code, result.out) == (0, "wrote page.png\n")
        pictures.add(host.read("page.png"))
        widths.append(png_size(host.read("page.png"))[0])
    assert len(pictures) == 3
    plain, about, menu = widths
    assert plain == about < menu  # the names of the presets are long


@pytest.mark.parametrize(
    "code, arguments, sentence",
    [
        (1, ["page"], "an effect"),
        (1, ["page", "gate", "in.wav", "out.wav"], "one input"),
        (1, ["page", "reverb"], '"reverb"'),
        (1, ["page", "gate:threshold=1"], "-80 to 0 dB"),
        (1, ["page", "gate", "--bits", "16"], "belongs to render"),
        (1, ["list", "--picture", "page.png"], "belongs to page"),
        (1, ["page", "gate", "--picture", "page.png", "--open", "help"], "about or menu"),
        (1, ["page", "gate", "--open", "menu"], "--picture"),
        (1, ["page", "gate", "in.wav", "--picture", "in.wav", "--force"], "an input as well"),
        (1, ["page", "gate:save=page.png", "--picture", "page.png"], "twice"),
        (2, ["page", "gate", "--picture", "in.wav"], "--force"),
        (2, ["page", "gate", "absent.wav"], '"absent.wav"'),
        (2, ["page", "gate", "empty.wav"], '"empty.wav" holds no audio'),
        (2, ["page", "gate", "in.wav", "--picture", "page.png"], "display"),
    ],
)
def test_pages_that_cannot_be_shown(host, code, arguments, sentence):
    host.write("in.wav", SHORT)
    host.write("empty.wav", wav.wav("pcm16", []))
    assert sentence in host.refuse(code, *arguments)
    assert host.names() == ["empty.wav", "in.wav"]
