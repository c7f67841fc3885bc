"""A small painter with smooth edges.

A shape is a function of a point that tells its distance from the shape's edge in pixels, negative inside. A colour is a
triple of 0..255, or a function of a point that returns one.
"""
from math import ceil, floor, hypot, inf

SAMPLES_PER_SIDE = 6  # of a pixel that an edge crosses


def circle(x0, y0, radius):
    return lambda x, y: hypot(x - x0, y - y0) - radius


def box(left, top, right, bottom, corner_radius=0.0):
    half_width, half_height = (right - left) / 2, (bottom - top) / 2
    x0, y0 = left + half_width, top + half_height

    def distance(x, y):
        dx = abs(x - x0) - half_width + corner_radius
        dy = abs(y - y0) - half_height + corner_radius
        return hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - corner_radius

    return distance


def _distance_to_segment(x, y, start, end):
    (x0, y0), (x1, y1) = start, end
    dx, dy = x1 - x0, y1 - y0
    along = ((x - x0) * dx + (y - y0) * dy) / (dx * dx + dy * dy)
    along = min(max(along, 0), 1)
    return hypot(x - x0 - along * dx, y - y0 - along * dy)


def line(width, *points):
    """A line through the points, with round ends."""
    segments = list(zip(points, points[1:]))
    return lambda x, y: min(_distance_to_segment(x, y, *segment) for segment in segments) - width / 2


def polygon(*points):
    edges = list(zip(points, points[1:] + points[:1]))

    def distance(x, y):
        to_edge, inside = inf, False
        for start, end in edges:
            to_edge = min(to_edge, _distance_to_segment(x, y, start, end))
            if (start[1] > y) != (end[1] > y):
                crossing_x = start[0] + (y - start[1]) * (end[0] - start[0]) / (end[1] - start[1])
                inside ^= x < crossing_x
        return -to_edge if inside else to_edge

    return distance


def union(*shapes):
    return lambda x, y: min(shape(x, y) for shape in shapes)


def common(*shapes):
    return lambda x, y: max(shape(x, y) for shape in shapes)


def without(shape, hole):
    return lambda x, y: max(shape(x, y), -hole(x, y))


def grown(shape, by):
    return lambda x, y: shape(x, y) - by


def moved(shape, dx, dy):
    return lambda x, y: shape(x - dx, y - dy)


def outline(shape, width):
    """The band of this width inside the edge."""
    return without(shape, grown(shape, -width))


def mix(a, b, share_of_b):
    return tuple(p + (q - p) * share_of_b for p, q in zip(a, b))


def vertical_gradient(*stops):
    """A colour that changes with y; stops are pairs of y and colour, from top to bottom."""

    def colour_at(_x, y):
        for (y0, upper), (y1, lower) in zip(stops, stops[1:]):
            if y <= y1:
                return mix(upper, lower, min(max((y - y0) / (y1 - y0), 0), 1))
        return stops[-1][1]

    return colour_at


def _coverage(shape, x, y):
    """The share of the pixel around (x, y) that the shape covers."""
    distance = shape(x, y)
    if abs(distance) > 0.75:  # farther than the pixel's corners
        return float(distance < 0)
    offsets = [(i + 0.5) / SAMPLES_PER_SIDE - 0.5 for i in range(SAMPLES_PER_SIDE)]
    return sum(shape(x + dx, y + dy) < 0 for dx in offsets for dy in offsets) / SAMPLES_PER_SIDE**2


class Canvas:
    """Pixels of colour and opacity, at first fully transparent. Rows run from top to bottom."""

    def __init__(self, width, height):
        self.width, self.height = width, height
        self.rows = [[((0, 0, 0), 0.0)] * width for _ in range(height)]

    def paint(self, shape, colour, opacity=1.0, area=None):
        """Lays the shape over what is there; area (left, top, right, bottom) limits the work to where the shape is."""
        left, top, right, bottom = area or (0, 0, self.width, self.height)
        for row in range(max(floor(top), 0), min(ceil(bottom), self.height)):
            for column in range(max(floor(left), 0), min(ceil(right), self.width)):
                x, y = column + 0.5, row + 0.5
                added = _coverage(shape, x, y) * opacity
                if added > 0:
                    self._add(column, row, colour(x, y) if callable(colour) else colour, added)

    def fill(self, colour):
        self.paint(lambda _x, _y: -1.0, colour)

    def _add(self, column, row, colour, added):
        below, opacity = self.rows[row][column]
        total = added + opacity * (1 - added)
        self.rows[row][column] = (mix(below, colour, added / total), total)

    def place(self, other, left, top):
        """Copies another canvas, opacity included."""
        for row, pixels in enumerate(other.rows):
            self.rows[top + row][left : left + other.width] = pixels

    def keyed(self, edge_colour, key_colour):
        """All pixels opaque: smooth edges blended with edge_colour, what was transparent in key_colour."""
        result = Canvas(self.width, self.height)
        result.rows = [
            [(mix(edge_colour, colour, opacity) if opacity > 0.1 else key_colour, 1.0) for colour, opacity in row]
            for row in self.rows
        ]
        return result
