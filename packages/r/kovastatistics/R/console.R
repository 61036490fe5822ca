# The R console that the engine has started and types into. It reads what R prints up to the prompt, so a prompt must
# come after every statement; and what a statement prints goes to the engine as output, not to the console.

console <- new.env(parent = emptyenv())
console$isChild <- FALSE   # The engine has started this process.
console$hasFailed <- FALSE # A statement, or the script, of the present run has ended in an error.
console$printed <- NULL    # The connection that takes what is printed while a run lasts.
console$depth <- 0L        # How many sinks there are with ours on top.

callbackName <- "kovastatistics"

initRProcess <- function(mode, temp, pid, language, patience = 10) {
  problem <- tryCatch(beginChild(mode, temp, pid, language, patience), error = conditionMessage)
  if (!is.null(problem)) {
    cat("kovastatistics: ", gsub("[[:space:]]+", " ", problem), "\n", file = stderr(), sep = "")
    base::quit(save = "no", status = 3L, runLast = FALSE)
  }
  invisible(TRUE)
}

# What is wrong, or NULL.
beginChild <- function(mode, temp, pid, language, patience) {
  if (!is.null(session$loadFailure)) return(session$loadFailure)
  if (!nzchar(Sys.getenv("KOVA_HOME"))) return("KOVA_HOME, the engine's home folder, is not set")
  useUtf8()
  native("begin", mode, temp, pid, language)
  if (!native("is_ready", patience)) {
    return(paste0("no engine answers on the pipes of ", pid, language, "; check that the engine runs and serves them"))
  }
  session$isJoined <- TRUE
  console$isChild <- TRUE
  native("take_console")
  holdOptions()
  maskQuit()
  # However R ends, what was printed before is shown.
  reg.finalizer(console, function(gone) try(postPrinted(andTheRest = TRUE), silent = TRUE), onexit = TRUE)
  NULL
}

# Whatever a profile or a script has set.
holdOptions <- function() {
  holdPrompts()
  options(menu.graphics = FALSE, editor = refuseToEdit, showErrorCalls = FALSE, error = noteError)
}

holdPrompts <- function() {
  if (!identical(getOption("prompt"), "> ") || !identical(getOption("continue"), "+ ")) {
    options(prompt = "> ", continue = "+ ")
  }
}

# An editor would wait for its user.
refuseToEdit <- function(...) stop("there is nobody to edit it", call. = FALSE)

# In front of base R, in the console alone: quit() tells of a failed run.
maskQuit <- function() {
  attach(list(q = consoleQuit, quit = consoleQuit), name = "kovastatistics:console", warn.conflicts = FALSE)
}

consoleQuit <- function(save = "default", status = 0, runLast = TRUE) {
  if (missing(status) && console$hasFailed) status <- 1
  endPrinted()
  base::quit(save = save, status = status, runLast = runLast)
}

prekova <- function() {
  if (!console$isChild) return(invisible())
  console$hasFailed <- FALSE
  holdOptions()
  if (!callbackName %in% getTaskCallbackNames()) addTaskCallback(afterStatement, name = callbackName)
  beginPrinted()
  invisible()
}

postkova <- function() {
  if (!console$isChild) return(invisible())
  endPrinted()
  holdOptions()
  invisible()
}

# R calls it behind each statement that did not fail, at the debugger's prompt too.
afterStatement <- function(...) {
  try({
    holdPrompts()
    postPrinted()
  }, silent = TRUE)
  TRUE
}

# R calls it when an error has reached the top; the message is printed already.
noteError <- function() {
  try({
    console$hasFailed <- TRUE
    holdPrompts()
    postPrinted()
  }, silent = TRUE)
}

# Capturing. One connection takes the output and the messages, so that they stay in their order; prompts do not go
# through it. It is kept in memory: nothing waits however much is printed.
beginPrinted <- function() {
  if (!is.null(console$printed)) return(invisible())
  console$printed <- rawConnection(raw(0L), "w")
  sink(console$printed)
  sink(console$printed, type = "message")
  console$depth <- sink.number()
}

# A sink that the run has left open ends with it.
endPrinted <- function() {
  if (is.null(console$printed)) return(invisible())
  postPrinted(andTheRest = TRUE)
  while (sink.number() >= console$depth) sink()
  if (sink.number(type = "message") == as.integer(console$printed)) sink(type = "message")
  close(console$printed)
  console$printed <- NULL
}

# Whether the connection is still ours: a script may have closed all connections.
isOpenStill <- function(connection) {
  same <- tryCatch(getConnection(as.integer(connection)), error = function(e) NULL)
  identical(attr(same, "conn_id"), attr(connection, "conn_id"))
}

# Takes the output up again that a script has let go of by ending sinks that were not its own.
repairPrinted <- function() {
  if (!isOpenStill(console$printed)) {
    console$printed <- NULL
    return(beginPrinted())
  }
  if (sink.number() < console$depth) {
    sink(console$printed)
    console$depth <- sink.number()
  }
  if (sink.number(type = "message") == 2L) sink(console$printed, type = "message")
}

# Posts the whole lines that were printed, and on demand a last one that has no end yet: the engine begins a new line
# behind every text.
postPrinted <- function(andTheRest = FALSE) {
  if (is.null(console$printed)) return(invisible())
  repairPrinted()
  bytes <- rawConnectionValue(console$printed)
  end <- if (andTheRest) length(bytes) else lastLineEnd(bytes)
  if (end == 0L) return(invisible())
  seek(console$printed, 0L)
  truncate(console$printed)
  writeBin(bytes[-seq_len(end)], console$printed)
  postBytes(bytes[seq_len(end)])
}

lastLineEnd <- function(bytes) max(0L, which(bytes == as.raw(10L)))

# Deliberate: that a text could not be posted ends nothing. The next call of the script's own tells what is wrong.
postBytes <- function(bytes) {
  text <- rawToChar(bytes)
  if (!validUTF8(text)) bytes <- charToRaw(iconv(text, "UTF-8", "UTF-8", sub = "byte"))
  while (length(bytes) > 0L) {
    end <- pieceEnd(bytes)
    native("post", bytes[seq_len(end)])
    bytes <- bytes[-seq_len(end)]
  }
  invisible()
}

# Texts go in pieces of about a mebibyte, cut at line ends.
pieceEnd <- function(bytes, size = 1048576L) {
  if (length(bytes) <= size) return(length(bytes))
  end <- lastLineEnd(bytes[seq_len(size)])
  if (end > 0L) return(end)
  ends <- which(bytes == as.raw(10L))
  if (length(ends) > 0L) ends[1L] else length(bytes)
}
