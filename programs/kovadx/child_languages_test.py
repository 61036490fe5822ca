#!/usr/bin/python3
"""Runs scripts of a real language in a process of its own, as users of the kovadx command do, and ends them in every way;
see language_kit.py.
"""
import os
import signal
import time

from kovadx_kit import PENGUINS, run_tests, wait_until
from language_kit import FATE_IS_KNOWN, SLEEP, LanguageTest, Python, R, chosen_language

KILLED = "kovadx: the script was cut short: its process was ended by signal 9"


class Scripts(LanguageTest):
    def test_the_summary_is_that_of_a_program(self):
        program = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", "-B", PENGUINS / "summary.py", preload=True)
        self.assertEqual((program[0], program[2]), (0, []))
        self.assertEqual(self.run_file(self.summary(), "--data", PENGUINS), program)

    def test_the_report_is_written(self):
        report = self.scratch / "report.html"
        self.assertEqual(self.run_file(self.summary(), "--data", PENGUINS, "--output", report)[0], 0)
        self.assertIn("Body mass (g) by species and island", report.read_text(encoding="utf-8"))

    def test_calls_reach_the_engine(self):
        self.assertEqual(self.run_script("calls", "--data", PENGUINS), (0, ["7"], []))

    def test_an_empty_script(self):
        self.assertEqual(self.run_script("empty"), (0, [], []))

    def test_an_error(self):
        code, output, errors = self.run_script("fails")
        expected = self.language.FAILED
        self.assertEqual((code, output, errors[:len(expected[2])]), expected)

    def test_the_scripts_own_result(self):
        code, output, errors = self.run_script("exits")
        self.assertEqual((code, errors), (7, []))
        self.assertIn(output, (["before"], []))

    def test_a_folder_with_other_letters(self):
        folder = self.scratch / "größe 'a' \"b\""
        folder.mkdir()
        script = self.language.write(self, "prints")
        moved = script.rename(folder / script.name)
        self.assertEqual(self.run_file(moved)[0], 0)


class Ends(LanguageTest):
    """Of kovadx and of the language's process, in the middle of a script."""

    def test_an_interrupt(self):
        for script in ("loops", "waits"):
            with self.subTest(script=script):
                process, _ = self.start_script(script)
                interrupted = time.monotonic()
                process.send_signal(signal.SIGINT)
                code, _, errors = self.end_of(process)
                self.assertEqual((code, errors[0]), (130, "kovadx: the script was ended while it ran"))
                self.wait_until_gone(interrupted)
        self.check_the_next_run_tidies_up()

    def test_a_process_that_is_killed(self):
        for script in ("loops", "waits"):
            with self.subTest(script=script):
                process, child = self.start_script(script)
                killed = time.monotonic()
                os.kill(child, signal.SIGKILL)
                run = self.end_of(process)
                self.assertLess(time.monotonic() - killed, FATE_IS_KNOWN)
                self.assertEqual((run[0], run[2]), (137, [KILLED]))
        self.check_the_next_run_tidies_up()

    def test_an_engine_that_is_killed(self):
        for script in ("loops", "waits"):
            with self.subTest(script=script):
                process, _ = self.start_script(script)
                killed = time.monotonic()
                process.kill()
                self.wait_until_gone(killed)
                self.end_of(process)
        self.check_the_next_run_tidies_up()


class LastWords(LanguageTest):
    """What R's console itself has shown is told when R is cut short."""

    def test_a_console_that_is_killed(self):
        process, child = self.start_script("speaks")
        os.kill(child, signal.SIGKILL)
        self.assertEqual(self.end_of(process), (137, [], [KILLED, "last words", "of the console"]))
        self.check_the_next_run_tidies_up()


