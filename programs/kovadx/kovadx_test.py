#!/usr/bin/python3
"""Runs the kovadx command as its users do; see kovadx_kit.py."""
import os
import pathlib
import signal
import struct
import subprocess
import threading
import time

from kovadx_kit import EXPECTED, HERE, PATIENCE, PENGUINS, KovadxTest, options, run_tests, wait_until, wait_until_at_rest


def is_alive(pid):
    """True when the process runs. One that has ended but was not collected yet does not."""
    try:
        state = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0]
    except (FileNotFoundError, ProcessLookupError):
        return False
    return state != "Z"


class Home(KovadxTest):
    def test_the_home_folder_holds_the_configuration(self):
        held = (options.home / "kovadxcfg.ini").read_text().splitlines()
        sample = (HERE.parent / "kovadxcfg.ini.in").read_text().splitlines()
        self.assertEqual(len(held), len(sample))
        for line, expected in zip(held, sample):
            if "@" in expected:
                self.assertEqual(line.partition("=")[0], expected.partition("=")[0])
                self.assertNotIn("@", line)
            else:
                self.assertEqual(line, expected)


class CommandLine(KovadxTest):
    def test_version(self):
        self.assertEqual(self.kovadx("--version"), (0, ["kovadx 1.0.0"], []))

    def test_help_has_examples(self):
        for arguments in (["--help"], ["run", "--help"]):
            code, output, _ = self.kovadx(*arguments)
            self.assertEqual(code, 0)
            self.assertIn("  kovadx run --data examples/penguins -- examples/penguins/describe", output)

    def test_errors_are_one_line(self):
        for arguments, line in (
            ([], "kovadx: A subcommand is required; see kovadx --help"),
            (["fly"], "kovadx: A subcommand is required; see kovadx --help"),
            (["run"], 'kovadx: no program to run; name it behind "--", as in: kovadx run -- PROGRAM ARGS...'),
            (["run", "--"], 'kovadx: no program to run; name it behind "--", as in: kovadx run -- PROGRAM ARGS...'),
            (["run", "--data"], "kovadx: --data: 1 required TEXT missing; see kovadx --help"),
            (["run", "--data", "", "--", "x"], 'kovadx: --data: expected a path, found ""; see kovadx --help'),
            (["run", "--save", "", "--", "x"], 'kovadx: --save: expected a path, found ""; see kovadx --help'),
            (["run", "--save", "out.csv", "--", "x"],
             'kovadx: --save: expected a path that ends in .json, found "out.csv"; see kovadx --help'),
            (["run", "--home", "", "--", "x"], 'kovadx: --home: expected a path, found ""; see kovadx --help'),
            (["run", "--name", "a b", "--", "x"],
             'kovadx: --name: expected 1 to 32 letters, digits and underscores, found "a b"; see kovadx --help'),
            (["run", "--home", "no/such", "--", "x"],
             "kovadx: no such home folder: no/such; give the folder that holds the library with --home"),
        ):
            with self.subTest(arguments=arguments):
                self.assertEqual(self.kovadx(*arguments), (125, [], [line]))


