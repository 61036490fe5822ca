/* Prints the dictionary of the engine's active data set: what every variable is called, what it holds, and what its
 * values mean.
 *
 *   kovadx run --data examples/penguins -- examples/penguins/describe
 */
#include <stdio.h>

#include "kova_engine.h"

static const char* const kMeasures[] = {"unknown", "nominal", "ordinal", "scale"};

/* A text that the engine returns lives until the next one: it is printed at once. */
static void printNameAndLabel(int variable) {
  int code = 0;
  const char* text = GetVariableName(variable, &code);
  check(code, "GetVariableName");
  printf("\n%s: ", text);
  text = GetVariableLabel(variable, &code);
  check(code, "GetVariableLabel");
  printf("%s\n", text);
}

static void printTypeAndMeasure(int variable, int type) {
  int code = 0;
  const int measure = GetVariableMeasurementLevel(variable, &code);
  check(code, "GetVariableMeasurementLevel");
  if (type == 0) {
    printf("  number, ");
  } else {
    printf("  string of %d bytes, ", type);
  }
  printf("%s\n", measure >= 0 && measure <= 3 ? kMeasures[measure] : "?");
}

static void describeNumber(int variable) {
  double* values = NULL;
  char** labels = NULL;
  int count = 0;
  int kind = 0;
  double missing[3] = {0, 0, 0};
  check(GetNValueLabels(variable, &values, &labels, &count), "GetNValueLabels");
  for (int i = 0; i < count; ++i) printf("  value %g: %s\n", values[i], labels[i]);
  FreeNValueLabels(values, labels, count);

  check(GetVarNMissingValues(variable, &kind, &missing[0], &missing[1], &missing[2]), "GetVarNMissingValues");
  for (int i = 0; i < kind; ++i) printf("  missing: %g\n", missing[i]);
  if (kind < 0) printf("  missing: %g to %g\n", missing[0], missing[1]);
  if (kind == -3) printf("  missing: %g\n", missing[2]);
}

static void describeString(int variable) {
  char** values = NULL;
  char** labels = NULL;
  int count = 0;
  int kind = 0;
  char missing[3][9] = {"", "", ""};
  check(GetCValueLabels(variable, &values, &labels, &count), "GetCValueLabels");
  for (int i = 0; i < count; ++i) printf("  value %s: %s\n", values[i], labels[i]);
  FreeCValueLabels(values, labels, count);

  check(GetVarCMissingValues(variable, &kind, missing[0], missing[1], missing[2]), "GetVarCMissingValues");
  for (int i = 0; i < kind; ++i) printf("  missing: %s\n", missing[i]);
}

int main(void) {
  int code = 0;
  connectToEngine("describe");
  const int variables = GetVariableCount(&code);
  check(code, "GetVariableCount");
  const int cases = GetRowCount(&code);
  check(code, "GetRowCount");
  printf("%d variables, %d cases\n", variables, cases);
  for (int variable = 0; variable < variables; ++variable) {
    const int type = GetVariableType(variable, &code);
    check(code, "GetVariableType");
    printNameAndLabel(variable);
    printTypeAndMeasure(variable, type);
    if (type == 0) {
      describeNumber(variable);
    } else {
      describeString(variable);
    }
  }
  return 0;
}
