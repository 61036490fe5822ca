# Text and procedures.

# Lines given as a character vector are one text.
asText <- function(lines) {
  if (!is.character(lines)) lines <- as.character(lines)
  if (anyNA(lines)) refuse("a text may not be NA")
  enc2utf8(paste(lines, collapse = "\n"))
}

postOutput <- function(text) tell(native("post", charToRaw(asText(text))))

submit <- function(syntax) tell(native("submit", asText(syntax)))

startProcedure <- function(name, label = name) tell(native("start_procedure", asText(name), asText(label)))

endProcedure <- function() tell(native("end_procedure"))

procedureFootnote <- function(text) tell(native("procedure_footnote", asText(text)))

textBlock <- function(text, title, outline = title, linesBefore = 0) {
  tell(native("text_block", c(asText(outline), asText(title), asText(text)), as.integer(linesBefore)))
}
