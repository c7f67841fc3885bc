"""Draws the module's pictures: python3 pictures.py FOLDER writes them there."""
import sys
from math import pi, sin
from pathlib import Path

from picture_files import bitmap, cursor
from raster import (Canvas, box, circle, common, grown, line, mix, moved, outline, polygon, union, vertical_gradient,
                    without)

WHITE, BLACK = (255, 255, 255), (0, 0, 0)
KEY = (255, 0, 255)  # transparent in the image lists

# --- The logo strip -------------------------------------------------------------------------------------------------

STRIP_HEIGHT = 26  # 16 dialog units at 96 dpi
BEVEL_HEIGHT = 4  # at the strip's top and bottom
BACKGROUND_WIDTH = 8
# The strip stretches the background to its height and centres the logo as it is. What the logo lies on is one colour,
# so that no seam shows at any height.
LOGO_WIDTH, LOGO_HEIGHT = 114, STRIP_HEIGHT - 2 * BEVEL_HEIGHT

GRAPHITE = {
    "edge": (112, 116, 121), "top": (78, 82, 87), "face": (58, 62, 66), "bottom": (42, 45, 48), "foot": (25, 27, 29)}
NAVY = {
    "edge": (100, 116, 136), "top": (66, 82, 103), "face": (47, 60, 79), "bottom": (33, 43, 58), "foot": (19, 25, 35)}
TEAL = ((120, 226, 206), (24, 138, 132))
AMBER = ((255, 210, 120), (226, 124, 30))
LETTERS = ((255, 255, 255), (205, 210, 215))

# Capitals as tall as CAP_HEIGHT: width, space to the next one, shapes.
CAP_HEIGHT = 10
WORD_MARK = (
    (8, 3, (box(0, 0, 8, 2), box(3, 0, 5, 10))),
    (7, 3, (box(0, 0, 7, 2), box(0, 4, 6, 6), box(0, 8, 7, 10))),
    (8, 2, (
        box(0, 0, 2, 10),
        without(box(-6, 0, 7.5, 6.5, 3.2), box(2, 2, 5.5, 4.5, 1.2)),
        polygon((3, 6), (5.4, 6), (8.2, 10), (5.8, 10)),
    )),
    (10, 0, (polygon((0, 0), (2.3, 0), (5, 7.2), (7.7, 0), (10, 0), (6.1, 10), (3.9, 10)),)),
    (10, 3, (polygon((0, 10), (2.3, 10), (5, 2.8), (7.7, 10), (10, 10), (6.1, 0), (3.9, 0)),)),
    (8, 0, (box(0, 0, 2, 10), box(6, 0, 8, 10), polygon((0, 0), (2.4, 0), (8, 10), (5.6, 10)))),
)


def background(shades):
    canvas = Canvas(BACKGROUND_WIDTH, STRIP_HEIGHT)
    bevelled = vertical_gradient(
        (1, shades["top"]), (BEVEL_HEIGHT, shades["face"]),
        (STRIP_HEIGHT - BEVEL_HEIGHT, shades["face"]), (STRIP_HEIGHT - 1, shades["bottom"]))
    canvas.fill(bevelled)
    canvas.paint(box(0, 0, BACKGROUND_WIDTH, 1), shades["edge"])
    canvas.paint(box(0, STRIP_HEIGHT - 1, BACKGROUND_WIDTH, STRIP_HEIGHT), shades["foot"])
    return canvas


def wave(x0, y0, radius):
    """A swell across a disc: what separates its layers."""
    steps = [i / 12 for i in range(-12, 13)]
    return line(1.4, *((x0 + s * (radius + 2), y0 - 1.3 * sin(s * pi)) for s in steps))


def logo(shades, emblem):
    canvas = Canvas(LOGO_WIDTH, LOGO_HEIGHT)
    canvas.fill(shades["face"])
    x0, y0, radius = 17, LOGO_HEIGHT / 2, 8
    layers = without(circle(x0, y0, radius), union(wave(x0, y0 - 2.2, radius), wave(x0, y0 + 2.8, radius)))
    canvas.paint(layers, vertical_gradient((y0 - radius, emblem[0]), (y0 + radius, emblem[1])))
    left, top = 32, (LOGO_HEIGHT - CAP_HEIGHT) / 2
    for width, space, shapes in WORD_MARK:
        letter = common(moved(union(*shapes), left, top), box(left, top, left + width + 1, top + CAP_HEIGHT))
        area = (left - 1, top, left + width + 2, top + CAP_HEIGHT)
        canvas.paint(moved(letter, 0, 1), BLACK, 0.35, (left - 1, top, left + width + 2, top + CAP_HEIGHT + 1))
        canvas.paint(letter, vertical_gradient((top, LETTERS[0]), (top + CAP_HEIGHT, LETTERS[1])), area=area)
        left += width + space
    return canvas


# --- The bypass toggle ----------------------------------------------------------------------------------------------

