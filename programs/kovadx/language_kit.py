"""What the tests of languages in processes of their own share: a home folder that can be spoilt, and what they need to
know of each language. See kovadx_kit.py.

Usage of each: TEST.py LANGUAGE --home FOLDER [--java-classes FOLDER], and the arguments of kovadx_kit.py.
"""
import configparser
import errno
import pathlib
import socket
import sys
import time
import zipfile

import kovadx_kit
from kovadx_kit import PATIENCE, PENGUINS, KovadxTest, wait_until

# The two limits that are promised, and what a busy machine may add.
FATE_IS_KNOWN = 1 + 2
CHILD_IS_GONE = 2 + 2

BEGUN = "begun"
SLEEP = ("sleep", "600")


class Python:
    """A block's end is told over the pipes."""
    NAME = "PYTHON"
    OPTIONS = ("--process", "child")
    SUMMARY = PENGUINS / "summary.py"
    SCRIPTS = {
        "empty": "",
        "prints": "print('one')\nprint('two')\n",
        "fails": "def fail():\n    raise ValueError('no good')\n\nprint('before')\nfail()\nprint('behind')\n",
        "exits": "import sys\nprint('before')\nsys.exit(7)\n",
        # One call of the interpreter's that never ends, and lets nothing else run.
        "loops": f"import collections, itertools\nprint('{BEGUN}')\n"
                 "collections.deque(itertools.repeat(0), maxlen=0)\n",
        "waits": f"import time\nprint('{BEGUN}')\ntime.sleep(600)\n",
        "starts": f"import subprocess, time\nsubprocess.Popen({SLEEP})\nprint('{BEGUN}')\ntime.sleep(600)\n",
        # Only the runtime's stop writes the file. A process that loses its engine in its very first call waits in it.
        "outlives": f"import os, subprocess, time\nfile = open(__file__ + '.kept', 'w')\nprint('kept', file=file)\n"
                    f"engine = os.getppid()\nsubprocess.Popen({SLEEP})\nprint('first')\nprint('{BEGUN}')\n"
                    "while os.getppid() == engine:\n    time.sleep(0.01)\n",
        "leaves": f"import subprocess\nsubprocess.Popen({SLEEP})\nprint('{BEGUN}')\n",
        "calls": "import sys\nsys.path.insert(0, '{penguins}')\nfrom kova_engine import Engine\n"
                 "print(Engine().value('GetVariableCount'))\n",
    }
    FAILED = (1, ["before", "Traceback (most recent call last):", '  File "<syntax 1>", line 5, in <module>', "    fail()",
                  '  File "<syntax 1>", line 2, in fail', "    raise ValueError('no good')", "ValueError: no good"], [])

    @staticmethod
    def write(test, name):
        path = test.scratch / f"{name}.py"
        path.write_text(Python.SCRIPTS[name].replace("{penguins}", str(PENGUINS)), encoding="utf-8")
        return path


class R:
    NAME = "R"
    OPTIONS = ()
    SUMMARY = PENGUINS / "summary.R"
    SCRIPTS = {
        "empty": "",
        "prints": "cat('one\\n')\nmessage('two')\n",
        "fails": "f <- function() stop('no good')\ng <- function() f()\ncat('before\\n')\ng()\ncat('behind\\n')\n",
        "exits": "cat('before\\n')\nquit(status = 7)\n",
        "loops": f"cat('{BEGUN}\\n')\nrepeat {{}}\n",
        "waits": f"cat('{BEGUN}\\n')\nSys.sleep(600)\n",
        # What another program prints goes to the console itself.
        "speaks": f"invisible(system('echo last words; echo of the console'))\ncat('{BEGUN}\\n')\nSys.sleep(600)\n",
        "starts": f"system('{' '.join(SLEEP)}', wait = FALSE)\ncat('{BEGUN}\\n')\nSys.sleep(600)\n",
        "leaves": f"system('{' '.join(SLEEP)}', wait = FALSE)\ncat('{BEGUN}\\n')\n",
        "calls": "library(kovastatistics)\ncat(getVariableCount(), sep = '\\n')\n",
    }
    FAILED = (1, ["before", "Error in f() : no good", "Calls: g -> f"], [])

    @staticmethod
    def write(test, name):
        path = test.scratch / f"{name}.R"
        path.write_text(R.SCRIPTS[name], encoding="utf-8")
        return path


class Java:
    """Its scripts are the commands of the package's own tests."""
    NAME = "JAVAEXTENSION"
    OPTIONS = ()
    SUMMARY = None  # In the home folder.
    SCRIPTS = {"empty": "Silent", "prints": "Prints", "fails": "Throws", "exits": "Exits", "loops": "Loops", "waits": "Sleeps",
               "starts": "Starts", "leaves": "Leaves", "calls": "Counts"}
    FAILED = (1, [], ['Exception in thread "main" java.io.IOException: the data are odd',
                      "\tat Throws.main(Throws.java:7)"])

    @staticmethod
    def write(test, name):
        command = Java.SCRIPTS[name]
        path = test.scratch / f"{command}.jar"
        with zipfile.ZipFile(path, "w") as jar:
            jar.write(kovadx_kit.options.java_classes / "commands" / f"{command}.class", f"{command}.class")
        return path


