# What the package does in a process that has no engine.
library(kovastatistics)

failureOf <- function(expr) tryCatch({
  expr
  NULL
}, kova_error = identity)

# A program that no engine has started.
Sys.unsetenv(c("KOVA_XNAME", "KOVA_HOME"))
for (attempt in expression(getVariableCount(), getVariableNames(), getCaseCount(), readCases(), postOutput("text"),
                           submit("text"), startProcedure("name"), endProcedure(), getValueLabels("sex"))) {
  failure <- failureOf(eval(attempt))
  stopifnot(inherits(failure, "error"), identical(failure$code, 17L), identical(failure$call[[1L]], attempt[[1L]]),
            identical(conditionMessage(failure), paste("SetXNameAndSHome: 17 EngineNotStarted. Start this program with:",
                                                       "kovadx run --data FOLDER -- Rscript PROGRAM")))
}

# Arguments that the package itself refuses.
refused <- function(expr) {
  failure <- failureOf(expr)
  stopifnot(is.na(failure$code), is.na(failure$routine))
  conditionMessage(failure)
}
stopifnot(refused(cellFormat("Mean")) == "the style Mean needs a variable",
          refused(cellFormat("Count", "sex")) == "the style Count takes no variable",
          grepl("^there is no style Mode; the styles are Coefficient, ", refused(cellFormat("Mode"))),
          refused(variableValues(c("a", "b"), 1)) == "values belong to one variable",
          refused(pivotTable(1:3, "Title")) == "cells is a matrix or a data frame",
          refused(pivotTable(matrix(0, 0, 0), "Title")) == "the table has no cells",
          refused(pivotTable(matrix(1:4, 2), "Title", rows = list(Row = 1:3))) ==
            "the dimension Row has 3 categories for 2 places",
          refused(pivotTable(matrix(1:4, 2), "Title", rows = list(1:2))) == "each dimension needs a name",
          refused(pivotTable(matrix(1:4, 2), "Title", columns = list(C = c("a", NA)))) ==
            "a category of the dimension C is NA",
          refused(pivotTable(matrix(1:4, 2), "Title", formats = rep("Count", 3))) ==
            "formats are for all cells, for each column, or for each cell",
          refused(pivotTable(matrix(1:4, 2), "Title", cellFootnotes = matrix("", 1, 2))) ==
            "cellFootnotes must have the rows and columns of the cells",
          refused(pivotTable(matrix(1:4, 2), NA)) == "a text may not be NA")

# Outside of the engine's console nothing is captured, and scripts run all the same.
prekova()
stopifnot(sink.number() == 0L, is.null(getOption("error")))
postkova()
path <- tempfile(fileext = ".R")
script <- function(...) writeLines(c(...), path, useBytes = TRUE)

script("\ufeffx <- 1; x + 1", "invisible(3)", "f <- function() warning('careful')", "f()", "'\u00e9'", "setClass('P', ",
       "  representation(a = 'numeric'))", "new('P', a = 1)")
stopifnot(identical(capture.output(runScript(path)),
                    c("[1] 2", "[1] \"\u00e9\"", "An object of class \"P\"", "Slot \"a\":", "[1] 1", "")),
          x == 1)

script("a <- 1; b <- 2", "if (a == 1) {", "  b <- 3", "}", "a <- 7; c = = 4", "a <- 9")
message <- tryCatch(runScript(path), error = conditionMessage)
stopifnot(grepl(paste0("^", basename(path), ":5:13: unexpected '='"), message), a == 7, b == 3)

script("a <- 1", "stop('no good')", "a <- 2")
stopifnot(refused(runScript(path)) == "the script has ended in an error", a == 1)
script("f <- function() parent.frame()", "caller <- f()")
runScript(path)
stopifnot(identical(caller, globalenv()))
stopifnot(grepl("^there is no script '", tryCatch(runScript(tempdir()), error = conditionMessage)))
script(character())
runScript(path)
