/* Text, procedures and pivot tables. */
#include "kova.h"
#include "kovadx_ext.h"

/* The keys of a table and of one of its dimensions, as every call repeats them. */
#define TABLE_KEY const char *outline, const char *title, const char *subtype, bool split
#define DIMENSION_KEY \
  TABLE_KEY, const char *name, int place, int position, bool is_name_hidden, bool are_categories_hidden

typedef struct {
  const char* outline;
  const char* title;
  const char* subtype;
  bool split;
} Table;

typedef struct {
  const char* name;
  int place;
  int position;
  bool is_name_hidden;
  bool are_categories_hidden;
} Dimension;

#define OF_TABLE(t) (t).outline, (t).title, (t).subtype, (t).split
#define OF_DIMENSION(t, d) OF_TABLE(t), (d).name, (d).place, (d).position, (d).is_name_hidden, (d).are_categories_hidden

/* Each function's name and, under the shape that it has, itself. */
typedef struct {
  const char* name;
  int (*plain)(void);
  int (*of_variable)(int variable);
} Format;

typedef struct {
  const char* name;
  int (*plain)(TABLE_KEY);
  int (*text)(TABLE_KEY, const char* text);
  int (*text_inside)(const char* outline, const char* title, const char* subtype, const char* text, bool split);
  int (*two_texts)(TABLE_KEY, const char* text, const char* more);
  int (*number)(TABLE_KEY, int number);
} TableFunction;

typedef struct {
  const char* name;
  int (*plain)(DIMENSION_KEY);
  int (*number)(DIMENSION_KEY, double number);
  int (*text)(DIMENSION_KEY, const char* text);
  int (*variable)(DIMENSION_KEY, int variable);
  int (*number_of_variable)(DIMENSION_KEY, int variable, double number);
  int (*text_of_variable)(DIMENSION_KEY, int variable, const char* text);
} DimensionFunction;

