#!/usr/bin/python3
"""Runs scripts inside the engine's own process, in the echo runtime, as users of the kovadx command do; see kovadx_kit.py."""
import shutil
import signal

import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, KovadxTest, run_tests

CONFIGURATION = """[SUPPORTED_LANG]
X=ECHO;BARE;BROKEN;ABSENT;NAMELESS;REFUSES;PYTHON
[ECHO]
LIB_NAME=kovaecho
ARGS=one two
ECHO_VARIABLE=its value
[BARE]
LIB_NAME=kovaecho_bare
[BROKEN]
LIB_NAME=kovaecho_broken
[ABSENT]
LIB_NAME=kovanothing
[NAMELESS]
HOME=somewhere
[REFUSES]
LIB_NAME=kovaecho
ARGS=--init=99115
[PYTHON]
LIB_NAME=kovaecho
ARGS=--pre=1
"""


class ScriptTest(KovadxTest):

    def setUp(self):
        super().setUp()
        self.own_home = self.scratch / "home"
        self.own_home.mkdir()
        (self.own_home / "kovadxcfg.ini").write_text(CONFIGURATION)
        for library in kovadx_kit.options.runtimes.glob("kovaecho*.*"):
            shutil.copy(library, self.own_home)

    def script(self, *lines, ending="\n"):
        path = self.scratch / "script.txt"
        path.write_bytes("".join(line + ending for line in lines).encode())
        return path

    def arguments(self, language, script, *more):
        return ["run", "--home", self.own_home, "--language", language, *more, script]

    def run_script(self, language, *lines, more=()):
        return self.kovadx(*self.arguments(language, self.script(*lines), *more))


