#!/usr/bin/python3
"""The R package in the real R console, which is typed into and read as the engine does it; see console_kit.py."""
import os
import pathlib
import shutil
import signal
import time

from console_kit import PENGUINS, RTest, kovadx_kit
from kovadx_kit import run_tests, wait_until

BEGIN = "initRProcess('LOCAL', tempdir(), sprintf('%04x', Sys.getpid()), 'R', patience = {})"


class SetUpThatFails(RTest):
    """One clear line, and status 3."""

    def begin(self, console, patience=60):
        self.assertEqual(console.read()[1], "> ")
        self.assertEqual(console.say("library(kovastatistics)"), ("", "> "))
        return console.end(BEGIN.format(patience))

    def test_without_a_home(self):
        self.assertEqual(self.begin(self.bare_console()),
                         ("kovastatistics: KOVA_HOME, the engine's home folder, is not set\n", 3))

    def test_without_an_engine(self):
        console = self.bare_console(KOVA_HOME=str(kovadx_kit.options.home))
        line, status = self.begin(console, patience=0.3)
        self.assertRegex(line, r"\Akovastatistics: no engine answers on the pipes of [0-9a-f]+R; check that the engine runs "
                               r"and serves them\n\Z")
        self.assertEqual(status, 3)
        # Its pipe for replies stays behind, as that of a killed process does; the next engine takes it away.
        for left in self.pipes.glob("*R0xdapiresult"):
            left.unlink()

    def test_without_the_library(self):
        packages = self.scratch / "packages"
        shutil.copytree(kovadx_kit.options.home / "R" / "rpackage" / "kovastatistics", packages / "kovastatistics")
        line, status = self.begin(self.bare_console(R_LIBS_USER=str(packages), KOVA_HOME=str(self.scratch)))
        self.assertRegex(line, r"\Akovastatistics: unable to load shared object '.*kovastatistics\.so': libkovadx\.so\.1: "
                               r"cannot open shared object file: No such file or directory\n\Z")
        self.assertEqual(status, 3)


