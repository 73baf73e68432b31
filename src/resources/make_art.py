#!/usr/bin/env python3
"""Draws the program's art: the logo (1024 x 1024 RGBA PNG) and the icon (16, 32, 48 and 256 px).

Usage: make_art.py LOGO.png ICON.ico

The emblem is a steering wheel seen from the driver's seat, a rim with three spokes and a hub, and an
amber marker at twelve o'clock. Everything is drawn from signed distances, so every size is sharp; the
output is the same bytes on every run. Standard library only.
"""
import math
import struct
import sys
import zlib

RIM = (74, 144, 226)       # a lighter shade of the window's accent blue
SPOKE = (45, 102, 194)     # the accent itself
HUB = (232, 238, 246)      # the primary text colour
MARKER = (245, 166, 35)
PLATE = (24, 28, 34)       # the panel colour, behind the icon only


def segment_distance(px, py, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    t = ((px - ax) * dx + (py - ay) * dy) / (dx * dx + dy * dy)
    t = 0.0 if t < 0.0 else 1.0 if t > 1.0 else t
    return math.hypot(px - ax - t * dx, py - ay - t * dy)


def rounded_square_distance(px, py, half, radius):
    qx = abs(px - 0.5) - (half - radius)
    qy = abs(py - 0.5) - (half - radius)
    outside = math.hypot(max(qx, 0.0), max(qy, 0.0))
    return outside + min(max(qx, qy), 0.0) - radius


class Emblem:
    """The shapes in unit coordinates, painted back to front; bold thickens strokes for small icons."""

    def __init__(self, bold, plate):
        self.plate = plate
        scale = 0.84 if plate else 1.0  # the plate needs a margin around the wheel
        self.rim_radius = 0.40 * scale
        self.rim_half = (0.075 if bold else 0.055) * scale
        self.spoke_half = (0.06 if bold else 0.04) * scale
        self.hub_radius = (0.12 if bold else 0.10) * scale
        self.marker_half_angle = 0.16

    def layers(self, u, v):
        """Yields (signed distance in units, colour) for each shape at the point u, v."""
        if self.plate:
            yield rounded_square_distance(u, v, 0.47, 0.17), PLATE
        dx, dy = u - 0.5, v - 0.5
        r = math.hypot(dx, dy)
        ring = abs(r - self.rim_radius) - self.rim_half
        yield ring, RIM
        inner = self.rim_radius - self.rim_half * 0.5
        for ax, ay in ((-inner, 0.02), (inner, 0.02), (0.0, inner)):
            yield segment_distance(dx, dy, 0.0, 0.02, ax, ay) - self.spoke_half, SPOKE
        yield r - self.hub_radius, HUB
        angle = abs(math.atan2(dx, -dy))  # 0 at twelve o'clock
        arc = max(ring, (angle - self.marker_half_angle) * r)
        yield arc, MARKER


def render(size, emblem):
    """Returns rows of RGBA bytes, top row first, the shapes composited over transparency."""
    rows = []
    pixel = 1.0 / size
    for y in range(size):
        row = bytearray(size * 4)
        v = (y + 0.5) * pixel
        for x in range(size):
            u = (x + 0.5) * pixel
            r = g = b = a = 0.0
            for distance, colour in emblem.layers(u, v):
                cover = 0.5 - distance / pixel  # one pixel of ramp across the edge
                if cover <= 0.0:
                    continue
                cover = 1.0 if cover > 1.0 else cover
                r += (colour[0] - r) * cover
                g += (colour[1] - g) * cover
                b += (colour[2] - b) * cover
                a += (1.0 - a) * cover
            if a > 0.0:
                # r, g and b are premultiplied by a; the PNG wants straight alpha.
                row[x * 4:x * 4 + 4] = bytes((round(r / a), round(g / a), round(b / a), round(a * 255)))
        rows.append(bytes(row))
    return rows


def png_bytes(size, rows):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    raw = b"".join(b"\x00" + row for row in rows)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)  # 8 bits a channel, RGBA
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) +
            chunk(b"IEND", b""))


def dib_bytes(size, rows):
    """A 32-bit icon image: BGRA rows bottom-up, then the AND mask (all clear: alpha decides)."""
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = bytearray()
    for row in reversed(rows):
        for x in range(size):
            r, g, b, a = row[x * 4:x * 4 + 4]
            pixels += bytes((b, g, r, a))
    mask_stride = ((size + 31) // 32) * 4
    return header + bytes(pixels) + bytes(mask_stride * size)


def ico_bytes(images):
    """images: (size, data) pairs; the 256 px entry is stored as PNG, as the format allows."""
    out = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    entries, blobs = b"", b""
    for size, data in images:
        side = 0 if size >= 256 else size
        entries += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(data), offset + len(blobs))
        blobs += data
    return out + entries + blobs


def main(argv):
    if len(argv) != 3:
        sys.stderr.write(__doc__)
        return 2
    logo_path, icon_path = argv[1], argv[2]
    with open(logo_path, "wb") as logo:
        logo.write(png_bytes(1024, render(1024, Emblem(bold=False, plate=False))))
    images = []
    for size in (16, 32, 48, 256):
        rows = render(size, Emblem(bold=size <= 48, plate=True))
        images.append((size, png_bytes(size, rows) if size >= 256 else dib_bytes(size, rows)))
    with open(icon_path, "wb") as icon:
        icon.write(ico_bytes(images))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
