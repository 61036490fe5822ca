#!/usr/bin/python3
"""Runs R and Java as runtimes of the Windows build, with the real programs outside the emulator; see relay.cpp. A process
that is left behind, on either side, is a failure of every test.

Usage: relay_test.py --home FOLDER --emulator PROGRAM --parts FOLDER, where the build left the relay, the program with the
tests of the library's side, and what the languages need.
"""
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import time
import zipfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "programs" / "kovadx"))
import kovadx_kit
from kovadx_kit import PATIENCE, KovadxTest, run_tests, wait_until
from relay_server import RelayServer

# The two limits that are promised, and what a busy machine may add.
FATE_IS_KNOWN = 1 + 2
CHILD_IS_GONE = 2 + 2

KILLED = "kovadx: the script was cut short: its process was ended by signal 9"


def windows(path):
    """A path of this system as the emulator's programs see it."""
    return "Z:" + str(path).replace("/", "\\")


def processes_of(port):
    """The emulator's processes that were started for the server on that port, and their command lines."""
    entry = f"KOVA_RELAY_PORT={port}".encode()
    for folder in pathlib.Path("/proc").iterdir():
        try:
            environment = (folder / "environ").read_bytes().split(b"\0")
            line = (folder / "cmdline").read_bytes().split(b"\0")
            state = (folder / "stat").read_text().rpartition(")")[2].split()[0]
        except OSError:  # It has gone, or is no process, or is somebody else's.
            continue
        if state != "Z" and entry in environment:
            yield int(folder.name), line


class RelayTest(KovadxTest):
    """A home folder with both relays in their places, and a server for them."""

    def setUp(self):
        super().setUp()
        self.parts = kovadx_kit.options.parts
        self.own_home = self.scratch / "home"
        for program in ("machine/bin/x64/Rterm.exe", "JRE/bin/java.exe"):
            path = self.own_home / program
            path.parent.mkdir(parents=True)
            shutil.copy(self.parts / "relay.exe", path)
        shutil.copytree(self.parts / "rpackage", self.own_home / "R" / "rpackage")
        (self.own_home / "kovadxcfg.ini").write_text(
            f"[SUPPORTED_LANG]\nX=R;JAVAEXTENSION\n[R]\nHOME={windows(self.own_home)}\\machine\n[JAVAEXTENSION]\n")
        self.pack(self.own_home / "kovajavaplugin.jar", self.parts / "plugin")
        (self.own_home / "commands").mkdir()
        for command in (self.parts / "commands").glob("*.class"):
            self.pack(self.own_home / "commands" / f"{command.stem}.jar", self.parts / "commands", f"{command.stem}.class")
        self.server = RelayServer()
        self.addCleanup(self.server.close)
        self.addCleanup(self.check_no_process_left)

    @staticmethod
    def pack(path, folder, pattern="**/*.class"):
        with zipfile.ZipFile(path, "w") as jar:
            for file in folder.glob(pattern):
                jar.write(file, file.relative_to(folder))

    def environment(self, preload=False, variables=None):
        return super().environment(preload, {"KOVA_RELAY_PORT": str(self.server.port),
                                             "KOVA_RELAY_HOME": windows(self.own_home),
                                             "KOVADXTEMP": windows(self.scratch), **(variables or {})})

    # The library gives a relay a command line behind no name.
    def relays(self):
        return [pid for pid, line in processes_of(self.server.port) if line[0] == b"" and len(line) > 2]

    def engines(self):
        return [pid for pid, line in processes_of(self.server.port) if line[0].endswith(b"kovadx.exe")]

    def check_no_process_left(self):
        self.assertEqual(self.server.left(CHILD_IS_GONE), [], "a program still runs")
        wait_until(lambda: self.relays() == [], "no relay is left behind")

    def arguments(self, language, script):
        return ["run", "--home", self.own_home, "--language", language, script]

    def command_of(self, name):
        return self.own_home / "commands" / f"{name}.jar"

    def script(self, *lines):
        path = self.scratch / "script.R"
        path.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        return path


