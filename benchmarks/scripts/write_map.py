"""Prints the seconds that numpy takes to compose and pack a map of 2048 x 2048 pixels.

Usage: write_map.py FILE, which holds the raw masks one behind the other. Layer n carries usage flag
n mod 6 and value flag n mod 4. The median of three passes is printed.
"""
import statistics
import sys
import time

import numpy

SIDE = 2048
masks = numpy.fromfile(sys.argv[1], dtype=numpy.uint8).reshape(-1, SIDE, SIDE)


def section(types, bits):
    fields = numpy.zeros((SIDE, SIDE), dtype=numpy.uint8)
    for number, mask in enumerate(masks):
        fields |= numpy.where(mask != 0, numpy.uint8(1 << number % types), numpy.uint8(0))
    fields = fields[::-1].reshape(SIDE, -1, 32 // bits).astype(numpy.uint32)
    words = numpy.zeros(fields.shape[:2], dtype=numpy.uint32)
    for place in range(32 // bits):
        words = (words << numpy.uint32(bits)) | fields[:, :, place]
    return words.astype("<u4").tobytes()


def compose():
    start = time.perf_counter()
    section(6, 8)
    section(4, 4)
    return time.perf_counter() - start


print(statistics.median(compose() for _ in range(3)))
