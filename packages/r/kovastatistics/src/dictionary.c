/* Counts, and what the dictionary of the active data set says of variables. Positions count from 0 here. */
#include "kova.h"
#include "kovadx_ext.h"

typedef struct {
  const char* name;
  int (*count)(int* code);
} Counter;

typedef struct {
  const char* name;
  const char* (*text)(int position, int* code);
} TextOfVariable;

typedef struct {
  const char* name;
  int (*number)(int position, int* code);
} NumberOfVariable;

static const Counter counters[] = {
    {"GetVariableCount", GetVariableCount},
    {"GetRowCount", GetRowCount},
};

static const TextOfVariable texts_of_variables[] = {
    {"GetVariableName", GetVariableName},
    {"GetVariableLabel", GetVariableLabel},
    {"GetVariableFormat", GetVariableFormat},
};

static const NumberOfVariable numbers_of_variables[] = {
    {"GetVariableType", GetVariableType},
    {"GetVariableMeasurementLevel", GetVariableMeasurementLevel},
};

SEXP kova_count(SEXP function) {
  const Counter* counter = NULL;
  KOVA_FIND(counters, function, counter);
  int code = 0;
  int count = counter->count(&code);
  code = kova_outcome(code);
  return code != 0 ? kova_failure(code, counter->name) : Rf_ScalarInteger(count);
}

SEXP kova_variable_texts(SEXP function, SEXP positions) {
  const TextOfVariable* reader = NULL;
  KOVA_FIND(texts_of_variables, function, reader);
  R_xlen_t count = XLENGTH(positions);
  SEXP texts = PROTECT(Rf_allocVector(STRSXP, count));
  for (R_xlen_t i = 0; i < count; ++i) {
    int code = 0;
    const char* text = reader->text(INTEGER(positions)[i], &code);
    code = kova_outcome(code);
    if (code != 0) {
      UNPROTECT(1);
      return kova_failure(code, reader->name);
    }
    SET_STRING_ELT(texts, i, kova_char(text));
  }
  UNPROTECT(1);
  return texts;
}

SEXP kova_variable_numbers(SEXP function, SEXP positions) {
  const NumberOfVariable* reader = NULL;
  KOVA_FIND(numbers_of_variables, function, reader);
  R_xlen_t count = XLENGTH(positions);
  SEXP numbers = PROTECT(Rf_allocVector(INTSXP, count));
  for (R_xlen_t i = 0; i < count; ++i) {
    int code = 0;
    INTEGER(numbers)[i] = reader->number(INTEGER(positions)[i], &code);
    code = kova_outcome(code);
    if (code != 0) {
      UNPROTECT(1);
      return kova_failure(code, reader->name);
    }
  }
  UNPROTECT(1);
  return numbers;
}

/* The lists of one variable, the caller's own until they go back: its labels, and its values of either kind. */
typedef struct {
  int count;
  double* numbers;
  char** texts;
  char** labels;
} ValueLabels;

static SEXP strings(char** texts, int count) {
  SEXP result = PROTECT(Rf_allocVector(STRSXP, count));
  for (int i = 0; i < count; ++i) SET_STRING_ELT(result, i, kova_char(texts[i]));
  UNPROTECT(1);
  return result;
}

static SEXP copy_labels(void* data) {
  const ValueLabels* found = data;
  SEXP result = PROTECT(Rf_allocVector(VECSXP, 2));
  if (found->texts != NULL) {
    SET_VECTOR_ELT(result, 0, strings(found->texts, found->count));
  } else {
    SET_VECTOR_ELT(result, 0, Rf_allocVector(REALSXP, found->count));
    if (found->count > 0) memcpy(REAL(VECTOR_ELT(result, 0)), found->numbers, (size_t)found->count * sizeof(double));
  }
  SET_VECTOR_ELT(result, 1, strings(found->labels, found->count));
  UNPROTECT(1);
  return result;
}

static void free_labels(void* data) {
  ValueLabels* found = data;
  if (found->texts != NULL) {
    FreeCValueLabels(found->texts, found->labels, found->count);
  } else {
    FreeNValueLabels(found->numbers, found->labels, found->count);
  }
}

/* A list of the values and one of their labels. */
SEXP kova_value_labels(SEXP position, SEXP type) {
  int index = Rf_asInteger(position);
  bool is_text = Rf_asInteger(type) != 0;
  ValueLabels found = {0, NULL, NULL, NULL};
  int code = is_text ? GetCValueLabels(index, &found.texts, &found.labels, &found.count)
                     : GetNValueLabels(index, &found.numbers, &found.labels, &found.count);
  code = kova_outcome(code);
  if (code != 0) {
    free_labels(&found); /* A reply that was cut short may have brought lists. */
    return kova_failure(code, is_text ? "GetCValueLabels" : "GetNValueLabels");
  }
  return R_ExecWithCleanup(copy_labels, &found, free_labels, &found);
}

enum { MISSING_TEXT = 9 };

static SEXP text_missing_values(int index) {
  char values[3][MISSING_TEXT] = {"", "", ""};
  int kind = 0;
  int code = kova_outcome(GetVarCMissingValues(index, &kind, values[0], values[1], values[2]));
  if (code != 0) return kova_failure(code, "GetVarCMissingValues");
  char* texts[3] = {values[0], values[1], values[2]};
  SEXP result = PROTECT(Rf_allocVector(VECSXP, 2));
  SET_VECTOR_ELT(result, 0, Rf_ScalarInteger(kind));
  SET_VECTOR_ELT(result, 1, strings(texts, 3));
  UNPROTECT(1);
  return result;
}

/* The kind, and three values. */
SEXP kova_missing_values(SEXP position, SEXP type) {
  int index = Rf_asInteger(position);
  if (Rf_asInteger(type) != 0) return text_missing_values(index);
  double values[3] = {0, 0, 0};
  int kind = 0;
  int code = kova_outcome(GetVarNMissingValues(index, &kind, &values[0], &values[1], &values[2]));
  if (code != 0) return kova_failure(code, "GetVarNMissingValues");
  SEXP result = PROTECT(Rf_allocVector(VECSXP, 2));
  SET_VECTOR_ELT(result, 0, Rf_ScalarInteger(kind));
  SET_VECTOR_ELT(result, 1, Rf_allocVector(REALSXP, 3));
  memcpy(REAL(VECTOR_ELT(result, 1)), values, sizeof values);
  UNPROTECT(1);
  return result;
}
