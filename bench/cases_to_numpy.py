#!/usr/bin/env python3
"""Cases into NumPy: a batch of 20 MiB through KovaNextCaseBlock, its missing values turned into NaN, against the same
work on bytes that NumPy has already, and against one ctypes call a value.

cursor_bench plays the engine. Needs NumPy (Debian: python3-numpy), and with pandas (python3-pandas) makes a DataFrame.
"""
import argparse
import ctypes
import os
import pathlib
import statistics
import subprocess
import time

import numpy

try:
    import pandas
except ImportError:
    pandas = None

VARIABLES = 10
BATCH = 20971520
CASES = BATCH // (8 * VARIABLES)
SYSTEM_MISSING = -numpy.finfo("f8").max
SINGLE_VALUES = (5.0, 7.0, 999.0)  # What cursor_bench gives every variable as missing.
PAIRS = 15


class Client:
    """The library in this process, with cursor_bench for its engine."""

    def __init__(self, library, engine):
        self.api = ctypes.CDLL(str(library))
        prefix = "\\\\.\\pipe\\%04xBENCH0" % os.getpid()
        self.engine = subprocess.Popen([engine, "--bench-peer", prefix])
        self.api.SetXNameAndSHome(b"BENCH", b"")
        self.api.SetKovaRunning(True)

    def close(self):
        self.api.FinalizeDXGlobal()
        self.engine.kill()
        self.engine.wait()

    def open(self, missing_kind):
        data = b"%d %d %d" % (VARIABLES, missing_kind, CASES)
        assert self.api.Submit(data, len(data)) == 0
        assert self.api.MakeCaseCursor(b"r") == 0

    def next_block(self):
        """The next cases as an array of the library's own memory, valid until the next block."""
        place, cases, size = ctypes.c_void_p(), ctypes.c_int(), ctypes.c_int()
        assert self.api.KovaNextCaseBlock(ctypes.byref(place), ctypes.byref(cases), ctypes.byref(size)) == 0
        area = (ctypes.c_char * (cases.value * size.value)).from_address(place.value)
        return numpy.frombuffer(area, dtype="f8").reshape(cases.value, size.value // 8)


def with_gaps(block, missing_kind):
    """A copy with NaN for every missing value, as a DataFrame where pandas is there."""
    values = numpy.array(block)
    gaps = values == SYSTEM_MISSING
    for value in SINGLE_VALUES[: max(missing_kind, 0)]:
        gaps |= values == value
    values[gaps] = numpy.nan
    return pandas.DataFrame(values, copy=False) if pandas else values


def value_by_value(api):
    """The batch that has just come, one call a value."""
    value, is_missing = ctypes.c_double(), ctypes.c_int()
    place, flag = ctypes.byref(value), ctypes.byref(is_missing)
    table = []
    while api.NextCase() == 0:
        for index in range(VARIABLES):
            api.GetNumericValue(index, place, flag)
            table.append(numpy.nan if is_missing.value else value.value)
    return table


def timed(work):
    start = time.perf_counter()
    work()
    return (time.perf_counter() - start) * 1e3


def compare(client, missing_kind):
    """Both ways in turn, in the other order every other pair."""
    plain = numpy.tile(numpy.arange(1000.0), BATCH // 8000 + 1)[: CASES * VARIABLES].reshape(CASES, VARIABLES)
    ours, floor, transfer = [], [], []
    for pair in range(PAIRS):
        if pair % 2:
            floor.append(timed(lambda: with_gaps(plain, missing_kind)))
        client.open(missing_kind)
        blocks = []
        transfer.append(timed(lambda: blocks.append(client.next_block())))
        ours.append(timed(lambda: with_gaps(blocks[0], missing_kind)))
        if not pair % 2:
            floor.append(timed(lambda: with_gaps(plain, missing_kind)))
    ratio = statistics.median(mine / other for mine, other in zip(ours, floor))
    kind = "DataFrame" if pandas else "array"
    print(f"missing kind {missing_kind}: block to {kind} {statistics.median(ours):.2f} ms, plain NumPy "
          f"{statistics.median(floor):.2f} ms, ratio {ratio:.2f}; the transfer {statistics.median(transfer):.2f} ms")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, nargs="?", default="build/linux", help="the build folder")
    build = parser.parse_args().build
    client = Client(build / "src" / "libkovadx.so", build / "bench" / "cursor_bench")
    try:
        for missing_kind in (0, 3):
            compare(client, missing_kind)
        client.open(3)
        print(f"one ctypes call a value: {timed(lambda: value_by_value(client.api)):.0f} ms")
    finally:
        client.close()


if __name__ == "__main__":
    main()
