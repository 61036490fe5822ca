# Pivot tables out of matrices and data frames.

ROW <- 0L
COLUMN <- 1L

stylesOfVariables <- c("Mean", "Variable", "StdDev", "Difference", "Sum")
stylesOfTheirOwn <- c("Coefficient", "CoefficientSE", "CoefficientVar", "Correlation", "GeneralStat", "Count",
                      "Percent", "PercentNoSign", "Proportion", "Significance", "Residual")

cellFormat <- function(style, variable = NULL) {
  if (style %in% stylesOfTheirOwn) {
    if (!is.null(variable)) refuse("the style ", style, " takes no variable")
  } else if (!style %in% stylesOfVariables) {
    styles <- paste(c(stylesOfTheirOwn, stylesOfVariables), collapse = ", ")
    refuse("there is no style ", style, "; the styles are ", styles)
  } else if (length(variable) != 1L) {
    refuse("the style ", style, " needs a variable")
  }
  structure(list(style = style, variable = variable), class = "kova_format")
}

variableValues <- function(variable, values) {
  if (length(variable) != 1L) refuse("values belong to one variable")
  structure(list(variable = variable, values = if (is.factor(values)) as.character(values) else values),
            class = "kova_values")
}

variableNames <- function(variables) structure(list(variables = variables), class = "kova_variables")

pivotTable <- function(cells, title, outline = title, subtype = title, rows = NULL, columns = NULL,
                       formats = "GeneralStat", cellFootnotes = NULL, titleFootnotes = character(), caption = NULL,
                       captionFootnotes = character(), hideNames = character(), hideTitle = FALSE, columnWidth = NULL,
                       bySplit = FALSE) {
  grid <- asGrid(cells)
  table <- list(vapply(list(outline, title, subtype), asText, ""), isTRUE(bySplit))
  rowDimensions <- asDimensions(rows, "Rows", dimnames(grid)[[1L]], nrow(grid), ROW, hideNames)
  columnDimensions <- asDimensions(columns, "Columns", dimnames(grid)[[2L]], ncol(grid), COLUMN, hideNames)
  formats <- asFormats(formats, grid)
  footnotes <- asFootnotes(cellFootnotes, grid)

  tellTable("StartPivotTable", table)
  if (hideTitle) tellTable("HidePivotTableTitle", table)
  for (dimension in c(rowDimensions, columnDimensions)) tellDimension("AddDimension", table, dimension)
  fillCells(table, grid, rowDimensions, columnDimensions, formats, footnotes)
  addTexts(table, titleFootnotes, caption, captionFootnotes)
  limitWidth(table, columnWidth)
  invisible()
}

tellTable <- function(routine, table, value = NULL) tell(native("table", routine, table, value))

tellDimension <- function(routine, table, dimension, value = NULL, variable = NA_integer_) {
  tell(native("dimension", routine, table, dimension$key, variable, value))
}

addTexts <- function(table, titleFootnotes, caption, captionFootnotes) {
  for (text in titleFootnotes) tellTable("AddTitleFootnotes", table, asText(text))
  if (is.null(caption)) {
    if (length(captionFootnotes) > 0L) refuse("there is no caption for the footnotes")
    return(invisible())
  }
  caption <- asText(caption)
  tellTable("PivotTableCaption", table, caption)
  for (text in captionFootnotes) tellTable("AddCaptionFootnotes", table, c(caption, asText(text)))
}

limitWidth <- function(table, columnWidth) {
  if (is.null(columnWidth)) return(invisible())
  if (length(columnWidth) != 2L) refuse("columnWidth is the least and the greatest width")
  # The greatest first: it may not be below the least.
  if (!is.na(columnWidth[2L])) tellTable("MaxDataColumnWidth", table, as.integer(columnWidth[2L]))
  if (!is.na(columnWidth[1L])) tellTable("MinDataColumnWidth", table, as.integer(columnWidth[1L]))
}

# The cells as a matrix of list elements, each a number or a text.
asGrid <- function(cells) {
  if (!is.data.frame(cells) && !is.matrix(cells)) refuse("cells is a matrix or a data frame")
  if (any(dim(cells) == 0L)) refuse("the table has no cells")
  if (is.data.frame(cells)) {
    columns <- lapply(cells, asCells)
    names <- list(as.character(row.names(cells)), names(cells))
  } else {
    columns <- lapply(seq_len(ncol(cells)), function(j) asCells(cells[, j]))
    names <- if (is.null(dimnames(cells))) list(NULL, NULL) else dimnames(cells)
  }
  grid <- matrix(unlist(lapply(columns, as.list), recursive = FALSE, use.names = FALSE), nrow(cells), ncol(cells))
  dimnames(grid) <- names
  grid
}

