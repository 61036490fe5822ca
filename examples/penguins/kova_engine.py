"""What the Python examples share: the client library, loaded with ctypes, as a program that `kovadx run` starts has it,
or as the engine has it that a script runs inside of.

Python's standard library alone.
"""
import ctypes
import os
from ctypes import POINTER, byref, c_bool, c_char_p, c_double, c_int, c_void_p

END_OF_CASES, END_OF_GROUP = 23, 67  # What NextCase returns behind the last case, and behind that of a split group.

TABLE = (c_char_p, c_char_p, c_char_p, c_bool)
DIMENSION = (*TABLE, c_char_p, c_int, c_int, c_bool, c_bool)

# Every function that the examples call: what it returns and what it takes.
PROTOTYPES = {
    "SetXNameAndSHome": (None, c_char_p, c_char_p),
    "SetKovaRunning": (c_int, c_bool),
    "StartKova": (c_int, c_char_p),
    "StopKova": (None,),
    "Submit": (c_int, c_char_p, c_int),
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
    "MakeCaseCursor": (c_int, c_char_p),
    "NextCase": (c_int,),
    "GetNumericValue": (c_int, c_int, POINTER(c_double), POINTER(c_int)),
    "GetStringValue": (c_int, c_int, POINTER(c_char_p), c_int, POINTER(c_int)),
    "AllocNewVarsBuffer": (c_int, c_int),
    "SetOneVarNameAndType": (c_int, c_char_p, c_int),
    "CommitHeader": (c_int,),
    "SetValueNumeric": (c_int, c_char_p, c_double),
    "CommitCaseRecord": (c_int,),
    "EndChanges": (c_int,),
    "RemoveCaseCursor": (c_int,),
    "SetVarLabel": (c_int, c_char_p, c_char_p),
    "SetVarFormat": (c_int, c_char_p, c_int, c_int, c_int),
    "SetVarMeasureLevel": (c_int, c_char_p, c_int),
    "SetVarNValueLabel": (c_int, c_char_p, c_double, c_char_p),
    "SaveDataToTempFile": (c_int, c_char_p, POINTER(c_int), c_int),
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
    "EvaluateXPath": (c_void_p, c_char_p, c_char_p, c_char_p, POINTER(c_int)),
    "GetStringListLength": (c_int, c_void_p),
    "GetStringFromList": (c_char_p, c_void_p, c_int),
    "RemoveStringList": (None, c_void_p),
}


class EngineError(Exception):
    pass


def load_library(path, **more):
    """Loads the client library and tells ctypes about its functions."""
    library = ctypes.CDLL(path, **more)
    for function, (result, *arguments) in PROTOTYPES.items():
        getattr(library, function).restype = result
        getattr(library, function).argtypes = arguments
    return library


def library_in(home):
    return load_library(os.path.join(home, "kovadx.dll" if os.name == "nt" else "libkovadx.so"))


def library_of_the_process():
    """The client library of an engine that this script runs inside of; None in a process of the script's own."""
    try:
        return load_library("libkovadx.so.1", mode=os.RTLD_NOLOAD | os.RTLD_NOW) if os.name != "nt" else None
    except OSError:
        return None


def plain(argument):
    """Texts travel as bytes."""
    return argument.encode() if isinstance(argument, str) else argument


class Engine:
    """The engine that `kovadx run` offers to this program, or that this script runs inside of."""

    def __init__(self):
        self.library = library_of_the_process()
        if self.library is None:
            self.join_engine()

    def join_engine(self):
        home, name = os.environ.get("KOVA_HOME"), os.environ.get("KOVA_XNAME")
        if not home or not name:
            raise EngineError("no engine; start this program with: kovadx run --data FOLDER -- python3 PROGRAM")
        self.library = library_in(home)
        self.library.SetXNameAndSHome(name.encode(), home.encode())
        self.library.SetKovaRunning(True)

    def submit(self, commands):
        """Has the engine carry out commands; it shows what comes of them."""
        self.tell("Submit", commands, len(commands.encode()))

    def value(self, function, *arguments):
        """Calls a function that returns its result and stores its error code."""
        code = c_int()
        result = getattr(self.library, function)(*map(plain, arguments), byref(code))
        self.check(function, code.value)
        return result.decode() if isinstance(result, bytes) else result

    def tell(self, function, *arguments):
        """Calls a function that returns its error code, and stores its results if it has any."""
        self.check(function, getattr(self.library, function)(*map(plain, arguments)))

    def positions(self, *names):
        """Where each variable stands in the dictionary, by name; these must be there."""
        where = {self.value("GetVariableName", i): i for i in range(self.value("GetVariableCount"))}
        missing = [name for name in names if name not in where]
        if missing:
            raise EngineError(f"the data have no variable {', '.join(missing)}; give kovadx run --data examples/penguins")
        return where

    def cases(self):
        """Stands on each case of an open case cursor in turn."""
        while (code := self.library.NextCase()) != END_OF_CASES:
            if code != END_OF_GROUP:
                self.check("NextCase", code)
                yield

    def number(self, variable):
        """The current case's value of a numeric variable, None where it is missing."""
        value, missing = c_double(), c_int()
        self.tell("GetNumericValue", variable, byref(value), byref(missing))
        return None if missing.value else value.value

    def text(self, variable, width):
        """The current case's value of a string variable of that width, without the blanks that fill it up."""
        value, missing = ctypes.create_string_buffer(width + 1), c_int()
        self.tell("GetStringValue", variable, byref(ctypes.cast(value, c_char_p)), width, byref(missing))
        return value.value.decode().rstrip(" ")

    def results(self, expression):
        """What an XPath expression finds in the output so far, as texts."""
        found = self.value("EvaluateXPath", "output", "", expression)
        count = self.library.GetStringListLength(found)
        texts = [self.library.GetStringFromList(found, i).decode() for i in range(count)]
        self.library.RemoveStringList(found)
        return texts

    def check(self, function, code):
        if code != 0:
            name = self.library.KovaErrorName(code).decode() or "an error of the engine's own"
            raise EngineError(f"{function}: {code} {name}. {self.library.KovaErrorAdvice(code).decode()}".rstrip())


class OwnEngine(Engine):
    """An engine that this program starts, as often as it likes, and stops."""

    def __init__(self, home):
        self.home, self.library = home, library_in(home)

    def start(self, name, data):
        self.library.SetXNameAndSHome(name.encode(), self.home.encode())
        self.tell("StartKova", f'"{data}"')

    def stop(self):
        self.library.StopKova()
