#!/usr/bin/env python3
"""Prints the dictionary of the engine's active data set, with Python's standard library alone.

    kovadx run --data examples/penguins -- python3 examples/penguins/describe.py
"""
import ctypes
import sys
from ctypes import POINTER, byref, c_char_p, c_double, c_int

from kova_engine import Engine, EngineError

MEASURES = ("unknown", "nominal", "ordinal", "scale")


def number_labels(engine, variable):
    values, labels, count = POINTER(c_double)(), POINTER(c_char_p)(), c_int()
    engine.tell("GetNValueLabels", variable, byref(values), byref(labels), byref(count))
    pairs = [(f"{values[i]:g}", labels[i].decode()) for i in range(count.value)]
    engine.tell("FreeNValueLabels", values, labels, count)
    return pairs


def string_labels(engine, variable):
    values, labels, count = POINTER(c_char_p)(), POINTER(c_char_p)(), c_int()
    engine.tell("GetCValueLabels", variable, byref(values), byref(labels), byref(count))
    pairs = [(values[i].decode(), labels[i].decode()) for i in range(count.value)]
    engine.tell("FreeCValueLabels", values, labels, count)
    return pairs


def missing_numbers(engine, variable):
    kind, values = c_int(), [c_double() for _ in range(3)]
    engine.tell("GetVarNMissingValues", variable, byref(kind), *map(byref, values))
    texts = [f"{value.value:g}" for value in values]
    if kind.value >= 0:
        return texts[: kind.value]
    return [f"{texts[0]} to {texts[1]}"] + (texts[2:] if kind.value == -3 else [])


def missing_strings(engine, variable):
    kind, values = c_int(), [ctypes.create_string_buffer(9) for _ in range(3)]
    engine.tell("GetVarCMissingValues", variable, byref(kind), *values)
    return [value.value.decode() for value in values[: kind.value]]


def describe(engine, variable):
    name = engine.value("GetVariableName", variable)
    label = engine.value("GetVariableLabel", variable)
    width = engine.value("GetVariableType", variable)
    measure = engine.value("GetVariableMeasurementLevel", variable)
    kind = f"string of {width} bytes" if width else "number"
    print(f"\n{name}: {label}")
    print(f"  {kind}, {MEASURES[measure] if 0 <= measure < len(MEASURES) else '?'}")
    for value, text in string_labels(engine, variable) if width else number_labels(engine, variable):
        print(f"  value {value}: {text}")
    for value in missing_strings(engine, variable) if width else missing_numbers(engine, variable):
        print(f"  missing: {value}")


def main():
    engine = Engine()
    variables = engine.value("GetVariableCount")
    print(f"{variables} variables, {engine.value('GetRowCount')} cases")
    for variable in range(variables):
        describe(engine, variable)


if __name__ == "__main__":
    try:
        main()
    except EngineError as error:
        sys.exit(f"describe.py: {error}")
