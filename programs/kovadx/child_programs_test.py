#!/usr/bin/python3
"""What becomes of a script when the program of its language is missing, is another one, or behaves badly, and what that
program is given; see language_kit.py.
"""
import pathlib
import shlex
import shutil
import signal
import time

import kovadx_kit
from kovadx_kit import PENGUINS, run_tests
from language_kit import FATE_IS_KNOWN, Java, LanguageTest, Python, R, chosen_language

NOT_RUNNING = {Python: 99107, R: 99107, Java: 99123}


class ProgramTest(LanguageTest):
    def stated_program(self):
        """Where the program of the stated name lies that is looked for first; its folder is there and is the test's."""
        if self.language is Python:
            return self.own_home / "startx.exe"
        if self.language is Java:
            folder = self.own_folder("JRE") / "bin"
            folder.mkdir()
            return folder / "java.exe"
        folder = self.scratch / "r" / "bin" / "x64"
        folder.mkdir(parents=True)
        self.configure(HOME=str(self.scratch / "r"))
        return folder / "Rterm.exe"

    def real_program(self):
        if self.language is R:
            return pathlib.Path(self.configure()["HOME"]) / "bin" / "R"
        return kovadx_kit.options.home / ("startx" if self.language is Python else "JRE/bin/java")

    def place(self, *lines):
        """Puts a shell script in place of the language's program."""
        program = self.stated_program()
        program.write_text("".join(f"{line}\n" for line in ("#!/bin/sh", *lines)))
        program.chmod(0o755)
        return program

    def not_run(self, code):
        return rf"\Akovadx: can not run the script in {self.language.NAME}, error {code}: "


class OtherPrograms(ProgramTest):
    def test_one_that_ends_at_once(self):
        self.place("exit 3")
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output, len(errors)), (125, [], 1))
        self.assertRegex(errors[0], self.not_run(NOT_RUNNING[self.language]) + r".+ Its process ended with exit code 3\.\Z")

    def test_one_that_ends_somewhat_later(self):
        self.place("sleep 0.8", "echo last words >&2", "exit 4")
        begun = time.monotonic()
        code, output, errors = self.run_script("prints")
        self.assertLess(time.monotonic() - begun, 0.8 + FATE_IS_KNOWN)
        self.assertEqual((code, output, len(errors)), (125, [], 2), errors)
        line, words = sorted(errors)
        self.assertRegex(line, self.not_run(r"\d+") + r".+ Its process ended with exit code 4\.\Z")
        self.assertEqual(words, "last words")

    def test_one_that_never_answers(self):
        program = self.place("touch begun", "exec sleep 600")
        process = self.start(*self.arguments(self.language.write(self, "prints")), cwd=self.scratch)
        kovadx_kit.wait_until((self.scratch / "begun").exists, "the program runs")
        time.sleep(1)
        interrupted = time.monotonic()
        process.send_signal(signal.SIGINT)
        self.assertEqual(self.end_of(process)[0], 130)
        self.wait_until_gone(interrupted)
        program.write_text("#!/bin/sh\nexit 3\n")
        self.assertEqual(self.run_script("prints")[0], 125)
        self.assertEqual(list(self.pipes.iterdir()), [], "the next run tidies up")

    def test_one_that_is_killed_before_it_answers(self):
        self.place("sleep 1", "kill -9 $$")
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output, len(errors)), (125, [], 1), errors)
        self.assertRegex(errors[0], self.not_run(r"\d+") + r".+ Its process was ended by signal 9\.\Z")

    def test_one_that_prints_before_it_begins(self):
        self.place("echo up", f"exec {shlex.quote(str(self.real_program()))} \"$@\"")
        code, output, errors = self.run_file(self.summary(), "--data", PENGUINS)
        self.assertEqual((code, errors), (0, []))
        # R's own output is read for its prompts, and not shown.
        self.assertEqual(output[:1] == ["up"], self.language is not R, output)
        self.assertIn("342 penguins, mean 4201.75 g", output)

    def test_one_that_is_no_program(self):
        program = self.place("exit 0")
        program.chmod(0o644)
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output, len(errors)), (125, [], 1), errors)
        self.assertRegex(errors[0], self.not_run(NOT_RUNNING[self.language]))
        self.assertIn(str(program), errors[0].replace("\\", "/"))


