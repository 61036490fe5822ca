# Cases of the active data set.

getCaseCount <- function() ask(native("count", "GetRowCount"))

readCases <- function(variables = NULL, factors = FALSE, keepUserMissing = FALSE) {
  where <- findVariables(variables)
  read <- ask(native("read_cases", unname(where), getCaseCount(), isTRUE(keepUserMissing)))
  columns <- read[[1L]]
  if (factors) columns <- Map(labelled, columns, unname(where))
  structure(columns, names = names(where), class = "data.frame", row.names = .set_row_names(read[[2L]]))
}

# A column as a factor when its variable has value labels. Values without a label are levels of their own.
labelled <- function(column, position) {
  labels <- labelsAt(position, ask(native("variable_numbers", "GetVariableType", position)))
  if (length(labels) == 0L) return(column)
  others <- sort(setdiff(unique(column), c(labels, NA)))
  factor(column, levels = c(unname(labels), others), labels = c(names(labels), as.character(others)))
}
