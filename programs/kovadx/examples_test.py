#!/usr/bin/python3
"""The examples that go over the cases of the penguins, with the engine of the kovadx command and with one of their own,
and the numbers that they find; see kovadx_kit.py."""
import csv
import json
import subprocess

import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, KovadxTest, run_tests

MEANS = [
    "bill_length_mm: 342 valid cases, mean 43.92",
    "bill_depth_mm: 342 valid cases, mean 17.15",
    "flipper_length_mm: 342 valid cases, mean 200.92",
    "body_mass_g: 342 valid cases, mean 4201.75",
    "sex: 333 valid cases, mean 1.50",
]


DRIVEN = ["the engine is up: 7 variables, 344 cases", "body_mass_g: 342 valid cases, mean 4201.75",
          "149 are heavier than that", "the engine has stopped"]


class InC(KovadxTest):
    def test_the_means(self):
        self.assertEqual(self.kovadx("run", "--data", PENGUINS, "--", self.example("means")), (0, MEANS, []))

    def test_without_data_there_are_none(self):
        run = self.kovadx("run", "--", self.example("means"))
        self.assertEqual(run, (1, [], ["means: GetVariableCount failed with code 98004"]))


class OwnEngineTest(KovadxTest):
    def check(self, *command, preload=False):
        """What the program has put out."""
        home = kovadx_kit.options.home.resolve()
        # Where the emulated programs look for the library.
        environment = {**self.environment(preload), "WINEPATH": f"Z:{home}"}
        run = subprocess.run([*map(str, command), str(home)], env=environment, capture_output=True, text=True,
                             timeout=PATIENCE)
        lines = run.stdout.splitlines()
        self.assertEqual((run.returncode, [line for line in lines if line in DRIVEN], run.stderr), (0, DRIVEN * 2, ""))
        tables = [line.split() for line in lines if line.startswith("Body mass (g)")]
        self.assertEqual(tables, [["Body", "mass", "(g)", "149", "0", "4250", "6300", "4978.02", "506.17"]] * 2)
        return lines


class OwnEngineInC(OwnEngineTest):
    def test_the_program(self):
        self.check(*([kovadx_kit.options.emulator] if kovadx_kit.options.emulator else []), self.example("driven"))


class OwnEngineInPython(OwnEngineTest):
    def test_the_script(self):
        lines = self.check("/usr/bin/python3", "-B", PENGUINS / "driven.py", preload=True)
        self.assertEqual(lines.count("their mean is 4978.02, in the engine's table too"), 2)


class InPython(KovadxTest):
    def python(self, script, *arguments, data=PENGUINS):
        return self.kovadx("run", "--data", data, "--", "/usr/bin/python3", "-B", PENGUINS / script, *arguments,
                           preload=True)

    def test_the_summary(self):
        code, output, errors = self.python("summary.py")
        self.assertEqual((code, errors), (0, []))
        self.assertIn("342 penguins, mean 4201.75 g", output)
        rows = [line.split() for line in output]
        self.assertIn(["Gentoo", "Biscoe", "123[b]", "5076.02", "504.12"], rows)
        self.assertIn(["Adelie", "Biscoe", "44", "3709.66", "487.73"], rows)
        self.assertIn("b. 1 not weighed", output)

    def test_a_variable_is_added_and_the_data_are_saved(self):
        saved = self.scratch / "heavy.json"
        line = f"149 of 342 penguins are heavier than the mean of 4201.75 g; saved as {saved}"
        self.assertEqual(self.python("new_variable.py", saved), (0, [line], []))
        fields = json.loads(saved.read_text(encoding="utf-8"))["resources"][0]["schema"]["fields"]
        self.assertEqual((len(fields), fields[-1]["name"]), (8, "heavy"))
        self.assertEqual(fields[-1]["title"], "Heavier than 4201.75 g")
        self.assertEqual(fields[-1]["categories"], [{"value": 0, "label": "no"}, {"value": 1, "label": "yes"}])
        with open(self.scratch / "heavy.csv", encoding="utf-8", newline="") as table:
            rows = list(csv.DictReader(table))
        self.assertEqual(len(rows), 344)
        for row in rows:
            expected = str(int(float(row["body_mass_g"]) > 4201.7544)) if row["body_mass_g"] else ""
            self.assertEqual(row["heavy"], expected)
        self.assertIn("342 penguins, mean 4201.75 g", self.python("summary.py", data=saved)[1])

    def test_a_variable_can_not_be_added_twice(self):
        saved = self.scratch / "heavy.json"
        self.assertEqual(self.python("new_variable.py", saved)[0], 0)
        code, output, errors = self.python("new_variable.py", saved, data=saved)
        self.assertEqual((code, output), (1, []))
        self.assertEqual(errors, ["new_variable.py: SetOneVarNameAndType: 98027 NameTaken. Choose another; upper and lower "
                                  "case are the same for the letters A to Z."])


if __name__ == "__main__":
    run_tests([InC, OwnEngineInC], [InPython, OwnEngineInPython])
