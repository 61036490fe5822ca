#!/usr/bin/python3
"""Kills the two processes of a run at random moments: the other one learns it in time, and nothing is left behind. See
child_test.py. KILL_ROUNDS in the environment tells how often each is killed, KILL_SEED repeats the moments of an earlier
run of this test."""
import os
import random
import signal
import subprocess
import time

import kovadx_kit
from child_test import CHILD_IS_GONE, FATE_IS_KNOWN, ChildTest, processes_with
from kovadx_kit import PATIENCE, PENGUINS, run_tests, wait_until

ROUNDS = int(os.environ.get("KILL_ROUNDS", "4"))
MOST_ROUNDS = 10 * ROUNDS  # Where a busy machine makes the moments miss what they are meant for.
SEED = int(os.environ.get("KILL_SEED", str(random.randrange(1 << 32))))
CALLS = 1000
LINES = ("begun", *["variables"] * CALLS, "return 3")
# Nothing, or one line of the child's, which tells by what it has learnt it.
ENGINE_GONE = r"\A(startx: .+; this process ends with all that it has started)?\Z"
SHOWN = ["begun", *["7"] * CALLS]


class RandomKills(ChildTest):
    def setUp(self):
        super().setUp()
        self.random = random.Random(f"{SEED} {self.id()}")
        self.path = self.script(*LINES)

    def begin(self):
        """Starts a run; its output goes to files, since nobody reads pipes meanwhile."""
        with open(self.scratch / "output", "wb") as output, open(self.scratch / "errors", "wb") as errors:
            process = subprocess.Popen(self.command(*self.arguments("ECHO", self.path, "--data", PENGUINS)),
                                       env=self.environment(), stdout=output, stderr=errors)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def result(self, process):
        code = process.wait(PATIENCE)
        return code, *((self.scratch / name).read_text().splitlines() for name in ("output", "errors"))

    def await_child(self):
        wait_until(lambda: len(self.children()) == 1, "the child is there")
        return self.children()[0]

    def engines(self):
        children = self.children()
        return [pid for pid in processes_with(f"run --home {self.own_home}") if pid not in children]

    def duration(self, begun):
        """How long a run takes from that moment of it on."""
        process = self.begin()
        begun()
        since = time.monotonic()
        self.assertEqual(self.result(process), (3, SHOWN, []))
        return time.monotonic() - since

    def each_round(self, begun, round_with):
        """`round_with` gives the time that the other process has taken to end; None when the run was over before."""
        duration = self.duration(begun)
        latest, inTheMiddle, turn = 0, 0, 0
        while turn < ROUNDS or (inTheMiddle == 0 and turn < MOST_ROUNDS):
            turn += 1
            moment = self.random.uniform(0, duration)
            with self.subTest(turn=turn, seed=SEED, moment=f"{moment:.3f} of {duration:.3f} s"):
                seconds = round_with(moment)
                latest, inTheMiddle = max(latest, seconds or 0), inTheMiddle + (seconds is not None)
        print(f"{inTheMiddle} of {turn} in the middle of {duration:.1f} s, seed {SEED}, latest {latest:.2f} s", end=" ",
              flush=True)
        self.assertGreater(inTheMiddle, 0)
        self.check_the_next_run_tidies_up()

    def kill(self, processes):
        """Whether any was still there."""
        found = 0
        for pid in processes:
            try:
                os.kill(pid, signal.SIGKILL)
                found += 1
            except ProcessLookupError:
                pass  # It has just ended by itself.
        return found > 0

    def kill_child(self, moment):
        process = self.begin()
        child = self.await_child()
        time.sleep(moment)
        isKilled = self.kill([child])
        killed = time.monotonic()
        code, output, errors = self.result(process)
        seconds = time.monotonic() - killed
        if not isKilled or not errors:
            self.assertEqual((code, output, errors), (3, SHOWN, []))
            return None
        self.assertLess(seconds, FATE_IS_KNOWN)
        self.assertEqual(len(errors), 1, errors)
        self.assertEqual(output, SHOWN[:len(output)])
        self.assertIn(code, (3, 125, 137), errors)
        # The emulator takes a process that is killed from outside for one that has ended with 0.
        self.assertIn("ended with exit code 0" if kovadx_kit.options.emulator else "ended by signal 9", errors[0])
        return seconds

    def kill_engine(self, moment):
        process = self.begin()
        wait_until(self.engines, "kovadx is there")
        time.sleep(moment)
        isKilled = self.kill(self.engines())
        killed = time.monotonic()
        wait_until(lambda: self.children() == [], "the child ends")
        seconds = time.monotonic() - killed
        self.assertLess(seconds, CHILD_IS_GONE)
        code, output, errors = self.result(process)
        self.assertRegex("\n".join(errors), ENGINE_GONE)
        self.assertEqual(output, SHOWN[:len(output)])
        return seconds if isKilled else None

    def test_the_child(self):
        self.each_round(self.await_child, self.kill_child)

    def test_the_engine(self):
        self.each_round(lambda: wait_until(self.engines, "kovadx is there"), self.kill_engine)


if __name__ == "__main__":
    run_tests([RandomKills], [])