class Diagnostics(KovadxTest):
    REQUEST = struct.pack("<14i", 56, 10, 0, 1, 1, *[0] * 9)

    def decode(self, data):
        path = self.scratch / "messages.bin"
        path.write_bytes(data)
        return self.kovadx("decode", path)

    def test_messages_are_shown_one_behind_the_other(self):
        reply = (struct.pack("<7i", 84, 10, 0, 0, 0, 1, 10) + b'A "label"\n' + struct.pack("<4i", *[0] * 4) +
                 struct.pack("<2i", 0, 3) + b"a\0b\0c\0" + struct.pack("<i", 0))
        reply = struct.pack("<i", len(reply)) + reply[4:]
        self.assertEqual(self.decode(self.REQUEST + reply), (0, [
            "message 1 at byte 0, 56 bytes",
            "  command       10 GetVariableLabel",
            "  error         0",
            "  integers      1",
            f"message 2 at byte 56, {len(reply)} bytes",
            "  command       10 GetVariableLabel",
            "  error         0",
            '  texts         "A \\"label\\"\\u000a"',
            "  wide text     6 bytes: 61 00 62 00 63 00",
        ], []))

    def test_damage_is_placed(self):
        start = ["message 1 at byte 0, 56 bytes", "  command       10 GetVariableLabel", "  error         0"]
        for data, lines in (
            (self.REQUEST[:20], [*start, "  integers      1", "  cut short: only 20 bytes are there"]),
            (self.REQUEST[:12] + b"\xff\xff\xff\x7f" + self.REQUEST[16:],
             [*start, "  damaged: the field at byte 12 does not fit the message"]),
            (b"\x33\0\0\0" + bytes(60),
             ["at byte 0: no message; its first four bytes, the length, must be at least 52"]),
        ):
            with self.subTest(data=data):
                self.assertEqual(self.decode(data), (1, lines, []))

    def test_what_is_no_file_of_messages(self):
        self.assertEqual(self.decode(b""), (1, ["no message; the file is empty"], []))
        for path in (self.scratch / "none", self.scratch):
            self.assertEqual(self.kovadx("decode", path), (125, [], [f"kovadx: {path} can not be read; check the path"]))

    def test_only_a_run_has_a_program(self):
        self.assertEqual(self.kovadx("explain", "--", "17")[1][0], "17 EngineNotStarted")
        code, output, errors = self.kovadx("explain", "17", "--", "junk")
        self.assertEqual((code, output, len(errors)), (125, [], 1))

    def test_codes_are_explained(self):
        code, output, errors = self.kovadx("explain", "109")
        self.assertEqual((code, output[0], len(output), errors), (0, "109 PipeBroken", 3, []))
        self.assertEqual(self.kovadx("explain", "-12345"), (
            1, [], ["kovadx: the code -12345 is not known here; it is the engine's or the system's own"]))
        self.assertEqual(self.kovadx("explain", "x"), (125, [], ['kovadx: expected a number, found "x"']))
        code, output, _ = self.kovadx("explain")
        self.assertEqual((code, output[0]), (0, "0 None"))
        self.assertGreater(len(output), 300)


