#!/usr/bin/python3
"""kovadx monitor: the state of a pipe suite; see kovadx_kit.py."""
import signal
import socket
import struct
import subprocess
import time

from kovadx_kit import PATIENCE, KovadxTest, run_tests, wait_until


class MonitorTest(KovadxTest):
    NOBODY = "engine not seen, runtime not seen; words to the runtime: none heard, to the engine: none heard"

    def monitor(self, *arguments):
        """The states that kovadx monitor prints, without their times."""
        code, output, errors = self.kovadx("monitor", *arguments)
        self.assertEqual((code, errors), (0, []))
        for line in output:
            self.assertRegex(line, r"^\d\d:\d\d:\d\d ")
        return [line[9:] for line in output]

    def check_nothing_left(self):
        self.assertEqual(list(self.pipes.iterdir()), [], "socket files were left behind")


class Monitor(MonitorTest):
    def test_a_suite_that_is_not_there(self):
        begin = time.monotonic()
        self.assertEqual(self.monitor("--count", "2", "1a2bPYTHON"), [self.NOBODY] * 2)
        self.assertGreaterEqual(time.monotonic() - begin, 1, "the lines come a second apart")

    def test_errors_are_one_line(self):
        wanted = "expected a process-id text and an instance name, as in 1a2bPYTHON, found"
        for arguments, line in (
            (["monitor"], "kovadx: NAME is required; see kovadx --help"),
            (["monitor", ""], f'kovadx: NAME: {wanted} ""; see kovadx --help'),
            (["monitor", "a/b"], f'kovadx: NAME: {wanted} "a/b"; see kovadx --help'),
        ):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.kovadx(*arguments), (125, [], [line]))


class PosixMonitor(MonitorTest):
    def serve(self, name):
        """A pipe as another process would make it."""
        server = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        server.bind(str(self.pipes / name))
        server.listen(0)
        self.addCleanup((self.pipes / name).unlink)
        self.addCleanup(server.close)
        return server

    def test_the_pipes_of_a_run_are_seen(self):
        script = ["/usr/bin/python3", "-c", "import sys; print(sys.stdin.readline())"]
        run = subprocess.Popen(self.command("run", "--", *script), env=self.environment(), stdin=subprocess.PIPE,
                               stdout=subprocess.DEVNULL)
        self.addCleanup(run.wait)
        self.addCleanup(run.stdin.close)
        wait_until(lambda: list(self.pipes.glob("*0xdapi")), "the engine's pipe")
        name = next(self.pipes.glob("*0xdapi")).name.removesuffix("0xdapi")
        self.assertEqual(self.monitor("--count", "1", name)[0].split(";")[0],
                         "engine alive (0xdapi), runtime not seen")

    def test_pipes_and_words_are_told(self):
        for name in ("7_s", "7_c", "7P2C"):
            self.serve(name)
        process = self.start("monitor", "--count", "2", "7")
        first = process.stdout.readline()
        self.assertEqual(first[9:].split(";")[0], "engine alive (_c), runtime alive (_s P2C)")
        with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as teller:
            teller.connect(str(self.pipes / "7P2C_watch"))
            teller.send(struct.pack("<i", 1))
        self.assertIn("words to the runtime: alive, to the engine: none heard", process.stdout.read())
        self.assertEqual(process.wait(), 0)

    def test_one_at_a_time_looks_and_an_interrupt_ends_it(self):
        process = self.start("monitor", "7")
        process.stdout.readline()
        self.assertEqual(self.kovadx("monitor", "7"), (
            125, [], ["kovadx: somebody else looks at 7 already; end the other kovadx monitor"]))
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 0)


if __name__ == "__main__":
    run_tests([Monitor], [PosixMonitor])
