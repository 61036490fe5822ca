# The compiled code, and the engine that this process belongs to.

session <- new.env(parent = emptyenv())
session$routines <- NULL     # Of the compiled code, by name.
session$loadFailure <- NULL  # Why the compiled code, or the library that it needs, could not be loaded.
session$isJoined <- FALSE

.onLoad <- function(libname, pkgname) {
  # Deliberate: a failure is kept, not raised. The engine types library(kovastatistics) into its console without
  # looking at the result; it is told by initRProcess.
  session$loadFailure <- tryCatch({
    library.dynam(pkgname, pkgname, libname)
    session$routines <- getDLLRegisteredRoutines(pkgname)$.Call
    NULL
  }, error = conditionMessage)
}

native <- function(routine, ...) {
  if (!is.null(session$loadFailure)) refuse(session$loadFailure)
  .Call(session$routines[[routine]], ...)
}

# A program that "kovadx run" has started finds in its environment who it is.
joinEngine <- function() {
  if (session$isJoined) return(invisible())
  name <- Sys.getenv("KOVA_XNAME")
  home <- Sys.getenv("KOVA_HOME")
  if (!nzchar(name) || !nzchar(home)) {
    fail(17L, "SetXNameAndSHome", "Start this program with: kovadx run --data FOLDER -- Rscript PROGRAM")
  }
  native("join", name, home)
  session$isJoined <- TRUE
}

# Text travels as UTF-8, so R must be able to show all of it.
useUtf8 <- function() {
  if (l10n_info()[["UTF-8"]]) return(invisible())
  for (locale in c("C.UTF-8", "en_US.UTF-8")) {
    if (nzchar(suppressWarnings(Sys.setlocale("LC_CTYPE", locale)))) break
  }
}
