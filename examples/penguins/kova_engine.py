"""What the Python examples share: the client library, loaded with ctypes, as a program that `kovadx run` starts has it.

Python's standard library alone.
"""
import ctypes
import os
from ctypes import POINTER, byref, c_bool, c_char_p, c_double, c_int

TABLE = (c_char_p, c_char_p, c_char_p, c_bool)
DIMENSION = (*TABLE, c_char_p, c_int, c_int, c_bool, c_bool)

# Every function that the examples call: what it returns and what it takes.
PROTOTYPES = {
    "SetXNameAndSHome": (None, c_char_p, c_char_p),
    "SetKovaRunning": (c_int, c_bool),
    "KovaErrorName": (c_char_p, c_int),
    "KovaErrorAdvice": (c_char_p, c_int),
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
    "StartProcedure": (c_int, c_char_p, c_char_p),
    "EndProcedure": (c_int,),
    "StartPivotTable": (c_int, *TABLE),
    "PivotTableCaption": (c_int, *TABLE, c_char_p),
    "AddTitleFootnotes": (c_int, c_char_p, c_char_p, c_char_p, c_char_p, c_bool),
    "AddDimension": (c_int, *DIMENSION),
    "AddStringCategory": (c_int, *DIMENSION, c_char_p),
    "AddVarValueStringCategory": (c_int, *DIMENSION, c_int, c_char_p),
    "AddCategoryFootnotes": (c_int, *DIMENSION, c_char_p),
    "SetFormatSpecCount": (c_int,),
    "SetFormatSpecMean": (c_int, c_int),
    "SetFormatSpecStdDev": (c_int, c_int),
    "SetNumberCell": (c_int, *DIMENSION, c_double),
    "AddCellFootnotes": (c_int, *DIMENSION, c_char_p),
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


def plain(argument):
    """Texts travel as bytes."""
    return argument.encode() if isinstance(argument, str) else argument


class Engine:
    """The engine that `kovadx run` offers to this program."""

    def __init__(self):
        home, name = os.environ.get("KOVA_HOME"), os.environ.get("KOVA_XNAME")
        if not home or not name:
            raise EngineError("no engine; start this program with: kovadx run --data FOLDER -- python3 PROGRAM")
        self.library = load_library(home)
        self.library.SetXNameAndSHome(name.encode(), home.encode())
        self.library.SetKovaRunning(True)

    def value(self, function, *arguments):
        """Calls a function that returns its result and stores its error code."""
        code = c_int()
        result = getattr(self.library, function)(*map(plain, arguments), byref(code))
        self.check(function, code.value)
        return result.decode() if isinstance(result, bytes) else result

    def tell(self, function, *arguments):
        """Calls a function that returns its error code, and stores its results if it has any."""
        self.check(function, getattr(self.library, function)(*map(plain, arguments)))

    def check(self, function, code):
        if code != 0:
            name = self.library.KovaErrorName(code).decode() or "an error of the engine's own"
            raise EngineError(f"{function}: {code} {name}. {self.library.KovaErrorAdvice(code).decode()}".rstrip())
