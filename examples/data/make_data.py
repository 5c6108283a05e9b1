#!/usr/bin/env python3
"""Writes the pictures that the examples read: tiles.png, heights.png and the faces of the sky."""
import math
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))


def write_png(name, width, height, channels, pixel):
    """pixel(x, y) gives one number or three, 0 to 1; y counts from the top."""
    rows = bytearray()
    for y in range(height):
        rows.append(0)
        for x in range(width):
            value = pixel(x, y)
            for v in (value if channels == 3 else (value,)):
                rows.append(max(0, min(255, int(v * 255.0 + 0.5))))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, 2 if channels == 3 else 0, 0, 0, 0)
    with open(os.path.join(HERE, name), "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                   chunk(b"IDAT", zlib.compress(bytes(rows), 9)) + chunk(b"IEND", b""))


def mix(a, b, t):
    return tuple(p + (q - p) * t for p, q in zip(a, b))


def step(low, high, x):
    t = max(0.0, min(1.0, (x - low) / (high - low)))
    return t * t * (3.0 - 2.0 * t)


def lattice(x, y, z):
    n = (x * 374761393 + y * 668265263 + z * 2147483647 + 974711) & 0xFFFFFFFF
    n = ((n ^ (n >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((n ^ (n >> 16)) & 0xFFFF) / 65535.0


def noise(x, y, z):
    ix, iy, iz = math.floor(x), math.floor(y), math.floor(z)
    fx, fy, fz = (t * t * (3.0 - 2.0 * t) for t in (x - ix, y - iy, z - iz))
    total = 0.0
    for corner in range(8):
        cx, cy, cz = corner & 1, corner >> 1 & 1, corner >> 2
        weight = (fx if cx else 1 - fx) * (fy if cy else 1 - fy) * (fz if cz else 1 - fz)
        total += weight * lattice(ix + cx, iy + cy, iz + cz)
    return total


def fractal(x, y, z, octaves):
    total, size, sum_of_sizes = 0.0, 1.0, 0.0
    for _ in range(octaves):
        total += size * noise(x, y, z)
        sum_of_sizes += size
        x, y, z, size = x * 2.03 + 7.1, y * 2.03 + 3.7, z * 2.03 + 1.3, size * 0.5
    return total / sum_of_sizes


# ---- tiles.png: a glazed tile --------------------------------------------------------------------

CREAM, BLUE, DEEP, RUST = (0.94, 0.90, 0.80), (0.20, 0.42, 0.66), (0.10, 0.20, 0.40), (0.78, 0.40, 0.22)


def tile(x, y):
    u, v = abs((x + 0.5) / 128.0 - 1.0), abs((y + 0.5) / 128.0 - 1.0)
    edge = 1.5 / 128.0

    def inside(distance):
        return step(edge, -edge, distance)

    angle, radius = math.atan2(v, u), math.hypot(u, v)
    color = CREAM
    color = mix(color, BLUE, inside(0.42 - math.hypot(1.0 - u, 1.0 - v)) and 0.0 or
                inside(math.hypot(1.0 - u, 1.0 - v) - 0.42))
    color = mix(color, CREAM, inside(math.hypot(1.0 - u, 1.0 - v) - 0.30))
    color = mix(color, RUST, inside(math.hypot(1.0 - u, 1.0 - v) - 0.17))
    color = mix(color, BLUE, inside(radius - 0.50 - 0.22 * math.cos(angle * 8.0)))
    color = mix(color, DEEP, inside(radius - 0.33 - 0.12 * math.cos(angle * 8.0)))
    color = mix(color, CREAM, inside(radius - 0.20))
    color = mix(color, RUST, inside(radius - 0.12))
    color = mix(color, DEEP, inside(0.955 - max(u, v)))
    return color


# ---- heights.png: an island ---------------------------------------------------------------------

def height(x, y):
    u, v = x / 127.0, y / 127.0
    ridge = 1.0 - abs(2.0 * fractal(u * 3.1 + 11.0, v * 3.1 + 5.0, 0.5, 5) - 1.0) * 2.2
    base = fractal(u * 2.2 + 3.0, v * 2.2 + 9.0, 7.5, 5)
    rim = math.hypot(u - 0.5, v - 0.5)
    return (0.10 + 1.15 * max(ridge, 0.0)) * base * step(0.52, 0.05, rim) * 1.5


# ---- sky_*.png: six faces in the order and orientation of OpenGL's cube maps -----------------------

SUN = (0.48, 0.17, -0.86)


def sky(x, y, z):
    length = math.sqrt(x * x + y * y + z * z)
    x, y, z = x / length, y / length, z / length
    towards_sun = max(0.0, x * SUN[0] + y * SUN[1] + z * SUN[2])
    up = max(y, 0.0)
    color = mix((0.98, 0.76, 0.56), (0.42, 0.56, 0.78), step(0.0, 0.28, up))
    color = mix(color, (0.15, 0.28, 0.58), step(0.15, 0.95, up))
    color = mix(color, (1.0, 0.72, 0.42), 0.75 * towards_sun ** 8 * (1.0 - step(0.0, 0.6, up)))
    color = mix(color, (1.0, 0.95, 0.80), step(0.9970, 0.9984, towards_sun))
    color = mix(color, (1.0, 0.90, 0.66), 0.7 * towards_sun ** 220)
    if y > 0.02:
        # Clouds lie in a plane above.
        px, pz = x / (y + 0.12), z / (y + 0.12)
        thick = fractal(px * 1.1 + 4.0, 2.5, pz * 1.1 + 8.0, 5)
        cover = step(0.52, 0.72, thick) * step(0.02, 0.16, y)
        white = mix((0.98, 0.96, 0.95), (0.72, 0.70, 0.78), step(0.60, 0.85, thick))
        color = mix(color, mix(white, (1.0, 0.78, 0.58), 0.55 * towards_sun ** 4), cover * 0.9)
    for level, (size, tint) in enumerate(((0.16, (0.56, 0.56, 0.68)), (0.10, (0.34, 0.38, 0.48)))):
        flat = math.hypot(x, z)
        cx, cz = x / flat, z / flat
        ridge = size * fractal(cx * 3.0 + 9.0, level * 5.0 + 0.5, cz * 3.0 + 2.0, 6) - 0.015
        color = mix(color, mix(tint, (0.95, 0.68, 0.48), 0.4 * towards_sun ** 6),
                    step(0.004, -0.004, y / max(flat, 1e-6) - ridge))
    if y < 0.0:
        ground = mix((0.36, 0.34, 0.32), (0.20, 0.20, 0.20), step(0.0, 0.7, -y))
        color = mix(color, mix(ground, (0.60, 0.44, 0.34), 0.4 * towards_sun ** 3), step(0.0, 0.012, -y))
    return color


FACES = {
    "posx": lambda s, t: (1.0, -t, -s), "negx": lambda s, t: (-1.0, -t, s),
    "posy": lambda s, t: (s, 1.0, t), "negy": lambda s, t: (s, -1.0, -t),
    "posz": lambda s, t: (s, -t, 1.0), "negz": lambda s, t: (-s, -t, -1.0),
}


def main():
    write_png("tiles.png", 256, 256, 3, tile)
    write_png("heights.png", 128, 128, 1, height)
    size = 256
    for name, direction in FACES.items():
        write_png("sky_%s.png" % name, size, size, 3,
                  lambda x, y: sky(*direction((x + 0.5) / size * 2 - 1, (y + 0.5) / size * 2 - 1)))


if __name__ == "__main__":
    main()
