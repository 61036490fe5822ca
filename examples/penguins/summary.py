#!/usr/bin/env python3
"""Shows the body mass of the penguins by species and island as a pivot table of the engine's.

    kovadx run --data examples/penguins -- python3 examples/penguins/summary.py
"""
import csv
import pathlib
import statistics
import sys

from kova_engine import Engine, EngineError

SPECIES, ISLAND, MASS = "species", "island", "body_mass_g"

TABLE = ("Body mass", "Body mass (g) by species and island", "Summary", False)
ROWS = (*TABLE, "Species", 0, 0, False, False)
INNER_ROWS = (*TABLE, "Island", 0, 1, False, False)
COLUMNS = (*TABLE, "Statistics", 1, 0, True, False)


def read_groups(path):
    """The body masses of each pair of species and island, and how many penguins were not weighed."""
    groups, unknown = {}, {}
    with open(path, encoding="utf-8", newline="") as file:
        for row in csv.DictReader(file):
            key = row[SPECIES], row[ISLAND]
            masses = groups.setdefault(key, [])
            if row[MASS]:
                masses.append(float(row[MASS]))
            else:
                unknown[key] = unknown.get(key, 0) + 1
    return groups, unknown


def positions(engine):
    """Where each variable stands in the dictionary, by name; those that the table is about must be there."""
    where = {engine.value("GetVariableName", i): i for i in range(engine.value("GetVariableCount"))}
    missing = [name for name in (SPECIES, ISLAND, MASS) if name not in where]
    if missing:
        raise EngineError(f"the data have no variable {', '.join(missing)}; give kovadx run --data examples/penguins")
    return where


def fill_row(engine, where, key, masses, unknown):
    """One row of the table: the categories that say which, then its cells, each with the format for its kind."""
    species, island = key
    engine.tell("AddVarValueStringCategory", *ROWS, where[SPECIES], species)
    engine.tell("AddVarValueStringCategory", *INNER_ROWS, where[ISLAND], island)
    engine.tell("AddStringCategory", *COLUMNS, "Count")
    engine.tell("SetFormatSpecCount")
    engine.tell("SetNumberCell", *COLUMNS, len(masses))
    if unknown:
        engine.tell("AddCellFootnotes", *COLUMNS, f"{unknown} not weighed")
    engine.tell("AddStringCategory", *COLUMNS, "Mean")
    engine.tell("SetFormatSpecMean", where[MASS])
    engine.tell("SetNumberCell", *COLUMNS, statistics.fmean(masses))
    engine.tell("AddStringCategory", *COLUMNS, "Std. deviation")
    engine.tell("SetFormatSpecStdDev", where[MASS])
    engine.tell("SetNumberCell", *COLUMNS, statistics.stdev(masses))


def main():
    engine = Engine()
    groups, unknown = read_groups(pathlib.Path(__file__).parent / "penguins.csv")
    where = positions(engine)
    engine.tell("StartProcedure", "Summary", "Summary of the penguins")
    engine.tell("StartPivotTable", *TABLE)
    for dimension in (ROWS, INNER_ROWS, COLUMNS):
        engine.tell("AddDimension", *dimension)
    for key in sorted(groups):
        fill_row(engine, where, key, groups[key], unknown.get(key, 0))
    masses = [mass for group in groups.values() for mass in group]
    engine.tell("PivotTableCaption", *TABLE, f"{len(masses)} penguins, mean {statistics.fmean(masses):.2f} g")
    outline, title, subtype, split = TABLE
    engine.tell("AddTitleFootnotes", outline, title, subtype, "Penguins that were weighed", split)
    engine.tell("EndProcedure")


if __name__ == "__main__":
    try:
        main()
    except EngineError as error:
        sys.exit(f"summary.py: {error}")
