"""Commands, output for people and programs, and everything that can be wrong."""

import os
import shutil
import signal
import struct
import time

import pytest

import conftest
import wav

DATA = wav.pack("float32", wav.tones(2000))
GOOD = wav.riff(wav.fmt(), wav.chunk(b"data", DATA))
RENDER = ("render", "in.wav", "out.wav")
BYPASS = ("--effect", "compressor:bypass=on")

EFFECTS = {  # class, control interface, and how many parameters and presets
    "compressor": ("{23C9F225-40EC-11D2-9D36-00C04F8EDC1E}", "ICompressorSettings", 9, 9),
    "eq": ("{8CB69A0A-10E8-11D2-9B89-00104B8D13C2}", "IEqSettings", 25, 13),
    "gate": ("{869419DD-501F-11D3-8CDC-00C04F6B8E4C}", "IGateSettings", 4, 7),
    "dither": ("{260DF3E1-AC77-11D2-9E93-00C04F68BE44}", "IDitherSettings", 3, 6),
}
DITHER_TYPES = ("None", "Half Rectangular", "Rectangular", "Triangular", "Highpass Triangular", "Gaussian")
# One of each kind, by index: label, unit, type, min, max, value in a new effect, items.
PARAMS = {
    ("compressor", 6): ("Auto Gain Compensation", "", "switch", 0, 1, 1),
    ("eq", 20): ("Band4 Bandwidth", "octaves", "float", 0.1, 4, 1),
    ("eq", 22): ("Band4 Mode", "", "choice", 1, 3, 3, "Low Shelf", "Band", "High Shelf"),
    ("gate", 0): ("Threshold level", "dB", "float", -80, 0, -80),
    ("dither", 0): ("Depth", "bits", "choice", 0, 6, 2, "8", "12", "16", "18", "20", "24", "32"),
    ("dither", 1): ("Type", "", "choice", 0, 5, 1, *DITHER_TYPES),
}


def test_list_and_describe(host):
    effects = host.run("list", "--json").json()["effects"]
    assert {effect["name"]: effect["clsid"] for effect in effects} == {name: row[0] for name, row in EFFECTS.items()}
    assert [line.split()[0] for line in host.run("list").out.splitlines()] == [effect["name"] for effect in effects]
    for name, (clsid, control_interface, param_count, preset_count) in EFFECTS.items():
        description = host.run("describe", name, "--json").json()
        text = host.run("describe", name).out
        params = description["parameters"]
        assert (description["clsid"], len(params), len(description["presets"])) == (clsid, param_count, preset_count)
        assert description["presets"][:2] == ["(Default)", "Default all parameters"]
        names = {interface["name"] for interface in description["interfaces"]}
        assert {control_interface, "IPersistStream", "IPluginPresets", "IDirectBufferProcess"} <= names
        assert ("IMediaParams" in names) == all(param["curves"] for param in params)
        for index, param in enumerate(params):
            assert param["label"] in text
            fields = [param[field] for field in ("label", "unit", "type", "min", "max", "value")]
            assert (*fields, *param["items"]) == PARAMS.get((name, index), (*fields, *param["items"]))


def test_version_and_help(host):
    assert host.run("--version").out.startswith("tervan-host 1.")
    for arguments in ([], ["--help"], ["render", "--help"]):
        result = host.run(*arguments)
        assert (result.code, result.err) == (0, "")
        assert "--effect" in result.out


def test_report_has_the_right_numbers(host):
    # 0.5 of full scale: -6.02 dBFS peak, and for a square wave RMS as well.
    host.write("in.wav", wav.wav("pcm16", wav.square(44100, 0.5)))
    effect = "compressor:output gain=-6:threshold=-10:auto=off"
    document = host.render("in.wav", "out.wav", "--json", "--effect", effect).json()
    assert document["path"] == "graph"
    (report,) = document["files"]
    assert (report["input"], report["output"]) == ("in.wav", "out.wav")
    assert report["input_format"] == {"encoding": "pcm", "bits": 16, "channels": 2, "sample_rate_hz": 44100}
    assert report["output_format"] == report["input_format"]
    assert (report["frames"], report["duration_s"]) == (44100, 1)
    for levels, expected in (("input_levels", -6.0206), ("output_levels", -12.0206)):
        assert report[levels] == {key: pytest.approx(expected, abs=0.01) for key in ("peak_dbfs", "rms_dbfs")}
    assert report["elapsed_s"] > 0
    assert report["times_real_time"] == pytest.approx(1 / report["elapsed_s"])

    text = host.render("in.wav", "out.wav", "--force", "--effect", effect).out
    assert "16-bit PCM, stereo, 44100 Hz" in text
    assert "peak -6.02 dBFS, RMS -6.02 dBFS" in text
    assert "peak -12.02 dBFS, RMS -12.02 dBFS" in text


