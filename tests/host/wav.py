"""WAV files as bytes: made chunk by chunk, so that tests can also make wrong ones, and taken apart again."""

import dataclasses
import math
import struct

PCM, ADPCM, FLOAT, EXTENSIBLE = 1, 2, 3, 0xFFFE
SUBFORMAT_TAIL = bytes.fromhex("000000001000800000aa00389b71")

# name: format tag, bits, struct code of one sample (None: packed)
FORMATS = {
    "pcm8": (PCM, 8, "B"),
    "pcm16": (PCM, 16, "h"),
    "pcm24": (PCM, 24, None),
    "pcm32": (PCM, 32, "i"),
    "float32": (FLOAT, 32, "f"),
    "float64": (FLOAT, 64, "d"),
}


def pack(name, samples):
    """Samples of full scale 1.0 in this format."""
    tag, bits, code = FORMATS[name]
    if tag == FLOAT:
        return struct.pack(f"<{len(samples)}{code}", *samples)
    scale = 2 ** (bits - 1)
    values = [round(max(-scale, min(scale - 1, sample * scale))) for sample in samples]
    if name == "pcm8":
        return bytes(value + 128 for value in values)
    if name == "pcm24":
        return b"".join(struct.pack("<i", value)[:3] for value in values)
    return struct.pack(f"<{len(values)}{code}", *values)


def chunk(name, content, size=None):
    return name + struct.pack("<I", len(content) if size is None else size) + content + b"\0" * (len(content) % 2)


def fmt(name="float32", channels=2, rate=44100, tag=None, bits=None, align=None):
    format_tag, format_bits, _ = FORMATS[name]
    bits = format_bits if bits is None else bits
    align = channels * bits // 8 if align is None else align
    fields = (format_tag if tag is None else tag, channels, rate, align * rate, align, bits)
    return chunk(b"fmt ", struct.pack("<HHIIHH", *fields))


def extensible_fmt(name, channels=2, rate=44100):
    tag, bits, _ = FORMATS[name]
    align = channels * bits // 8
    plain = struct.pack("<HHIIHH", EXTENSIBLE, channels, rate, align * rate, align, bits)
    return chunk(b"fmt ", plain + struct.pack("<HHIH", 22, bits, 3, tag) + SUBFORMAT_TAIL)


def riff(*chunks, riff_id=b"RIFF", kind=b"WAVE", size=None):
    body = kind + b"".join(chunks)
    return riff_id + struct.pack("<I", len(body) if size is None else size) + body


def wav(name, samples, channels=2, rate=44100):
    return riff(fmt(name, channels, rate), chunk(b"data", pack(name, samples)))


@dataclasses.dataclass
class Wav:
    tag: int
    channels: int
    rate: int
    bits: int
    chunks: list  # names in order
    data: bytes
    fact: bytes | None

    def samples(self):
        """Full scale 1.0, as pack takes them."""
        step = self.bits // 8
        if self.tag == FLOAT:
            return list(struct.unpack(f"<{len(self.data) // step}{'f' if self.bits == 32 else 'd'}", self.data))
        words = [self.data[i : i + step] for i in range(0, len(self.data), step)]
        if self.bits == 8:
            return [(word[0] - 128) / 128 for word in words]
        return [int.from_bytes(word, "little", signed=True) / 2 ** (self.bits - 1) for word in words]


def parse(content):
    """Takes a file apart, strictly: every size must be right."""
    assert content[:4] == b"RIFF" and content[8:12] == b"WAVE"
    assert struct.unpack("<I", content[4:8])[0] == len(content) - 8
    chunks, position = {}, 12
    while position < len(content):
        name, size = content[position : position + 4], struct.unpack("<I", content[position + 4 : position + 8])[0]
        chunks[name] = content[position + 8 : position + 8 + size]
        assert len(chunks[name]) == size
        position += 8 + size + size % 2
    assert position == len(content)
    tag, channels, rate, byte_rate, align, bits = struct.unpack("<HHIIHH", chunks[b"fmt "][:16])
    assert align == channels * bits // 8 and byte_rate == align * rate
    assert len(chunks[b"fmt "]) == (18 if tag == FLOAT else 16)
    return Wav(tag, channels, rate, bits, list(chunks), chunks[b"data"], chunks.get(b"fact"))


def tones(frames, channels=2):
    """Loud and quiet stretches with a different tone in each channel; within full scale."""
    samples = []
    for i in range(frames):
        level = 0.9 if i // 3000 % 2 else 0.05
        samples += [level * math.sin(0.031 * i * (channel + 1)) for channel in range(channels)]
    return samples


def square(frames, level=1.0, channels=2):
    return [level if i // 50 % 2 else -level for i in range(frames) for _ in range(channels)]
