"""What the tests of the R package share: the kit of the kovadx command, and a real R console, driven as the engine
drives it.
"""
import os
import pathlib
import re
import select
import shlex
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "programs" / "kovadx"))
import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, KovadxTest

CONSOLE = ("R", "--silent", "--no-save", "--no-restore", "--no-readline", "--interactive")
PROMPT = re.compile(rb"(?:> |\+ )\Z")
DEBUGGER = re.compile(rb"Browse\[\d+\]> \Z")


class Console:
    """An R process that reads statements from one pipe and writes to another. Its process is `self.process`, or the
    child of that when `kovadx run` has started it."""

    def __init__(self, process, statements, answers):
        self.process, self.statements, self.answers = process, statements, answers

    def close(self):
        """R ends with its input, and its engine with R."""
        self.statements.close()
        try:
            self.process.wait(PATIENCE)
        finally:
            self.process.kill()
            self.process.wait()
            self.answers.close()

    def read(self, prompt=PROMPT):
        """What the console writes up to its prompt, and the prompt. All it has written when it ends without one."""
        text = b""
        while not prompt.search(text):
            if not select.select([self.answers], [], [], PATIENCE)[0]:
                raise AssertionError(f"R waits, having written {text!r}")
            chunk = os.read(self.answers.fileno(), 4096)
            if not chunk:
                return text.decode(), ""
            text += chunk
        found = (DEBUGGER.search(text) or prompt.search(text)).group()
        return text.removesuffix(found).decode(), found.decode()

    def write(self, statement):
        os.write(self.statements.fileno(), statement.encode() + b"\n")

    def say(self, statement):
        self.write(statement)
        return self.read()

    def end(self, statement="q()"):
        """Types the statement that ends R: what R still writes, and the exit status."""
        self.write(statement)
        rest, prompt = self.read()
        if prompt:
            raise AssertionError(f"R goes on after {statement}, with {rest!r}")
        return rest, self.process.wait(PATIENCE)


class RTest(KovadxTest):
    def variables(self, **more):
        return {"R_LIBS_USER": str(kovadx_kit.options.home / "R" / "rpackage"), "R_PROFILE_USER": "", "LC_ALL": "C.UTF-8",
                **more}

    def bare_console(self, **variables):
        """A console without an engine."""
        process = subprocess.Popen(CONSOLE, env=self.environment(variables=self.variables(**variables)), cwd=self.scratch,
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, bufsize=0)
        return self.keep(Console(process, process.stdin, process.stdout))

    def console(self, *arguments, **variables):
        """A console that is the program of `kovadx run`, whose engine so serves it. What the engine shows goes to a
        file: see `shown`."""
        statements, answers = self.scratch / "statements", self.scratch / "answers"
        for path in (statements, answers):
            os.mkfifo(path)
        program = f"exec {shlex.join(CONSOLE)} <{statements} >{answers} 2>&1"
        with open(self.scratch / "shown", "wb") as shown:
            process = subprocess.Popen(self.command("run", "--name", "R", "--data", PENGUINS, *arguments, "--", "/bin/sh",
                                                    "-c", program),
                                       env=self.environment(variables=self.variables(**variables)), stdout=shown,
                                       stderr=subprocess.STDOUT, cwd=self.scratch)
        return self.keep(Console(process, open(statements, "wb", buffering=0), open(answers, "rb", buffering=0)))

    def keep(self, console):
        self.addCleanup(console.close)
        return console

    def shown(self):
        """What the engine has shown so far."""
        return (self.scratch / "shown").read_text(encoding="utf-8")

    def begun_console(self, *arguments, **variables):
        """A console that is set up; a run has begun."""
        console = self.console(*arguments, **variables)
        self.assertEqual(console.read()[1], "> ")
        self.assertEqual(console.say("library(kovastatistics)"), ("", "> "))
        self.assertEqual(console.say("initRProcess('LOCAL', tempdir(), sprintf('%04x', Sys.getpid()), 'R')"), ("", "> "))
        self.assertEqual(console.say("prekova()"), ("", "> "))
        return console

    def write_script(self, *lines):
        script = self.scratch / "script.R"
        script.write_text("".join(line + "\n" for line in lines), encoding="utf-8")
        return f'kovastatistics::runScript("{script}")'