class Library(RelayTest):
    def test_its_cases(self):
        run = subprocess.run([kovadx_kit.options.emulator, str(self.parts / "relay_test.exe")], env=self.environment(),
                             capture_output=True, text=True, timeout=2 * PATIENCE)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assertGreater(len(self.server.starts), 15)
        for start in self.server.starts:
            if start.name == "Rterm.exe":
                self.assertEqual(start.arguments, ["--silent", "--no-save"])


class Scripts(RelayTest):
    """As users of the kovadx command run them."""

    def test_java(self):
        code, output, errors = self.kovadx(*self.arguments("JAVAEXTENSION", self.command_of("Tells")))
        start, = self.server.starts
        self.assertEqual(start.arguments[:2] + start.arguments[3:], ["com.qor.statistics.plugin.Extension", "LOCAL", "Tells"])
        home = windows(self.own_home)
        jar = windows(self.command_of("Tells"))
        self.assertRegex(output[0], r"\ALOCAL \S+ [0-9a-f]{4,} JAVAEXTENSION\Z")
        self.assertEqual((code, output[1:], errors), (0, [
            "0 arguments", f"KOVA_HOME={home}", f"KOVADXTEMP={windows(self.scratch)}",
            f"CLASSPATH={home}\\kovajavaplugin.jar;{jar}"], ["to the error stream"]))

    def test_results_of_java(self):
        self.assertEqual(self.kovadx(*self.arguments("JAVAEXTENSION", self.command_of("Exits"))), (7, [], []))
        code, _, errors = self.kovadx(*self.arguments("JAVAEXTENSION", self.command_of("Throws")))
        self.assertEqual((code, errors[:1]), (1, ['Exception in thread "main" java.io.IOException: the data are odd']))
        self.assertEqual(self.kovadx(*self.arguments("JAVAEXTENSION", self.command_of("Dies"))), (137, ["begun"], [KILLED]))

    def test_results_of_r(self):
        for statement, code in (("invisible(1)", 0), ("quit(status = 7)", 7)):
            self.assertEqual(self.kovadx(*self.arguments("R", self.script(statement))), (code, [], []))
        code, output, errors = self.kovadx(*self.arguments("R", self.script(
            "system('echo last words')", "tools::pskill(Sys.getpid(), 9)", "Sys.sleep(600)")))
        self.assertEqual((code, output, errors), (137, [], [KILLED, "last words"]))


class Kills(RelayTest):
    """Of kovadx, and of the process that it has started, in the middle of a script."""

    def start_script(self, language):
        begun = self.scratch / "begun"
        begun.unlink(missing_ok=True)
        if language == "R":
            process = self.start(*self.arguments(language, self.script(f"file.create('{begun}')", "repeat {}")))
            wait_until(begun.exists, "the script runs")
        else:
            process = self.start(*self.arguments(language, self.command_of("Sleeps")))
            self.assertEqual(process.stdout.readline().rstrip(), "begun")
        relays = self.relays()
        self.assertEqual(len(relays), 1)
        return process, relays[0]

    def test_the_process(self):
        for language in ("R", "JAVAEXTENSION"):
            with self.subTest(language=language):
                process, relay = self.start_script(language)
                killed = time.monotonic()
                os.kill(relay, signal.SIGKILL)
                process.wait(PATIENCE)
                self.assertLess(time.monotonic() - killed, FATE_IS_KNOWN)
                self.assertEqual(self.server.left(CHILD_IS_GONE), [])

    def test_the_engine(self):
        for language in ("R", "JAVAEXTENSION"):
            with self.subTest(language=language):
                process, _ = self.start_script(language)
                killed = time.monotonic()
                for pid in self.engines():
                    os.kill(pid, signal.SIGKILL)
                wait_until(lambda: self.relays() == [], "the relay ends")
                self.assertLess(time.monotonic() - killed, CHILD_IS_GONE)
                process.wait(PATIENCE)
                self.assertEqual(self.server.left(CHILD_IS_GONE), [])


if __name__ == "__main__":
    run_tests([Library, Scripts, Kills], [])
