"""Effects, their settings, chains and automation, judged by what they do to the audio and by the stored settings."""

import math
import struct

import pytest

import wav

PATHS = pytest.mark.parametrize("path", ["graph", "direct"])
RATE = 44100
# What each effect stores behind a size and a tag: the size, which the EQ gives 4 too small, and the settings record.
STATES = {"compressor": (60, "<6f4i"), "eq": (120, "<26i"), "gate": (36, "<4i"), "dither": (32, "<3i")}
# Amount 1 compresses nothing, so what remains of the compressor is its output gain. (Thresholds near 0 dB begin a
# stream with a gain that is still on its way.)
GAIN_ONLY = "amount=1:threshold=-10:auto-gain=off:attack=0:release=0"


def stored(host, effect):
    """The settings record after this effect was set up so."""
    host.write("in.wav", wav.wav("float32", [0.0, 0.0]))
    host.render("in.wav", "out.wav", "--force", "--save-state", "state", "--effect", effect)
    content = host.read("state")
    size, record = STATES[effect.partition(":")[0]]
    assert len(content) == 20 + struct.calcsize(record) and content[:4] == struct.pack("<I", size)
    return struct.unpack(record, content[20:])


def chain(*effects):
    return [word for effect in effects for word in ("--effect", effect)]


def gains(host, samples, *arguments):
    """Output divided by input, sample by sample of a mono file."""
    host.write("in.wav", wav.wav("float32", samples, channels=1))
    host.render("in.wav", "out.wav", *arguments)
    out = wav.parse(host.read("out.wav")).samples()
    assert len(out) == len(samples)
    return [y / x for x, y in zip(samples, out)]


def db(gain):
    return 20 * math.log10(gain)


SOFT_LIMITER = (0, 0, -6, 25, 0, 250, 0, 1, 0, 0)
TWO_TO_ONE = (0, 0, -18, 2, 15, 250, 1, 0, 0, 0)


# The EQ's bands, as they begin.
HZ, MODES, ROLLOFFS = (100, 300, 1000, 5000), (1, 2, 2, 3), (2, 1, 1, 2)


def eq(gains, bandwidths, frequencies, modes, rolloffs, enables, selected_band=0, bypass=0):
    return (*gains, *bandwidths, *frequencies, *modes, *rolloffs, *enables, selected_band, bypass)


@pytest.mark.parametrize(
    "settings, expected",
    [
        ("compressor:preset=2", SOFT_LIMITER),
        ("compressor:preset=soft limiter", SOFT_LIMITER),
        ('compressor:preset="2:1 compression starting at -18 dB":bypass=on', (*TWO_TO_ONE[:9], 1)),
        ("compressor:preset=2:1:threshold=-20:bypass=on", (*TWO_TO_ONE[:2], -20, *TWO_TO_ONE[3:9], 1)),
        ("compressor:threshold=-20:preset=2", SOFT_LIMITER),
        ("compressor:Attack Time=7.5:release-time=99", (0, 0, 0, 1, 7.5, 99, 1, 0, 0, 0)),
        ("compressor:input_gain=-3dB:OUT=+4 dB:amount=1.5e0", (-3, 4, 0, 1.5, 15, 250, 1, 0, 0, 0)),
        ("compressor:auto=off:smooth=1:bypass=0", (0, 0, 0, 1, 15, 250, 0, 1, 0, 0)),
        (
            "eq:band2.gain=4.5:band4 gain=-15 dB:BAND-3-BANDWIDTH=0.1:band1_freq=20:band3.enable=off:bypass=on",
            eq((0, 45, 0, -150), (10, 10, 1, 10), (20, *HZ[1:]), MODES, ROLLOFFS, (1, 1, 0, 1), bypass=1),
        ),
        (
            "eq:preset=hiss:band1.mode=high shelf:band2.mode=1:band1.rolloff=24:band2.rolloff=12 dB/octave",
            eq((0, 0, 0, -60), (10,) * 4, (*HZ[:3], 8000), (3, 1, 2, 3), (4, 2, 1, 1), (0, 0, 0, 1), selected_band=3),
        ),
        ("gate:preset=Noise gate 1", (10, 500, -600, 0)),
        ("gate:preset=3:threshold=-32.5:attack=0:release=5000ms:bypass=1", (0, 5000, -325, 1)),
        ("dither:preset=Dither for 16-bit", (2, 4, 2)),
        ("dither:depth=8:type=none:shaping=equal loudness contour", (0, 0, 2)),
        ("dither:depth=20:type=half-rectangular:shaping=1", (4, 1, 1)),
    ],
)
def test_settings_on_the_command_line(host, settings, expected):
    assert stored(host, settings) == expected