class ConsoleOfR(LanguageTest):
    """What could keep R's console from its next prompt."""

    def run_lines(self, *lines, **others):
        script = self.scratch / "script.R"
        script.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        return self.run_file(script, **others)

    def test_quotes_in_the_temporary_folder(self):
        for name in ("it's a", "'", 'a "b"', "a\\'b"):
            with self.subTest(name=name):
                folder = self.scratch / name
                folder.mkdir()
                self.assertEqual(self.run_script("calls", "--data", PENGUINS, variables={"KOVADXTEMP": str(folder)}),
                                 (0, ["7"], []))

    def test_a_crash(self):
        for number in (signal.SIGSEGV, signal.SIGBUS, signal.SIGILL):
            with self.subTest(number=number):
                self.assertEqual(self.run_lines("cat('before\\n')", f"tools::pskill(Sys.getpid(), {number:d})"),
                                 (128 + number, ["before"], [
                                     f"kovadx: the script was cut short: its process was ended by signal {number:d}"]))

    def test_the_debugger(self):
        self.assertEqual(self.run_lines("f <- function() { browser(); cat('in f\\n'); 3 }", "f()", "cat('end\\n')"),
                         (0, ["Called from: f()", "in f", "[1] 3", "end"], []))

    def test_questions(self):
        self.assertEqual(self.run_lines("readline('Name? ')", "readLines('stdin')", "system('cat')", "quit('ask')"),
                         (0, ["Name? ", '[1] ""', "character(0)"], []))
        code, output, errors = self.run_lines("options(error = recover)", "stop('no')")
        self.assertEqual((code, output[0], output[-1], errors), (1, "Error: no", "Selection: ", []))

    def test_what_looks_like_a_prompt(self):
        for prompt in ("+ ", "> "):
            with self.subTest(prompt=prompt):
                self.assertEqual(self.run_lines(f"system(\"printf '{prompt}'\")", "Sys.sleep(1)", "cat('fine\\n')"),
                                 (0, ["fine"], []))


class ProcessesOfTheScript(LanguageTest):
    """What a script has started belongs to its process."""

    def start_with_process(self):
        process, child = self.start_script("starts")
        wait_until(lambda: len(self.sleepers()) == 1, "what the script has started runs")
        return process, child

    def sleepers(self):
        return [pid for pid in self.children() if self.command_line(pid) == list(SLEEP)]

    @staticmethod
    def command_line(pid):
        try:
            with open(f"/proc/{pid}/cmdline", encoding="utf-8") as file:
                return file.read().split("\0")[:-1]
        except (FileNotFoundError, ProcessLookupError):
            return []

    def test_the_script_ends(self):
        code, output, errors = self.run_script("leaves")
        self.assertEqual((code, output, errors), (0, ["begun"], []))
        self.wait_until_gone(time.monotonic())

    def test_its_process_is_killed(self):
        process, child = self.start_with_process()
        killed = time.monotonic()
        os.kill(child, signal.SIGKILL)
        self.assertEqual(self.end_of(process)[::2], (137, [KILLED]))
        self.wait_until_gone(killed)

    def test_an_interrupt(self):
        process, _ = self.start_with_process()
        interrupted = time.monotonic()
        process.send_signal(signal.SIGINT)
        self.assertEqual(self.end_of(process)[0], 130)
        self.wait_until_gone(interrupted)
        self.check_the_next_run_tidies_up()


class ProcessesThatOutlastTheEngine(ProcessesOfTheScript):
    """Only a process that watches the engine itself takes its own along when the engine ends without ending it."""

    def test_a_script_that_ends_without_its_engine(self):
        process, _ = self.start_script("outlives", "first")
        killed = time.monotonic()
        process.kill()
        self.wait_until_gone(killed)
        self.assertEqual((self.scratch / "outlives.py.kept").read_text(), "kept\n")
        self.check_the_next_run_tidies_up()

    def test_nobody_reads_what_is_told(self):
        process, _ = self.start_with_process()
        process.stderr.close()
        killed = time.monotonic()
        process.kill()
        self.wait_until_gone(killed)
        self.check_the_next_run_tidies_up()

    def test_the_engine_is_killed(self):
        process, _ = self.start_with_process()
        killed = time.monotonic()
        process.kill()
        self.wait_until_gone(killed)
        self.check_the_next_run_tidies_up()


if __name__ == "__main__":
    LanguageTest.language = chosen_language()
    of_processes = ProcessesThatOutlastTheEngine if LanguageTest.language is Python else ProcessesOfTheScript
    run_tests([], [Scripts, Ends, of_processes, *([LastWords, ConsoleOfR] if LanguageTest.language is R else [])])