class Runs(RTest):
    def test_what_is_printed_becomes_output(self):
        console = self.begun_console()
        for statement in ("cat('one\\n')", "message('two')", "print('three')", "4", "warning('five')", "invisible(6)",
                          "x <- 7", "f <- function() warning('eight')", "f()", "write('nine', stderr())"):
            self.assertEqual(console.say(statement), ("", "> "), statement)
        self.assertEqual(self.shown(), "one\ntwo\n[1] \"three\"\n[1] 4\nWarning message:\nfive \n"
                                       "Warning message:\nIn f() : eight\nnine\n")
        self.assertEqual(console.say("postkova()"), ("", "> "))
        self.assertEqual(console.say("cat('outside\\n')"), ("outside\n", "> "))
        self.assertEqual(console.end(), ("", 0))

    def test_lines_are_posted_whole(self):
        console = self.begun_console()
        console.say("cat('one, ')")
        self.assertEqual(self.shown(), "")
        console.say("cat('two\\nthree')")
        self.assertEqual(self.shown(), "one, two\n")
        console.say("postOutput('four')")
        self.assertEqual(self.shown(), "one, two\nthree\nfour\n")
        console.say("cat('five')")
        console.say("postkova()")
        self.assertEqual(self.shown(), "one, two\nthree\nfour\nfive\n")
        self.assertEqual(console.say("prekova()"), ("", "> "))
        console.say("cat('\\n\\nsix\\n')")
        self.assertEqual(self.shown(), "one, two\nthree\nfour\nfive\n\n\nsix\n")

    def test_text_is_utf8_in_any_locale(self):
        for locale in ("C.UTF-8", "C"):
            with self.subTest(locale=locale):
                shutil.rmtree(self.scratch)
                self.pipes.mkdir(mode=0o700, parents=True)
                console = self.begun_console(LC_ALL=locale)
                self.assertEqual(console.say("cat('žluť \\u2264 \u2265\\n'); cat('\\xff|\\n')"), ("", "> "))
                self.assertEqual(self.shown(), "žluť \u2264 \u2265\n<ff>|\n")
                self.assertEqual(console.end(), ("", 0))

    def test_an_error_keeps_the_prompt_and_is_told_at_the_end(self):
        console = self.begun_console()
        self.assertEqual(console.say("f <- function() stop('no good')"), ("", "> "))
        self.assertEqual(console.say("f()"), ("", "> "))
        self.assertEqual(console.say("x = = 1"), ("", "> "))
        self.assertEqual(self.shown(), "Error in f() : no good\nError: unexpected '=' in \"x = =\"\n")
        self.assertEqual(console.say("postkova()"), ("", "> "))
        self.assertEqual(console.end(), ("", 1))

    def test_a_later_run_without_an_error_ends_well(self):
        console = self.begun_console()
        for statement in ("stop('no')", "postkova()", "prekova()", "1", "postkova()"):
            self.assertEqual(console.say(statement), ("", "> "))
        self.assertEqual(console.end(), ("", 0))

    def test_the_status_of_the_users_own_quit(self):
        for statement, status in (("quit(status = 7)", 7), ("base::q(status = 5)", 5), ("q('no', 4)", 4)):
            with self.subTest(statement=statement):
                shutil.rmtree(self.scratch)
                self.pipes.mkdir(mode=0o700, parents=True)
                console = self.begun_console()
                console.say("stop('no')")
                self.assertEqual(console.end(f"{{ cat('last words'); {statement} }}"), ("", status))
                self.assertEqual(self.shown(), "Error: no\nlast words\n")

    def test_a_statement_over_several_lines(self):
        console = self.begun_console()
        self.assertEqual(console.say("1 +"), ("", "+ "))
        self.assertEqual(console.say("2"), ("", "> "))
        self.assertEqual(console.say("f <- function() {"), ("", "+ "))
        self.assertEqual(console.say("END"), ("", "+ "))
        self.assertEqual(console.say("}"), ("", "> "))
        self.assertEqual(self.shown(), "[1] 3\n")

    def test_the_debugger(self):
        console = self.begun_console()
        console.say("f <- function(x) { browser(); cat('on\\n'); x }")
        self.assertEqual(console.say("f(1)"), ("", "Browse[1]> "))
        self.assertEqual(console.say("x + 1"), ("", "Browse[1]> "))
        self.assertEqual(console.say("stop('in it')"), ("", "Browse[1]> "))
        self.assertEqual(self.shown(), "Called from: f(1)\n[1] 2\nError in f(1) : in it\n")
        self.assertEqual(console.say("Q"), ("", "> "))
        self.assertEqual(console.say("f(1)"), ("", "Browse[1]> "))
        self.assertEqual(console.say("c"), ("", "> "))
        self.assertTrue(self.shown().endswith("Called from: f(1)\non\n[1] 1\n"), self.shown())

    def test_two_megabytes(self):
        console = self.begun_console()
        began = time.monotonic()
        self.assertEqual(console.say("for (i in 1:20000) cat(strrep('x', 99), '\\n', sep = '')"), ("", "> "))
        self.assertEqual(console.say("cat(strrep('y', 2e6), '\\n', sep = '')"), ("", "> "))
        took = time.monotonic() - began
        self.assertEqual(self.shown(), (99 * "x" + "\n") * 20000 + 2000000 * "y" + "\n")
        self.assertLess(took, 20)

    def test_prompts_that_are_printed_are_output(self):
        console = self.begun_console()
        self.assertEqual(console.say("cat('Browse[1]> '); cat('> ')"), ("", "> "))
        self.assertEqual(console.say("postkova()"), ("", "> "))
        self.assertEqual(self.shown(), "Browse[1]> > \n")

    def test_an_interrupt(self):
        console = self.begun_console()
        process = self.scratch / "process"
        console.write(f"{{ cat('before\\n'); cat(Sys.getpid(), file = '{process}'); file.create('{process}.there'); "
                      "repeat {} }")
        wait_until(pathlib.Path(f"{process}.there").exists, "R is busy")
        os.kill(int(process.read_text()), signal.SIGINT)
        self.assertEqual(console.read()[1], "> ")
        self.assertEqual(console.say("cat('after\\n')"), ("", "> "))
        self.assertEqual(self.shown().split(), ["before", "after"])


