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


class ProcessesThatOutlastTheEngine(ProcessesOfTheScript):
    """Only a process that watches the engine itself takes its own along when the engine ends without ending it."""

    def test_an_interrupt(self):
        process, _ = self.start_with_process()
        interrupted = time.monotonic()
        process.send_signal(signal.SIGINT)
        self.assertEqual(self.end_of(process)[0], 130)
        self.wait_until_gone(interrupted)
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
    run_tests([], [Scripts, Ends, of_processes, *([LastWords] if LanguageTest.language is R else [])])