class MissingPrograms(ProgramTest):
    def check_not_there(self, place, variables=None):
        code, output, errors = self.run_script("prints", variables=variables)
        self.assertEqual((code, output, len(errors)), (125, [], 1), errors)
        self.assertRegex(errors[0], self.not_run(NOT_RUNNING[self.language]) + r".+, which is not there\.\Z")
        self.assertIn(str(place), errors[0].replace("\\", "/"))


class MissingForPython(MissingPrograms):
    def test_no_startx(self):
        (self.own_home / "startx").unlink()
        self.check_not_there(self.own_home / "startx.exe")

    def test_no_runtime(self):
        (self.own_home / "kovapython.so").unlink()
        self.assertEqual(self.run_script("prints"), (125, [], [
            "kovadx: the script ended with error 99114: The runtime library can not be loaded, or lacks an entry point. "
            "Check LIB_NAME in kovadxcfg.ini and the libraries that it needs."]))

    def test_a_wrong_home(self):
        self.configure(HOME="/nowhere")
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output), (125, []))
        self.assertRegex(errors[0], r"\Akovapython: Python could not be started: PYTHONHOME is wrong; there is no /nowhere/")
        self.assertEqual(errors[1:], ["kovadx: the script ended with error 999988: Python answered 1 when its run was set "
                                      "up. Look at its error output for the failing start-up script."])


class MissingForR(MissingPrograms):
    def test_a_wrong_home(self):
        self.configure(HOME="/nowhere")
        self.check_not_there("/nowhere/bin/x64/Rterm.exe")

    # A program below the present folder is nobody's.
    def test_no_home(self):
        self.configure(HOME=None)
        self.check_not_there("bin/x64/Rterm.exe")

    def test_a_separator_at_the_end_of_the_home(self):
        self.configure(HOME=self.configure()["HOME"] + "/")
        self.assertEqual(self.run_script("prints"), (0, ["one", "two"], []))

    def test_no_package(self):
        self.own_folder("R")
        place = self.own_home / "R" / "rpackage" / "kovastatistics"
        self.assertEqual(self.run_script("prints"), (125, [], [
            f"kovadx: R's package is not there: {place}; install it, or name another home folder with --home"]))

    def test_a_package_that_is_none(self):
        (self.own_folder("R") / "rpackage" / "kovastatistics").mkdir(parents=True)
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output, len(errors)), (125, [], 2), errors)
        self.assertRegex(errors[0], self.not_run(99104) + r".+ Its process ended with exit code 3\.\Z")
        self.assertRegex(errors[1], "kovastatistics")

    # A list of folders is how R is told of its packages.
    def test_a_home_folder_that_r_can_not_be_told(self):
        home = self.own_home
        for name in ("it's", 'a"b', "a:b"):
            with self.subTest(name=name):
                self.own_home = self.scratch / name
                self.own_home.symlink_to(home)
                self.assertEqual(self.run_script("prints"), (125, [], [
                    f"kovadx: the home folder's name has a character that R can not be told: {self.own_home}; move it to a "
                    "folder without quotes and ':' in its name"]))

    def test_a_home_folder_with_other_letters(self):
        home = self.own_home
        self.own_home = self.scratch / "größe, #1 $HOME {b} %c"
        self.own_home.symlink_to(home)
        self.assertEqual(self.run_script("prints"), (0, ["one", "two"], []))

    def test_a_set_up_that_does_nothing(self):
        profile = self.scratch / "profile.R"
        profile.write_text("initRProcess <- function(...) invisible()\n")
        code, output, errors = self.run_script("prints", variables={"R_PROFILE_USER": str(profile)})
        self.assertEqual((code, output, errors[1:]), (125, [], ["initRProcess() has not been run"]))
        self.assertRegex(errors[0], self.not_run(99104) + r".+ Its process ended with exit code 3\.\Z")

    def test_a_package_without_the_library(self):
        source = kovadx_kit.options.home / "R" / "rpackage" / "kovastatistics"
        shutil.copytree(source, self.own_folder("R") / "rpackage" / "kovastatistics")
        (self.own_home / "libkovadx.so.1").unlink()
        code, output, errors = self.run_script("prints", variables={"LD_LIBRARY_PATH": None})
        self.assertEqual((code, output, len(errors)), (125, [], 2), errors)
        self.assertRegex(errors[0], self.not_run(99104) + r".+ Its process ended with exit code 3\.\Z")
        self.assertRegex(errors[1], r"\Akovastatistics: unable to load shared object '.+': libkovadx\.so\.1: cannot open "
                                    r"shared object file: No such file or directory\Z")


