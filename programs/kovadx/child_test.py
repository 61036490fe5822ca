#!/usr/bin/python3
"""Runs scripts in runtimes that are child processes, in the echo runtime, as users of the kovadx command do; see
kovadx_kit.py. A process that is left behind is a failure of every test."""
import os
import pathlib
import shutil
import signal
import time

import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, run_tests, wait_until
from script_test import ScriptTest

# The two limits that are promised, and what a busy machine may add.
FATE_IS_KNOWN = 1 + 2
CHILD_IS_GONE = 2 + 2


# One line of the child's, which tells by what it has learnt it.
ENGINE_GONE = r"\Astartx: .+; this process ends with all that it has started\Z"


def processes_with(text):
    """The processes in whose command line a text stands."""
    for folder in pathlib.Path("/proc").iterdir():
        if not folder.name.isdigit():
            continue
        try:
            state = (folder / "stat").read_text().rpartition(")")[2].split()[0]
            line = (folder / "cmdline").read_bytes().replace(b"\0", b" ").decode(errors="replace")
        except (FileNotFoundError, ProcessLookupError):
            continue
        if state != "Z" and text in line:
            yield int(folder.name)


class ChildTest(ScriptTest):
    """A home folder with the programs of the build's, the echo runtimes and a configuration of its own."""

    def setUp(self):
        super().setUp()
        for path in kovadx_kit.options.home.iterdir():
            if path.is_file() and path.suffix in (".exe", ".dll", ".1", "") and not (self.own_home / path.name).exists():
                shutil.copy(path, self.own_home, follow_symlinks=True)
        for path in kovadx_kit.options.home.glob("libkovadx.so*"):
            shutil.copy(path, self.own_home)
        self.addCleanup(self.check_no_process_left)

    def child_name(self):
        return "startx.exe" if kovadx_kit.options.emulator else "startx"

    # The child learns the folder for temporary files, which the test chooses, by its command line.
    def environment(self, preload=False, variables=None):
        return super().environment(preload, {"KOVADXTEMP": str(self.scratch), **(variables or {})})

    # Its command line is all that tells it from others on both platforms: the mode comes first, then the folder.
    def children(self):
        return list(processes_with(f"LOCAL {self.scratch}"))

    def check_no_process_left(self):
        wait_until(lambda: self.children() == [], "no child is left behind")

    def check_the_next_run_tidies_up(self):
        self.assertEqual(self.run_script("ECHO", "next"), (0, ["next"], []))
        self.assertEqual(list(self.pipes.iterdir()), [])

    def arguments(self, language, script, *more):
        return super().arguments(language, script, "--process", "child", *more)


class Children(ChildTest):
    def test_lines_are_run_and_shown(self):
        self.assertEqual(self.run_script("ECHO", "first", "second"), (0, ["first", "second"], []))
        self.assertEqual(self.run_script("ECHO"), (0, [], []), "an empty script")

    def test_calls_reach_the_engine(self):
        self.assertEqual(self.run_script("ECHO", "variables", more=("--data", PENGUINS)), (0, ["7"], []))

    def test_the_runtime_gets_arguments_and_environment(self):
        code, output, errors = self.run_script("ECHO", "arguments", "environment ECHO_VARIABLE", "environment KOVADXTEMP")
        self.assertEqual((code, output[:3], errors), (0, ["one", "two", "its value"], []))

    def test_the_scripts_result_is_the_exit_code(self):
        for result in (7, 255):
            self.assertEqual(self.run_script("ECHO", "before", f"return {result}", "behind"), (result, ["before"], []))
        self.assertEqual(self.run_script("ECHO", "return 256"), (125, [], ["kovadx: the script ended with error 256"]))

    def test_a_wrong_configuration_is_one_line(self):
        for language, text in (
            ("NONE", "can not run the script in NONE, error 99120: The configuration does not list the language. Add it "
                     "to the list X in kovadxcfg.ini."),
            ("ABSENT", "the script ended with error 99114: The runtime library can not be loaded, or lacks an entry "
                       "point. Check LIB_NAME in kovadxcfg.ini and the libraries that it needs."),
            ("NAMELESS", "the script ended with error 99118: No runtime library is configured for the language. Set "
                         "LIB_NAME in the language's section of kovadxcfg.ini."),
            ("PYTHON", "the script ended with error 999988: Python answered 1 when its run was set up. Look at its error "
                       "output for the failing start-up script."),
        ):
            with self.subTest(language=language):
                self.assertEqual(self.run_script(language, "x"), (125, [], [f"kovadx: {text}"]))

    def test_a_home_without_the_childs_program(self):
        (self.own_home / self.child_name()).unlink()
        code, output, errors = self.run_script("ECHO", "x")
        self.assertEqual((code, output, len(errors)), (125, [], 1))
        self.assertRegex(errors[0], r"\Akovadx: can not run the script in ECHO, error 99107: .+ Its program is .+"
                                    r"\\startx\.exe, which is not there\.\Z")

    def start_up_to(self, *lines):
        process = self.start(*self.arguments("ECHO", self.script("begun", *lines)))
        self.assertEqual(process.stdout.readline().rstrip(), "begun")
        children = self.children()
        self.assertEqual(len(children), 1)
        return process, children[0]

    def test_a_child_that_is_killed_in_its_script(self):
        process, child = self.start_up_to("forever")
        killed = time.monotonic()
        os.kill(child, signal.SIGKILL)
        code = process.wait(PATIENCE)
        self.assertLess(time.monotonic() - killed, FATE_IS_KNOWN)
        errors = process.stderr.read().splitlines()
        self.assertEqual(len(errors), 1, errors)
        if not kovadx_kit.options.emulator:
            self.assertEqual((code, errors), (137, [
                "kovadx: the script was cut short: its process was ended by signal 9"]))
        self.check_the_next_run_tidies_up()

    def test_an_engine_that_is_killed(self):
        process, child = self.start_up_to("forever")
        for pid in processes_with(str(self.own_home)):
            if pid != child and "kovadx" in pathlib.Path(f"/proc/{pid}/cmdline").read_text():
                os.kill(pid, signal.SIGKILL)
        killed = time.monotonic()
        wait_until(lambda: self.children() == [], "the child ends")
        self.assertLess(time.monotonic() - killed, CHILD_IS_GONE)
        process.wait(PATIENCE)
        self.check_the_next_run_tidies_up()


