"""What goes in and what comes out, format by format, through the graph and directly."""

import math
import struct

import pytest

import wav

PATHS = pytest.mark.parametrize("path", ["graph", "direct"])
BYPASS = ("--effect", "compressor:bypass=on")  # leaves every sample as it is, in every format


@pytest.mark.parametrize("make_fmt, channels", [(wav.fmt, 1), (wav.fmt, 2), (wav.extensible_fmt, 2)])
@pytest.mark.parametrize("name", ["pcm8", "pcm16", "pcm32", "float32", "float64"])
def test_formats_of_the_effects_pass_unchanged_into_plain_files(host, name, make_fmt, channels):
    data = wav.pack(name, wav.tones(10001, channels))
    host.write("in.wav", wav.riff(make_fmt(name, channels, 48000), wav.chunk(b"data", data)))
    host.render("in.wav", "out.wav", *BYPASS)
    out = wav.parse(host.read("out.wav"))
    tag, bits, _ = wav.FORMATS[name]
    assert (out.tag, out.channels, out.rate, out.bits) == (tag, channels, 48000, bits)
    assert out.data == data
    if name.startswith("float"):
        assert out.chunks == [b"fmt ", b"fact", b"data"]
        assert out.fact == struct.pack("<I", 10001)
    else:
        assert out.chunks == [b"fmt ", b"data"]


@pytest.mark.parametrize("make_fmt", [wav.fmt, wav.extensible_fmt])
def test_24_bits_become_the_upper_bits_of_32(host, make_fmt):
    samples = [0.0, -1.0, 0.999999, 0.5, -2.0**-23, 2.0**-23] * 2000
    host.write("in.wav", wav.riff(make_fmt("pcm24"), wav.chunk(b"data", wav.pack("pcm24", samples))))
    host.render("in.wav", "out.wav", *BYPASS)
    out = wav.parse(host.read("out.wav"))
    assert (out.tag, out.bits) == (wav.PCM, 32)
    packed = wav.pack("pcm24", samples)
    assert out.data == b"".join(b"\0" + packed[i : i + 3] for i in range(0, len(packed), 3))


@pytest.mark.parametrize("name", ["pcm8", "pcm16", "pcm24", "pcm32", "float32", "float64"])
def test_direct_path_writes_32_bit_float_of_the_same_full_scale(host, name):
    samples = [0.0, -1.0, 0.5, -0.25] * 3000
    host.write("in.wav", wav.wav(name, samples))
    host.render("in.wav", "out.wav", "--path", "direct", *BYPASS)
    out = wav.parse(host.read("out.wav"))
    assert (out.tag, out.bits) == (wav.FLOAT, 32)
    assert out.data == wav.pack("float32", samples)


@PATHS
@pytest.mark.parametrize("bits", [8, 16, 24, 32])
def test_a_word_length_is_rounded_to_and_limits_at_full_scale(host, bits, path):
    step = 2.0 ** (1 - bits)
    near_zero = [steps * step for steps in (0.5, 1.5, -0.5, -2.5, 0.49, -0.51, 3, -7)]
    samples = [*near_zero, 1 - step, 1.0, -1.0, 1.5, -1.5, math.inf, -math.inf, 0.25, *wav.tones(500)]
    samples = struct.unpack(f"<{len(samples)}f", wav.pack("float32", samples))  # what the file can hold
    host.write("in.wav", wav.wav("float32", [*samples, math.nan, math.nan]))
    report = host.render("in.wav", "out.wav", "--path", path, "--bits", bits, "--json").json()["files"][0]
    out = wav.parse(host.read("out.wav"))
    assert (out.tag, out.bits) == (wav.PCM, bits)
    assert out.data == wav.pack(f"pcm{bits}", [*samples, 0, 0])
    assert (report["output_format"]["bits"], report["output_levels"]["peak_dbfs"]) == (bits, 0)
    finite = [sample for sample in samples if math.isfinite(sample)]
    rms = math.sqrt(math.fsum(sample * sample for sample in finite) / (len(samples) + 2))
    expected = {"peak_dbfs": 20 * math.log10(1.5), "rms_dbfs": 20 * math.log10(rms)}
    assert report["input_levels"] == pytest.approx(expected)