class Examples(KovadxTest):
    def test_the_c_program_prints_the_dictionary(self):
        self.assertEqual(self.kovadx("run", "--data", PENGUINS, "--", self.describe()), (0, EXPECTED, []))

    def test_the_descriptor_may_be_named_itself(self):
        data = PENGUINS / "datapackage.json"
        code, output, _ = self.kovadx("run", "--data", data, "--name", "other_1", "--", self.describe())
        self.assertEqual((code, output), (0, EXPECTED))

    def test_without_data_the_program_learns_so(self):
        run = self.kovadx("run", "--", self.describe())
        self.assertEqual(run, (1, [], ["describe: GetVariableCount failed with code 98004"]))

    def test_many_at_once(self):
        results = []
        run = ["run", "--data", PENGUINS, "--", self.describe()]
        threads = [threading.Thread(target=lambda: results.append(self.kovadx(*run))) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(results, [(0, EXPECTED, [])] * 4)

    def test_malformed_data_is_one_line(self):
        (self.scratch / "datapackage.json").write_text('{"resources": 5}')
        code, output, errors = self.kovadx("run", "--data", self.scratch, "--", self.describe())
        line = f"kovadx: can not read the data: {self.scratch}/datapackage.json, row 1, column 15 (resources): "
        self.assertEqual((code, output, errors), (125, [], [line + "expected a list, found 5"]))


class Programs(KovadxTest):
    def test_the_exit_code_is_the_programs(self):
        for code in (0, 7, 255):
            with self.subTest(code=code):
                self.assertEqual(self.kovadx("run", "--", *self.shell(f"exit {code}", f"exit {code}"))[0], code)

    def test_streams_pass_through(self):
        shell = self.shell("cat; echo problem >&2; exit 3", "more & echo problem>&2 & exit 3")
        code, output, errors = self.kovadx("run", "--", *shell, input="x1\nx2\n")
        self.assertEqual((code, output, [line.strip() for line in errors]), (3, ["x1", "x2"], ["problem"]))

    def test_the_program_learns_home_and_name(self):
        shell = self.shell('echo "$KOVA_HOME"; echo "$KOVA_XNAME"; echo "$KOVADXTEMP"',
                           "echo %KOVA_HOME%& echo %KOVA_XNAME%& echo %KOVADXTEMP%")
        code, output, _ = self.kovadx("run", "--name", "python", "--", *shell)
        self.assertEqual((code, output[1]), (0, "PYTHON"))
        self.assertTrue(output[0].replace("\\", "/").endswith(str(options.home)), output[0])
        self.assertNotEqual(output[2].strip(), "")

    def test_a_home_named_from_the_present_folder_is_passed_on_whole(self):
        shell = self.shell('echo "$KOVA_HOME"', "echo %KOVA_HOME%")
        run = ["run", "--home", options.home.name, "--", *shell]
        code, output, _ = self.kovadx(*run, cwd=options.home.parent)
        self.assertEqual(code, 0)
        self.assertTrue(output[0].replace("\\", "/").endswith(str(options.home)), output[0])

    def test_a_home_that_is_no_folder(self):
        file = self.scratch / "file"
        file.write_text("")
        line = f"kovadx: no such home folder: {file}; give the folder that holds the library with --home"
        self.assertEqual(self.kovadx("run", "--home", file, "--", "x"), (125, [], [line]))

    def test_a_program_that_is_not_there(self):
        run = self.kovadx("run", "--", "no-such-program")
        self.assertEqual(run, (127, [], ["kovadx: program not found: no-such-program; check its path, or PATH"]))


class Reports(KovadxTest):
    def test_the_report_is_written_at_the_end(self):
        report = self.scratch / "report.html"
        report.write_text("<!DOCTYPE html>\nan older one")
        run = self.kovadx("run", "--data", PENGUINS, "--output", report, "--", self.describe())
        self.assertEqual(run, (0, EXPECTED, []))
        page = report.read_text(encoding="utf-8")
        self.assertTrue(page.startswith("<!DOCTYPE html>"), page[:40])
        self.assertIn("There is no output.", page)
        self.assertEqual([path.name for path in self.scratch.glob("report*")], ["report.html"])

    def test_a_report_that_can_not_be_written_stops_everything(self):
        marker = self.scratch / "marker"
        data = self.scratch / "data.csv"
        data.write_text("a,b\n1,2\n")
        self.addCleanup(lambda: self.assertEqual(data.read_text(), "a,b\n1,2\n"))
        for path in (self.scratch / "no" / "report.html", self.scratch, data):
            with self.subTest(path=path):
                shell = self.shell(f"echo x > {marker}", f"echo x > {marker}")
                code, output, errors = self.kovadx("run", "--output", path, "--", *shell)
                self.assertEqual((code, output, len(errors)), (125, [], 1))
                self.assertRegex(errors[0], r"^kovadx: can not write the report to .+ \(.+\); give --output another path$")
                self.assertFalse(marker.exists(), "the program was started all the same")


# Puts out a procedure between lines of its own, posts a line and leaves a procedure open.
REPORTER = """
import ctypes, os
library = ctypes.CDLL(os.environ["KOVA_HOME"] + "/libkovadx.so")
library.SetXNameAndSHome(os.environ["KOVA_XNAME"].encode(), os.environ["KOVA_HOME"].encode())
library.SetKovaRunning(True)
def call(name, *arguments):
    code = getattr(library, name)(*[a.encode() if isinstance(a, str) else a for a in arguments])
    assert code == 0, (name, code)
table = ("", "Counts", "counts", False)
row = ("Species", 0, 1, False, False)
print("before", flush=True)
call("StartProcedure", "Count", "Penguins counted")
call("StartPivotTable", *table)
call("AddDimension", *table, *row)
call("SetFormatSpecCount")
for species, count in (("Adelie", 152.0), ("Gentoo", 124.0)):
    call("AddStringCategory", *table, *row, species)
    call("SetNumberCell", *table, *row, ctypes.c_double(count))
print("inside", flush=True)
call("EndProcedure")
print("behind", flush=True)
call("PostKovaOutput", "posted", 6)
call("StartProcedure", "Open", None)
"""


class PosixReports(KovadxTest):
    def run_reporter(self, *options):
        script = self.scratch / "reporter.py"
        script.write_text(REPORTER)
        return self.kovadx("run", *options, "--", "/usr/bin/python3", script, preload=True)

    def test_output_stands_between_the_programs_lines(self):
        code, output, errors = self.run_reporter()
        self.assertEqual((code, errors), (0, []))
        self.assertEqual(output, [
            "before", "inside",
            "Penguins counted", "================", "", "Counts", "",
            "Species", "-------  ---", "Adelie   152", "Gentoo   124", "",
            "behind", "posted", "", "Open", "====", ""])

    def test_the_report_holds_everything(self):
        report = self.scratch / "report.html"
        link = self.scratch / "link.html"
        link.symlink_to(report)
        self.assertEqual(self.run_reporter("--output", link)[0], 0)
        self.assertTrue(link.is_symlink(), "the file behind the link is written")
        page = report.read_text(encoding="utf-8")
        for part in ("Penguins counted", '<td class="n">152</td>', "posted", ">Open</h2>"):
            self.assertIn(part, page)

    def test_a_report_that_fails_late_is_told(self):
        folder = self.scratch / "folder"
        folder.mkdir()
        report = folder / "report.html"
        code, output, errors = self.kovadx("run", "--output", report, "--", "/bin/rmdir", folder)
        self.assertEqual((code, output, len(errors)), (125, [], 1))
        self.assertIn(f"kovadx: the report could not be written to {report} (", errors[0])


    def test_output_that_can_not_be_shown_is_told(self):
        script = self.scratch / "reporter.py"
        script.write_text("print = lambda *texts, **ways: None\n" + REPORTER)
        with open("/dev/full", "w") as full:
            run = subprocess.run(self.command("run", "--", "/usr/bin/python3", script), env=self.environment(True),
                                 stdout=full, stderr=subprocess.PIPE, text=True, timeout=PATIENCE)
        line = "kovadx: the output could not be written to the standard output; it is lost\n"
        self.assertEqual((run.returncode, run.stderr), (125, line))


class PosixExamples(KovadxTest):
    def test_the_python_program_prints_the_dictionary(self):
        script = options.home / "examples" / "penguins" / "describe.py"
        run = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", script, preload=True)
        self.assertEqual(run, (0, EXPECTED, []))


class PosixPrograms(KovadxTest):
    def test_the_home_is_searched_for_libraries(self):
        _, output, _ = self.kovadx("run", "--", "/bin/sh", "-c", 'echo "$LD_LIBRARY_PATH"')
        self.assertEqual(output[0].split(":")[0], str(options.home))

    def test_a_temporary_folder_is_found_in_any_case(self):
        for variables, folder in (({"KOVADXTEMP": "/chosen"}, "/chosen"),
                                  ({"KOVADXTEMP": "", "TMPDIR": str(self.scratch)}, str(self.scratch)),
                                  ({"TMPDIR": "/no/such/folder"}, "/tmp")):
            with self.subTest(variables=variables):
                run = self.kovadx("run", "--", "/bin/sh", "-c", 'echo "$KOVADXTEMP"', variables=variables)
                self.assertEqual(run, (0, [folder], []))

    def test_the_program_comes_to_the_same_pipe_folder(self):
        describe = str(self.describe())
        for label, variables, program in (
            ("a relative folder", {"KOVA_PIPE_DIR": "pipes"}, ["/bin/sh", "-c", f"cd / && exec {describe}"]),
            ("a variable that is dropped", {"KOVA_PIPE_DIR": "", "XDG_RUNTIME_DIR": str(self.scratch)},
             ["/usr/bin/env", "-u", "XDG_RUNTIME_DIR", describe]),
        ):
            with self.subTest(label):
                run = self.kovadx("run", "--data", PENGUINS, "--", *program, variables=variables, cwd=self.scratch)
                self.assertEqual(run, (0, EXPECTED, []))

    def test_pipes_that_can_not_be_made_are_explained(self):
        self.pipes.chmod(0o755)
        for folder, reason in ((self.pipes, r"\(.+, error 5\); check that the folder belongs to you alone"),
                               (self.scratch / "no" / "such",
                                r"\(.+, error 2\); check that the folder above it is there"),
                               (self.scratch / ("n" * 100), r"\(.+, error 206\)")):
            with self.subTest(reason):
                variables = {"KOVA_PIPE_DIR": str(folder)}
                code, output, errors = self.kovadx("run", "--", "/bin/sleep", "600", variables=variables)
                self.assertEqual((code, output, len(errors)), (125, [], 1))
                pipe = r"its pipe \\\\\.\\pipe\\[0-9a-f]{4,}EXTERNAL0xdapi can not be made in the folder "
                self.assertRegex(errors[0], f"^kovadx: can not serve the program: {pipe}{folder} {reason}$")

    def test_a_script_whose_interpreter_is_not_there(self):
        script = self.scratch / "script"
        script.write_text("#! /no/such/interpreter -x\n")
        script.chmod(0o755)
        line = f"kovadx: program can not be run: {script}; it is there, but not its interpreter /no/such/interpreter"
        self.assertEqual(self.kovadx("run", "--", script), (126, [], [line]))

    def test_the_exit_code_is_known_where_ends_of_children_are_ignored(self):
        ignore = lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN)
        self.assertEqual(self.kovadx("run", "--", "/bin/sh", "-c", "exit 3", preexec_fn=ignore), (3, [], []))

    def test_arguments_pass_through_untouched(self):
        script = 'for a in "$@"; do echo "[$a]"; done'
        arguments = ["", "a b", "--", "--help", "-x", "$HOME", "*"]
        _, output, _ = self.kovadx("run", "--", "/bin/sh", "-c", script, "sh", *arguments)
        self.assertEqual(output, [f"[{argument}]" for argument in arguments])

    def test_a_program_that_can_not_be_run(self):
        program = self.scratch / "text"
        program.write_text("just text")
        code, output, errors = self.kovadx("run", "--", program)
        self.assertEqual((code, output, len(errors)), (126, [], 1))
        self.assertRegex(errors[0], rf"^kovadx: program can not be run: {program} \(.+\); check that it is executable$")

    def test_a_signal_that_ends_the_program(self):
        for number in (signal.SIGTERM, signal.SIGKILL, signal.SIGSEGV):
            with self.subTest(signal=number):
                self.assertEqual(self.kovadx("run", "--", "/bin/sh", "-c", f"kill -{int(number)} $$")[0], 128 + number)

    def test_a_program_that_dies_in_a_call(self):
        script = self.scratch / "dies.py"
        script.write_text(
            "import os, signal, sys, threading\n"
            "sys.dont_write_bytecode = True\n"
            "sys.path.insert(0, sys.argv[1])\n"
            "from kova_engine import Engine\n"
            "engine = Engine()\n"
            "threading.Timer(0.05, lambda: os.kill(os.getpid(), signal.SIGKILL)).start()\n"
            "while True: engine.value('GetVariableCount')\n")
        run = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", script, PENGUINS, preload=True)
        self.assertEqual(run, (137, [], []))


