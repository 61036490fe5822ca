#!/usr/bin/env python3
"""Adds a variable that tells which penguins are heavier than the mean, with value labels, and saves the data.

    kovadx run --data examples/penguins -- python3 examples/penguins/new_variable.py heavy/datapackage.json

The folder must be there; the values are written beside the descriptor that is named.
"""
import statistics
import sys
from ctypes import byref, c_int

from kova_engine import Engine, EngineError

MASS, HEAVY = "body_mass_g", "heavy"
FORMAT_F, NOMINAL = 2, 1


def masses_of(engine, mass):
    """The body mass of each penguin, None where it was not weighed."""
    engine.tell("MakeCaseCursor", "r")
    masses = [engine.number(mass) for _ in engine.cases()]
    engine.tell("RemoveCaseCursor")
    return masses


def add_heavy(engine, masses, mean):
    """Makes the variable and gives each penguin that was weighed its value; the others stay missing."""
    engine.tell("MakeCaseCursor", "w")
    engine.tell("AllocNewVarsBuffer", 1)
    engine.tell("SetOneVarNameAndType", HEAVY, 0)
    engine.tell("CommitHeader")
    for _, mass in zip(engine.cases(), masses):
        if mass is not None:
            engine.tell("SetValueNumeric", HEAVY, float(mass > mean))
            engine.tell("CommitCaseRecord")
    engine.tell("EndChanges")
    engine.tell("RemoveCaseCursor")


def describe_heavy(engine, mean):
    engine.tell("SetVarLabel", HEAVY, f"Heavier than {mean:.2f} g")
    engine.tell("SetVarFormat", HEAVY, FORMAT_F, 1, 0)
    engine.tell("SetVarMeasureLevel", HEAVY, NOMINAL)
    engine.tell("SetVarNValueLabel", HEAVY, 0.0, "no")
    engine.tell("SetVarNValueLabel", HEAVY, 1.0, "yes")


def main(path):
    engine = Engine()
    masses = masses_of(engine, engine.positions(MASS)[MASS])
    weighed = [mass for mass in masses if mass is not None]
    mean = statistics.fmean(weighed)
    add_heavy(engine, masses, mean)
    describe_heavy(engine, mean)
    engine.tell("SaveDataToTempFile", path, byref(c_int()), 0)
    heavy = sum(mass > mean for mass in weighed)
    print(f"{heavy} of {len(weighed)} penguins are heavier than the mean of {mean:.2f} g; saved as {path}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("new_variable.py: give the file to save the data as, such as heavy/datapackage.json")
    try:
        main(sys.argv[1])
    except EngineError as error:
        sys.exit(f"new_variable.py: {error}")