def test_several_inputs_go_to_the_pattern_and_a_bad_one_stops_no_other(host):
    (host.folder / "out").mkdir()
    for name in ("one.wav", "two.x.wav", "four.wav"):
        host.write(name, GOOD)
    host.write("three.wav", b"no audio")
    inputs = ("one.wav", "two.x.wav", "three.wav", "four.wav")
    result = host.run("render", *inputs, "out/{name}-comp.wav", *BYPASS)
    assert result.code == 2
    assert result.err.splitlines() == ['tervan-host: "three.wav" is not a WAV file']
    assert result.out.count("->") == 3
    outputs = sorted(path.name for path in (host.folder / "out").iterdir())
    assert outputs == ["four-comp.wav", "one-comp.wav", "two.x-comp.wav"]
    assert wav.parse(host.read("out/four-comp.wav")).data == DATA


def test_an_existing_output_is_replaced_only_by_force(host):
    host.write("in.wav", GOOD)
    host.write("out.wav", b"precious")
    assert "--force" in host.refuse(2, *RENDER, *BYPASS)
    assert host.read("out.wav") == b"precious"
    host.render("in.wav", "out.wav", "--force", *BYPASS)
    assert wav.parse(host.read("out.wav")).data == DATA
    host.refuse(2, "render", "in.wav", "other.wav", "--save-state", "out.wav", *BYPASS)
    assert host.names() == ["in.wav", "out.wav"]


@pytest.mark.parametrize("output", ["in.wav", "./in.wav", "IN.WAV", "folder/../in.wav", "{name}.wav", "linked.wav"])
def test_an_input_is_never_overwritten(host, output):
    host.write("in.wav", GOOD)
    (host.folder / "linked.wav").hardlink_to(host.folder / "in.wav")
    host.refuse(1, "render", "in.wav", output, "--force", *BYPASS)
    assert host.read("in.wav") == GOOD
    assert host.names() == ["in.wav", "linked.wav"]


BAD_FILES = {
    "nothing": (b"", "is not a WAV file"),
    "too short": (b"RIFF", "is not a WAV file"),
    "text": (b"These are words and no audio at all.", "is not a WAV file"),
    "another RIFF file": (wav.riff(kind=b"AVI "), "is not a WAV file"),
    "RF64": (wav.riff(wav.fmt(), riff_id=b"RF64"), "RF64"),
    "big-endian": (wav.riff(wav.fmt(), riff_id=b"RIFX"), "RIFX"),
    "no chunks": (wav.riff(), "no format chunk"),
    "no format": (wav.riff(wav.chunk(b"data", DATA)), "no format chunk"),
    "no data": (wav.riff(wav.fmt()), "no data chunk"),
    "short format": (wav.riff(wav.chunk(b"fmt ", b"\1\0" * 7), wav.chunk(b"data", DATA)), "too short"),
    "short extensible format": (wav.riff(wav.fmt(tag=wav.EXTENSIBLE), wav.chunk(b"data", DATA)), "too short"),
    "truncated data": (GOOD[:-1], "truncated"),
    "3 channels": (wav.riff(wav.fmt(channels=3), wav.chunk(b"data", DATA)), "3 channels"),
    "no channels": (wav.riff(wav.fmt(channels=0), wav.chunk(b"data", DATA)), "0 channels"),
    "12 bits": (wav.riff(wav.fmt("pcm16", bits=12, align=4), wav.chunk(b"data", DATA)), "12-bit"),
    "16-bit float": (wav.riff(wav.fmt(bits=16), wav.chunk(b"data", DATA)), "16-bit float"),
    "compressed": (wav.riff(wav.fmt("pcm8", tag=wav.ADPCM), wav.chunk(b"data", DATA)), "compressed"),
    "rate 0": (wav.riff(wav.fmt(rate=0), wav.chunk(b"data", DATA)), "rate of 0"),
    "24 bits in 4 bytes": (wav.riff(wav.fmt("pcm24", align=8), wav.chunk(b"data", DATA)), "bytes a frame"),
}


def refuse_file(host, name, content, sentence, *arguments):
    """Rendering must fail because of what is in this file, with its name, and leave nothing."""
    host.write("in.wav", GOOD)
    host.write(name, content)
    message = host.refuse(2, *RENDER, *arguments)
    assert sentence in message and f'"{name}"' in message
    assert set(host.names()) == {"in.wav", name}