class Scripts(ScriptTest):
    def test_lines_are_run_and_shown(self):
        self.assertEqual(self.run_script("ECHO", "first", "second"), (0, ["first", "second"], []))
        self.assertEqual(self.run_script("echo", "any case"), (0, ["any case"], []))
        self.assertEqual(self.run_script("BARE", "nobody shows it"), (0, [], []))
        self.assertEqual(self.run_script("ECHO"), (0, [], []), "an empty script")

    def test_calls_reach_the_engine(self):
        self.assertEqual(self.run_script("ECHO", "variables", more=("--data", PENGUINS)), (0, ["7"], []))

    def test_submitted_commands_are_carried_out(self):
        code, output, problems = self.run_script(
            "ECHO", "submit compute x = 2; drop species to sex", "submit list 1", more=("--data", PENGUINS))
        self.assertEqual((code, problems), (0, []))
        self.assertIn(["1", "2.00"], [line.split() for line in output])
        self.assertEqual(self.run_script("ECHO", "submit use nothing", "behind"), (
            125, ["Error 98010 in line 1, column 5: There is no data set \"nothing\". Open one: open \"datapackage.json\"."],
            ["kovadx: the script ended with error 98010: No data set has this name. Ask for the names of the open data "
             "sets; * stands for the active one."]))

    def test_a_submitted_block_runs_in_the_scripts_language(self):
        block = ["queue begin echo", "queue inside", "queue variables", "submit end echo", "behind"]
        self.assertEqual(self.run_script("ECHO", *block, more=("--data", PENGUINS)), (0, ["inside", "7", "behind"], []))
        code, output, _ = self.run_script("ECHO", "queue begin ECHO", "queue return 5", "submit end ECHO", "behind")
        self.assertEqual((code, output), (5, ["Error 5 in line 1, column 1: The block in ECHO ended with the code 5. See what "
                                              "it has put out."]))
        code, output, _ = self.run_script("ECHO", "queue begin BARE", "submit end BARE")
        self.assertEqual(code, 125)
        self.assertIn("The block in BARE ended with the code 99120: The configuration does not list the language.", output[0])

    def test_the_runtime_gets_arguments_and_environment(self):
        code, output, _ = self.run_script("ECHO", "arguments", "environment ECHO_VARIABLE", "environment KOVA_XNAME",
                                          "environment KOVA_HOME", "environment KOVA_SCRIPT")
        self.assertEqual((code, output[:4]), (0, ["one", "two", "its value", "ECHO"]))
        for value, path in zip(output[4:], (self.own_home, self.scratch / "script.txt"), strict=True):
            self.assertTrue(value.replace("\\", "/").endswith(str(path)), value)

    def test_the_scripts_result_is_the_exit_code(self):
        for result in (1, 7, 255):
            with self.subTest(result=result):
                self.assertEqual(self.run_script("ECHO", "before", f"return {result}", "behind"),
                                 (result, ["before"], []))
        self.assertEqual(self.run_script("ECHO", "return 256"), (
            125, [], ["kovadx: the script ended with error 256"]))
        self.assertEqual(self.run_script("ECHO", "return -1")[0], 125)
        report = self.scratch / "report.html"
        self.assertEqual(self.run_script("ECHO", "shown", "return 99115", more=("--output", report)), (
            125, ["shown"], ["kovadx: the script ended with error 99115: The runtime was asked to work before it was "
                             "started. Start it first; an earlier failure tells why it is not."]))
        self.assertIn("shown", report.read_text(encoding="utf-8"), "a script that has run has its report")
        self.assertEqual(self.run_script("ECHO", "variables"), (
            125, [], ["kovadx: the script ended with error 98004: No data set is open. Start the engine with one: kovadx "
                      "run --data."]))

    def test_a_wrong_configuration_is_one_line(self):
        for language, text in (
            ("NONE", "error 99120: The configuration does not list the language. Add it to the list X in "
                     "kovadxcfg.ini."),
            ("NAMELESS", "error 99118: No runtime library is configured for the language. Set LIB_NAME in the "
                         "language's section of kovadxcfg.ini."),
            ("ABSENT", "error 99114: The runtime library can not be loaded, or lacks an entry point. Check LIB_NAME in "
                       "kovadxcfg.ini and the libraries that it needs."),
            ("BROKEN", "error 99114: The runtime library can not be loaded, or lacks an entry point. Check LIB_NAME in "
                       "kovadxcfg.ini and the libraries that it needs."),
            ("REFUSES", "error 99115: The runtime was asked to work before it was started. Start it first; an earlier "
                        "failure tells why it is not."),
            ("PYTHON", "error 999988: Python answered 1 when its run was set up. Look at its error output for the "
                       "failing start-up script."),
        ):
            with self.subTest(language=language):
                report = self.scratch / "report.html"
                run = self.run_script(language, "x", more=("--output", report))
                self.assertEqual(run, (125, [], [f"kovadx: can not run the script in {language}, {text}"]))
                self.assertFalse(report.exists())

    def test_the_report_is_written(self):
        report = self.scratch / "report.html"
        self.assertEqual(self.run_script("ECHO", "shown & kept", "return 3", more=("--output", report))[0], 3)
        self.assertIn("shown &amp; kept", report.read_text(encoding="utf-8"))

    def test_files_of_other_editors(self):
        path = self.script("\ufefffirst", "caf\u00e9", ending="\r\n")
        self.assertEqual(self.kovadx(*self.arguments("ECHO", path), encoding="utf-8"), (0, ["first", "caf\u00e9"], []))

    def test_a_script_that_can_not_be_read(self):
        path = self.scratch / "script.txt"
        self.assertEqual(self.kovadx(*self.arguments("ECHO", path))[0], 125)
        for data, column in ((b"a\nb\xff", 2), (b"x\ny\0", 2)):
            path.write_bytes(data)
            self.assertEqual(self.kovadx(*self.arguments("ECHO", path)), (125, [], [
                f"kovadx: can not read the script: {path}, row 2, column {column}: expected UTF-8 text, found another "
                "byte"]))

    def test_the_command_line(self):
        for arguments, line in (
            (["--language", "ECHO"], "no script to run; name it, as in: kovadx run --language PYTHON SCRIPT"),
            (["--language", "ECHO", "x", "--", "program"],
             '--language runs a script and no program beside it; leave out what stands behind "--"'),
            (["--language", "a b", "x"],
             '--language: expected 1 to 32 letters, digits and underscores, found "a b"; see kovadx --help'),
            (["--language", "ECHO", "--name", "OTHER", "x"], "--name excludes --language; see kovadx --help"),
            (["--process", "child", "x"], "--process requires --language; see kovadx --help"),
            (["--language", "ECHO", "--process", "beside", "x"],
             "--process: beside not in {inside,child}; see kovadx --help"),
            (["x"], "The following argument was not expected: x; see kovadx --help"),
            (["x", "--", "program"], "The following argument was not expected: x; see kovadx --help"),
        ):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.kovadx("run", *arguments), (125, [], [f"kovadx: {line}"]))


class PosixScripts(ScriptTest):
    def test_a_script_that_does_not_end_is_left(self):
        process = self.start(*self.arguments("ECHO", self.script("begun", "forever")))
        self.assertEqual(process.stdout.readline(), "begun\n")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(timeout=PATIENCE), 130)
        self.assertEqual(process.stderr.read(), "kovadx: the script was ended while it ran\n")
        # Nothing was tidied up; the next run does that.
        self.assertEqual(self.run_script("ECHO", "next"), (0, ["next"], []))


if __name__ == "__main__":
    run_tests([Scripts], [PosixScripts])
