# What the package reads from an engine that has the penguins open, and what it refuses.
library(kovastatistics)

failureOf <- function(expr) tryCatch({
  expr
  NULL
}, kova_error = identity)
fails <- function(expr, code, message) {
  failure <- failureOf(expr)
  stopifnot(!is.null(failure), identical(failure$code, code), conditionMessage(failure) == message)
  invisible(failure)
}
names <- c("species", "island", "bill_length_mm", "bill_depth_mm", "flipper_length_mm", "body_mass_g", "sex")
table <- read.csv("penguins.csv", na.strings = c("", "NA"))

# The dictionary.
stopifnot(identical(getVariableCount(), 7L), identical(getVariableNames(), names),
          identical(getVariableLabel("sex"), c(sex = "Sex of the penguin")),
          identical(getVariableType(c("species", "sex")), c(species = 9L, sex = 0L)),
          identical(getVariableType(c(7, 1)), c(sex = 0L, species = 9L)),
          identical(getVariableFormat("bill_depth_mm"), c(bill_depth_mm = "F8.1")),
          identical(unname(getVariableMeasurementLevel()), rep(c("nominal", "scale", "nominal"), c(2, 4, 1))),
          identical(names(getVariableLabel()), names),
          identical(getVariableLabel(character()), setNames(character(), character())))
stopifnot(identical(getValueLabels("sex"), c(Female = 1, Male = 2, Undetermined = 9)),
          identical(getValueLabels(1), setNames(character(), character())),
          identical(getMissingValues("sex"), list(values = 9, range = NULL)),
          identical(getMissingValues("species"), list(values = character(), range = NULL)),
          identical(getMissingValues("body_mass_g"), list(values = numeric(), range = NULL)))

# The cases.
stopifnot(identical(getCaseCount(), 344L))
cases <- readCases()
stopifnot(is.data.frame(cases), identical(dim(cases), c(344L, 7L)), identical(names(cases), names),
          identical(cases$species, table$species), identical(cases$island, table$island),
          identical(cases$bill_length_mm, as.numeric(table$bill_length_mm)),
          identical(cases$body_mass_g, as.numeric(table$body_mass_g)), sum(is.na(cases$body_mass_g)) == 2,
          identical(Encoding(enc2utf8(cases$species[1])), "unknown"))
stopifnot(sum(is.na(cases$sex)) == 11, sum(is.na(readCases("sex", keepUserMissing = TRUE)$sex)) < 11)
some <- readCases(c("sex", "species"), factors = TRUE)
stopifnot(identical(names(some), c("sex", "species")), identical(levels(some$sex), c("Female", "Male", "Undetermined")),
          identical(as.vector(table(some$sex)), as.vector(c(table(cases$sex), 0L))), is.character(some$species))
kept <- readCases("sex", factors = TRUE, keepUserMissing = TRUE)
stopifnot(sum(kept$sex == "Undetermined", na.rm = TRUE) == 11 - sum(is.na(kept$sex)))
stopifnot(identical(dim(readCases(character())), c(344L, 0L)), identical(readCases(6)$body_mass_g, cases$body_mass_g),
          identical(names(readCases(c(1, 1))), c("species", "species")))
for (i in 1:50) stopifnot(identical(readCases(), cases))

# What is refused, and how it is told.
failure <- fails(getVariableLabel(c("sex", "age", "height")), 98011L,
                 "GetVariableName: 98011 NoSuchVariable. The data have no variable age, height.")
stopifnot(inherits(failure, "error"), identical(failure$call, quote(getVariableLabel(c("sex", "age", "height")))))
for (position in list(0, 8, -1, NA_real_)) {
  fails(readCases(position), 10L, "GetVariableName: 10 IndexOutOfRange. Positions run from 1 to 7.")
}
failure <- fails(endProcedure(), 98101L, "EndProcedure: 98101 NoProcedureOpen. Call StartProcedure first.")
stopifnot(identical(failure$call, quote(endProcedure())), failure$routine == "EndProcedure")
fails(pivotTable(cbind(1), "T"), 98101L, "StartPivotTable: 98101 NoProcedureOpen. Call StartProcedure first.")
fails(getValueLabels(c("sex", "species")), NA_integer_, "one variable is to be given, by its name or position")
fails(getVariableType(TRUE), NA_integer_, "variables are given by their names or positions")
fails(submit("fly"), 98140L, "Submit: 98140 SyntaxCommandUnknown. Submit help; it lists the commands.")
# An error in the middle of a read leaves no cursor behind.
stopifnot(identical(readCases("sex")$sex, cases$sex))

# Output of every kind; the text that is shown is compared by whoever has started this program.
postOutput("")
postOutput(c("first", "s\u00e9cond"))
startProcedure("Kinds", "All kinds")
procedureFootnote("of the procedure")
textBlock(c("one", "two"), title = "Block", linesBefore = 1)
pivotTable(data.frame(n = c(1, NA), text = c("a", NA), more = c(0.5, 2)), title = "Frame",
           formats = c("Count", "GeneralStat", "Percent"), caption = "Caption", captionFootnotes = "of the caption",
           titleFootnotes = c("of the title", "another"), cellFootnotes = rbind(c("", "of a cell", NA), ""))
pivotTable(matrix(1:4, 2), title = "Categories", hideTitle = TRUE, columnWidth = c(10, 20),
           rows = list(Sex = variableValues("sex", c(1, 2))),
           columns = list(Measure = variableNames(c("bill_depth_mm", "body_mass_g"))),
           formats = list("Count", cellFormat("Variable", "bill_depth_mm")))
pivotTable(cbind(7), title = "Numbers", rows = 3, columns = factor("level"), formats = list(cellFormat("Count")))
endProcedure()
