/* Prints the number of valid cases and the mean of every numeric variable of the engine's active data set.
 *
 *   kovadx run --data examples/penguins -- examples/penguins/means
 */
#include "kova_engine.h"

enum { kEndOfCases = 23, kEndOfGroup = 67 }; /* What NextCase returns behind the last case, and behind a group's. */

typedef struct {
  int variable;
  int valid;
  double sum;
} Mean;

/* Room for the mean of each numeric variable, and their number. */
static Mean* numericVariables(int* count) {
  int code = 0;
  const int variables = GetVariableCount(&code);
  check(code, "GetVariableCount");
  Mean* const means = calloc((size_t)variables + 1, sizeof(Mean));
  if (means == NULL) check(8, "calloc");
  *count = 0;
  for (int i = 0; i < variables; ++i) {
    const int type = GetVariableType(i, &code);
    check(code, "GetVariableType");
    if (type == 0) means[(*count)++].variable = i;
  }
  return means;
}

/* The values come out of a batch of cases that the library holds: no call of the engine for each. */
static void addCase(Mean* means, int count) {
  for (int i = 0; i < count; ++i) {
    double value = 0;
    int missing = 0;
    check(GetNumericValue(means[i].variable, &value, &missing), "GetNumericValue");
    if (missing != 0) continue;
    means[i].sum += value;
    ++means[i].valid;
  }
}

int main(void) {
  int code = 0;
  int count = 0;
  connectToEngine("means");
  Mean* const means = numericVariables(&count);
  check(MakeCaseCursor("r"), "MakeCaseCursor");
  while ((code = NextCase()) != kEndOfCases) {
    if (code == kEndOfGroup) continue;
    check(code, "NextCase");
    addCase(means, count);
  }
  check(RemoveCaseCursor(), "RemoveCaseCursor");
  for (int i = 0; i < count; ++i) {
    const char* const name = GetVariableName(means[i].variable, &code);
    check(code, "GetVariableName");
    printf("%s: %d valid cases, mean %.2f\n", name, means[i].valid,
           means[i].valid ? means[i].sum / means[i].valid : 0.0);
  }
  free(means);
  return 0;
}