@pytest.mark.parametrize("content, sentence", BAD_FILES.values(), ids=BAD_FILES.keys())
def test_bad_input_files(host, content, sentence):
    refuse_file(host, "in.wav", content, sentence, *BYPASS)


NO_INPUTS = [("absent.wav", "out.wav"), ("folder", "out.wav")]
NO_OUTPUTS = [("in.wav", output) for output in ("absent/out.wav", "folder", "in.wav/out.wav", "out?.wav")]


@pytest.mark.parametrize("inputs, output", NO_INPUTS + NO_OUTPUTS)
def test_files_that_cannot_be_read_or_written(host, inputs, output):
    host.write("in.wav", GOOD)
    (host.folder / "folder").mkdir()
    message = host.refuse(2, "render", inputs, output, "--force", *BYPASS)
    assert f'"{inputs}"' in message or f'"{output}"' in message
    assert host.names() == ["folder", "in.wav"]


def test_an_output_beyond_4_gib_is_refused_at_once(host):
    # As 32-bit samples these 24-bit ones take a third more. The file has no blocks: it is one long hole.
    header = wav.riff(wav.fmt("pcm24"), wav.chunk(b"data", b"", 0xFFFFFF00), size=0xFFFFFFF0)
    host.write("in.wav", header)
    os.truncate(host.folder / "in.wav", len(header) + 0xFFFFFF00)
    assert "do not fit into a WAV file" in host.refuse(2, *RENDER)
    assert host.names() == ["in.wav"]


def test_an_interrupted_rendering_leaves_nothing_behind(host):
    header = wav.riff(wav.fmt("pcm16"), wav.chunk(b"data", b"", 2**31), size=2**31)
    host.write("in.wav", header)
    os.truncate(host.folder / "in.wav", len(header) + 2**31)
    program = host.start(*RENDER)
    deadline = time.monotonic() + 60
    while host.names() == ["in.wav"] and time.monotonic() < deadline:
        time.sleep(0.05)
    assert len(host.names()) == 2  # the unfinished output
    program.send_signal(signal.SIGINT)
    assert program.wait(60) == 2
    assert host.names() == ["in.wav"]


@pytest.mark.parametrize(
    "arguments, sentence",
    [
        (["frobnicate"], '"frobnicate"'),
        (["--json"], "no command"),
        (["list", "--frobnicate"], "--frobnicate"),
        (["list", "compressor"], '"compressor"'),
        (["list", "--force"], "--force"),
        (["list", "--json=yes"], "--json"),
        (["describe"], "one effect"),
        (["describe", "reverb"], "compressor"),
        (["register", "--module"], "--module"),
        (["bench", "gate"], '"gate"'),
        (["bench", "--effect", "reverb"], '"reverb"'),
        (["bench", "--effect", "gate:threshold=-3"], "only a name"),
        (["bench", "--bits", "16"], "belongs to render"),
        (["list", "--quick"], "belongs to bench"),
        (["page", "gate", "--effect", "gate"], "belongs to render and bench"),
        (["render", "in.wav"], "output"),
        (["render", "in.wav", "in.wav", "out.wav"], "{name}"),
        (["render", "in.wav", "./in.wav", "{name}-2.wav"], "twice"),
        ([*RENDER, "--path", "tape"], '"tape"'),
        ([*RENDER, "--bits", "12"], "8, 16, 24 or 32"),
        ([*RENDER, "--bits", "16", "--bits=16x"], '"16x"'),
        ([*RENDER, "--effect"], "--effect"),
        ([*RENDER, "--effect", ":threshold=-3"], "no name"),
        ([*RENDER, "--effect", "reverb"], '"reverb"'),
        ([*RENDER, "--effect", "compressor:loud"], "KEY=VALUE"),
        ([*RENDER, "--effect", "compressor:threshold="], "no value"),
        ([*RENDER, "--effect", 'compressor:preset="2:1'], "quote"),
        ([*RENDER, "--effect", "compressor:preset=9"], "Soft Limiter"),
        ([*RENDER, "--effect", "compressor:preset=-1"], '"-1"'),
        ([*RENDER, "--effect", "compressor:preset=Loud"], "Soft Limiter"),
        ([*RENDER, "--effect", "compressor:ratio=2"], "Amount"),
        ([*RENDER, "--effect", "compressor:a=2"], "could be Amount, Attack Time or Auto Gain Compensation"),
        ([*RENDER, "--effect", "compressor:threshold=0.001"], "-60 to 0 dB"),
        ([*RENDER, "--effect", "compressor:threshold=-60.001"], "-60 to 0 dB"),
        ([*RENDER, "--effect", "compressor:threshold=-1,5"], "-60 to 0 dB"),
        ([*RENDER, "--effect", "compressor:threshold=nan"], "-60 to 0 dB"),
        ([*RENDER, "--effect", "compressor:bypass=2"], "off or on"),
        ([*RENDER, "--effect", "compressor", "--effect", "compressor", "--save-state", "s"], "chain"),
        ([*RENDER, "--load-state", "s"], "single"),
        ([*RENDER, "--effect", "gate:preset=Noise gate"], '"Noise gate 1" or "Noise gate 2"'),
        ([*RENDER, "--effect", "eq:gain=3"], "Band1 Gain"),
        ([*RENDER, "--effect", "eq:band1.rolloff=2"], "6, 12, 18 or 24 dB/octave"),
        ([*RENDER, "--effect", "dither:type=6"], "None, Half Rectangular, Rectangular"),
        ([*RENDER, "--effect", "dither:shaping=1.5"], "Off, High-pass contour or Equal loudness contour"),
    ],
)
def test_wrong_command_lines(host, arguments, sentence):
    host.write("in.wav", GOOD)
    assert sentence in host.refuse(1, *arguments)
    assert host.names() == ["in.wav"]


