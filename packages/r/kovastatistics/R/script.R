# A script, statement by statement as Rscript runs it.

runScript <- function(path) {
  script <- parseScript(path)
  if (runStatements(script$statements)) {
    if (!is.null(script$problem)) stop(script$problem, call. = FALSE)
    return(invisible())
  }
  # R has shown the statement's error. This one ends whoever has called, without a word.
  own <- options(show.error.messages = FALSE)
  on.exit(options(own))
  refuse("the script has ended in an error")
}

# Whether all came to their end.
runStatements <- function(statements) {
  # Warnings would wait for the end of the script, and those of a failed statement for that of the run.
  own <- options(showErrorCalls = TRUE)
  if (identical(as.integer(getOption("warn")), 0L)) own <- c(own, options(warn = 1L))
  on.exit(endStatements(own))
  for (statement in as.list(statements)) {
    if (!runStatement(statement)) return(FALSE)
    postPrinted()
  }
  TRUE
}

endStatements <- function(own) {
  options(own)
  if (console$isChild) holdOptions()
  postPrinted()
}

# Whether it came to its end.
runStatement <- function(statement) {
  # The statement is the argument of withVisible() without being in a call of that function, which error messages would
  # name.
  frame <- new.env(parent = baseenv())
  do.call(delayedAssign, list("x", statement, globalenv(), frame))
  result <- native("evaluate", body(withVisible), frame)
  if (is.null(result)) return(FALSE)
  if (!result$visible) return(TRUE)
  !is.null(native("evaluate", quote(showValue(value)), list2env(result, parent = environment(runStatement))))
}

showValue <- function(value) {
  if (isS4(value)) show(value) else print(value)
  TRUE
}

# The statements in front of the first syntax error, and that error's message.
parseScript <- function(path) {
  if (!file.exists(path) || dir.exists(path)) stop(sprintf("there is no script '%s'", path), call. = FALSE)
  lines <- readLines(path, warn = FALSE)
  if (length(lines) > 0L) lines[1L] <- sub("^\xef\xbb\xbf", "", lines[1L], useBytes = TRUE)
  Encoding(lines) <- "UTF-8"
  parseSome <- function(count) {
    parse(text = lines, n = count, keep.source = FALSE, srcfile = basename(path), encoding = "UTF-8")
  }
  tryCatch(list(statements = parseSome(-1L), problem = NULL), error = function(e) {
    list(statements = parseSome(countGood(parseSome, lines)), problem = conditionMessage(e))
  })
}

# How many statements can be read one after the other; each needs a character at least.
countGood <- function(parseSome, lines) {
  low <- 0L
  high <- sum(nchar(lines, "bytes")) + 1L
  while (low + 1L < high) {
    middle <- (low + high) %/% 2L
    isGood <- tryCatch({
      parseSome(middle)
      TRUE
    }, error = function(e) FALSE)
    if (isGood) low <- middle else high <- middle
  }
  low
}