#define PLAIN(function) \
  { .name = #function, .plain = function }
#define OF_VARIABLE(function) \
  { .name = #function, .of_variable = function }

static const Format formats[] = {
    PLAIN(SetFormatSpecCoefficient),    PLAIN(SetFormatSpecCoefficientSE), PLAIN(SetFormatSpecCoefficientVar),
    PLAIN(SetFormatSpecCorrelation),    PLAIN(SetFormatSpecGeneralStat),   PLAIN(SetFormatSpecCount),
    PLAIN(SetFormatSpecPercent),        PLAIN(SetFormatSpecPercentNoSign), PLAIN(SetFormatSpecProportion),
    PLAIN(SetFormatSpecSignificance),   PLAIN(SetFormatSpecResidual),      OF_VARIABLE(SetFormatSpecMean),
    OF_VARIABLE(SetFormatSpecVariable), OF_VARIABLE(SetFormatSpecStdDev),  OF_VARIABLE(SetFormatSpecDifference),
    OF_VARIABLE(SetFormatSpecSum),
};

static const TableFunction table_functions[] = {
    PLAIN(StartPivotTable),
    PLAIN(HidePivotTableTitle),
    {.name = "PivotTableCaption", .text = PivotTableCaption},
    {.name = "AddTitleFootnotes", .text_inside = AddTitleFootnotes},
    {.name = "AddCaptionFootnotes", .two_texts = AddCaptionFootnotes},
    {.name = "MinDataColumnWidth", .number = MinDataColumnWidth},
    {.name = "MaxDataColumnWidth", .number = MaxDataColumnWidth},
};

static const DimensionFunction dimension_functions[] = {
    PLAIN(AddDimension),
    {.name = "AddNumberCategory", .number = AddNumberCategory},
    {.name = "AddStringCategory", .text = AddStringCategory},
    {.name = "AddVarNameCategory", .variable = AddVarNameCategory},
    {.name = "AddVarValueDoubleCategory", .number_of_variable = AddVarValueDoubleCategory},
    {.name = "AddVarValueStringCategory", .text_of_variable = AddVarValueStringCategory},
    {.name = "SetNumberCell", .number = SetNumberCell},
    {.name = "SetStringCell", .text = SetStringCell},
    {.name = "AddCellFootnotes", .text = AddCellFootnotes},
};

SEXP kova_post(SEXP bytes) {
  return kova_done(kova_outcome(PostKovaOutput((const char*)RAW(bytes), LENGTH(bytes))), "PostKovaOutput");
}

SEXP kova_submit(SEXP syntax) {
  const char* text = kova_text(syntax, 0);
  return kova_done(kova_outcome(Submit(text, (int)strlen(text))), "Submit");
}

SEXP kova_start_procedure(SEXP name, SEXP label) {
  return kova_done(kova_outcome(StartProcedure(kova_text(name, 0), kova_text(label, 0))), "StartProcedure");
}

SEXP kova_end_procedure(void) { return kova_done(kova_outcome(EndProcedure()), "EndProcedure"); }

SEXP kova_procedure_footnote(SEXP text) {
  return kova_done(kova_outcome(AddProcFootnotes(kova_text(text, 0))), "AddProcFootnotes");
}

SEXP kova_text_block(SEXP texts, SEXP lines) {
  int code = AddTextBlock(kova_text(texts, 0), kova_text(texts, 1), kova_text(texts, 2), Rf_asInteger(lines));
  return kova_done(kova_outcome(code), "AddTextBlock");
}

SEXP kova_format(SEXP function, SEXP variable) {
  const Format* format = NULL;
  KOVA_FIND(formats, function, format);
  int code = format->plain != NULL ? format->plain() : format->of_variable(Rf_asInteger(variable));
  return kova_done(kova_outcome(code), format->name);
}

/* A table is a list of three texts and the split flag. */
static Table table_of(SEXP table) {
  SEXP texts = VECTOR_ELT(table, 0);
  return (Table){kova_text(texts, 0), kova_text(texts, 1), kova_text(texts, 2),
                 Rf_asLogical(VECTOR_ELT(table, 1)) == TRUE};
}

/* A dimension is a list of its name, its place and position, and whether its name and its categories are hidden. */
static Dimension dimension_of(SEXP dimension) {
  const int* where = INTEGER(VECTOR_ELT(dimension, 1));
  const int* hidden = LOGICAL(VECTOR_ELT(dimension, 2));
  return (Dimension){kova_text(VECTOR_ELT(dimension, 0), 0), where[0], where[1], hidden[0] == TRUE, hidden[1] == TRUE};
}

static int call_table(const TableFunction* function, Table table, SEXP value) {
  if (function->plain != NULL) return function->plain(OF_TABLE(table));
  if (function->number != NULL) return function->number(OF_TABLE(table), Rf_asInteger(value));
  const char* text = kova_text(value, 0);
  if (function->text != NULL) return function->text(OF_TABLE(table), text);
  if (function->two_texts != NULL) return function->two_texts(OF_TABLE(table), text, kova_text(value, 1));
  return function->text_inside(table.outline, table.title, table.subtype, text, table.split);
}

SEXP kova_table(SEXP function, SEXP table, SEXP value) {
  const TableFunction* found = NULL;
  KOVA_FIND(table_functions, function, found);
  return kova_done(kova_outcome(call_table(found, table_of(table), value)), found->name);
}

static int call_dimension(const DimensionFunction* function, Table table, Dimension dimension, int variable,
                          SEXP value) {
  if (function->plain != NULL) return function->plain(OF_DIMENSION(table, dimension));
  if (function->variable != NULL) return function->variable(OF_DIMENSION(table, dimension), variable);
  if (function->number != NULL) return function->number(OF_DIMENSION(table, dimension), Rf_asReal(value));
  if (function->number_of_variable != NULL) {
    return function->number_of_variable(OF_DIMENSION(table, dimension), variable, Rf_asReal(value));
  }
  const char* text = kova_text(value, 0);
  if (function->text != NULL) return function->text(OF_DIMENSION(table, dimension), text);
  return function->text_of_variable(OF_DIMENSION(table, dimension), variable, text);
}

SEXP kova_dimension(SEXP function, SEXP table, SEXP dimension, SEXP variable, SEXP value) {
  const DimensionFunction* found = NULL;
  KOVA_FIND(dimension_functions, function, found);
  int code = call_dimension(found, table_of(table), dimension_of(dimension), Rf_asInteger(variable), value);
  return kova_done(kova_outcome(code), found->name);
}
