#!/usr/bin/python3
"""The classes that extensions and programs in Java use, with programs that `kovadx run` starts.

Usage: api_test.py --classes FOLDER, and the arguments of kovadx_kit.py.
"""
import csv
import json
import pathlib
import subprocess

from java_kit import CLASSES, EXPECTED, PATIENCE, PENGUINS, ROOT, KovadxTest, home, java, java_environment, run_java_tests

OUTPUT = (pathlib.Path(__file__).resolve().parent / "output.txt").read_text(encoding="utf-8").splitlines()
ADVICE = {
    10: "Positions run from 0 to the variable count less 1.",
    24: "Ask for the variable's type first: 0 is a number, anything else a string's width.",
    98011: "Check the spelling; upper and lower case are the same for the letters A to Z.",
}
FAILURES = [
    f"GetVariableName: 10 IndexOutOfRange. {ADVICE[10]}",
    f"GetVariableName: 10 IndexOutOfRange. {ADVICE[10]}",
    f'Dictionary.variable("age"): 98011 NoSuchVariable. {ADVICE[98011]}',
    f'Engine.readCases("age"): 98011 NoSuchVariable. {ADVICE[98011]}',
    f"CaseData.numbers: 24 WrongKind. {ADVICE[24]}",
    f"CaseData.texts: 24 WrongKind. {ADVICE[24]}",
    f'CaseData.numbers("island"): 98011 NoSuchVariable. {ADVICE[98011]}',
    'Error 98140 in line 1, column 1: There is no command "fly". Submit help; it lists the commands.',
    "Submit: 98140 SyntaxCommandUnknown. Submit help; it lists the commands.",
    "IllegalArgumentException: a text has a NUL character in it",
    "IllegalArgumentException: a text has half of a surrogate pair in it",
    "StartProcedure: 98102 ProcedureOpen. Call EndProcedure before the next StartProcedure.",
    "IllegalStateException: the table has no dimension yet",
    "SetNumberCell: 98109 NoCategory. Add a category to each dimension before the cell or the footnote.",
    "MinDataColumnWidth: 98112 OutputNumberOutOfRange. Place 0 row, 1 column, 2 layer; position 0 or more; width 1 to "
    "1000, the least not above the most; lines 0 to 1000.",
    f"AddVarValueDoubleCategory: 24 WrongKind. {ADVICE[24]}",
]
NOT_OPEN = "SetNumberCell: 98101 NoProcedureOpen. Call StartProcedure first."

# A variable of each kind that the penguins have not, in two groups, with a case that is not selected.
ODD_FIELDS = [
    {"name": "Größe", "title": "Wie groß 😀", "type": "string", "missingValues": ["n/a", "no"],
     "categories": [{"value": "klein", "label": "nicht groß"}], "x-kova": {"width": 12, "measure": "ordinal"}},
    {"name": "ranged", "type": "number", "x-kova": {"missing": {"range": [1, 2], "values": [9]}, "format": "F10.3"}},
    {"name": "day", "type": "date"},
    {"name": "group", "type": "integer"},
    {"name": "chosen", "type": "integer"},
]
ODD_CASES = [
    ("klein", "1.5", "1970-01-02", "1", "1"),
    ("n/a", "2.5", "", "1", "1"),
    ("", "9", "1970-01-01", "1", "1"),
    ("left out", "3", "1970-01-01", "1", "0"),
    ("zwölf Zei", "", "1970-01-01", "2", "1"),
]
ODD_DICTIONARY = """5 variables, 5 cases

Größe: Wie groß 😀
  string of 12 bytes, ordinal
  value klein: nicht groß
  missing: n/a
  missing: no
  at 0, A12 = 1 12 0

ranged: 
  number, scale
  missing: 1 to 2
  missing: 9
  at 1, F10.3 = 2 10 3

day: 
  number, scale
  at 2, DATE10 = 8 10 0

group: 
  number, scale
  at 3, F8.0 = 2 8 0

chosen: 
  number, scale
  at 4, F8.0 = 2 8 0""".splitlines()


class ApiTest(KovadxTest):
    def environment(self, preload=False, variables=None):
        return java_environment(super().environment(preload, variables))

    def java(self, program, *arguments, data=PENGUINS, path=None):
        """Runs a Java program with checks of the native interface on, which print what they find."""
        path = f"{home() / 'kovajavaplugin.jar'}:{path or CLASSES.folder / 'programs'}"
        start = ["run", "--data", data] if data else ["run"]
        return self.kovadx(*start, "--", java(), "-Xcheck:jni", "-cp", path, program, *arguments)

    def package(self, fields, cases, **own):
        schema = {"fields": fields, "missingValues": [""]}
        resource = {"name": "odd", "path": "odd.csv", "format": "csv", "schema": schema, "x-kova": own}
        path = self.scratch / "odd.json"
        path.write_text(json.dumps({"name": "odd", "resources": [resource]}), encoding="utf-8")
        with open(self.scratch / "odd.csv", "w", encoding="utf-8", newline="") as table:
            csv.writer(table).writerows([[field["name"] for field in fields], *cases])
        return path

    def odd(self):
        return self.package(ODD_FIELDS, ODD_CASES, split=["group"], filter="chosen")


