"""Repairs the table of help contexts in a compiled help file.

chmcmd 3.2.2 writes the path of each page on the build machine where its name belongs, and no viewer finds that. But the
names stand at the ends of these paths, so a table that points there is all it takes. It is appended to the file,
uncompressed, and the directory is told where.

Source of the layout: the notes of P. Wise and J. Wing on the format of HTML Help files.
"""

import re
import struct
import subprocess

TABLE = b"/#IVB"  # its size, then for each context its number and where in the strings the name of its page begins
STRINGS = "/#STRINGS"

# The file's header: where these parts begin.
FILE_SIZE_SECTION_AT = 0x38  # holds the file's size at 8
DIRECTORY_AT = 0x48
CONTENT_AT = 0x58

# The directory: a header with the size of its chunks and the spacing of their shortcuts, then the chunks. A chunk that
# lists files has its entries behind its header, and at its end, backwards, their number and the shortcuts: positions of
# one entry in so many.
DIRECTORY_HEADER_BYTES = 0x54
CHUNK_BYTES_AT = 0x10
SPACING_AT = 0x14  # as a power of 2, plus 1
LIST_CHUNK = b"PMGL"
LIST_HEADER_BYTES = 20
FREE_BYTES_AT = 4  # behind the entries, shortcuts included


class ChmError(Exception):
    pass


def extract(chmls, chm, name, target):
    """A file out of the help file, with the reader that comes with the compiler."""
    target.unlink(missing_ok=True)
    subprocess.run([chmls, "extract", chm, name, target], check=True, capture_output=True)
    if not target.is_file():
        raise ChmError(f"{chm} holds no {name}")
    return target.read_bytes()


def context_table(strings, pages):
    """pages: names by context."""
    entries = b""
    for context, page in sorted(pages.items()):
        name = re.search(rb"(?<=[/\0])" + re.escape(page.encode()) + rb"\0", strings)
        if not name:
            raise ChmError(f"the strings of the help file do not hold {page}")
        entries += struct.pack("<II", context, name.start())
    return struct.pack("<I", len(entries)) + entries


def number(data, at):
    """A number in 7 bits a byte, highest first, and where the next thing begins."""
    value = 0
    while data[at] & 0x80:
        value = value << 7 | data[at] & 0x7F
        at += 1
    return value << 7 | data[at], at + 1


def encoded(value):
    digits = [value & 0x7F]
    while value := value >> 7:
        digits.append(value & 0x7F | 0x80)
    return bytes(reversed(digits))


def entries(chunk):
    """Name of the file, where its place stands and where that ends, for each entry of a chunk that lists files."""
    (free_bytes,) = struct.unpack_from("<I", chunk, FREE_BYTES_AT)
    at = LIST_HEADER_BYTES
    while at < len(chunk) - free_bytes:
        length, name_at = number(chunk, at)
        place_at = end = name_at + length
        for _ in ("section", "position", "bytes"):
            _, end = number(chunk, end)
        yield bytes(chunk[name_at:place_at]), place_at, end
        at = end


def moved(chunk, spacing, place_at, end, position, size):
    """The chunk with one entry telling that its file lies uncompressed at this position."""
    place = encoded(0) + encoded(position) + encoded(size)
    growth = len(place) - (end - place_at)
    (free_bytes,) = struct.unpack_from("<I", chunk, FREE_BYTES_AT)
    (count,) = struct.unpack_from("<H", chunk, len(chunk) - 2)
    shortcut_bytes = 2 + 2 * ((count - 1) // spacing)
    if growth > free_bytes - shortcut_bytes:
        raise ChmError("the directory of the help file has no room")

    entries_end = len(chunk) - free_bytes
    shortcuts_at = len(chunk) - shortcut_bytes
    result = chunk[:place_at] + place + chunk[end:entries_end]
    result += bytes(shortcuts_at - len(result)) + chunk[shortcuts_at:]
    struct.pack_into("<I", result, FREE_BYTES_AT, free_bytes - growth)
    for at in range(shortcuts_at, len(chunk) - 2, 2):
        (shortcut,) = struct.unpack_from("<H", result, at)
        if LIST_HEADER_BYTES + shortcut > place_at:
            struct.pack_into("<H", result, at, shortcut + growth)
    return result


def replace_table(chm, table):
    """chm: the bytes of the help file, which are changed."""
    (size_section_at,) = struct.unpack_from("<Q", chm, FILE_SIZE_SECTION_AT)
    (directory_at,) = struct.unpack_from("<Q", chm, DIRECTORY_AT)
    (content_at,) = struct.unpack_from("<Q", chm, CONTENT_AT)
    (chunk_bytes, spacing_power) = struct.unpack_from("<II", chm, directory_at + CHUNK_BYTES_AT)
    for at in range(directory_at + DIRECTORY_HEADER_BYTES, content_at, chunk_bytes):
        chunk = chm[at : at + chunk_bytes]
        if not chunk.startswith(LIST_CHUNK):
            continue
        for name, place_at, end in entries(chunk):
            if name == TABLE:
                position = len(chm) - content_at
                chm[at : at + chunk_bytes] = moved(
                    chunk, (1 << spacing_power) + 1, place_at, end, position, len(table)
                )
                chm += table
                struct.pack_into("<Q", chm, size_section_at + 8, len(chm))
                return
    raise ChmError("the help file has no table of contexts")


def repair_contexts(chm, pages, chmls):
    """Makes each context of the help file lead to its page. pages: names by context."""
    scratch = chm.with_suffix(".strings")
    table = context_table(extract(chmls, chm, STRINGS, scratch), pages)
    data = bytearray(chm.read_bytes())
    replace_table(data, table)
    chm.write_bytes(data)
    if extract(chmls, chm, TABLE.decode(), scratch) != table:
        raise ChmError("the repaired table of contexts cannot be read back")
    scratch.unlink()
