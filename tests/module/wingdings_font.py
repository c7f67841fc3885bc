"""Draws a Wingdings that has the numbers of the bands: python3 wingdings_font.py FILE writes it there.

Wine's own has none of them, and the real one is not ours to give away.
"""
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import newTable
from fontTools.ttLib.tables._c_m_a_p import CmapSubtable

EM, ASCENT, DESCENT = 1000, 860, 220
ADVANCE, MIDDLE_X, MIDDLE_Y = 880, 440, 360
DISC_RADIUS, RING_WIDTH = 400, 60
REVISION = 999.0  # of several fonts with one name, Wine takes the newest

SYMBOLS = 0xF000  # where a symbol font has its characters
WHITE_ON_BLACK, BLACK_ON_WHITE, DISCS = 140, 129, (163, 108)

# Strokes on a grid of 4 by 6, x to the right and y up, each from one corner of a rectangle to the other.
DIGITS = [
    [(1.5, 0, 2.5, 6), (0.5, 4, 1.5, 5)],
    [(0, 5, 4, 6), (3, 3.5, 4, 5), (0, 2.5, 4, 3.5), (0, 1, 1, 2.5), (0, 0, 4, 1)],
    [(0, 5, 4, 6), (3, 3.5, 4, 5), (1, 2.5, 4, 3.5), (3, 1, 4, 2.5), (0, 0, 4, 1)],
    [(0, 2.5, 1, 6), (0, 1.5, 4, 2.5), (3, 2.5, 4, 6), (3, 0, 4, 1.5)],
]
GRID = 75


def at(x, y):
    return round(MIDDLE_X + x), round(MIDDLE_Y + y)


def draw_disc(pen, radius, clockwise):
    """Eight quadratic arcs; their control points lie on the octagon around the circle."""
    diagonal, short = radius * 2**-0.5, radius * (2**0.5 - 1)
    on = [(radius, 0), (diagonal, diagonal), (0, radius), (-diagonal, diagonal)]
    off = [(radius, short), (short, radius), (-short, radius), (-radius, short)]
    on += [(-x, -y) for x, y in on]
    off += [(-x, -y) for x, y in off]
    if clockwise:
        on, off = on[:1] + on[:0:-1], off[::-1]
    pen.moveTo(at(*on[0]))
    for control, end in zip(off, on[1:] + on[:1]):
        pen.qCurveTo(at(*control), at(*end))
    pen.closePath()


def draw_digit(pen, digit, clockwise):
    for left, bottom, right, top in DIGITS[digit]:
        corners = [(left, bottom), (left, top), (right, top), (right, bottom)]
        if not clockwise:
            corners.reverse()
        points = [at((x - 2) * GRID, (y - 3) * GRID) for x, y in corners]
        pen.moveTo(points[0])
        for point in points[1:]:
            pen.lineTo(point)
        pen.closePath()


def disc(digit=None):
    pen = TTGlyphPen(None)
    draw_disc(pen, DISC_RADIUS, clockwise=True)
    if digit is not None:
        draw_digit(pen, digit, clockwise=False)  # a hole
    return pen.glyph()


def ring(digit):
    pen = TTGlyphPen(None)
    draw_disc(pen, DISC_RADIUS, clockwise=True)
    draw_disc(pen, DISC_RADIUS - RING_WIDTH, clockwise=False)
    draw_digit(pen, digit, clockwise=True)
    return pen.glyph()


def symbol_map(characters):
    table = newTable("cmap")
    table.tableVersion = 0
    subtable = CmapSubtable.newSubtable(4)
    subtable.platformID, subtable.platEncID, subtable.language = 3, 0, 0  # Windows, symbols
    subtable.cmap = {SYMBOLS + character: name for character, name in characters.items()}
    table.tables = [subtable]
    return table


def main(path):
    glyphs, characters = {".notdef": TTGlyphPen(None).glyph()}, {}
    for digit in range(len(DIGITS)):
        for first, draw in ((WHITE_ON_BLACK, disc), (BLACK_ON_WHITE, ring)):
            characters[first + digit] = name = f"{draw.__name__}{digit + 1}"
            glyphs[name] = draw(digit)
    glyphs["disc"] = disc()
    characters.update(dict.fromkeys(DISCS, "disc"))

    font = FontBuilder(EM, isTTF=True)
    font.setupGlyphOrder(list(glyphs))
    font.font["cmap"] = symbol_map(characters)
    font.setupGlyf(glyphs)
    font.setupHorizontalMetrics({name: (ADVANCE, MIDDLE_X - DISC_RADIUS) for name in glyphs})
    font.setupHorizontalHeader(ascent=ASCENT, descent=-DESCENT)
    font.setupNameTable({"familyName": "Wingdings", "styleName": "Regular", "fullName": "Wingdings",
                         "psName": "Wingdings-Regular", "version": f"Version {REVISION}"})
    font.setupOS2(usWinAscent=ASCENT, usWinDescent=DESCENT, ulCodePageRange1=1 << 31)  # symbols
    font.setupPost()
    font.updateHead(fontRevision=REVISION)
    font.save(path)


if __name__ == "__main__":
    main(sys.argv[1])