class MissingForJava(MissingPrograms):
    def test_no_java(self):
        (self.own_home / "JRE").unlink()
        self.check_not_there(self.own_home / "JRE" / "bin" / "java.exe", {"JAVA_HOME": None})
        self.check_not_there(self.own_home / "JRE" / "bin" / "java.exe", {"JAVA_HOME": "/nowhere"})
        machine = str((kovadx_kit.options.home / "JRE").resolve())
        self.assertEqual(self.run_script("calls", "--data", PENGUINS, variables={"JAVA_HOME": machine}), (0, ["7"], []))

    def test_no_package(self):
        (self.own_home / "kovajavaplugin.jar").unlink()
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output), (125, []))
        self.assertIn("Error: Could not find or load main class com.qor.statistics.plugin.Extension", errors)
        self.assertRegex(errors[-1], self.not_run(99123) + r".+ Its process ended with exit code 1\.\Z")

    def test_no_library(self):
        (self.own_home / "libkovajni.so").unlink()
        code, output, errors = self.run_script("prints")
        self.assertEqual((code, output), (2, []))
        self.assertEqual(errors, [f"kovajavaplugin: System.load: 99114 RuntimeNotLoaded. Can't load library: "
                                  f"{self.own_home / 'libkovajni.so'}"])

    def test_a_place_that_can_not_be_told(self):
        script = self.language.write(self, "prints")
        for place, problem in (("My Prints.jar", "a blank in its name"), ("My\tPrints.jar", "a tab in its name"),
                               ('Q"x.jar', 'a " in its name'), ("a;b/Prints.jar", "a ; in its folder"),
                               ("a:b/Prints.jar", "a : in its path"), ("a:b.jar", "a : in its path")):
            with self.subTest(place=place):
                path = self.scratch / place
                path.parent.mkdir(exist_ok=True)
                shutil.copy(script, path)
                self.assertEqual(self.run_file(path), (125, [], [
                    f"kovadx: Java can not be given the extension {path} with {problem}; rename or move it"]))
        home = self.own_home.rename(self.own_home.with_name("a:home"))
        self.own_home = home
        self.assertEqual(self.run_file(script), (125, [], [
            f"kovadx: Java can not be given the extension {script} with a : in the home folder, {home}; rename or move it"]))

    def test_a_jar_without_the_command(self):
        script = self.language.write(self, "prints")
        self.assertEqual(self.run_file(script.rename(script.with_name("Other.jar"))), (2, [], [
            "kovajavaplugin: the command Other was not found: "
            f"{self.scratch / 'Other.jar'} names no Main-Class, and there is no class Other"]))


class GivenToPrograms(ProgramTest):
    """Entry by entry what the program finds in its environment, and its arguments."""

    def given(self, *, settings=None, variables=None):
        """What differs from the environment of kovadx: new or changed entries, and the names of those that are gone; then
        the arguments."""
        self.place(f"/usr/bin/env -0 > {shlex.quote(str(self.scratch / 'environment'))}",
                   f"printf '%s\\0' \"$@\" > {shlex.quote(str(self.scratch / 'arguments'))}", "exit 3")
        if settings:
            self.configure(**{**settings, **({"HOME": str(self.scratch / "r")} if self.language is R else {})})
        cleared = dict.fromkeys(("R_LIBS_USER", "R_HOME", "CLASSPATH", "PYTHONHOME", "BACKEND_PYTHON_SCRIPT", "CPRLMX_HOST",
                                 "CPRLMX_PORT", "JAVA_CLIENT_PORT", "KOVA_EXTENSIONS_PATH", "KOVAEX_EXTENSIONS_PATH",
                                 "KOVA_RPACKAGES_PATH", "JAVA_HOME", "LD_LIBRARY_PATH"))
        own = {**cleared, "PATH": "/usr/bin:/bin", **(variables or {})}
        self.assertEqual(self.run_script("empty", variables=own)[0], 125)
        before = self.environment(variables=own)
        after = dict(entry.split("=", 1) for entry in self.read("environment"))
        # The shell's own.
        for name in ("PWD", "OLDPWD", "SHLVL", "_"):
            before.pop(name, None)
            after.pop(name, None)
        changed = {name: value for name, value in after.items() if before.get(name) != value}
        return changed, sorted(set(before) - set(after))

    def read(self, name):
        return (self.scratch / name).read_text(encoding="utf-8").split("\0")[:-1]

    def common(self, script):
        """What kovadx gives to any language besides."""
        return {"KOVA_HOME": str(self.own_home), "KOVA_XNAME": self.language.NAME, "KOVA_SCRIPT": str(self.scratch / script),
                "LD_LIBRARY_PATH": str(self.own_home)}


