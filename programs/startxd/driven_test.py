#!/usr/bin/python3
"""Drives the engine as a program of its own does: starts it, calls it, stops it, and sees it and its driver end in every
way; see kovadx_kit.py. A process that is left behind is a failure of every test."""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "kovadx"))

import kovadx_kit
from child_test import processes_with
from kovadx_kit import PATIENCE, PENGUINS, KovadxTest, run_tests, thread_states, wait_until, wait_until_at_rest

ENGINE_IS_GONE = 2 + 2  # The limit that is promised, and what a busy machine may add.
LISTED, UNLISTED = "ECHO", "PENGUINS"
CONFIGURATION = "[SUPPORTED_LANG]\nX=ECHO\n[ECHO]\nLIB_NAME=kovaecho\n"
SMALLER = '{"name": "smaller", "resources": [{"name": "t", "path": "t.csv", "schema": {"fields": ' \
          '[{"name": "a", "type": "number"}]}}]}'


class Driver:
    """A driving program that does what it is told."""

    def __init__(self, test, **more):
        start = [kovadx_kit.options.emulator] if kovadx_kit.options.emulator else []
        self.process = subprocess.Popen(
            [*start, str(test.own_home / test.file("driver")), test.path(test.own_home)], env=test.environment(),
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=test.errors, text=True, bufsize=1, **more)
        self.shown = []
        test.addCleanup(self.close)

    def tell(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def answer(self):
        """The next one; what the engine shows before it is kept."""
        for line in self.process.stdout:
            if line.startswith("> "):
                return line[2:].rstrip("\n")
            self.shown.append(line.rstrip("\n"))
        return "the driver has ended"

    def ask(self, line):
        self.tell(line)
        return self.answer()

    def start(self, name=UNLISTED, options=""):
        self.ask(f"name {name}")
        return self.ask(f"start {options}")

    def end(self):
        """Ends as a program does that has forgotten its engine."""
        self.process.stdin.close()
        return self.process.wait(PATIENCE)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        for stream in (self.process.stdin, self.process.stdout):
            stream.close()


class DrivenTest(KovadxTest):
    def setUp(self):
        super().setUp()
        self.variables = {}
        self.own_home = self.scratch / "home"
        self.own_home.mkdir()
        (self.own_home / "kovadxcfg.ini").write_text(CONFIGURATION)
        home, parts = kovadx_kit.options.home, kovadx_kit.options.parts
        library = [home / "kovadx.dll"] if kovadx_kit.options.emulator else home.glob("libkovadx.so*")
        runtime = kovadx_kit.options.runtimes.glob("kovaecho.*")
        for file in (home / self.file("StartXD"), parts / self.file("driver"), *library, *runtime):
            shutil.copy(file, self.own_home)
        self.errors = open(self.scratch / "errors", "w+", encoding="utf-8")
        self.addCleanup(self.errors.close)
        self.addCleanup(self.check_no_engine_left)

    def check_nothing_left(self):
        """What a killed process leaves of its pipes is the next one's to take away."""

    def file(self, name):
        return f"{name}.exe" if kovadx_kit.options.emulator else name

    def path(self, path):
        return f"Z:{path}".replace("/", "\\") if kovadx_kit.options.emulator else str(path)

    def data(self, path=PENGUINS):
        return f'"{self.path(path)}"'

    # The engine learns the folder for temporary files, which the test chooses, by its command line.
    def environment(self, preload=False, variables=None):
        return super().environment(preload, {"KOVADXTEMP": self.path(self.scratch), **self.variables, **(variables or {})})

    def engines(self):
        return [pid for pid in processes_with(self.scratch.name) if not self.is_driver(pid)]

    def is_driver(self, pid):
        """Under an emulator the engine's command line does not tell its program."""
        try:
            return "driver" in pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().decode(errors="replace")
        except (FileNotFoundError, ProcessLookupError):
            return True

    def engine(self):
        engines = self.engines()
        self.assertEqual(len(engines), 1)
        return engines[0]

    def check_no_engine_left(self):
        wait_until(lambda: self.engines() == [], "no engine is left behind")

    def expect_engine_gone(self):
        begun = time.monotonic()
        self.check_no_engine_left()
        self.assertLess(time.monotonic() - begun, ENGINE_IS_GONE)

    def told(self):
        self.errors.seek(0)
        return self.errors.read().splitlines()

    def session(self, driver, name=UNLISTED):
        """A session in which nothing goes wrong."""
        self.assertEqual(driver.start(name, self.data()), "0")
        self.assertEqual((driver.ask("ready"), driver.ask("driven")), ("1", "1"))
        self.assertEqual((driver.ask("variables"), driver.ask("rows")), ("0 7", "0 344"))
        self.assertEqual(driver.ask("stop"), "stopped")
        self.assertEqual(self.engines(), [])
        self.assertEqual(driver.ask("ready"), "0")


class Driven(DrivenTest):
    def test_a_session_and_another_one(self):
        driver = Driver(self)
        for name in (UNLISTED, LISTED, UNLISTED):
            self.session(driver, name)
        self.assertEqual(driver.end(), 0)
        self.assertEqual(self.told(), [])

    def test_syntax_reaches_the_engine(self):
        driver = Driver(self)
        self.assertEqual(driver.start(LISTED, self.data()), "0")
        self.assertEqual(driver.ask("queue compute a = 1;"), "0")
        self.assertEqual(driver.ask("submit compute b = a + 1;"), "0")
        self.assertEqual(driver.ask("variables"), "0 9")
        self.assertEqual(driver.ask("submit no such command"), "98140")
        self.assertRegex(driver.shown[-1], "98140 in line 1, column 1")
        self.assertEqual(driver.ask("variables"), "0 9")
        self.assertEqual(driver.ask("stop"), "stopped")

    def test_blocks_run_in_the_driver(self):
        driver = Driver(self)
        self.assertEqual(driver.start(LISTED, self.data()), "0")
        for _ in range(3):
            driver.shown.clear()
            for line in ("begin ECHO", "calls", "variables", "submit compute c = 1", "variables", "end ECHO"):
                self.assertEqual(driver.ask(f"queue {line}"), "0")
            self.assertEqual(driver.ask("submit drop c;"), "0")
            self.assertRegex(driver.shown[0], r"\Ainit 0, pre \d, execute \d, post \d, stop 0")
            self.assertEqual(driver.shown[1:], ["7", "8"])
        self.assertEqual(driver.ask("stop"), "stopped")

    def test_a_start_while_the_engine_is_up(self):
        driver = Driver(self)
        self.assertEqual(driver.start(), "0")
        engine = self.engine()
        self.assertEqual(driver.ask("start "), "0")
        self.assertEqual(self.engine(), engine)
        self.assertEqual(driver.ask("variables"), "98004 0", "no data were told")
        self.assertEqual(driver.ask("stop"), "stopped")
        self.assertEqual(driver.ask("stop"), "stopped", "there is nothing to stop")

    def test_a_missing_program(self):
        (self.own_home / self.file("StartXD")).unlink()
        driver = Driver(self)
        self.assertEqual(driver.start(), "17")
        self.assertEqual(len(driver.shown), 1)
        self.assertRegex(driver.shown[0], r"\ANo .+\\home\\StartXD\.exe file exists\Z")
        self.assertEqual(driver.ask("submit x"), "17")

    def test_data_that_can_not_be_read(self):
        driver = Driver(self)
        for name in (UNLISTED, LISTED):
            self.assertEqual(driver.start(name, self.data(self.scratch / "nothing")), "98095")
            self.assertEqual(self.engines(), [])
            self.assertEqual(driver.ask("ready"), "0")
        self.session(driver, LISTED)
        self.assertEqual(len(self.told()), 2)
        self.assertRegex(self.told()[0], r"\AStartXD: can not read the data: .+nothing")

    def test_two_drivers_at_the_same_time(self):
        smaller = self.scratch / "smaller"
        smaller.mkdir()
        (smaller / "datapackage.json").write_text(SMALLER)
        (smaller / "t.csv").write_text("a\n1\n2\n")
        one, other = Driver(self), Driver(self)
        self.assertEqual(one.start(LISTED, self.data()), "0")
        self.assertEqual(other.start(LISTED, self.data(smaller)), "0")
        for _ in range(10):
            one.tell("rows")
            other.tell("rows")
            self.assertEqual((one.answer(), other.answer()), ("0 344", "0 2"))
        self.assertEqual(one.ask("stop"), "stopped")
        self.assertEqual(other.ask("variables"), "0 1", "it goes on")
        self.assertEqual(other.ask("stop"), "stopped")

    def test_a_driver_that_ends_without_a_stop(self):
        for name in (UNLISTED, LISTED):
            driver = Driver(self)
            self.assertEqual(driver.start(name, self.data()), "0")
            self.assertEqual(driver.ask("variables"), "0 7")
            self.assertEqual(driver.end(), 0)
            self.expect_engine_gone()


class Failures(DrivenTest):
    def start_up(self, name):
        driver = Driver(self)
        self.assertEqual(driver.start(name, self.data()), "0")
        self.assertEqual(driver.ask("variables"), "0 7")
        return driver

    def check_the_next_start(self, driver, name):
        """The name and the home folder are still known."""
        self.assertEqual(driver.ask(f"start {self.data()}"), "0")
        self.assertEqual(driver.ask("variables"), "0 7")
        self.assertEqual(driver.ask("stop"), "stopped")
        self.session(driver, name)
        self.assertEqual(driver.end(), 0)
        self.assertEqual(list(self.pipes.glob("*xdapi*")), [])

    def take_the_engines_place(self, program):
        (self.own_home / "StartXD.exe").unlink(missing_ok=True)
        shutil.copy(program, self.own_home / "StartXD.exe")

    def restore_the_engine(self):
        self.take_the_engines_place(kovadx_kit.options.home / self.file("StartXD"))

    def start_in_vain(self, driver, lives, limit):
        """Its code. A busy emulator may take the half second, after which the engine has to run, to end a process."""
        for _ in range(5 if kovadx_kit.options.emulator and lives == "0" else 1):
            begun = time.monotonic()
            code = driver.start(LISTED, lives)
            self.assertLess(time.monotonic() - begun, limit)
            if code == "99107":
                break
        return code

    def test_an_engine_that_ends_before_it_greets(self):
        self.take_the_engines_place(kovadx_kit.options.parts / self.file("brief_engine"))
        driver = Driver(self)
        for lives, code, limit in (("0", "99107", 2), ("1000", "109", 4)):
            with self.subTest(lives=lives):
                self.assertEqual(self.start_in_vain(driver, lives, limit), code)
                self.assertEqual(driver.ask("submit x"), "17")
        self.restore_the_engine()
        self.session(driver, LISTED)

    def test_a_program_that_may_not_be_run(self):
        (self.own_home / "StartXD.exe").write_text("no program")
        self.assertEqual(Driver(self).start(), "99107")

    def test_a_driver_that_is_killed(self):
        for name in (UNLISTED, LISTED):
            driver = self.start_up(name)
            driver.process.kill()
            self.expect_engine_gone()
            self.session(Driver(self), name)

    def test_a_driver_that_is_killed_while_it_starts(self):
        for delay in (0, 0.02, 0.1, 0.5):
            driver = Driver(self)
            driver.tell(f"name {LISTED}")
            driver.tell(f"start {self.data()}")
            wait_until(self.engines, "the engine is there")
            time.sleep(delay)
            driver.process.kill()
            self.expect_engine_gone()

    def test_an_engine_that_is_killed(self):
        for name in (UNLISTED, LISTED):
            driver = self.start_up(name)
            os.kill(self.engine(), signal.SIGKILL)
            self.assertEqual(driver.ask("submit x"), "109")
            self.assertEqual((driver.ask("ready"), driver.ask("stop")), ("0", "stopped"))
            self.check_the_next_start(driver, name)

    def test_an_engine_that_is_killed_in_a_call(self):
        for name in (UNLISTED, LISTED):
            driver, engine = self.start_up(name), self.engine()
            os.kill(engine, signal.SIGSTOP)
            wait_until(lambda pid=engine: set(thread_states(pid)) == {"T"}, "the engine stands still")
            driver.tell("submit x")
            wait_until_at_rest(driver.process.pid)
            os.kill(engine, signal.SIGKILL)
            self.assertEqual(driver.answer(), "109")
            self.check_the_next_start(driver, name)

    def test_an_engine_that_is_killed_before_the_first_call(self):
        driver = Driver(self)
        self.assertEqual(driver.start(LISTED, self.data()), "0")
        os.kill(self.engine(), signal.SIGKILL)
        self.assertEqual(driver.ask("variables"), "109 0")
        self.check_the_next_start(driver, LISTED)


class Cycles(DrivenTest):
    def work(self, driver, name):
        """Commands, one of them in two parts, data that are read, and a block that asks and submits."""
        self.assertEqual(driver.ask("queue compute a = "), "0")
        self.assertEqual(driver.ask("submit 1; compute b = a + 1;"), "0")
        self.assertEqual((driver.ask("variables"), driver.ask("rows"), driver.ask("cases")), ("0 9", "0 344", "0 344"))
        if name == LISTED:
            driver.shown.clear()
            for line in ("begin ECHO", "submit compute c = 1;", "variables", "end ECHO"):
                self.assertEqual(driver.ask(f"queue {line}"), "0")
            self.assertEqual(driver.ask("submit drop a, b;"), "0")
            self.assertEqual((driver.shown, driver.ask("variables")), (["10"], "0 8"))

    def cycle(self, count, names, look):
        """In several programs at the same time, since most of a cycle is waiting."""
        drivers = [(Driver(self), name) for name in names]
        for _ in range(count):
            for driver, name in drivers:
                driver.ask(f"name {name}")
                driver.tell(f"start {self.data()}")
            for driver, name in drivers:
                self.assertEqual(driver.answer(), "0")
                self.work(driver, name)
                driver.tell("stop")
            for driver, _ in drivers:
                self.assertEqual(driver.answer(), "stopped")
            self.assertEqual(self.engines(), [])
            for driver, _ in drivers:
                look(driver)
        for driver, _ in drivers:
            self.assertEqual(driver.end(), 0)  # The address sanitizer makes it another one when it finds a leak.
        self.assertEqual(self.told(), [])

    def test_a_hundred_cycles_leave_nothing(self):
        # What is freed counts as free at once, and which thread asks does not count.
        self.variables["GLIBC_TUNABLES"] = "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1"
        listed, count, known, spare = 4, 25, 10, (0, 0, 0)
        if kovadx_kit.options.emulator:
            # What a lock of the C library needs is made when it is first waited for, which may be late.
            listed, count, known, spare = 1, 14, 4, (2, 0, 1500)
        seen = {}

        def look(driver):
            handles, memory = map(int, driver.ask("usage").split())
            threads = len(os.listdir(f"/proc/{driver.process.pid}/task"))
            seen.setdefault(driver, []).append((handles, threads, memory))

        self.cycle(count, [LISTED] * listed + [UNLISTED], look)
        for looks in seen.values():
            self.assertEqual(len(looks), count)
            grown = [after - before for before, after in zip(looks[known - 1], looks[-1])]
            self.assertTrue(all(more <= most for more, most in zip(grown, spare)), f"handles, threads, bytes: {looks}")
        self.assertEqual(list(self.pipes.iterdir()), [])


class PosixDriven(DrivenTest):
    def program(self, *lines):
        """A program of the stated name, which is looked for first."""
        program = self.own_home / "StartXD.exe"
        program.write_text("".join(line + "\n" for line in ("#!/bin/sh", *lines)))
        program.chmod(0o755)

    def test_the_command_line(self):
        self.program("printf '[%s]\\n' \"$@\" >&2", "exit 3")
        driver = Driver(self)
        self.assertEqual(driver.start(LISTED, 'one "two three"'), "99107")
        told = self.told()
        self.assertEqual([told[0], *told[2:]], [f"[\\{str(self.scratch)[1:]}\\]".replace("/", "\\"), f"[{LISTED}]", "[one]",
                                                "[two three]"])
        self.assertRegex(told[1], r"\A\[[0-9a-f]{4,}\]\Z")

    def test_nobody_reads_what_the_engine_shows(self):
        driver = Driver(self, restore_signals=False)  # It outlives its output, as this process does.
        self.assertEqual(driver.start(UNLISTED, self.data()), "0")
        driver.process.stdout.close()
        driver.tell("submit help; help;")
        saved = self.scratch / "saved.json"
        driver.tell(f'submit save "{saved}";')
        wait_until(saved.is_file, "the engine goes on")
        driver.tell("stop")
        self.check_no_engine_left()
        self.assertEqual((driver.end(), self.told()), (0, []))


if __name__ == "__main__":
    run_tests([Driven, Failures, Cycles], [PosixDriven])