class Example(ApiTest):
    def summary(self, **more):
        return self.java("Summary", path=home() / "examples" / "penguins" / "Summary.jar", **more)

    def test_the_table_is_that_of_the_python_example(self):
        in_python = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", "-B", PENGUINS / "summary.py")
        self.assertEqual(in_python[0], 0)
        self.assertIn("342 penguins, mean 4201.75 g", in_python[1])
        self.assertEqual(self.summary(), in_python)

    def test_without_data(self):
        self.assertEqual(self.summary(data=None), (1, [], [
            "Summary: GetVariableCount: 98004 NoActiveDataSet. Start the engine with one: kovadx run --data."]))

    def test_other_data_are_refused_before_anything_is_put_out(self):
        other = self.package([{"name": "island", "type": "string"}], [("Biscoe",)])
        self.assertEqual(self.summary(data=other), (1, [], [
            "Summary: the data have no variable species, body_mass_g; give kovadx run --data examples/penguins"]))

    def test_without_an_engine(self):
        path = f"{home() / 'kovajavaplugin.jar'}:{home() / 'examples' / 'penguins' / 'Summary.jar'}"
        run = subprocess.run([java(), "-cp", path, "Summary"], env=self.environment(), capture_output=True, text=True,
                             timeout=PATIENCE)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (1, "", (
            "Summary: Engine.attach: 17 EngineNotStarted. Start this program with: kovadx run --data FOLDER -- java "
            "PROGRAM\n")))


class Reading(ApiTest):
    def test_the_dictionary(self):
        self.assertEqual(self.java("Describe"), (0, EXPECTED, []))

    def test_a_dictionary_with_all_else(self):
        self.assertEqual(self.java("Describe", "full", data=self.odd()), (0, ODD_DICTIONARY, []))

    def test_all_cases(self):
        with open(PENGUINS / "penguins.csv", encoding="utf-8", newline="") as table:
            rows = list(csv.DictReader(table))
        names = ["sex", "species", "bill_length_mm"]
        expected = [" ".join([*names, "[344]"])]
        for row in rows:
            sex, length = ("NaN" if row[name] in ("", "NA") else str(float(row[name])) for name in (names[0], names[2]))
            expected.append(f"{'NaN' if sex == '9.0' else sex} <{row['species']}> {length}")
        self.assertEqual(self.java("Cases", "AS_MISSING", *names), (0, expected, []))

    def test_groups_a_filter_and_missing_values(self):
        self.assertEqual(self.java("Cases", "AS_MISSING", data=self.odd()), (0, [
            "Größe ranged day group chosen [3, 4]",
            "<klein> NaN 86400.0 1.0 1.0",
            "<null> 2.5 NaN 1.0 1.0",
            "<> NaN 0.0 1.0 1.0",
            "<zwölf Zei> NaN 0.0 2.0 1.0"], []))

    def test_user_missing_values_as_they_are(self):
        self.assertEqual(self.java("Cases", "AS_VALUE", "RANGED", "Größe", data=self.odd()), (0, [
            "ranged Größe [3, 4]",
            "1.5 <klein>",
            "2.5 <n/a>",
            "9.0 <>",
            "NaN <zwölf Zei>"], []))

    def test_data_without_cases(self):
        empty = self.package([{"name": "a", "type": "number"}], [])
        self.assertEqual(self.java("Cases", "AS_MISSING", data=empty), (0, ["a []"], []))

    def test_threads_take_turns(self):
        self.assertEqual(self.java("Threads"), (0, ["0 wrong answers"], []))


class Writing(ApiTest):
    def test_output_of_every_kind(self):
        self.assertEqual(self.java("Output"), (0, OUTPUT, []))

    def test_failures(self):
        code, output, errors = self.java("Failures")
        self.assertEqual((code, errors), (0, []))
        self.assertEqual(output[:len(FAILURES)], FAILURES)
        last = [NOT_OPEN, f"10|IndexOutOfRange|{ADVICE[10]}"]
        self.assertEqual(output[-3:], ["no failure", *last])


class Alone(ApiTest):
    def test_what_needs_no_engine(self):
        path = f"{home() / 'kovajavaplugin.jar'}:{CLASSES.folder / 'programs'}"
        run = subprocess.run([java(), "-cp", path, "com.qor.statistics.kova.UnitChecks"], env=self.environment(),
                             capture_output=True, text=True, timeout=PATIENCE)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, "26 checks\n", ""))

    def test_the_names_of_codes_that_java_gives_by_itself(self):
        """Without the library nobody else knows them."""
        codes = (ROOT / "src" / "message" / "error_codes.def").read_text(encoding="utf-8")
        self.assertIn("KOVA_ERROR(17, EngineNotStarted,", codes)
        self.assertIn("KOVA_ERROR(99114, RuntimeNotLoaded,", codes)


if __name__ == "__main__":
    run_java_tests([Example, Reading, Writing, Alone])
