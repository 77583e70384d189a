#!/usr/bin/env python3
"""Reads a Quillmap area map: the flags of each pixel of a world.

    area_map.py MAP                    prints its sizes, and on how many pixels each flag is set
    area_map.py MAP --json             the same for programs
    area_map.py MAP --pictures FOLDER  also writes FOLDER/usage-K.pgm and FOLDER/value-K.pgm, white
                                       where flag K is set

It needs only Python 3.6 and shares no code with Quillmap. Copy it, or parts of it, into your own
program. formats.md describes the format. Flags are counted from 0, in the order in which the project
lists them; a map holds no names.

Exit codes: 0 done, 1 no area map or one that is cut off, 2 wrong arguments, 3 a file cannot be read
or written.
"""

import argparse
import array
import collections
import json
import os
import struct
import sys

FIELD_SIZES = (0, 1, 2, 4, 8, 16, 32)
MAX_SIZE = 65535


class Section:
    """The flags of one kind: a field of `bits` bits for each pixel, bit k standing for flag k."""

    def __init__(self, bits, width, height, words):
        self.bits = bits
        self.width = width
        self.height = height
        self.words = words
        self.pixels_per_word = 32 // bits if bits else 0
        self.words_per_row = width // self.pixels_per_word if bits else 0

    def field(self, x, y):
        """The flags of the pixel in column x and row y, both counted from the upper left corner."""
        if not (0 <= x < self.width and 0 <= y < self.height):
            raise IndexError("pixel (%d, %d) lies outside the map" % (x, y))
        word, place = divmod(x, self.pixels_per_word) if self.bits else (0, 0)
        if word >= self.words_per_row:
            return 0  # the section is empty, or has no room for the last columns
        value = self.words[(self.height - 1 - y) * self.words_per_row + word]
        return self._field_of(value, place)

    def pixel_counts(self):
        """On how many pixels each of the flags 0 to bits - 1 is set."""
        counts = [0] * self.bits
        # Neighbouring pixels are mostly equal, so a map has few different words.
        for value, occurrences in collections.Counter(self.words).items():
            for place in range(self.pixels_per_word):
                field = self._field_of(value, place)
                for flag in range(self.bits):
                    if field >> flag & 1:
                        counts[flag] += occurrences
        return counts

    def mask(self, flag):
        """One byte a pixel, 255 where the flag is set and 0 elsewhere; the upper row first."""
        if not self.bits:
            return bytes(self.width * self.height)
        pixels = {}
        for value in set(self.words):
            pixels[value] = bytes(
                255 if self._field_of(value, place) >> flag & 1 else 0
                for place in range(self.pixels_per_word)
            )
        missing = bytes(self.width - self.words_per_row * self.pixels_per_word)
        rows = []
        for row in reversed(range(self.height)):
            words = self.words[row * self.words_per_row : (row + 1) * self.words_per_row]
            rows.append(b"".join(pixels[value] for value in words) + missing)
        return b"".join(rows)

    def _field_of(self, word, place):
        """The leftmost pixel of a word, at place 0, has its highest bits."""
        shift = (self.pixels_per_word - 1 - place) * self.bits
        return word >> shift & ((1 << self.bits) - 1)


AreaMap = collections.namedtuple(
    "AreaMap", "layer_width layer_height world_width world_height usages values"
)


def read_map(path):
    """The map in a file. Raises ValueError when it is none, OSError when it cannot be read."""
    with open(path, "rb") as file:
        header = _exactly(file, 16, "header")
        layer_width, layer_height, world_width, world_height = struct.unpack("<4i", header)
        usages = _read_section(file, layer_width, layer_height, "usage")
        values = _read_section(file, layer_width, layer_height, "value")
        if file.read(1):
            raise ValueError("something follows the value section")
    return AreaMap(layer_width, layer_height, world_width, world_height, usages, values)


def _read_section(file, width, height, kind):
    (bits,) = struct.unpack("<i", _exactly(file, 4, "bit count of the %s section" % kind))
    if bits not in FIELD_SIZES:
        raise ValueError("the %s section cannot have %d bits a pixel" % (kind, bits))
    # A map without flags may have any size, one of nothing or less has no words.
    if bits and max(width, height) > MAX_SIZE:
        raise ValueError("a map with flags cannot have %d x %d pixels" % (width, height))
    section = Section(bits, max(width, 0), max(height, 0), array.array("I"))
    byte_count = 4 * section.words_per_row * section.height
    section.words.frombytes(_exactly(file, byte_count, "%s section" % kind))
    if sys.byteorder == "big":
        section.words.byteswap()
    return section


def _exactly(file, byte_count, what):
    # The header may promise more than there is memory for.
    if byte_count > os.fstat(file.fileno()).st_size - file.tell():
        raise ValueError("the file ends in the %s" % what)
    return file.read(byte_count)


def _as_data(area_map):
    return {
        "layer": [area_map.layer_width, area_map.layer_height],
        "world": [area_map.world_width, area_map.world_height],
        "usages": {"bits": area_map.usages.bits, "pixels": area_map.usages.pixel_counts()},
        "values": {"bits": area_map.values.bits, "pixels": area_map.values.pixel_counts()},
    }


def _print_text(data):
    print("%d x %d pixels" % tuple(data["layer"]))
    print("%d x %d m" % tuple(data["world"]))
    for kind in ("usages", "values"):
        print("%s: %d bits a pixel" % (kind, data[kind]["bits"]))
        for flag, count in enumerate(data[kind]["pixels"]):
            print("  flag %d: %d pixels" % (flag, count))


def _write_pictures(area_map, folder):
    os.makedirs(folder, exist_ok=True)
    for name, section in (("usage", area_map.usages), ("value", area_map.values)):
        for flag in range(section.bits):
            with open(os.path.join(folder, "%s-%d.pgm" % (name, flag)), "wb") as file:
                file.write(b"P5\n%d %d\n255\n" % (section.width, section.height))
                file.write(section.mask(flag))


def main():
    parser = argparse.ArgumentParser(description="Tells what a Quillmap area map holds.")
    parser.add_argument("map", metavar="MAP")
    parser.add_argument("--json", action="store_true", help="print JSON")
    parser.add_argument("--pictures", metavar="FOLDER", help="write a picture of each flag")
    arguments = parser.parse_args()
    try:
        area_map = read_map(arguments.map)
        if arguments.pictures is not None:
            _write_pictures(area_map, arguments.pictures)
        data = _as_data(area_map)
    except ValueError as error:
        print("%s: %s" % (arguments.map, error), file=sys.stderr)
        return 1
    except OSError as error:
        print("%s: %s" % (error.filename or arguments.map, error.strerror), file=sys.stderr)
        return 3
    if arguments.json:
        print(json.dumps(data))
    else:
        _print_text(data)
    return 0


if __name__ == "__main__":
    sys.exit(main())