KEY_WIDTH, KEY_HEIGHT = 21, 17
KEY_CAP = box(0.5, 0.5, KEY_WIDTH - 0.5, KEY_HEIGHT - 0.5, 3)

# A signal that arches over the box it would otherwise run through.
BYPASSED_BOX = box(8, 8, 13, 13, 1)
ARCH = union(
    common(outline(box(5, 4, 16, 24, 5), 2), box(0, 0, KEY_WIDTH, 12)),
    box(2, 10, 6, 12, 0.5),
    box(15, 10, 19, 12, 0.5),
)

# Of the key: top and bottom of its face, rim, arch, box; off, on, pressed.
KEY_SHADES = (
    ((92, 97, 103), (62, 66, 71), (24, 26, 28), (232, 235, 238), (140, 146, 152)),
    ((255, 206, 96), (240, 146, 22), (92, 48, 4), (64, 32, 0), (178, 104, 14)),
    ((40, 43, 46), (56, 60, 64), (16, 17, 19), (255, 196, 92), (112, 118, 124)),
)
# What the face is mixed with, and what all the rest is, and how much.
NORMAL = ((WHITE, 0), (WHITE, 0))
HOT = ((WHITE, 0.22), (WHITE, 0))
DISABLED = (((64, 67, 71), 0.68), ((64, 67, 71), 0.6))


def key(shades, face_tint, tint):
    face_top, face_bottom = (mix(shade, *face_tint) for shade in shades[:2])
    rim, arch, inner_box = (mix(shade, *tint) for shade in shades[2:])
    canvas = Canvas(KEY_WIDTH, KEY_HEIGHT)
    canvas.paint(KEY_CAP, rim)
    face = grown(KEY_CAP, -1)
    canvas.paint(face, vertical_gradient((1.5, face_top), (KEY_HEIGHT - 1.5, face_bottom)))
    canvas.paint(common(face, box(0, 0, KEY_WIDTH, 2.5)), WHITE, 0.18)
    canvas.paint(BYPASSED_BOX, inner_box)
    canvas.paint(ARCH, arch)
    return canvas


def toggle(face_tint, tint):
    canvas = Canvas(KEY_WIDTH * len(KEY_SHADES), KEY_HEIGHT)
    for index, shades in enumerate(KEY_SHADES):
        canvas.place(key(shades, face_tint, tint), index * KEY_WIDTH, 0)
    return canvas.keyed(GRAPHITE["face"], KEY)


# --- EQ nodes -------------------------------------------------------------------------------------------------------

NODE_SIZE = 8
NODE_COLOURS = (BLACK, (200, 0, 0))


def nodes():
    """Copied onto the graph as they are: hence squares, with corners in the white of the graph."""
    canvas = Canvas(NODE_SIZE, 4 * NODE_SIZE)
    canvas.fill(WHITE)
    square = box(0, 0, NODE_SIZE, NODE_SIZE, 2)
    for index in range(4):
        marked, disabled = divmod(index, 2)
        shape = moved(square, 0, index * NODE_SIZE)
        canvas.paint(outline(shape, 2) if disabled else shape, NODE_COLOURS[marked])
    return canvas


# --- The pointing hand ----------------------------------------------------------------------------------------------

HAND_HOT_SPOT = (11, 2)


def hand():
    fingers = (
        box(9, 3, 13, 20, 2),
        box(12, 10, 17, 20, 2),
        box(16, 11, 21, 20, 2),
        box(20, 12, 25, 22, 2),
        line(3.6, (5.8, 16), (10, 20.5)),
    )
    palm = polygon((9, 16), (25, 16), (25, 20), (23, 26), (12, 26), (7, 20))
    shape = union(palm, *fingers)
    canvas = Canvas(32, 32)
    canvas.paint(moved(grown(shape, 1.2), 1, 1), BLACK, 0.25)
    canvas.paint(grown(shape, 1.1), BLACK)
    canvas.paint(shape, WHITE)
    for left, top in ((13, 12), (17, 13), (21, 14)):  # between the fingers
        canvas.paint(box(left, top, left + 1, 19), BLACK)
    return canvas


# --------------------------------------------------------------------------------------------------------------------

PICTURES = {
    "logo.bmp": lambda: bitmap(logo(GRAPHITE, TEAL)),
    "logo_background.bmp": lambda: bitmap(background(GRAPHITE)),
    "alternate_logo.bmp": lambda: bitmap(logo(NAVY, AMBER)),
    "alternate_logo_background.bmp": lambda: bitmap(background(NAVY)),
    "bypass.bmp": lambda: bitmap(toggle(*NORMAL)),
    "bypass_hot.bmp": lambda: bitmap(toggle(*HOT)),
    "bypass_disabled.bmp": lambda: bitmap(toggle(*DISABLED)),
    "eq_nodes.bmp": lambda: bitmap(nodes()),
    "hand.cur": lambda: cursor(hand(), HAND_HOT_SPOT),
}


def main():
    folder = Path(sys.argv[1])
    for name, make in PICTURES.items():
        (folder / name).write_bytes(make())


if __name__ == "__main__":
    main()
