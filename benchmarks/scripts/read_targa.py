"""Prints the seconds that Pillow takes to read the bitmap: the median of twenty passes."""
import statistics
import sys
import time

from PIL import Image


def read(path):
    start = time.perf_counter()
    with Image.open(path) as image:
        image.load()
    return time.perf_counter() - start


print(statistics.median(read(sys.argv[1]) for _ in range(20)))
