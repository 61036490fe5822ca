#!/usr/bin/python3
"""Kills the two processes of a run at each of the steps by which they talk to each other, one run a step: the other one
learns it in time, and nothing is left behind. See child_test.py; --kill-shim names the library that kills. KILL_ROUNDS in
the environment repeats it all."""
import concurrent.futures
import os
import pathlib
import time

import kovadx_kit
from child_test import CHILD_IS_GONE, FATE_IS_KNOWN, ChildTest
from kovadx_kit import PATIENCE, PENGUINS, run_tests, wait_until

ROUNDS = int(os.environ.get("KILL_ROUNDS", "1"))
AT_ONCE = 2
LINES = ("begun", "variables", "return 3")


class Kills(ChildTest):
    def setUp(self):
        super().setUp()
        self.path = self.script(*LINES)

    def run_once(self, program, at):
        """One run, with the program killed at that step, 0 for none. Its own folder tells its processes from others."""
        folder = self.scratch / f"{program}{at}"
        folder.mkdir()
        stamp = folder / "stamp"
        variables = {"LD_PRELOAD": str(kovadx_kit.options.kill_shim), "KILL_PROGRAM": program, "KILL_STAMP": str(stamp),
                     "KOVADXTEMP": str(folder)}
        if at:
            variables["KILL_AT"] = str(at)
        run = self.kovadx(*self.arguments("ECHO", self.path, "--data", PENGUINS), variables=variables)
        ended = time.monotonic()
        return run, ended, float(stamp.read_text()) if stamp.exists() else None, folder

    def steps(self, program):
        run, _, count, _ = self.run_once(program, 0)
        self.assertEqual(run, (3, ["begun", "7"], []))
        return int(count)

    def each_step(self, program, check):
        count = self.steps(program)
        self.assertGreater(count, 30)
        late = 0
        for turn in range(ROUNDS):
            with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
                for at, result in enumerate(pool.map(lambda at: self.run_once(program, at), range(1, count + 1)), start=1):
                    with self.subTest(program=program, step=at, turn=turn):
                        run, ended, killed, folder = result
                        if killed is None:  # How many steps there are varies a little.
                            self.assertEqual(run, (3, ["begun", "7"], []))
                        else:
                            late = max(late, check(run, ended - killed, folder, killed))
                        for path in folder.iterdir():
                            path.unlink()
                        folder.rmdir()
        print(f"{program}: {count} steps, latest {late:.2f} s", end=" ", flush=True)
        self.check_the_next_run_tidies_up()

    def test_the_child(self):
        def check(run, seconds, _, __):
            code, _, errors = run
            self.assertTrue(any("ended by signal 9" in line for line in errors), run)
            self.assertIn(code, (3, 125, 137), run)
            self.assertLess(seconds, FATE_IS_KNOWN)
            return seconds

        self.each_step("startx", check)

    def test_the_engine(self):
        def check(run, _, folder, killed):
            self.assertEqual(run[0], -9)
            wait_until(lambda: not any(self.children_of(folder)), "the child ends")
            seconds = time.monotonic() - killed
            self.assertLess(seconds, CHILD_IS_GONE)
            return seconds

        self.each_step("kovadx", check)

    def children_of(self, folder):
        for pid in self.children():
            try:
                if str(folder) in pathlib.Path(f"/proc/{pid}/cmdline").read_text():
                    yield pid
            except (FileNotFoundError, ProcessLookupError):
                pass


if __name__ == "__main__":
    run_tests([], [Kills])