class PosixShortage(KovadxTest):
    """The program takes kovadx all descriptors but a few: nobody is left waiting for ever."""

    # Waits until kovadx serves, and sets its limit so that it can open `room` descriptors more.
    LIMIT = (
        "import fcntl, os, resource, runpy, socket, sys, threading, time\n"
        "kovadx, room = os.getppid(), int(sys.argv[2])\n"
        "folder = os.environ['KOVA_PIPE_DIR']\n"
        "pipe = f'{folder}/{os.getpid():04x}EXTERNAL0xdapi'\n"
        "while not os.path.exists(pipe): time.sleep(0.001)\n"
        "lock = os.open(folder, os.O_RDONLY)\n"
        "fcntl.flock(lock, fcntl.LOCK_EX)\n"
        "os.close(lock)\n"
        "used = {int(number) for number in os.listdir(f'/proc/{kovadx}/fd')}\n"
        "free = [number for number in range(1000) if number not in used]\n"
        "before = resource.prlimit(kovadx, resource.RLIMIT_NOFILE)\n"
        "resource.prlimit(kovadx, resource.RLIMIT_NOFILE, (free[room], before[1]))\n"
        "restore = lambda: resource.prlimit(kovadx, resource.RLIMIT_NOFILE, before)\n")

    def run_script(self, script, room):
        program = self.scratch / "program.py"
        program.write_text(self.LIMIT + script)
        arguments = ["--", "/usr/bin/python3", program, PENGUINS / "describe.py", str(room)]
        return self.kovadx("run", "--data", PENGUINS, *arguments, preload=True)

    def test_a_shortage_is_waited_out(self):
        script = (
            "sys.path.insert(0, os.path.dirname(sys.argv[1]))\n"
            "import kova_engine\n"
            "engine = kova_engine.Engine()\n"
            "threading.Timer(0.3, restore).start()\n"
            "print(engine.value('GetVariableCount'))\n")
        for lacks, room in (("the request pipe's client", 0), ("the reply pipe", 1)):
            with self.subTest(lacks):
                self.assertEqual(self.run_script(script, room), (0, ["7"], []))

    def test_a_pipe_that_takes_nobody_in_is_closed(self):
        script = (
            "visitor = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)\n"
            "visitor.connect(pipe)\n"
            "while os.path.exists(pipe): time.sleep(0.01)\n"
            "restore()\n")
        self.assertEqual(self.run_script(script, 0), (0, [], []))


