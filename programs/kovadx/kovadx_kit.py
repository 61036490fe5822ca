"""What the tests of the kovadx command share. They run it as its users do, from the home folder that the build assembled.

Usage of each: TEST.py --home FOLDER [--emulator PROGRAM] [--preload LIBRARY] [--runtimes FOLDER]

With an emulator the home folder is that of the Windows build. --preload names the sanitizer's runtime, which a program
that loads an instrumented library must load first; --runtimes is where the build left the echo runtime.
"""
import argparse
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

HERE = pathlib.Path(__file__).resolve().parent
PENGUINS = HERE.parent.parent / "examples" / "penguins"
EXPECTED = (HERE / "penguins_dictionary.txt").read_text().splitlines()
PATIENCE = 90  # Seconds for a run as a whole; an emulator's first start takes some.

options = argparse.Namespace()  # Those of the command line, filled by run_tests.


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain: {what}")
        time.sleep(0.005)


def thread_states(pid):
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/stat"):
        try:
            yield status.read_text().rpartition(")")[2].split()[0]
        except (FileNotFoundError, ProcessLookupError):
            pass


def wait_until_at_rest(pid):
    """Waits until all threads of a process sleep. The thread sanitizer loses a signal that reaches a thread just as it
    begins, so none is sent before."""
    wait_until(lambda: set(thread_states(pid)) == {"S"}, "the program is at rest")


class KovadxTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.scratch = pathlib.Path(tempfile.mkdtemp(prefix="kovadx_test_"))
        self.addCleanup(shutil.rmtree, self.scratch, ignore_errors=True)
        self.pipes = self.scratch / "pipes"
        self.pipes.mkdir(mode=0o700)
        self.addCleanup(self.check_nothing_left)

    def check_nothing_left(self):
        left = list(self.pipes.glob("*xdapi*"))
        self.assertEqual(left, [], "socket files were left behind")

    def command(self, *arguments):
        suffix = ".exe" if options.emulator else ""
        start = [options.emulator] if options.emulator else []
        return [*start, str(options.home / f"kovadx{suffix}"), *map(str, arguments)]

    def environment(self, preload=False, variables=None):
        environment = {**os.environ, "KOVA_PIPE_DIR": str(self.pipes)}
        for name in ("KOVA_HOME", "KOVA_XNAME", "KOVADXTEMP"):
            environment.pop(name, None)
        if preload and options.preload:
            environment.update(LD_PRELOAD=options.preload, ASAN_OPTIONS="detect_leaks=0")
        environment.update(variables or {})
        return environment

    def kovadx(self, *arguments, preload=False, variables=None, **more):
        """Runs kovadx to its end: exit code, output lines, error lines."""
        run = subprocess.run(self.command(*arguments), env=self.environment(preload, variables), capture_output=True,
                             text=True, timeout=PATIENCE, **more)
        return run.returncode, run.stdout.splitlines(), run.stderr.splitlines()

    def start(self, *arguments, **more):
        process = subprocess.Popen(self.command(*arguments), env=self.environment(), stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True, **more)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def save(self, path, *program, data=PENGUINS, **more):
        """Runs a program that leaves the data as they are, and saves them."""
        return self.kovadx("run", "--data", data, "--save", path, "--", *(program or [self.describe()]), **more)

    def example(self, program):
        """An example in C."""
        return options.home / "examples" / "penguins" / (f"{program}.exe" if options.emulator else program)

    def describe(self):
        return self.example("describe")

    def shell(self, posix, windows):
        return ["cmd", "/c", windows] if options.emulator else ["/bin/sh", "-c", posix]


def run_tests(portable, posix):
    """Runs the test classes: those that run under an emulator too, and those that need a shell and signals of this system."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--home", type=pathlib.Path, required=True)
    parser.add_argument("--emulator")
    parser.add_argument("--preload")
    parser.add_argument("--runtimes", type=pathlib.Path)
    parser.add_argument("--kill-shim", type=pathlib.Path)
    parser.add_argument("--java-classes", type=pathlib.Path)
    parser.add_argument("--parts", type=pathlib.Path)
    parser.parse_args(namespace=options)
    signal.signal(signal.SIGINT, signal.default_int_handler)  # A shell's background job has it ignored.
    classes = portable if options.emulator else portable + posix
    loader = unittest.TestLoader()
    suite = unittest.TestSuite(loader.loadTestsFromTestCase(test_class) for test_class in classes)
    sys.exit(not unittest.TextTestRunner(verbosity=2).run(suite).wasSuccessful())
