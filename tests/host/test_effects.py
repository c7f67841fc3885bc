"""Effects, their settings, chains and automation, judged by what they do to the audio and by the stored settings."""

import math
import struct

import pytest

import wav

PATHS = pytest.mark.parametrize("path", ["graph", "direct"])
RATE = 44100
# Amount 1 compresses nothing, so what remains of the compressor is its output gain. (Thresholds near 0 dB begin a
# stream with a gain that is still on its way.)
GAIN_ONLY = "amount=1:threshold=-10:auto-gain=off:attack=0:release=0"


def stored(host, effect):
    """The settings record after this effect was set up so."""
    host.write("in.wav", wav.wav("float32", [0.0, 0.0]))
    host.render("in.wav", "out.wav", "--force", "--save-state", "state", "--effect", effect)
    content = host.read("state")
    assert len(content) == 60 and content[:4] == struct.pack("<I", 60)
    return struct.unpack("<6f4i", content[20:])


def gains(host, samples, *arguments):
    """Output divided by input, sample by sample of a mono file."""
    host.write("in.wav", wav.wav("float32", samples, channels=1))
    host.render("in.wav", "out.wav", *arguments)
    out = wav.parse(host.read("out.wav")).samples()
    assert len(out) == len(samples)
    return [y / x for x, y in zip(samples, out)]


def db(gain):
    return 20 * math.log10(gain)


DEFAULT = (0, 0, 0, 1, 15, 250, 1, 0, 0, 0)
SOFT_LIMITER = (0, 0, -6, 25, 0, 250, 0, 1, 0, 0)
TWO_TO_ONE = (0, 0, -18, 2, 15, 250, 1, 0, 0, 0)


@pytest.mark.parametrize(
    "settings, expected",
    [
        ("", DEFAULT),
        (":preset=2", SOFT_LIMITER),
        (":preset=soft limiter", SOFT_LIMITER),
        (":preset=Soft", SOFT_LIMITER),
        (":preset=2:1 compression starting at -18 dB", TWO_TO_ONE),
        (":preset=2:1", TWO_TO_ONE),
        (':preset="2:1 compression starting at -18 dB":threshold=-20', (*TWO_TO_ONE[:2], -20, *TWO_TO_ONE[3:])),
        (":preset=2:1:threshold=-20:bypass=on", (*TWO_TO_ONE[:2], -20, *TWO_TO_ONE[3:9], 1)),
        (":threshold=-20:preset=2", SOFT_LIMITER),
        (":Attack Time=7.5:release-time=99", (0, 0, 0, 1, 7.5, 99, 1, 0, 0, 0)),
        (":input_gain=-3dB:OUT=+4 dB:amount=1.5e0", (-3, 4, 0, 1.5, 15, 250, 1, 0, 0, 0)),
        (":auto=off:smooth=1:bypass=0", (0, 0, 0, 1, 15, 250, 0, 1, 0, 0)),
        (":threshold=-60:amount=50", (0, 0, -60, 50, 15, 250, 1, 0, 0, 0)),
    ],
)
def test_settings_on_the_command_line(host, settings, expected):
    assert stored(host, "compressor" + settings) == expected


def test_stored_settings_come_back(host):
    first = stored(host, "compressor:preset=7:threshold=-33.25")
    again = ("--load-state", "state", "--effect", "compressor:threshold=-1:save=again")
    host.render("in.wav", "out.wav", "--force", *again)
    assert host.read("again")[28:32] == struct.pack("<f", -1)  # what the command line says goes last
    host.render("in.wav", "out.wav", "--force", "--effect", "compressor:load=state:save=copy")
    assert host.read("copy") == host.read("state")
    assert first[2] == -33.25


def test_older_stored_settings_are_read(host):
    host.write("old", struct.pack("<I16x6f", 44, -1, -2, -3, 4, 5, 6))
    assert stored(host, "compressor:load=old") == (-1, -2, -3, 4, 5, 6, 1, 0, 0, 0)


@PATHS
def test_a_chain_runs_every_effect(host, path):
    effects = []
    for gain_db in (-6, -10, 3):
        effects += ["--effect", f"compressor:{GAIN_ONLY}:output gain={gain_db}"]
    for gain in gains(host, wav.square(9000, 0.1, channels=1), "--path", path, *effects):
        assert db(gain) == pytest.approx(-13, abs=1e-4)


def test_both_paths_give_the_same_samples(host):
    host.write("in.wav", wav.wav("float32", wav.tones(50000)))
    for path in ("graph", "direct"):
        host.render("in.wav", path, "--path", path, "--effect", "compressor:preset=6")
    assert host.read("graph") == host.read("direct")


@PATHS
def test_automation_holds_from_start_to_end(host, path):
    heading = b"parameter,start,end,from,to,curve\n\n# quieter for a while\n"
    host.write("a.csv", heading + b"Output Gain, 0.5, 1, -20, -20, jump\r\n")
    samples = wav.square(RATE, 0.1, channels=1)
    effect = ("--effect", f"compressor:{GAIN_ONLY}:output gain=0")
    heard = gains(host, samples, "--path", path, "--automation", "a.csv", *effect)
    assert db(heard[int(0.49 * RATE)]) == pytest.approx(0, abs=0.01)
    assert db(heard[int(0.60 * RATE)]) == pytest.approx(-20, abs=0.01)
    assert db(heard[-1]) == pytest.approx(-20, abs=0.01)


@PATHS
def test_automation_ramps(host, path):
    host.write("a.csv", b"1.output-gain,0,1,0,-40,linear")
    heard = gains(
        host,
        wav.square(RATE, 0.1, channels=1),
        *("--path", path, "--automation", "a.csv", "--effect", f"compressor:{GAIN_ONLY}"),
    )
    for seconds in (0.25, 0.5, 0.75):
        # Values are held for 20 ms, and the gain takes its time to follow.
        assert db(heard[int(seconds * RATE)]) == pytest.approx(-40 * seconds, abs=1.0)


def test_automation_reaches_the_effect_it_names(host):
    host.write("a.csv", b"2.output gain,0,9,-6,-6,jump\n2.bypass,0.5,9,on,on,jump\n")
    chain = ("--effect", f"compressor:{GAIN_ONLY}:output gain=-10") + ("--effect", f"compressor:{GAIN_ONLY}")
    heard = gains(host, wav.square(RATE, 0.1, channels=1), "--automation", "a.csv", *chain)
    assert db(heard[int(0.4 * RATE)]) == pytest.approx(-16, abs=0.01)
    assert db(heard[-1]) == pytest.approx(-10, abs=0.01)


@PATHS
def test_largest_reduction(host, path):
    # A square wave of full scale against a limiter at -6 dB.
    host.write("in.wav", wav.wav("float32", wav.square(30000)))
    limiter = ("--effect", "compressor:preset=8")
    effects = host.render("in.wav", "out.wav", "--path", path, "--json", *limiter).json()["files"][0]["effects"]
    assert effects == [{"name": "compressor", "largest_reduction_db": pytest.approx(6, abs=0.1)}]
