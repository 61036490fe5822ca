#!/usr/bin/env python3
"""Shows the body mass of the penguins by species and island as a pivot table of the engine's.

    kovadx run --data examples/penguins -- python3 examples/penguins/summary.py
"""
import statistics
import sys

from kova_engine import Engine, EngineError

SPECIES, ISLAND, MASS = "species", "island", "body_mass_g"

TABLE = ("Body mass", "Body mass (g) by species and island", "Summary", False)
ROWS = (*TABLE, "Species", 0, 0, False, False)
INNER_ROWS = (*TABLE, "Island", 0, 1, False, False)
COLUMNS = (*TABLE, "Statistics", 1, 0, True, False)


def read_groups(engine, where):
    """The body masses of each pair of species and island, and how many penguins were not weighed."""
    groups, unknown = {}, {}
    widths = {name: engine.value("GetVariableType", where[name]) for name in (SPECIES, ISLAND)}
    engine.tell("MakeCaseCursor", "r")
    for _ in engine.cases():
        key = tuple(engine.text(where[name], width) for name, width in widths.items())
        masses, mass = groups.setdefault(key, []), engine.number(where[MASS])
        if mass is None:
            unknown[key] = unknown.get(key, 0) + 1
        else:
            masses.append(mass)
    engine.tell("RemoveCaseCursor")
    return groups, unknown


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
    where = engine.positions(SPECIES, ISLAND, MASS)
    groups, unknown = read_groups(engine, where)
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
