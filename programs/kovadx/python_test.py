#!/usr/bin/python3
"""Runs Python scripts inside the engine's own process, in the real Python runtime, as users of the kovadx command do; see kovadx_kit.py."""
import shutil
import sys

import kovadx_kit
from kovadx_kit import EXPECTED, PENGUINS, KovadxTest, run_tests

# Scripts lie in a folder of the test's own.
USE_ENGINE = ("import sys", f"sys.path.insert(0, {str(PENGUINS)!r})", "from kova_engine import Engine, EngineError",
              "engine = Engine()")


class PythonTest(KovadxTest):

    def run_file(self, script, *more, **others):
        variables = {"PYTHONDONTWRITEBYTECODE": "1"}
        return self.kovadx("run", "--data", PENGUINS, "--language", "PYTHON", *more, script, variables=variables, **others)

    def run_lines(self, *lines):
        script = self.scratch / "script.py"
        script.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        return self.run_file(script)


class Examples(PythonTest):
    def test_the_dictionary_of_the_penguins(self):
        self.assertEqual(self.run_file(PENGUINS / "describe.py"), (0, EXPECTED, []))

    def test_the_summary_is_that_of_a_program(self):
        program = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", PENGUINS / "summary.py", preload=True)
        self.assertEqual(program[0], 0)
        self.assertEqual(self.run_file(PENGUINS / "summary.py"), program)

    def test_other_data(self):
        run = self.kovadx("run", "--language", "PYTHON", PENGUINS / "summary.py")
        self.assertEqual(run, (1, ["summary.py: GetVariableCount: 98004 NoActiveDataSet. Start the engine with one: kovadx "
                                   "run --data."], []))

    def test_the_report_is_written(self):
        report = self.scratch / "report.html"
        self.assertEqual(self.run_file(PENGUINS / "summary.py", "--output", report)[0], 0)
        self.assertIn("Body mass (g) by species and island", report.read_text(encoding="utf-8"))


class Scripts(PythonTest):
    def test_an_exception(self):
        self.assertEqual(self.run_lines("def fail():", "    raise ValueError('no good')", "", "print('before')", "fail()"), (
            1, ["before", "Traceback (most recent call last):", '  File "<syntax 1>", line 5, in <module>', "    fail()",
                '  File "<syntax 1>", line 2, in fail', "    raise ValueError('no good')", "ValueError: no good"], []))

    def test_an_exit(self):
        for argument, result, shown in (("", 0, []), ("7", 7, []), ("'no data'", 1, ["no data"])):
            with self.subTest(argument=argument):
                self.assertEqual(self.run_lines("import sys", f"sys.exit({argument})"), (result, shown, []))

    def test_a_syntax_error(self):
        self.assertEqual(self.run_lines("x = = 1"), (
            1, ['  File "<syntax 1>", line 1', "    x = = 1", "        ^", "SyntaxError: invalid syntax"], []))

    def test_ten_thousand_calls(self):
        run = self.run_lines(*USE_ENGINE, "print(sum(engine.value('GetVariableCount') for _ in range(10000)))")
        self.assertEqual(run, (0, ["70000"], []))

    def test_threads(self):
        run = self.run_lines(*USE_ENGINE, "import threading", "turn, names = threading.Lock(), []", "def work(index):",
                             "    with turn:", "        names.append(engine.value('GetVariableName', index))",
                             "threads = [threading.Thread(target=work, args=(i,)) for i in range(3)]",
                             "for thread in threads:", "    thread.start()", "for thread in threads:",
                             "    thread.join()", "print(*sorted(names))")
        self.assertEqual(run, (0, ["bill_length_mm island species"], []))

    def test_threads_that_outlive_the_script(self):
        run = self.run_lines(*USE_ENGINE, "import threading", "ended = threading.Event()", "def work():", "    ended.wait()",
                             "    print(engine.value('GetVariableCount'), flush=True)",
                             "threading.Thread(target=work).start()", "ended.set()")
        self.assertEqual(run, (0, ["7"], []))

    def test_numpy(self):
        self.assertEqual(self.run_lines("import numpy", "print(numpy.arange(5).sum())"), (0, ["10"], []))

    def test_the_script_knows_itself(self):
        run = self.run_lines("import os, sys", "print(__name__, os.path.basename(__file__), sys.argv == [__file__])",
                             "print(sys.path[0] == os.path.dirname(__file__))")
        self.assertEqual(run, (0, ["__main__ script.py True", "True"], []))

    def test_lines_are_shown_as_they_are(self):
        self.assertEqual(self.run_lines("print('a')", "print()", "print('b', end='')"), (0, ["a", "", "b"], []))


class WrongConfiguration(PythonTest):
    def test_a_python_home_that_is_not_there(self):
        home = self.scratch / "home"
        home.mkdir()
        (home / "kovadxcfg.ini").write_text("[SUPPORTED_LANG]\nX=PYTHON\n[PYTHON]\nLIB_NAME=kovapython\n"
                                            "PYTHONHOME=/nowhere\n")
        shutil.copy(kovadx_kit.options.home / "kovapython.so", home)
        code, output, errors = self.run_file(PENGUINS / "describe.py", "--home", home)
        self.assertEqual((code, output), (125, []))
        self.assertRegex(errors[0], r"\Akovapython: Python could not be started: PYTHONHOME is wrong; there is no "
                                    r"/nowhere/lib/python3\.\d+/os\.py\Z")
        self.assertEqual(errors[1:], ["kovadx: can not run the script in PYTHON, error 999988: Python answered 1 when its "
                                      "run was set up. Look at its error output for the failing start-up script."])


if __name__ == "__main__":
    run_tests([], [Examples, Scripts, WrongConfiguration])