class GivenToPython(GivenToPrograms):
    def test_by_default(self):
        self.assertEqual(self.given(), ({
            **self.common("empty.py"), "BACKEND_PYTHON_SCRIPT": "True", "CPRLMX_HOST": "127.0.0.1", "CPRLMX_PORT": "0",
            "JAVA_CLIENT_PORT": "0"}, []))
        arguments = self.read("arguments")
        self.assertEqual(arguments, ["LOCAL", str(self.scratch), arguments[2], "PYTHON", ""])
        self.assertRegex(arguments[2], r"\A[0-9a-f]{4,}\Z")

    def test_with_a_home(self):
        changed, gone = self.given(settings={"HOME": "/opt/python/"})
        self.assertEqual((changed["PYTHONHOME"], changed["PATH"], gone), ("/opt/python", "/opt/python:/usr/bin:/bin", []))
        self.assertEqual(self.read("arguments")[4], "/opt/python/")

    def test_what_is_passed_on(self):
        own = {"CPRLMX_HOST": "there", "CPRLMX_PORT": "12", "JAVA_CLIENT_PORT": "34", "KOVA_EXTENSIONS_PATH": "/x",
               "KOVAEX_EXTENSIONS_PATH": "/y"}
        changed, gone = self.given(variables=own)
        self.assertEqual((changed, gone), ({**self.common("empty.py"), "BACKEND_PYTHON_SCRIPT": "True"}, []))

    def test_what_is_removed(self):
        changed, gone = self.given(variables={"PYTHONHOME": "/old", "CPRLMX_HOST": "there"})
        self.assertEqual((changed["CPRLMX_HOST"], changed["CPRLMX_PORT"], gone), ("127.0.0.1", "0", ["PYTHONHOME"]))

    def test_half_an_address(self):
        changed, _ = self.given(settings={"CPRLMX_HOST": "here"}, variables={"CPRLMX_PORT": "12"})
        self.assertEqual((changed["CPRLMX_HOST"], changed["CPRLMX_PORT"]), ("127.0.0.1", "0"))

    def test_what_the_configuration_says(self):
        changed, gone = self.given(settings={
            "CPRLMX_HOST": "here", "CPRLMX_PORT": "56", "JAVA_CLIENT_PORT": "78", "BACKEND_PYTHON_SCRIPT": "False",
            "PATH": "/mine", "FIRST": "1", "SECOND": "%FIRST%2", "EMPTY": ""}, variables={"EMPTY": "not"})
        self.assertEqual(changed, {
            **self.common("empty.py"), "CPRLMX_HOST": "here", "CPRLMX_PORT": "56", "JAVA_CLIENT_PORT": "78",
            "BACKEND_PYTHON_SCRIPT": "False", "PATH": "/mine", "FIRST": "1", "SECOND": "12"})
        self.assertEqual(gone, ["EMPTY"])


class GivenToR(GivenToPrograms):
    def packages(self):
        return str(self.own_home / "R" / "rpackage")

    def own(self):
        return {**self.common("empty.R"), "R_HOME": str(self.scratch / "r"), "KOVA_R_LIBS": self.packages(),
                "R_LIBS_USER": self.packages(), "PATH": f"{self.scratch}/r/bin/x64:/usr/bin:/bin"}

    def test_by_default(self):
        self.assertEqual(self.given(), (self.own(), []))
        self.assertEqual(self.read("arguments"), ["--silent", "--no-save", "--no-restore", "--no-readline", "--interactive"])

    def test_what_is_passed_on(self):
        own = {"R_LIBS_USER": "/theirs", "KOVA_RPACKAGES_PATH": "/z", "KOVA_EXTENSIONS_PATH": "/x"}
        changed, gone = self.given(variables=own)
        self.assertEqual(changed, {**self.own(), "R_LIBS_USER": f"{self.packages()}:/theirs"})
        self.assertEqual(gone, [])

    def test_what_the_configuration_says(self):
        changed, gone = self.given(settings={"PATH": "/mine", "R_HOME": "/other", "ARGS": "--one --two"})
        self.assertEqual((changed, gone), ({**self.own(), "PATH": "/mine"}, []))
        self.assertEqual(self.read("arguments"), ["--one", "--two"])


