#!/usr/bin/env python3
"""Starts an engine with the penguins, reads their cases, submits commands, reads back what comes of them, stops the
engine; and all that a second time.

    python3 examples/penguins/driven.py [HOME]

HOME is the home folder, in which the engine and the library lie; without it, the one that KOVA_HOME names, or the one
that this file was shipped in.
"""
import math
import os
import pathlib
import statistics
import sys

from kova_engine import EngineError, OwnEngine

MASS = "body_mass_g"
MEAN = "//table[@subtype='Descriptives']/cell[at/@category='Mean']/@number"  # With all digits, not only those shown.


def masses_of(engine):
    """The body mass of each penguin that was weighed, of those that the engine selects."""
    mass = engine.positions(MASS)[MASS]
    engine.tell("MakeCaseCursor", "r")
    masses = [engine.number(mass) for _ in engine.cases()]
    engine.tell("RemoveCaseCursor")
    return [value for value in masses if value is not None]


def session(engine, data):
    engine.start("PENGUINS", data)
    print(f"the engine is up: {engine.value('GetVariableCount')} variables, {engine.value('GetRowCount')} cases")
    masses = masses_of(engine)
    print(f"{MASS}: {len(masses)} valid cases, mean {statistics.fmean(masses):.2f}", flush=True)
    engine.submit(f"compute heavy = {MASS} > {statistics.fmean(masses)}; filter by heavy; descriptives {MASS};")
    heavy = masses_of(engine)
    print(f"{len(heavy)} are heavier than that")
    own, (found,) = statistics.fmean(heavy), map(float, engine.results(MEAN))
    if not math.isclose(own, found):
        raise EngineError(f"their mean is {own}, and the engine's table has {found}")
    print(f"their mean is {own:.2f}, in the engine's table too")
    engine.stop()
    print("the engine has stopped")


def main(home):
    engine = OwnEngine(home)
    for _ in range(2):
        session(engine, os.path.join(home, "examples", "penguins"))


if __name__ == "__main__":
    try:
        main(sys.argv[1] if len(sys.argv) > 1 else
             os.environ.get("KOVA_HOME") or str(pathlib.Path(__file__).resolve().parents[2]))
    except EngineError as error:
        sys.exit(f"driven.py: {error}")
