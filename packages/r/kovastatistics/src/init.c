/* The routines that R may call, by name. */
#include <R_ext/Rdynload.h>
#include <R_ext/Visibility.h>

#include "kova.h"

#define ROUTINE(name, arguments) \
  { #name, (DL_FUNC)&kova_##name, arguments }

/* clang-format off */
static const R_CallMethodDef routines[] = {
    ROUTINE(error_text, 1),
    ROUTINE(join, 2),
    ROUTINE(begin, 4),
    ROUTINE(is_ready, 1),
    ROUTINE(take_console, 0),
    ROUTINE(count, 1),
    ROUTINE(variable_texts, 2),
    ROUTINE(variable_numbers, 2),
    ROUTINE(value_labels, 2),
    ROUTINE(missing_values, 2),
    ROUTINE(read_cases, 3),
    ROUTINE(evaluate, 2),
    ROUTINE(post, 1),
    ROUTINE(submit, 1),
    ROUTINE(start_procedure, 2),
    ROUTINE(end_procedure, 0),
    ROUTINE(procedure_footnote, 1),
    ROUTINE(text_block, 2),
    ROUTINE(format, 2),
    ROUTINE(table, 3),
    ROUTINE(dimension, 5),
    {NULL, NULL, 0},
};
/* clang-format on */

void attribute_visible R_init_kovastatistics(DllInfo* library) {
  R_registerRoutines(library, NULL, routines, NULL, NULL);
  R_useDynamicSymbols(library, FALSE);
  R_forceSymbols(library, TRUE);
}