class GivenToJava(GivenToPrograms):
    def own(self):
        return {**self.common("Silent.jar"), "CLASSPATH": f"{self.own_home}/kovajavaplugin.jar:{self.scratch}/Silent.jar"}

    def test_by_default(self):
        self.assertEqual(self.given(), (self.own(), []))
        arguments = self.read("arguments")
        self.assertEqual(arguments, ["com.qor.statistics.plugin.Extension", "LOCAL", arguments[2], "Silent"])
        self.assertRegex(arguments[2], r"\A\d{2,5}\Z")

    def test_what_is_passed_on(self):
        changed, gone = self.given(variables={"CLASSPATH": "/theirs.jar", "KOVAEX_EXTENSIONS_PATH": "/y"})
        own = self.own()
        self.assertEqual((changed, gone), ({**own, "CLASSPATH": own["CLASSPATH"] + ":/theirs.jar"}, []))

    def test_what_the_configuration_says(self):
        changed, gone = self.given(settings={"MINE": "1", "KOVA_EXTENSIONS_PATH": "/x"}, variables={"KOVA_EXTENSIONS_PATH": "/y"})
        self.assertEqual((changed, gone), ({**self.own(), "MINE": "1", "KOVA_EXTENSIONS_PATH": "/x"}, []))


class ConsoleOfR(ProgramTest):
    """A program of R's name that only writes down what is typed."""

    def place_console(self, *lines):
        self.place("printf '%s\\n> ' \"Welcome to > it\"", "while read -r line; do", '  echo "$line" >> ../typed',
                   *lines, "  printf '> '", "done", "exit 0")

    def typed(self):
        return (self.scratch / "typed").read_text(encoding="utf-8").splitlines()

    def run_in_console(self):
        folder = self.scratch / "folder"
        folder.mkdir(exist_ok=True)
        return self.run_script("prints", cwd=folder)

    def test_the_statements(self):
        self.place_console('  [ "$line" = "q()" ] && exit 5')
        self.assertEqual(self.run_in_console(), (5, [], []))
        typed = self.typed()
        pid = typed[1].split("'")[5]
        self.assertRegex(pid, r"\A[0-9a-f]{4,}\Z")
        self.assertRegex(typed[2], r"\AtryCatch\(\{ library\(kovastatistics\); ")
        del typed[2]
        self.assertEqual(typed, ["library(kovastatistics)", f"initRProcess('LOCAL', '{self.scratch}', '{pid}', 'R')",
                                 "prekova()", f'kovastatistics::runScript("{self.scratch / "prints.R"}")', "postkova()",
                                 "q()"])

    def test_one_that_ends_in_the_set_up(self):
        self.place_console("  echo 'kovastatistics: no good'", "  case $line in initRProcess*) exit 3;; esac")
        code, output, errors = self.run_in_console()
        self.assertEqual((code, output, errors[1:]), (125, [], ["kovastatistics: no good"]))
        self.assertRegex(errors[0], self.not_run(99104) + r".+ Its process ended with exit code 3\.\Z")

    def test_one_that_is_killed_in_the_run(self):
        self.place_console("  case $line in *runScript*) echo last words; echo of it; kill -9 $$;; esac")
        self.assertEqual(self.run_in_console(), (137, [], [
            "kovadx: the script was cut short: its process was ended by signal 9", "last words", "of it"]))


if __name__ == "__main__":
    LanguageTest.language = chosen_language()
    run_tests([], [OtherPrograms, *{Python: (MissingForPython, GivenToPython), R: (MissingForR, GivenToR, ConsoleOfR),
                                    Java: (MissingForJava, GivenToJava)}[LanguageTest.language]])
