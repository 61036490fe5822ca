#!/usr/bin/python3
"""The R package in a program that `kovadx run` has started; see console_kit.py."""
import json
import pathlib

from console_kit import PENGUINS, RTest
from kovadx_kit import run_tests

HERE = pathlib.Path(__file__).resolve().parent
SHOWN = """\
Error 98140 in line 1, column 1: There is no command "fly". Submit help; it lists the commands.
first
sécond

All kinds[a]
============

a. of the procedure

Block

one
two

Frame[a,b]

   n  text  more
-  -  ----  ----
1  1  a[c]  0.5%
2           2.0%

Caption[d]
a. of the title
b. another
c. of a cell
d. of the caption

                   Measure
        ------------------------------
Sex     Bill depth (mm)  Body mass (g)
------  ---------------  -------------
Female                1            3.0
Male                  2            4.0

Numbers

   level
-  -----
3      7

""".splitlines()

FIELDS = [
    {"name": "grade", "type": "number", "x-kova": {"missing": {"range": [90, 99], "values": [-1]}}},
    {"name": "limit", "type": "number", "x-kova": {"missing": {"range": [5, 6]}}},
    {"name": "answer", "type": "string", "x-kova": {"width": 20, "missing": {"values": ["n/a", "žádná"]},
                                                    "labels": [{"value": "y", "label": "yes"}, {"value": "n", "label": "no"}]}},
    {"name": "group", "type": "integer", "x-kova": {"labels": [{"value": 2, "label": "second"}]}},
    {"name": "used", "type": "integer"},
]


class Programs(RTest):
    def rscript(self, *arguments, data=("--data", PENGUINS), **variables):
        return self.kovadx("run", *data, "--", "Rscript", *arguments, variables=self.variables(**variables), cwd=PENGUINS)

    def test_the_dictionary_the_cases_and_output(self):
        self.assertEqual(self.rscript(HERE / "engine_test.R"), (0, SHOWN, []))

    def test_the_summary_is_that_of_python(self):
        python = self.kovadx("run", "--data", PENGUINS, "--", "/usr/bin/python3", "-B", PENGUINS / "summary.py")
        self.assertEqual(python[0], 0)
        self.assertEqual(self.rscript(PENGUINS / "summary.R", R_LIBS_USER=""), python)

    def test_without_data(self):
        code, output, errors = self.rscript(PENGUINS / "summary.R", data=())
        self.assertEqual((code, output, errors[:2]), (
            1, [], ['Error in readCases(c("species", "island", "body_mass_g")) : ',
                    "  GetVariableCount: 98004 NoActiveDataSet. Start the engine with one: kovadx run --data."]))

    def test_nothing_is_captured(self):
        script = self.scratch / "script.R"
        script.write_text("library(kovastatistics)\nprekova()\ncat('mine\\n')\npostOutput('shown')\npostkova()\n"
                          "stopifnot(exists('q'), identical(q, base::q))\nq(status = 3)\n")
        self.assertEqual(self.rscript(script), (3, ["mine", "shown"], []))

    def package(self, rows, **about):
        """A Data Package of these rows."""
        schema = {"fields": FIELDS, "missingValues": [""]}
        resource = {"name": "rows", "path": "rows.csv", "schema": schema, **({"x-kova": about} if about else {})}
        header = ",".join(field["name"] for field in FIELDS)
        (self.scratch / "rows.csv").write_text("".join(f"{row}\n" for row in (header, *rows)), encoding="utf-8")
        (self.scratch / "datapackage.json").write_text(json.dumps({"resources": [resource]}), encoding="utf-8")
        return "--data", self.scratch

    def script_over(self, data, *lines):
        script = self.scratch / "script.R"
        script.write_text("library(kovastatistics)\n" + "\n".join(lines) + "\n", encoding="utf-8")
        return self.rscript(script, data=data)

    def test_missing_values_and_texts(self):
        rows = ("89.5,4.9,y,2,1", "90,5,n,1,1", "99,6,n/a,3,1", "99.5,6.1,n/a ,2,1", "-1,,žádná,,1", ",7,,1,1",
                "1,7,n/a and more,1,1", "2,7,ěščřžýáíé,2,1")
        run = self.script_over(
            self.package(rows), "x <- readCases()", "y <- readCases(keepUserMissing = TRUE)", "z <- readCases(factors = TRUE)",
            "stopifnot(identical(x$grade, c(89.5, NA, NA, 99.5, NA, NA, 1, 2)),",
            "          identical(x$limit, c(4.9, NA, NA, 6.1, NA, 7, 7, 7)),",
            "          identical(x$answer, c('y', 'n', NA, NA, NA, '', 'n/a and more', 'ěščřžýáíé')),",
            "          identical(y$grade, c(89.5, 90, 99, 99.5, -1, NA, 1, 2)),",
            "          identical(y$limit, c(4.9, 5, 6, 6.1, NA, 7, 7, 7)),",
            "          identical(y$answer[3:5], c('n/a', 'n/a', 'žádná')),",
            "          identical(levels(z$answer), c('yes', 'no', sort(c('', 'n/a and more', 'ěščřžýáíé')))),",
            "          identical(as.character(z$group), c('second', '1', '3', 'second', NA, '1', '1', 'second')),",
            "          identical(levels(z$group), c('second', '1', '3')), is.numeric(z$grade),",
            "          identical(getMissingValues('grade'), list(values = -1, range = c(90, 99))),",
            "          identical(getMissingValues('limit'), list(values = numeric(), range = c(5, 6))),",
            "          identical(getMissingValues('answer'), list(values = c('n/a', 'žádná'), range = NULL)),",
            "          identical(getValueLabels('answer'), c(yes = 'y', no = 'n')))")
        self.assertEqual(run, (0, [], []))

    def test_no_cases(self):
        run = self.script_over(self.package([]), "x <- readCases(factors = TRUE)",
                               "stopifnot(identical(dim(x), c(0L, 5L)), is.numeric(x$grade), is.factor(x$answer))")
        self.assertEqual(run, (0, [], []))

    def test_groups_and_a_selection(self):
        rows = [f"{row},1,y,{row // 3},{row % 2}" for row in range(10)]
        everything = "stopifnot(identical(readCases('grade')$grade, {}))"
        self.assertEqual(self.script_over(self.package(rows, split=["group"]), everything.format("as.numeric(0:9)")),
                         (0, [], []))
        self.assertEqual(self.script_over(self.package(rows, filter="used"), everything.format("c(1, 3, 5, 7, 9)")),
                         (0, [], []))

    def test_many_cases(self):
        rows = [f"{row},1,text {row % 7},{row % 5},1" for row in range(50000)]
        run = self.script_over(self.package(rows), "x <- readCases()",
                               "stopifnot(identical(x$grade[1e4:5e4], as.numeric(9999:49999)),",
                               "          identical(x$answer, paste('text', 0:49999 %% 7)))")
        self.assertEqual(run, (0, [], []))


if __name__ == "__main__":
    run_tests([], [Programs])
