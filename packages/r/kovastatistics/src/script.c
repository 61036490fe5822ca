/* Statements evaluated as at R's top level. */
#include "kova.h"

typedef struct {
  SEXP call;
  SEXP environment;
  SEXP result; /* A null pointer until the call has ended well. */
} Statement;

/* How many are being evaluated: a script may run another one. */
static int depth = 0;

bool kova_runs_script(void) { return depth > 0; }

static void evaluate(void* data) {
  Statement* statement = data;
  statement->result = PROTECT(Rf_eval(statement->call, statement->environment));
  R_PreserveObject(statement->result); /* R's protection ends with the statement. */
  UNPROTECT(1);
}

/* The result of a call that gives something; R's NULL when it has ended in an error, which R has shown, or was
 * interrupted. The error's message names no function that stands above the statement. */
SEXP kova_evaluate(SEXP call, SEXP environment) {
  Statement statement = {call, environment, NULL};
  ++depth;
  R_ToplevelExec(evaluate, &statement);
  --depth;
  if (statement.result == NULL) return R_NilValue;
  R_ReleaseObject(statement.result);
  return statement.result;
}
