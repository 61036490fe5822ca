# Variables of the active data set.

measurementLevels <- c("unknown", "nominal", "ordinal", "scale")

getVariableCount <- function() ask(native("count", "GetVariableCount"))

getVariableNames <- function() {
  ask(native("variable_texts", "GetVariableName", seq_len(getVariableCount()) - 1L))
}

getVariableLabel <- function(variables = NULL) {
  describeVariables("variable_texts", "GetVariableLabel", variables)
}

getVariableType <- function(variables = NULL) {
  describeVariables("variable_numbers", "GetVariableType", variables)
}

getVariableFormat <- function(variables = NULL) {
  describeVariables("variable_texts", "GetVariableFormat", variables)
}

getVariableMeasurementLevel <- function(variables = NULL) {
  codes <- describeVariables("variable_numbers", "GetVariableMeasurementLevel", variables)
  levels <- measurementLevels[codes + 1L]
  # An engine may know others.
  levels[is.na(levels)] <- as.character(codes[is.na(levels)])
  names(levels) <- names(codes)
  levels
}

describeVariables <- function(routine, what, variables) {
  positions <- findVariables(variables)
  values <- ask(native(routine, what, unname(positions)))
  names(values) <- names(positions)
  values
}

# The variables' positions as the engine counts them, from 0, named by their names. Variables are given by name, or by
# position as R counts them.
findVariables <- function(variables) {
  names <- getVariableNames()
  if (is.null(variables)) {
    positions <- seq_along(names)
  } else if (is.character(variables)) {
    positions <- match(variables, names)
    unknown <- variables[is.na(positions)]
    if (length(unknown) > 0L) {
      fail(98011L, "GetVariableName", paste0("The data have no variable ", paste(unknown, collapse = ", "), "."))
    }
  } else if (is.numeric(variables)) {
    positions <- as.integer(variables)
    if (anyNA(positions) || any(positions < 1L) || any(positions > length(names))) {
      fail(10L, "GetVariableName", paste0("Positions run from 1 to ", length(names), "."))
    }
  } else {
    refuse("variables are given by their names or positions")
  }
  stats::setNames(positions - 1L, names[positions])
}

findVariable <- function(variable) {
  if (length(variable) != 1L) refuse("one variable is to be given, by its name or position")
  findVariables(variable)
}

getValueLabels <- function(variable) {
  position <- findVariable(variable)
  labelsAt(unname(position), ask(native("variable_numbers", "GetVariableType", unname(position))))
}

labelsAt <- function(position, type) {
  found <- ask(native("value_labels", position, type))
  values <- if (type != 0L) trimws(as.character(found[[1L]]), "right", " ") else found[[1L]]
  stats::setNames(values, found[[2L]])
}

getMissingValues <- function(variable) {
  position <- unname(findVariable(variable))
  found <- ask(native("missing_values", position, ask(native("variable_numbers", "GetVariableType", position))))
  kind <- found[[1L]]
  values <- found[[2L]]
  if (kind >= 0L) return(list(values = values[seq_len(min(kind, 3L))], range = NULL))
  list(values = if (kind == -3L) values[3L] else values[0L], range = values[1:2])
}
