/* Starts an engine with the penguins, reads their cases, submits commands, stops it; and all that a second time.
 *
 *   examples/penguins/driven HOME
 *
 * HOME is the home folder, in which the engine lies.
 */
#include <string.h>

#include "kova_engine.h"

enum { kEndOfCases = 23, kLongest = 1000 }; /* The first is what NextCase returns behind the last case. */

static const char* const kMass = "body_mass_g";

/* The body mass of the penguins that were weighed, of those that the engine selects: their number and mean. */
static int meanOf(int variable, double* mean) {
  int code = 0;
  int valid = 0;
  double sum = 0;
  check(MakeCaseCursor("r"), "MakeCaseCursor");
  while ((code = NextCase()) != kEndOfCases) {
    double value = 0;
    int missing = 0;
    check(code, "NextCase");
    check(GetNumericValue(variable, &value, &missing), "GetNumericValue");
    if (missing != 0) continue;
    sum += value;
    ++valid;
  }
  check(RemoveCaseCursor(), "RemoveCaseCursor");
  *mean = valid > 0 ? sum / valid : 0.0;
  return valid;
}

static int positionOf(const char* name, int variables) {
  for (int i = 0; i < variables; ++i) {
    int code = 0;
    const char* const found = GetVariableName(i, &code);
    check(code, "GetVariableName");
    if (strcmp(found, name) == 0) return i;
  }
  fprintf(stderr, "%s: the data have no variable %s\n", programName, name);
  exit(1);
}

/* The engine shows what comes of the commands. */
static void submit(const char* commands) {
  fflush(stdout);
  check(Submit(commands, (int)strlen(commands)), "Submit");
}

static void start(const char* home) {
  char options[kLongest];
  snprintf(options, sizeof options, "\"%s/examples/penguins\"", home);
  SetXNameAndSHome("PENGUINS", home);
  check(StartKova(options), "StartKova");
}

static void session(const char* home) {
  int code = 0;
  double mean = 0;
  char commands[kLongest];
  start(home);
  const int variables = GetVariableCount(&code);
  check(code, "GetVariableCount");
  const int rows = GetRowCount(&code);
  check(code, "GetRowCount");
  printf("the engine is up: %d variables, %d cases\n", variables, rows);
  const int mass = positionOf(kMass, variables);
  const int valid = meanOf(mass, &mean);
  printf("%s: %d valid cases, mean %.2f\n", kMass, valid, mean);
  snprintf(commands, sizeof commands, "compute heavy = %s > %.9f; filter by heavy; descriptives %s;", kMass, mean,
           kMass);
  submit(commands);
  printf("%d are heavier than that\n", meanOf(mass, &mean));
  StopKova();
  printf("the engine has stopped\n");
}

int main(int count, char** words) {
  programName = "driven";
  if (count < 2) {
    fprintf(stderr, "driven: no home folder; usage: driven HOME\n");
    return 2;
  }
  session(words[1]);
  session(words[1]);
  return 0;
}
