/* The cases as vectors, out of the blocks in which they come: one call a block, none a value. */
#include <stdint.h>
#include <string.h>

#include "kova.h"
#include "kovadx_ext.h"

enum { END_OF_CASES = 23, END_OF_GROUP = 67, UNIT = 8 };

static const uint64_t NO_VALUE = UINT64_C(0xFFEFFFFFFFFFFFFF);

/* How a case holds a variable, and which of its values are missing. */
typedef struct {
  int type;
  int offset;
  int missing_kind;
  unsigned char missing[3 * UNIT];
} Column;

typedef struct {
  SEXP positions;
  SEXP vectors; /* One for each position; all are longer than `count` while cases come. */
  Column* columns;
  R_xlen_t count;
  R_xlen_t capacity;
  bool keeps_missing;
  int code;
  const char* function; /* The one that failed. */
} Reader;

static uint64_t bits_at(const unsigned char* bytes) {
  uint64_t bits;
  memcpy(&bits, bytes, sizeof bits);
  return bits;
}

static double number_at(const unsigned char* bytes) {
  double number;
  memcpy(&number, bytes, sizeof number);
  return number;
}

static bool is_single_value(const Column* column, const unsigned char* cell, int first, int last) {
  for (int i = first; i < last; ++i) {
    if (bits_at(cell) == bits_at(column->missing + i * UNIT)) return true;
  }
  return false;
}

static bool is_missing_number(const Column* column, const unsigned char* cell) {
  int kind = column->missing_kind;
  if (kind >= 0) return is_single_value(column, cell, 0, kind < 3 ? kind : 3);
  double number = number_at(cell);
  if (number >= number_at(column->missing) && number <= number_at(column->missing + UNIT)) return true;
  return kind == -3 && is_single_value(column, cell, 2, 3);
}

static bool is_missing_text(const Column* column, const unsigned char* cell) {
  int kind = column->missing_kind;
  if (kind <= 0 || !is_single_value(column, cell, 0, kind < 3 ? kind : 3)) return false;
  for (int i = UNIT; i < column->type; ++i) {
    if (cell[i] != ' ') return false;
  }
  return true;
}

static void fill_numbers(const Reader* reader, const Column* column, SEXP vector, const unsigned char* cell, int count,
                         int case_size) {
  double* numbers = REAL(vector) + reader->count;
  for (int i = 0; i < count; ++i, cell += case_size) {
    bool is_missing = bits_at(cell) == NO_VALUE || (!reader->keeps_missing && is_missing_number(column, cell));
    numbers[i] = is_missing ? NA_REAL : number_at(cell);
  }
}

/* The text in a cell ends at its first NUL, or before the blanks that fill it up. */
static int text_length(const unsigned char* cell, int width) {
  const unsigned char* end = memchr(cell, 0, (size_t)width);
  int length = end != NULL ? (int)(end - cell) : width;
  while (length > 0 && cell[length - 1] == ' ') --length;
  return length;
}

/* Texts repeat from case to case, so the one before is looked at first. */
static void fill_texts(const Reader* reader, const Column* column, SEXP vector, const unsigned char* cell, int count,
                       int case_size) {
  SEXP text = R_NilValue;
  const unsigned char* earlier = NULL;
  for (int i = 0; i < count; ++i, cell += case_size) {
    if (earlier == NULL || memcmp(cell, earlier, (size_t)column->type) != 0) {
      text = !reader->keeps_missing && is_missing_text(column, cell)
                 ? NA_STRING
                 : Rf_mkCharLenCE((const char*)cell, text_length(cell, column->type), CE_UTF8);
      earlier = cell;
    }
    SET_STRING_ELT(vector, reader->count + i, text); /* The vector keeps it from here on. */
  }
}

static int describe_columns(Reader* reader) {
  for (R_xlen_t i = 0; i < XLENGTH(reader->positions); ++i) {
    Column* column = &reader->columns[i];
    const void* missing = NULL;
    int code = KovaGetCaseVariable(INTEGER(reader->positions)[i], &column->type, &column->offset, &column->missing_kind,
                                   &missing);
    if (code != 0) return code;
    memcpy(column->missing, missing, sizeof column->missing);
  }
  return 0;
}

static void resize(Reader* reader, R_xlen_t capacity) {
  for (R_xlen_t i = 0; i < XLENGTH(reader->vectors); ++i) {
    SEXP vector = VECTOR_ELT(reader->vectors, i);
    if (XLENGTH(vector) != capacity) SET_VECTOR_ELT(reader->vectors, i, Rf_xlengthgets(vector, capacity));
  }
  reader->capacity = capacity;
}

static void take_block(Reader* reader, const unsigned char* cases, int count, int case_size) {
  if (reader->count + count > reader->capacity) {
    R_xlen_t doubled = 2 * reader->capacity;
    resize(reader, reader->count + count > doubled ? reader->count + count : doubled);
  }
  for (R_xlen_t i = 0; i < XLENGTH(reader->vectors); ++i) {
    const Column* column = &reader->columns[i];
    SEXP vector = VECTOR_ELT(reader->vectors, i);
    (column->type == 0 ? fill_numbers : fill_texts)(reader, column, vector, cases + column->offset, count, case_size);
  }
  reader->count += count;
}

static void read_blocks(Reader* reader) {
  int code = 0;
  while (code != END_OF_CASES) {
    const void* cases = NULL;
    int count = 0;
    int case_size = 0;
    code = KovaNextCaseBlock(&cases, &count, &case_size);
    if (code == 0) {
      take_block(reader, cases, count, case_size);
      R_CheckUserInterrupt();
    } else if (code != END_OF_CASES && code != END_OF_GROUP) {
      reader->code = code;
      reader->function = "KovaNextCaseBlock";
      return;
    }
  }
}

static SEXP read_all(void* data) {
  Reader* reader = data;
  reader->function = "KovaGetCaseVariable";
  reader->code = describe_columns(reader);
  if (reader->code != 0) return R_NilValue;
  for (R_xlen_t i = 0; i < XLENGTH(reader->vectors); ++i) {
    SEXPTYPE kind = reader->columns[i].type == 0 ? REALSXP : STRSXP;
    SET_VECTOR_ELT(reader->vectors, i, Rf_allocVector(kind, reader->capacity));
  }
  read_blocks(reader);
  if (reader->code == 0) resize(reader, reader->count);
  return R_NilValue;
}

/* Deliberate: what the engine says to this is not looked at. The cases are here, or the read's own failure is told. */
static void end_cursor(void* data) {
  (void)data;
  RemoveCaseCursor();
}

/* A list with a vector for each position, and the number of cases. */
SEXP kova_read_cases(SEXP positions, SEXP expected, SEXP keeps_missing) {
  int code = kova_outcome(MakeCaseCursor("r"));
  if (code != 0) return kova_failure(code, "MakeCaseCursor");
  SEXP result = PROTECT(Rf_allocVector(VECSXP, 2));
  Reader reader = {.positions = positions, .capacity = Rf_asInteger(expected)};
  SET_VECTOR_ELT(result, 0, Rf_allocVector(VECSXP, XLENGTH(positions)));
  reader.vectors = VECTOR_ELT(result, 0);
  reader.columns = (Column*)R_alloc((size_t)XLENGTH(positions), sizeof(Column));
  reader.keeps_missing = Rf_asLogical(keeps_missing) == TRUE;
  R_ExecWithCleanup(read_all, &reader, end_cursor, NULL);
  SET_VECTOR_ELT(result, 1, Rf_ScalarInteger((int)reader.count));
  UNPROTECT(1);
  return reader.code != 0 ? kova_failure(reader.code, reader.function) : result;
}