class WhatScriptsDoToTheConsole(RTest):
    def test_a_profile(self):
        profile = self.scratch / "profile.R"
        profile.write_text("options(prompt = 'R> ', continue = '... ', error = recover, menu.graphics = TRUE)\n"
                           "options(showErrorCalls = TRUE)\n")
        console = self.begun_console(R_PROFILE_USER=str(profile))
        self.assertEqual(console.say("f <- function() stop('no')"), ("", "> "))
        self.assertEqual(console.say("f("), ("", "+ "))
        self.assertEqual(console.say(")"), ("", "> "))
        self.assertEqual(self.shown(), "Error in f() : no\n")

    def test_prompts_that_are_changed(self):
        console = self.begun_console()
        self.assertEqual(console.say("options(prompt = 'mine: ', continue = 'more: ')"), ("", "> "))
        self.assertEqual(console.say("{ options(prompt = 'mine: ', continue = 'more: '); stop('no') }"), ("", "> "))
        self.assertEqual(console.say("(1"), ("", "+ "))

    def test_sinks_that_are_not_its_own(self):
        console = self.begun_console()
        for statement in ("{ sink(); sink(type = 'message') }", "cat('one\\n')", "closeAllConnections()", "cat('two\\n')",
                          "message('three')", "x <- capture.output(message('four'), type = 'message')", "message(x)",
                          "sink(file.path(tempdir(), 'mine'))", "cat('not shown\\n')"):
            self.assertEqual(console.say(statement), ("", "> "), statement)
        self.assertEqual(console.say("postkova()"), ("", "> "))
        self.assertEqual(self.shown(), "one\ntwo\nthree\nfour\n")
        self.assertEqual(console.say("sink.number()"), ("[1] 0\n", "> "))
        self.assertEqual(console.say("readLines(file.path(tempdir(), 'mine'))"), ('[1] "not shown"\n', "> "))

    def test_callbacks_that_are_removed(self):
        console = self.begun_console()
        console.say("while (length(getTaskCallbackNames()) > 0) removeTaskCallback(1)")
        console.say("cat('one\\n')")
        for statement in ("postkova()", "prekova()", "cat('two\\n')"):
            self.assertEqual(console.say(statement), ("", "> "))
        self.assertEqual(self.shown(), "one\ntwo\n")

    def check_shown(self, console, rows):
        for statement, expected in rows:
            with self.subTest(statement=statement):
                before = len(self.shown())
                self.assertEqual(console.say(statement), ("", "> "))
                self.assertEqual(self.shown()[before:], expected)

    def test_questions_are_not_asked(self):
        console = self.begun_console()
        self.check_shown(console, (
            ("readline('Name? ')", 'Name? \n[1] ""\n'),
            ("base::readline()", '[1] ""\n'),
            ("readline('> ')", '> \n[1] ""\n'),
            ("scan(quiet = TRUE)", "1: \nnumeric(0)\n"),
            ("scan(text = '1 2', quiet = TRUE)", "[1] 1 2\n"),
            ("menu(c('a', 'b'))", "\n1: a\n2: b\n\nSelection: \n[1] 0\n"),
            ("utils::askYesNo('really?')", "really? (Yes/no/cancel) \n[1] TRUE\n"),
            ("file.choose()", "Enter file name: \nError in file.choose() : file choice cancelled\n"),
            ("select.list(c('a', 'b'), graphics = FALSE)", '\n1: a\n2: b\n\nSelection: \n[1] ""\n'),
            ("select.list('a', multiple = TRUE, graphics = FALSE)",
             "\n1:   a\n\nEnter one or more numbers separated by spaces and then ENTER, or 0 to cancel\n1: \n"
             "character(0)\n"),
            ("edit(1)", "Error: there is nobody to edit it\n"),
            ("options(error = recover)", ""),
            # The option has taken the place of what posts the output behind an error.
            ("(function() stop('no'))()", ""),
            ("5", "Error in (function() stop(\"no\"))() : no\n\nEnter a frame number, or 0 to exit   \n\n"
                  "1: (function() stop(\"no\"))()\n\nSelection: \n[1] 5\n")))
        self.assertEqual(console.end("quit('ask')"), ("Save workspace image? [y/n/c]: \n", 1))

    def test_a_menu_in_another_language(self):
        console = self.begun_console(LANGUAGE="de")
        self.check_shown(console, [("menu('a')", "\n1: a\n\nAuswahl: \n[1] 0\n")])

    def test_the_standard_input_is_empty(self):
        console = self.begun_console()
        self.check_shown(console, (
            ("readLines(stdin())", "character(0)\n"),
            ("readLines(stdin(), n = 1)", "character(0)\n"),
            ("readLines('stdin')", "character(0)\n"),
            ("scan('stdin', quiet = TRUE)", "numeric(0)\n"),
            ("readLines(file('/dev/stdin', raw = TRUE))", "character(0)\n"),
            ("system('cat', intern = TRUE)", "character(0)\n"),
            ("system('cat')", ""),
            ("readLines(pipe('cat'))", "character(0)\n"),
            ("cat('after\\n')", "after\n")))

    # The statement that the engine types when a program has printed the prompt for the rest of one.
    def test_the_end_of_a_statement_that_is_not_open(self):
        console = self.begun_console()
        self.check_shown(console, (("END", ""), ("(END)", "Error: object 'END' not found\n"), ("END <- 4", ""),
                                   ("END", "[1] 4\n"), ("rm(END)", ""), ("prekova()", ""), ("END", "")))
        self.assertEqual(console.end(), ("", 0))

    def test_a_stack_that_is_used_up(self):
        console = self.begun_console()
        for statement in ("f <- function() f(); f()", "cat('after\\n')"):
            self.assertEqual(console.say(statement), ("", "> "))
        self.assertRegex(self.shown(), r"(?s)\AError: .*(infinite recursion|stack).*\nafter\n\Z")