GRAPH_HOLDS = [("graph", "pcm8", 8), ("graph", "pcm16", 24), ("graph", "pcm32", 32)]  # more than 32-bit float does
DIRECT_HOLDS = [("direct", "pcm16", 16), ("direct", "pcm24", 24)]


@pytest.mark.parametrize("path, name, bits", GRAPH_HOLDS + DIRECT_HOLDS)
def test_a_word_length_that_holds_the_file_changes_nothing(host, path, name, bits):
    file = wav.wav(name, [-1.0, 0.5, 2.0**-7, -(2.0**-7), *wav.tones(500)])
    host.write("in.wav", file)
    host.render("in.wav", "out.wav", "--path", path, "--bits", bits, *BYPASS)
    out = wav.parse(host.read("out.wav"))
    assert (out.tag, out.bits, out.samples()) == (wav.PCM, bits, wav.parse(file).samples())


@PATHS
def test_with_a_word_length_samples_are_cut_only_at_the_end(host, path):
    data = wav.pack("pcm16", wav.tones(5000))
    host.write("in.wav", wav.riff(wav.fmt("pcm16"), wav.chunk(b"data", data)))
    down_and_up = [f"compressor:auto-gain=off:threshold=-10:output gain={gain_db}" for gain_db in (-20, 20)]
    chain = [word for effect in down_and_up for word in ("--effect", effect)]
    host.render("in.wav", "out.wav", "--path", path, "--bits=16", *chain)
    assert wav.parse(host.read("out.wav")).data == data


DATA = wav.pack("float32", wav.tones(700))
LIST = wav.chunk(b"LIST", b"INFOodd")
UNUSUAL_FILES = {
    "an odd chunk before the data": wav.riff(wav.fmt(), LIST, wav.chunk(b"data", DATA)),
    "an odd chunk after the data": wav.riff(wav.fmt(), wav.chunk(b"data", DATA), LIST),
    "data before the format": wav.riff(wav.chunk(b"data", DATA), wav.fmt()),
    "frame size 0 in the header": wav.riff(wav.fmt(align=0), wav.chunk(b"data", DATA)),
    "part of a frame at the end": wav.riff(wav.fmt(), wav.chunk(b"data", DATA + b"\1\2\3\4\5")),
    "written into a pipe": wav.riff(wav.fmt(), wav.chunk(b"data", DATA, 0xFFFFFFFF), size=0xFFFFFFFF),
    "recording broken off": wav.riff(wav.fmt(), wav.chunk(b"data", DATA, 0), size=0),
    "recording broken off after the header": wav.riff(wav.fmt(), wav.chunk(b"data", DATA, 0), size=36),
    "bytes behind the end": wav.riff(wav.fmt(), wav.chunk(b"data", DATA)) + b"more",
}


@pytest.mark.parametrize("content", UNUSUAL_FILES.values(), ids=UNUSUAL_FILES.keys())
def test_unusual_but_readable_files(host, content):
    host.write("in.wav", content)
    host.render("in.wav", "out.wav", *BYPASS)
    assert wav.parse(host.read("out.wav")).data == DATA


@PATHS
def test_a_file_without_audio_gives_one_without_audio(host, path):
    host.write("in.wav", wav.wav("float32", []))
    report = host.render("in.wav", "out.wav", "--path", path, "--json", *BYPASS).json()["files"][0]
    assert wav.parse(host.read("out.wav")).data == b""
    assert report["frames"] == 0
    assert report["input_levels"] == {"peak_dbfs": None, "rms_dbfs": None}


def test_names_beyond_ascii_and_long_paths(host):
    folder = host.folder / ("long-" * 30) / "Zwölf Töne 音"
    folder.mkdir(parents=True)
    (folder / "в.wav").write_bytes(wav.riff(wav.fmt(), wav.chunk(b"data", DATA)))
    report = host.render(folder / "в.wav", folder / "{name}-ü.wav", "--json", *BYPASS).json()
    assert report["files"][0]["output"] == str(folder / "в-ü.wav")
    assert wav.parse((folder / "в-ü.wav").read_bytes()).data == DATA