class PosixEnding(KovadxTest):
    """Ctrl-C, and a kovadx that is killed: the program never outlives it."""

    SLEEPER = "echo $$; exec sleep 600"
    STUBBORN = "trap '' INT; echo $$; exec sleep 600"

    def run_until_up(self, script, **more):
        process = self.start("run", "--data", PENGUINS, "--", "/bin/sh", "-c", script, **more)
        pid = int(process.stdout.readline())
        self.assertTrue(is_alive(pid))
        wait_until(lambda: list(self.pipes.glob("*xdapi")), "the pipe is there")
        wait_until_at_rest(process.pid)
        return process, pid

    def test_an_interrupt_ends_the_program_too(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(signal=number):
                process, pid = self.run_until_up(self.SLEEPER)
                process.send_signal(number)
                self.assertEqual(process.wait(PATIENCE), 128 + signal.SIGINT)
                self.assertFalse(is_alive(pid))
                self.assertEqual(process.stderr.read(), "")

    def test_a_program_that_ignores_the_interrupt_is_ended(self):
        process, pid = self.run_until_up(self.STUBBORN)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 128 + signal.SIGKILL)
        self.assertFalse(is_alive(pid))

    def test_a_program_that_ends_well_on_an_interrupt_has_its_own_code(self):
        process, _ = self.run_until_up("trap 'exit 5' INT; echo $$; while :; do sleep 0.02; done")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(PATIENCE), 5)

    def test_a_request_ends_a_run_that_was_started_with_signals_held(self):
        requests = {signal.SIGINT, signal.SIGTERM, signal.SIGHUP}
        hold = lambda: signal.pthread_sigmask(signal.SIG_BLOCK, requests)
        for number in requests:
            with self.subTest(signal=number):
                process, pid = self.run_until_up(self.SLEEPER, preexec_fn=hold)
                process.send_signal(number)
                self.assertEqual(process.wait(PATIENCE), 128 + signal.SIGINT)
                self.assertFalse(is_alive(pid))

    def test_an_interrupt_that_a_shell_wants_ignored_is_ignored_by_both(self):
        process, pid = self.run_until_up(self.SLEEPER, preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        for one in (process.pid, pid):
            status = pathlib.Path(f"/proc/{one}/status").read_text()
            ignored = int(status.partition("SigIgn:")[2].split()[0], 16)
            self.assertTrue(ignored & (1 << (signal.SIGINT - 1)))
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(PATIENCE), 128 + signal.SIGKILL)

    def test_the_program_does_not_outlive_a_killed_kovadx(self):
        process, pid = self.run_until_up(self.STUBBORN)
        process.kill()
        process.wait(PATIENCE)
        wait_until(lambda: not is_alive(pid), "the program ends")
        self.assertNotEqual(list(self.pipes.glob("*xdapi")), [])
        self.assertEqual(self.kovadx("run", "--", "/bin/true")[0], 0)  # It takes away what the killed one has left.


if __name__ == "__main__":
    run_tests((Home, CommandLine, Diagnostics, Examples, Programs, Reports),
              (PosixExamples, PosixReports, PosixPrograms, PosixShortage, PosixEnding))
