# How a failed call of the engine becomes an R condition.

# The condition of a failure. `routine` is the engine's function that failed, NA where the package itself refuses.
kovaError <- function(message, code = NA_integer_, routine = NA_character_, call = NULL) {
  structure(class = c("kova_error", "error", "condition"),
            list(message = message, call = call, code = code, routine = routine))
}

# "<function>: <code> <name>. <advice>", with what the library says of the code unless the caller says more.
describeFailure <- function(code, routine, advice = NULL) {
  texts <- native("error_text", code)
  name <- if (nzchar(texts[1L])) texts[1L] else "an error of the engine's own"
  if (is.null(advice)) advice <- texts[2L]
  trimws(sprintf("%s: %d %s. %s", routine, code, name, advice), "right")
}

fail <- function(code, routine, advice = NULL) {
  stop(kovaError(describeFailure(code, routine, advice), code, routine, callOfUser()))
}

# An argument is not what the function takes.
refuse <- function(...) stop(kovaError(paste0(...), call = callOfUser()))

# The call of the package with which the user's own code came in, for the condition. The package's frames and those of
# base R between them stand above it; a script's statements are called by eval().
callOfUser <- function() {
  own <- topenv()
  found <- NULL
  for (frame in rev(seq_len(sys.nframe()))) {
    called <- sys.function(frame)
    home <- if (is.primitive(called)) baseenv() else topenv(environment(called))
    if (identical(home, own)) {
      found <- sys.call(frame)
    } else if (!isNamespace(home) || identical(called, eval) || getNamespaceName(home) != "base") {
      break
    }
  }
  found
}

# The result of a routine of the compiled code, or the failure that it gives in place of one. The answer is evaluated
# here, after the process has joined its engine.
ask <- function(answer) {
  joinEngine()
  if (inherits(answer, "kova_failure")) fail(answer[[1L]], answer[[2L]])
  answer
}

# As `ask`, for what makes output: what the script has printed so far stands in front of it.
tell <- function(answer) {
  joinEngine()
  postPrinted(andTheRest = TRUE)
  invisible(ask(answer))
}
