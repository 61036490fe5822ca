/* What the sources of the package's compiled code share.
 *
 * Every routine is called by .Call on R's main thread. R leaves C code by long jumps whenever it allocates, so nothing
 * of the library's is held across an R function unless R_ExecWithCleanup gives it back. Texts are UTF-8 on both sides.
 */
#ifndef KOVASTATISTICS_KOVA_H
#define KOVASTATISTICS_KOVA_H

#define R_NO_REMAP
#include <R.h>
#include <Rinternals.h>
#include <stdbool.h>
#include <string.h>

/* What a routine returns in place of its result when a call of the engine failed: the code, and the function's name. */
SEXP kova_failure(int code, const char* function);

/* NULL for R, or the failure. */
SEXP kova_done(int code, const char* function);

/* The code of a call of the engine that gave `code`: a reply that was cut short on its way counts as failed. */
int kova_outcome(int code);

/* A text of the engine's as R's; null counts as empty. */
SEXP kova_char(const char* text);

/* The text at that position as UTF-8, R's own memory until the routine returns. */
const char* kova_text(SEXP texts, int position);

/* Sets `found` to the entry of a table whose `name` is the text in `function`. */
#define KOVA_FIND(table, function, found)                                             \
  do {                                                                                \
    const char* wanted = kova_text(function, 0);                                      \
    for (size_t i = 0; i < sizeof(table) / sizeof *(table) && (found) == NULL; ++i) { \
      if (strcmp((table)[i].name, wanted) == 0) (found) = &(table)[i];                \
    }                                                                                 \
    if ((found) == NULL) Rf_error("kovastatistics has no function %s", wanted);       \
  } while (0)

SEXP kova_error_text(SEXP code);
SEXP kova_join(SEXP name, SEXP home);
SEXP kova_begin(SEXP mode, SEXP temporary, SEXP process, SEXP language);
SEXP kova_is_ready(SEXP seconds);

SEXP kova_count(SEXP function);
SEXP kova_variable_texts(SEXP function, SEXP positions);
SEXP kova_variable_numbers(SEXP function, SEXP positions);
SEXP kova_value_labels(SEXP position, SEXP type);
SEXP kova_missing_values(SEXP position, SEXP type);
SEXP kova_read_cases(SEXP positions, SEXP expected, SEXP keeps_missing);

SEXP kova_take_console(void);

/* Whether a statement of a script is being evaluated: nobody types then. */
bool kova_runs_script(void);

SEXP kova_evaluate(SEXP call, SEXP environment);

SEXP kova_post(SEXP bytes);
SEXP kova_submit(SEXP syntax);
SEXP kova_start_procedure(SEXP name, SEXP label);
SEXP kova_end_procedure(void);
SEXP kova_procedure_footnote(SEXP text);
SEXP kova_text_block(SEXP texts, SEXP lines);
SEXP kova_format(SEXP function, SEXP variable);
SEXP kova_table(SEXP function, SEXP table, SEXP value);
SEXP kova_dimension(SEXP function, SEXP table, SEXP dimension, SEXP variable, SEXP value);

#endif