asCells <- function(values) if (is.numeric(values) && !is.object(values)) values else as.character(values)

# Dimensions of one place, the outermost first: each with its key and its category in every row, or column.
asDimensions <- function(given, name, names, count, place, hideNames) {
  if (is.null(given)) given <- if (is.null(names)) seq_len(count) else names
  if (!is.list(given) || is.object(given) && !is.data.frame(given)) {
    given <- stats::setNames(list(given), name)
    hideNames <- name
  }
  if (is.null(names(given)) || !all(nzchar(names(given)))) refuse("each dimension needs a name")
  lapply(seq_along(given), function(i) {
    key <- list(asText(names(given)[i]), c(place, i - 1L), c(names(given)[i] %in% hideNames, FALSE))
    c(list(key = key), asCategories(given[[i]], names(given)[i], count))
  })
}

asCategories <- function(categories, name, count) {
  variable <- NA_integer_
  values <- categories
  if (inherits(categories, "kova_values")) {
    variable <- unname(findVariable(categories$variable))
    values <- categories$values
    routine <- if (is.numeric(values)) "AddVarValueDoubleCategory" else "AddVarValueStringCategory"
  } else if (inherits(categories, "kova_variables")) {
    values <- unname(findVariables(categories$variables))
    routine <- "AddVarNameCategory"
  } else {
    routine <- if (is.numeric(values)) "AddNumberCategory" else "AddStringCategory"
  }
  if (!is.numeric(values)) values <- enc2utf8(as.character(values))
  if (length(values) != count) {
    refuse("the dimension ", name, " has ", length(values), " categories for ", count, " places")
  }
  if (anyNA(values)) refuse("a category of the dimension ", name, " is NA")
  list(routine = routine, values = values, variable = variable)
}

# A format for each cell, column by column.
asFormats <- function(formats, grid) {
  if (inherits(formats, "kova_format")) formats <- list(formats)
  formats <- lapply(formats, function(one) if (inherits(one, "kova_format")) one else cellFormat(one))
  if (length(formats) == ncol(grid)) formats <- rep(formats, each = nrow(grid))
  if (length(formats) == 1L) formats <- rep(formats, length(grid))
  if (length(formats) != length(grid)) refuse("formats are for all cells, for each column, or for each cell")
  lapply(formats, function(one) {
    list(routine = paste0("SetFormatSpec", one$style),
         variable = if (is.null(one$variable)) NA_integer_ else unname(findVariable(one$variable)))
  })
}

asFootnotes <- function(footnotes, grid) {
  if (is.null(footnotes)) return(matrix("", nrow(grid), ncol(grid)))
  footnotes <- as.matrix(footnotes)
  if (!identical(dim(footnotes), dim(grid))) refuse("cellFootnotes must have the rows and columns of the cells")
  footnotes[is.na(footnotes)] <- ""
  footnotes
}

# A cell stands at the current category of every dimension. A format holds until the next: it is told when it changes.
fillCells <- function(table, grid, rows, columns, formats, footnotes) {
  format <- NULL
  for (i in seq_len(nrow(grid))) {
    setCategories(table, rows, i)
    for (j in seq_len(ncol(grid))) {
      cell <- grid[[i, j]]
      if (is.na(cell)) next
      setCategories(table, columns, j)
      wanted <- formats[[(j - 1L) * nrow(grid) + i]]
      if (is.numeric(cell) && !identical(wanted, format)) {
        format <- wanted
        tell(native("format", format$routine, format$variable))
      }
      setCell(table, rows[[1L]], cell, footnotes[i, j])
    }
  }
}

setCategories <- function(table, dimensions, place) {
  for (dimension in dimensions) {
    isVariable <- dimension$routine == "AddVarNameCategory"
    variable <- if (isVariable) dimension$values[place] else dimension$variable
    tellDimension(dimension$routine, table, dimension, dimension$values[place], variable)
  }
}

setCell <- function(table, dimension, cell, footnote) {
  routine <- if (is.numeric(cell)) "SetNumberCell" else "SetStringCell"
  tellDimension(routine, table, dimension, if (is.numeric(cell)) cell else enc2utf8(cell))
  if (nzchar(footnote)) tellDimension("AddCellFootnotes", table, dimension, enc2utf8(footnote))
}