@pytest.mark.parametrize(
    "name, settings, last",
    [
        ("compressor", "preset=7:threshold=-33.25", "threshold=-1"),
        ("eq", "preset=6:band3.gain=-7.5", "band3.enable=off"),
        ("gate", "preset=6:threshold=-32.5", "attack=77"),
        ("dither", "preset=3:depth=12", "type=gaussian"),
    ],
)
def test_stored_settings_come_back(host, name, settings, last):
    expected = stored(host, f"{name}:{settings}:{last}")  # what the command line says goes last
    first = stored(host, f"{name}:{settings}")
    host.render("in.wav", "out.wav", "--force", "--effect", f"{name}:load=state:save=copy")
    assert host.read("copy") == host.read("state")
    host.render("in.wav", "out.wav", "--force", "--load-state", "state", "--effect", f"{name}:{last}:save=again")
    assert struct.unpack(STATES[name][1], host.read("again")[20:]) == expected != first


def test_both_paths_give_the_same_samples(host):
    host.write("in.wav", wav.wav("float32", wav.tones(50000)))
    for path in ("graph", "direct"):
        host.render("in.wav", path, "--path", path, *chain("gate:preset=5", "eq:preset=9", "compressor:preset=6"))
    assert host.read("graph") == host.read("direct")


@PATHS
def test_mastering_to_16_bits(host, path):
    # Quiet, then loud, at 0 Hz: the gate takes the first away, EQ and compressor turn the second up by 6 - 2 dB, and
    # the dither leaves noise of one step on both.
    host.write("in.wav", wav.wav("pcm16", [0.001] * RATE + [0.1] * RATE, channels=1))
    mastering = chain(
        "gate:preset=Noise gate 2",
        "eq:band1.gain=6:band1.rolloff=6",
        f"compressor:{GAIN_ONLY}:output gain=-2",
        "dither:depth=16:type=rectangular",
    )
    host.render("in.wav", "out.wav", "--path", path, "--bits", 16, *mastering)
    out = wav.parse(host.read("out.wav"))
    assert (out.tag, out.bits) == (wav.PCM, 16)
    steps = [sample * 2**15 for sample in out.samples()]
    assert set(steps[RATE - 5000 : RATE]) == {-1, 0, 1}
    loud = steps[-5000:]
    expected = round(0.1 * 2**15) * 10 ** (4 / 20)
    assert max(abs(step - expected) for step in loud) < 1.5 and len(set(loud)) > 1
    assert sum(loud) / 5000 == pytest.approx(expected, abs=0.1)


@PATHS
def test_automation_ramps_and_holds(host, path):
    heading = b"parameter,start,end,from,to,curve\n\n# ever quieter, then for a while less so\n"
    host.write("a.csv", heading + b"Output Gain, 0.6, 1, -20, -20, jump\r\noutput-gain,0,0.5,0,-40,linear")
    effect = ("--effect", f"compressor:{GAIN_ONLY}")
    heard = gains(host, wav.square(RATE, 0.1, channels=1), "--path", path, "--automation", "a.csv", *effect)
    for seconds in (0.15, 0.3, 0.45):
        # Values are held for 20 ms, and the gain takes its time to follow.
        assert db(heard[int(seconds * RATE)]) == pytest.approx(-80 * seconds, abs=2.0)
    assert db(heard[int(0.70 * RATE)]) == pytest.approx(-20, abs=0.01)
    assert db(heard[-1]) == pytest.approx(-20, abs=0.01)


@PATHS
def test_automation_reaches_the_effects_it_names(host, path):
    gate = b"gate.bypass,0,0.5,on,on,jump\ngate.bypass,0.5,9,off,off,jump\n"
    host.write("a.csv", gate + b"3.bypass,0.2,9,on,on,jump\neq.band1.gain,0,9,6,6,jump\n")
    effects = chain("gate:threshold=0", "eq:band1.rolloff=6", f"compressor:{GAIN_ONLY}:output gain=-10")
    heard = gains(host, [0.1] * RATE, "--path", path, "--automation", "a.csv", *effects)
    assert db(heard[int(0.19 * RATE)]) == pytest.approx(6 - 10, abs=0.01)
    assert db(heard[int(0.49 * RATE)]) == pytest.approx(6, abs=0.01)
    assert heard[-1] == pytest.approx(0, abs=1e-6)


@PATHS
def test_largest_reduction(host, path):
    # A square wave of full scale against a limiter at -6 dB.
    host.write("in.wav", wav.wav("float32", wav.square(30000)))
    limiter = ("--effect", "compressor:preset=8")
    effects = host.render("in.wav", "out.wav", "--path", path, "--json", *limiter).json()["files"][0]["effects"]
    assert effects == [{"name": "compressor", "largest_reduction_db": pytest.approx(6, abs=0.1)}]
