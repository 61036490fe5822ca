#!/usr/bin/python3
"""Kills the engine at each of the steps by which it talks to the process of a real language, and that process at any
moment of a run: the other one learns it in time, and nothing is left behind. See language_kit.py; --kill-shim names the
library that kills. KILL_ROUNDS in the environment repeats it all.
"""
import concurrent.futures
import os
import random
import signal
import subprocess
import time

import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, run_tests, wait_until
from language_kit import FATE_IS_KNOWN, LanguageTest, chosen_language

ROUNDS = int(os.environ.get("KILL_ROUNDS", "1"))
AT_ONCE = 2
MOMENTS = 20
RESULT = (0, ["7"], [])


class Kills(LanguageTest):
    def setUp(self):
        super().setUp()
        self.path = self.language.write(self, "calls")
        self.line = self.command(*self.arguments(self.path, "--data", PENGUINS))

    def folder(self, name):
        """For temporary files of one run: it tells the run's processes from others."""
        folder = self.scratch / name
        folder.mkdir()
        return folder

    def run_once(self, at, name):
        """One run, with kovadx killed at that step, 0 for none: its end, when it came and when it was killed."""
        folder = self.folder(name)
        stamp = folder / "stamp"
        variables = {"LD_PRELOAD": str(kovadx_kit.options.kill_shim), "KILL_PROGRAM": "kovadx", "KILL_STAMP": str(stamp),
                     "KOVADXTEMP": str(folder), **({"KILL_AT": str(at)} if at else {})}
        run = self.kovadx(*self.arguments(self.path, "--data", PENGUINS), variables=variables)
        return run, float(stamp.read_text()) if stamp.exists() else None, folder

    def check_step(self, at, turn):
        run, killed, folder = self.run_once(at, f"{turn}_{at}")
        if killed is None:  # How many steps there are varies a little.
            self.assertEqual(run, RESULT)
            return 0
        self.assertEqual(run[0], -signal.SIGKILL)
        return self.wait_until_gone(killed, folder)

    def test_the_engine_at_each_step(self):
        run, count, _ = self.run_once(0, "whole")
        self.assertEqual(run, RESULT)
        self.assertGreater(count, 10)
        late = 0
        for turn in range(ROUNDS):
            with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
                futures = {at: pool.submit(self.check_step, at, turn) for at in range(1, int(count) + 1)}
                for at, future in futures.items():
                    with self.subTest(step=at, turn=turn):
                        late = max(late, future.result())
        print(f"{int(count)} steps, latest {late:.2f} s", end=" ", flush=True)
        self.check_the_next_run_tidies_up()

    def check_moment(self, seconds, name):
        """Kills the language's process that long after its start."""
        folder = self.folder(name)
        with subprocess.Popen(self.line, env=self.environment(variables={"KOVADXTEMP": str(folder)}),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True) as process:
            try:
                wait_until(lambda: self.children(folder) or process.poll() is not None, "the process runs")
                time.sleep(seconds)
                killed = time.monotonic()
                for child in self.children(folder):
                    self.kill(child)
                output, errors = process.communicate(timeout=PATIENCE)
            finally:
                process.kill()
        late = time.monotonic() - killed
        self.assertLess(late, FATE_IS_KNOWN)
        if (process.returncode, output.splitlines(), errors.splitlines()) == RESULT:
            return 0  # It was over.
        self.assertIn("ended by signal 9", errors)
        self.assertIn(process.returncode, (0, 125, 137), errors)
        return late

    @staticmethod
    def kill(pid):
        try:
            os.kill(pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def length_of_a_run(self):
        begun = time.monotonic()
        self.assertEqual(self.run_file(self.path, "--data", PENGUINS), RESULT)
        return time.monotonic() - begun

    def test_the_languages_process_at_any_moment(self):
        length = self.length_of_a_run()
        moments = [random.uniform(0, length) for _ in range(MOMENTS * ROUNDS)]
        late = 0
        with concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
            futures = [pool.submit(self.check_moment, seconds, f"moment{i}") for i, seconds in enumerate(moments)]
            for seconds, future in zip(moments, futures, strict=True):
                with self.subTest(seconds=seconds):
                    late = max(late, future.result())
        print(f"latest {late:.2f} s", end=" ", flush=True)
        self.check_the_next_run_tidies_up()


if __name__ == "__main__":
    LanguageTest.language = chosen_language()
    run_tests([], [Kills])
