#!/usr/bin/env python3
"""Prints the dictionary of the engine's active data set, with Python's standard library alone.

    kovadx run --data examples/penguins -- python3 examples/penguins/describe.py
"""
import ctypes
import os
import sys
from ctypes import POINTER, byref, c_bool, c_char_p, c_double, c_int

MEASURES = ("unknown", "nominal", "ordinal", "scale")

# Every function that is called here: what it returns and what it takes.
PROTOTYPES = {
    "SetXNameAndSHome": (None, c_char_p, c_char_p),
    "SetKovaRunning": (c_int, c_bool),
    "GetVariableCount": (c_int, POINTER(c_int)),
    "GetRowCount": (c_int, POINTER(c_int)),
    "GetVariableName": (c_char_p, c_int, POINTER(c_int)),
    "GetVariableLabel": (c_char_p, c_int, POINTER(c_int)),
    "GetVariableType": (c_int, c_int, POINTER(c_int)),
    "GetVariableMeasurementLevel": (c_int, c_int, POINTER(c_int)),
    "GetNValueLabels": (c_int, c_int, POINTER(POINTER(c_double)), POINTER(POINTER(c_char_p)), POINTER(c_int)),
    "GetCValueLabels": (c_int, c_int, POINTER(POINTER(c_char_p)), POINTER(POINTER(c_char_p)), POINTER(c_int)),
    "FreeNValueLabels": (c_int, POINTER(c_double), POINTER(c_char_p), c_int),
    "FreeCValueLabels": (c_int, POINTER(c_char_p), POINTER(c_char_p), c_int),
    "GetVarNMissingValues": (c_int, c_int, POINTER(c_int), *[POINTER(c_double)] * 3),
    "GetVarCMissingValues": (c_int, c_int, POINTER(c_int), *[c_char_p] * 3),
}


class EngineError(Exception):
    pass


def load_library(home):
    """Loads the client library from the home folder and tells ctypes about its functions."""
    name = "kovadx.dll" if os.name == "nt" else "libkovadx.so"
    library = ctypes.CDLL(os.path.join(home, name))
    for function, (result, *arguments) in PROTOTYPES.items():
        getattr(library, function).restype = result
        getattr(library, function).argtypes = arguments
    return library


class Engine:
    """The engine that `kovadx run` offers to this program."""

    def __init__(self, name, home):
        self.library = load_library(home)
        self.library.SetXNameAndSHome(name.encode(), home.encode())
        self.library.SetKovaRunning(True)

    def value(self, function, *arguments):
        """Calls a function that returns its result and stores its error code."""
        code = c_int()
        result = getattr(self.library, function)(*arguments, byref(code))
        if code.value != 0:
            raise EngineError(f"{function} failed with code {code.value}")
        return result.decode() if isinstance(result, bytes) else result

    def fill(self, function, *arguments):
        """Calls a function that stores its results and returns its error code."""
        code = getattr(self.library, function)(*arguments)
        if code != 0:
            raise EngineError(f"{function} failed with code {code}")

    def number_labels(self, variable):
        values, labels, count = POINTER(c_double)(), POINTER(c_char_p)(), c_int()
        self.fill("GetNValueLabels", variable, byref(values), byref(labels), byref(count))
        pairs = [(f"{values[i]:g}", labels[i].decode()) for i in range(count.value)]
        self.fill("FreeNValueLabels", values, labels, count)
        return pairs

    def string_labels(self, variable):
        values, labels, count = POINTER(c_char_p)(), POINTER(c_char_p)(), c_int()
        self.fill("GetCValueLabels", variable, byref(values), byref(labels), byref(count))
        pairs = [(values[i].decode(), labels[i].decode()) for i in range(count.value)]
        self.fill("FreeCValueLabels", values, labels, count)
        return pairs

    def missing_numbers(self, variable):
        kind, values = c_int(), [c_double() for _ in range(3)]
        self.fill("GetVarNMissingValues", variable, byref(kind), *map(byref, values))
        texts = [f"{value.value:g}" for value in values]
        if kind.value >= 0:
            return texts[: kind.value]
        return [f"{texts[0]} to {texts[1]}"] + (texts[2:] if kind.value == -3 else [])

    def missing_strings(self, variable):
        kind, values = c_int(), [ctypes.create_string_buffer(9) for _ in range(3)]
        self.fill("GetVarCMissingValues", variable, byref(kind), *values)
        return [value.value.decode() for value in values[: kind.value]]


def describe(engine, variable):
    name = engine.value("GetVariableName", variable)
    label = engine.value("GetVariableLabel", variable)
    width = engine.value("GetVariableType", variable)
    measure = engine.value("GetVariableMeasurementLevel", variable)
    kind = f"string of {width} bytes" if width else "number"
    print(f"\n{name}: {label}")
    print(f"  {kind}, {MEASURES[measure] if 0 <= measure < len(MEASURES) else '?'}")
    for value, text in engine.string_labels(variable) if width else engine.number_labels(variable):
        print(f"  value {value}: {text}")
    for value in engine.missing_strings(variable) if width else engine.missing_numbers(variable):
        print(f"  missing: {value}")


def main():
    home, name = os.environ.get("KOVA_HOME"), os.environ.get("KOVA_XNAME")
    if not home or not name:
        sys.exit("describe.py: no engine; start this program with: kovadx run --data FOLDER -- python3 describe.py")
    engine = Engine(name, home)
    variables = engine.value("GetVariableCount")
    print(f"{variables} variables, {engine.value('GetRowCount')} cases")
    for variable in range(variables):
        describe(engine, variable)


if __name__ == "__main__":
    try:
        main()
    except EngineError as error:
        sys.exit(f"describe.py: {error}")