class Scripts(RTest):
    def test_the_summary(self):
        program = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", "-B", PENGUINS / "summary.py")
        console = self.begun_console()
        self.assertEqual(console.say(f'kovastatistics::runScript("{PENGUINS / "summary.R"}")'), ("", "> "))
        self.assertEqual(console.say("postkova()"), ("", "> "))
        self.assertEqual(console.end(), ("", 0))
        self.assertEqual((0, self.shown().splitlines(), []), program)

    def test_output_stands_in_its_order(self):
        script = self.write_script("cat('before')", "startProcedure('P', 'Shown')", "cat('inside\\n')",
                                   "textBlock('block', 'Title')", "print('later')", "endProcedure()", "cat('behind')")
        console = self.begun_console()
        self.assertEqual(console.say(script), ("", "> "))
        self.assertEqual(console.say("postkova()"), ("", "> "))
        words = [line for line in self.shown().split("\n") if line and not set(line) <= set("=-")]
        self.assertEqual(words, ["before", "Shown", "inside", "Title", "block", '[1] "later"', "behind"])

    def run_script(self, *lines):
        """What the engine shows, and R's status."""
        console = self.begun_console()
        self.assertEqual(console.say(self.write_script(*lines)), ("", "> "))
        self.assertEqual(console.say("postkova()"), ("", "> "))
        rest, status = console.end()
        self.assertEqual(rest, "")
        return self.shown(), status

    def test_values_are_shown(self):
        self.assertEqual(self.run_script("x <- 1", "x", "invisible(2)", "(3)", "'é'", "NULL"),
                         ('[1] 1\n[1] 3\n[1] "é"\nNULL\n', 0))

    def test_an_error_ends_it(self):
        self.assertEqual(self.run_script("f <- function() stop('no good')", "g <- function() f()", "cat('one\\n')", "g()",
                                         "cat('two\\n')"),
                         ("one\nError in f() : no good\nCalls: g -> f\n", 1))

    def test_warnings(self):
        self.assertEqual(self.run_script("f <- function() { warning('w'); log('a') }", "warning('v')", "cat('one\\n')", "f()"),
                         ("Warning: v\none\nWarning in f() : w\nError in log(\"a\") : non-numeric argument to "
                          "mathematical function\nCalls: f\n", 1))

    def test_a_syntax_error(self):
        self.assertEqual(self.run_script("cat('one\\n')", "x = = 1"),
                         ("one\nError: script.R:2:5: unexpected '='\n1: cat('one\\n')\n2: x = =\n       ^\n", 1))

    def test_the_debugger_goes_on(self):
        self.assertEqual(self.run_script("f <- function() { browser(); cat('in f\\n'); 3 }", "f()", "debug(f)", "f()",
                                         "cat('end\\n')"),
                         ("Called from: f()\nin f\n[1] 3\ndebugging in: f()\ndebug: {\n    browser()\n    cat(\"in f\\n\")"
                          "\n    3\n}\nCalled from: f()\nin f\nexiting from: f()\n[1] 3\nend\n", 0))

    def test_questions_are_not_asked(self):
        self.assertEqual(self.run_script("readline('Name? ')", "utils::menu('a')", "readLines('stdin')", "system('cat')"),
                         ('Name? \n[1] ""\n\n1: a\n\nSelection: \n[1] 0\ncharacter(0)\n', 0))

    def test_a_script_in_a_script(self):
        inner = self.scratch / "inner.R"
        inner.write_text("browser()\ncat('inner\\n')\n")
        self.assertEqual(self.run_script(f"kovastatistics::runScript('{inner}')", "browser()", "cat('end\\n')"),
                         ("Called from: top level \ninner\nCalled from: top level \nend\n", 0))

    def test_its_own_status(self):
        console = self.begun_console()
        self.assertEqual(console.end(self.write_script("cat('going')", "quit(status = 4)")), ("", 4))
        self.assertEqual(self.shown(), "going\n")

    def test_a_missing_one(self):
        console = self.begun_console()
        self.assertEqual(console.say('kovastatistics::runScript("/nowhere/script.R")'), ("", "> "))
        self.assertEqual(self.shown(), "Error: there is no script '/nowhere/script.R'\n")
        self.assertEqual(console.end(), ("", 1))

    def test_options_of_its_own(self):
        shown, status = self.run_script("options(prompt = 'mine: ', error = quote(cat('my handler\\n')))", "stop('no')")
        self.assertEqual((shown, status), ("Error: no\nmy handler\n", 1))


if __name__ == "__main__":
    run_tests([], [SetUpThatFails, Runs, WhatScriptsDoToTheConsole, Scripts])