LANGUAGES = {language.NAME: language for language in (Python, R, Java)}


def chosen_language():
    """Takes the language's name from the command line."""
    return LANGUAGES[sys.argv.pop(1)]


def state_of(pid):
    return pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0]


def processes_with(entries):
    """The running processes that have begun with all these entries in their environment."""
    for folder in pathlib.Path("/proc").iterdir():
        if not folder.name.isdigit():
            continue
        try:
            environment = set((folder / "environ").read_bytes().split(b"\0"))
            if all(entry.encode() in environment for entry in entries) and state_of(folder.name) != "Z":
                yield int(folder.name)
        except (FileNotFoundError, ProcessLookupError, PermissionError):
            pass


def is_served(path):
    """Whether a process still holds the socket of that file; it does not notice."""
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as probe:
        return probe.connect_ex(str(path)) == errno.EPROTOTYPE


class LanguageTest(KovadxTest):
    """A home folder of links to the build's, with a configuration of its own. A process that is left behind is a failure
    of every test."""
    language = None

    def setUp(self):
        super().setUp()
        self.own_home = self.scratch / "home"
        self.own_home.mkdir()
        for path in kovadx_kit.options.home.iterdir():
            (self.own_home / path.name).symlink_to(path)
        self.configure()
        self.addCleanup(self.check_no_process_left)

    def configure(self, **changes):
        """Writes the configuration of the build's home folder, with some of the language's keys changed, or without them
        where the value is None."""
        configuration = configparser.RawConfigParser(delimiters="=", comment_prefixes=";")
        configuration.optionxform = str
        configuration.read(kovadx_kit.options.home / "kovadxcfg.ini")
        section = configuration[self.language.NAME]
        for key, value in changes.items():
            if value is None:
                section.pop(key, None)
            else:
                section[key] = value
        path = self.own_home / "kovadxcfg.ini"
        path.unlink(missing_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            configuration.write(file, space_around_delimiters=False)
        return section

    def own_folder(self, name):
        """An empty folder of that name in the home folder, in place of the build's."""
        folder = self.own_home / name
        folder.unlink()
        folder.mkdir()
        return folder

    # A language's process begins with the home folder in its environment; kovadx itself does not.
    def children(self, folder=None):
        return list(processes_with([f"KOVA_HOME={self.own_home}", f"KOVADXTEMP={folder or self.scratch}"]))

    def check_no_process_left(self):
        wait_until(lambda: self.children() == [], "no process is left behind")

    def wait_until_gone(self, killed, folder=None):
        """Waits until the language's processes have gone: the time that took."""
        wait_until(lambda: self.children(folder) == [], "the processes end")
        seconds = time.monotonic() - killed
        self.assertLess(seconds, CHILD_IS_GONE)
        return seconds

    def check_the_next_run_tidies_up(self):
        # A process that is ending can no longer be known by its environment, and may hold its pipes a little longer.
        wait_until(lambda: not any(map(is_served, self.pipes.iterdir())), "nobody serves a pipe")
        self.assertEqual(self.run_script("prints")[0], 0)
        self.assertEqual(list(self.pipes.iterdir()), [])

    # The process learns the folder for temporary files, which the test chooses. Options of a developer's own would be
    # told of by Java, and profiles are read by R.
    def environment(self, preload=False, variables=None):
        environment = super().environment(preload, {
            "KOVADXTEMP": str(self.scratch), "PYTHONDONTWRITEBYTECODE": "1", "R_PROFILE_USER": "", "R_ENVIRON_USER": "",
            **(variables or {})})
        for name in ("JAVA_TOOL_OPTIONS", "JDK_JAVA_OPTIONS", "_JAVA_OPTIONS"):
            environment.pop(name, None)
        return {name: value for name, value in environment.items() if value is not None}

    def arguments(self, script, *more):
        return ["run", "--home", self.own_home, "--language", self.language.NAME, *self.language.OPTIONS, *more, script]

    def run_file(self, path, *more, **others):
        return self.kovadx(*self.arguments(path, *more), **others)

    def run_script(self, name, *more, **others):
        return self.run_file(self.language.write(self, name), *more, **others)

    def summary(self):
        return self.language.SUMMARY or kovadx_kit.options.home / "examples" / "penguins" / "Summary.jar"

    def start_script(self, name, *shown):
        """Starts a script and waits until it has begun, having shown these lines: kovadx, and the language's process."""
        process = self.start(*self.arguments(self.language.write(self, name)))
        for line in (*shown, BEGUN):
            self.assertEqual(process.stdout.readline().rstrip(), line)
        return process, next(pid for pid in self.children() if self.parent_of(pid) == process.pid)

    @staticmethod
    def parent_of(pid):
        return int(pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[1])

    def end_of(self, process):
        """The exit code, output lines and error lines of what was started."""
        output, errors = process.communicate(timeout=PATIENCE)
        return process.returncode, output.splitlines(), errors.splitlines()
