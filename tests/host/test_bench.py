"""The benchmark: which figures it gives, never how good they are."""

import math

import pytest

CASES = ["compressor"] * 3 + ["eq"] * 2 + ["gate"] + ["dither"] * 3
AUTOMATED, EACH_ONCE = CASES[:6], ["compressor", "eq", "gate", "dither"]
TABLES = {  # one row for each of these, with so many figures
    "plain_buffers": (CASES, 6),
    "filter_pcm16": (CASES, 9),
    "quiet_input": (CASES, 5),
    "calls": (AUTOMATED, 6),
    "hundred_instances": (CASES, 3),
    "graph_render": (EACH_ONCE, 2),
}


def test_every_figure_is_there(host):
    document = host.run("bench", "--quick", "--json").json()
    assert document["module"].endswith("tervanfx.dll") and document["version"].startswith("1.")
    assert document["bits"] in (32, 64) and document["processor"]
    for name, (effects, figure_count) in TABLES.items():
        rows = document[name]
        assert [row.pop("effect") for row in rows] == effects
        assert len({(effect, row.pop("variant")) for effect, row in zip(effects, rows)}) == len(rows)
        for row in rows:
            assert len(row) == figure_count
            assert all(figure > 0 and math.isfinite(figure) for figure in row.values()), row
    for row in document["plain_buffers"] + document["filter_pcm16"]:
        for frames in (64, 512, 4096):
            frame_ns = 1e9 / document["sample_rate_hz"]
            assert row[f"times_real_time_{frames}"] == pytest.approx(frame_ns / row[f"ns_per_frame_{frames}"])


def test_one_effect_as_text(host):
    result = host.run("bench", "--quick", "--effect", "gate")
    assert (result.code, result.err) == (0, "")
    tables = result.out.split("\n\n")[2:]
    assert len(tables) == len(TABLES)
    for table, (_, figure_count) in zip(tables, TABLES.values()):
        title, headings, gate = table.rstrip().split("\n")
        assert gate.split()[0] == "gate" and len(gate.split()) == 1 + figure_count