class PosixChildren(ChildTest):
    def kill_engine(self, process):
        """What the child tells then."""
        killed = time.monotonic()
        process.kill()
        wait_until(lambda: self.children() == [], "the child ends")
        self.assertLess(time.monotonic() - killed, CHILD_IS_GONE)
        return process.stderr.read().splitlines()

    def configure(self, before, after):
        path = self.own_home / "kovadxcfg.ini"
        path.write_text(path.read_text().replace(before, after))

    def test_a_script_that_ends_without_its_engine(self):
        self.configure("[SUPPORTED_LANG]\n", f"[SUPPORTED_LANG]\nTRACE={self.scratch}\n")
        # More than a pipe holds: the script can not come to its end before the engine is killed.
        process = self.start(*self.arguments("ECHO", self.script(*["variables"] * 50000), "--data", PENGUINS))
        for _ in range(10):
            self.assertEqual(process.stdout.readline(), "7\n")
        errors = self.kill_engine(process)
        self.assertRegex("\n".join(errors), ENGINE_GONE)
        traced = (self.scratch / "ECHO_trace.log").read_text().splitlines()
        for step in ("post_action", "stop_embedded_x"):
            self.assertTrue(any(f"StatisticsX::{step} error code : 0." in line for line in traced), traced[-20:])
        self.configure(f"TRACE={self.scratch}\n", "")
        self.check_the_next_run_tidies_up()

    def test_a_script_that_does_not_end_without_its_engine(self):
        process = self.start(*self.arguments("ECHO", self.script("begun", "forever")))
        self.assertEqual(process.stdout.readline(), "begun\n")
        errors = self.kill_engine(process)
        self.assertRegex("\n".join(errors), ENGINE_GONE)
        self.check_the_next_run_tidies_up()

    def test_a_child_that_can_not_make_its_pipes(self):
        self.configure("[ECHO]\n", "[ECHO]\nKOVA_PIPE_DIR=/nowhere/pipes\n")
        code, output, errors = self.run_script("ECHO", "x")
        self.assertEqual((code, output, len(errors)), (125, [], 2), errors)
        # Which of its pipes fails first is left to chance.
        self.assertRegex(errors[0], r"\Astartx: the engine can not be reached by its pipes|"
                                    r"\Astartx: the engine's control pipe can not be reached \(error 99104\)")
        self.assertRegex(errors[1], r"\Akovadx: can not run the script in ECHO, error ")

    def fake_startx(self, *lines):
        """A program of the stated name, which is looked for first."""
        program = self.own_home / "startx.exe"
        program.write_text("".join(line + "\n" for line in ("#!/bin/sh", *lines)))
        program.chmod(0o755)

    def test_the_command_line_of_the_child(self):
        self.fake_startx('for word in "$@"; do echo "[$word]" >&2; done', "exit 3")
        for language, more in (("ECHO", []), ("PYTHON", ["[]"])):
            with self.subTest(language=language):
                code, _, errors = self.run_script(language, "x")
                self.assertEqual(errors[:-1], ["[LOCAL]", f"[{self.scratch}]", errors[2], f"[{language}]", *more])
                self.assertRegex(errors[2], r"\A\[[0-9a-f]{4,}\]\Z")
                self.assertEqual(code, 125)
                self.assertRegex(errors[-1], r"\Akovadx: can not run the script in \w+, error 99107: .+ Its process ended "
                                             r"with exit code 3\.\Z")

    def test_a_child_that_never_connects_ends_with_the_user(self):
        self.fake_startx("echo up", "exec sleep 600")
        process = self.start(*self.arguments("ECHO", self.script("x")))
        self.assertEqual(process.stdout.readline(), "up\n", "what it prints is shown")
        time.sleep(1)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 130)
        (self.own_home / "startx.exe").unlink()
        self.check_the_next_run_tidies_up()

    def test_a_child_that_ends_before_it_connects(self):
        self.fake_startx("sleep 0.8", "exit 4")
        begun = time.monotonic()
        code, _, errors = self.run_script("ECHO", "x")
        self.assertLess(time.monotonic() - begun, 0.8 + FATE_IS_KNOWN)
        self.assertEqual((code, len(errors)), (125, 1))
        self.assertTrue(errors[0].endswith(" Its process ended with exit code 4."), errors)

    def test_an_interrupt_takes_the_child_along(self):
        process = self.start(*self.arguments("ECHO", self.script("begun", "forever")))
        self.assertEqual(process.stdout.readline(), "begun\n")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 130)
        self.assertEqual(process.stderr.read().splitlines()[0], "kovadx: the script was ended while it ran")
        self.check_the_next_run_tidies_up()


if __name__ == "__main__":
    run_tests([Children], [PosixChildren])