@pytest.mark.parametrize(
    "content, sentence",
    [
        (b"threshold,0,1,0,-20", "6 fields"),
        (b"threshold,0,1,0,-20,linear,", "6 fields"),
        (b"a,b,c,d,e,f\na,b,c,d,e,f", "line 2"),
        (b"\n# note\nloudness,0,1,0,-20,linear", "line 3"),
        (b"threshold,1,1,0,-20,linear", "end after the start"),
        (b"threshold,-1,1,0,-20,linear", "seconds"),
        (b"threshold,0,1e300,0,-20,linear", "seconds"),
        (b"threshold,0,nan,0,-20,linear", "seconds"),
        (b"threshold,0,1,0,-61,linear", "-60 to 0 dB"),
        (b"threshold,0,1,0,-20,wiggly", "jump, linear, square and invsquare"),
        (b"bypass,0,1,0,1,linear", "jump"),
        (b"threshold,0,1,0,-20,linear\nthreshold,0.9,2,0,0,jump", "overlaps"),
        (b"2.threshold,0,1,0,-20,linear", '"2.threshold"'),
    ],
)
def test_bad_automation(host, content, sentence):
    refuse_file(host, "a.csv", content, sentence, "--effect", "compressor", "--automation", "a.csv")


def test_what_takes_no_curves_is_not_automated(host):
    content, sentence = b"eq.band1.gain,0,1,0,6,linear\ndither.depth,0,1,8,8,jump", "line 2: the Depth of the dither"
    refuse_file(host, "a.csv", content, sentence, "--effect", "eq", "--effect", "dither", "--automation", "a.csv")


COMPRESSOR_HEADER = bytes.fromhex("3c0000009bf900c46e0c4c448f2098db216be56e")
UNTAGGED = struct.pack("<I56x", 60)


@pytest.mark.parametrize("content", [b"", b"words", UNTAGGED, COMPRESSOR_HEADER + b"\0" * 39, b"\xff" * 60])
def test_bad_stored_settings(host, content):
    refuse_file(host, "state", content, "", "--effect", "compressor", "--load-state", "state")


def test_without_a_module(host):
    host.write("in.wav", GOOD)
    lonely = host.folder / "lonely.exe"
    shutil.copy(conftest.HOST, lonely)
    for arguments in (["list"], [*RENDER, *BYPASS], ["register"]):
        assert "tervanfx.dll" in host.refuse(2, *arguments, program=lonely)
    host.write("fake.dll", b"MZ")
    for module in ("absent.dll", "fake.dll", "kernel32.dll"):
        assert f'"{module}"' in host.refuse(2, "list", "--module", module)
    assert host.names() == ["fake.dll", "in.wav", "lonely.exe"]


def test_a_registered_module_is_found_until_it_is_unregistered(host):
    lonely = host.folder / "lonely.exe"
    shutil.copy(conftest.HOST, lonely)
    host.write("in.wav", GOOD)
    assert host.run("register", "--json").json()["registered"] is True
    try:
        listed = host.run("list", program=lonely)
        rendered = host.run(*RENDER, *BYPASS, program=lonely)
    finally:
        assert host.run("unregister").code == 0
    assert (listed.code, rendered.code) == (0, 0)
    assert "compressor" in listed.out
    assert wav.parse(host.read("out.wav")).data == DATA
    host.refuse(2, "list", program=lonely)
