/* The driving program of driven_test.py: carries out one command a line from its standard input and answers with one
 * line, "> " and the result.
 *
 *     name NAME       tells the name and, as home folder, the one that this program was started with
 *     start OPTIONS   starts the engine
 *     stop            stops it
 *     ready, driven   asks whether it is there, and driven
 *     variables       asks for the number of variables: code and number
 *     rows            the same for cases
 *     cases           goes over the cases: code and number
 *     submit TEXT     submits syntax
 *     queue TEXT      hands over a part of a command
 *     usage           tells how many handles and bytes this program has in use
 *
 * Usage: driver HOME
 */
#include <stdio.h>
#include <string.h>

#include "kovadx.h"
#include "programs/startxd/driver_usage.h"

enum { kEndOfCases = 23, kLongestLine = 1000 }; /* The first is what NextCase returns behind the last case. */

/* What stands behind the beginning; null when the line does not begin so. */
static const char* after(const char* line, const char* beginning) {
  const size_t length = strlen(beginning);
  return strncmp(line, beginning, length) == 0 ? line + length : NULL;
}

static void answerNumber(int (*function)(int*)) {
  int code = 0;
  const int number = function(&code);
  printf("> %d %d\n", code, number);
}

static int countCases(int* code) {
  int number = 0;
  *code = MakeCaseCursor("r");
  while (*code == 0 && (*code = NextCase()) == 0) ++number;
  const int removed = RemoveCaseCursor();
  if (*code == kEndOfCases) *code = removed;
  return number;
}

static void stop(void) {
  StopKova();
  puts("> stopped");
}

static void name(const char* text, const char* home) {
  SetXNameAndSHome(text, home);
  puts("> named");
}

static void perform(const char* line, const char* home) {
  const char* rest = NULL;
  if ((rest = after(line, "name ")) != NULL) {
    name(rest, home);
  } else if ((rest = after(line, "start ")) != NULL) {
    printf("> %d\n", StartKova(rest));
  } else if ((rest = after(line, "submit ")) != NULL) {
    printf("> %d\n", Submit(rest, (int)strlen(rest)));
  } else if ((rest = after(line, "queue ")) != NULL) {
    printf("> %d\n", QueueCommandPart(rest, (int)strlen(rest)));
  } else if (strcmp(line, "stop") == 0) {
    stop();
  } else if (strcmp(line, "ready") == 0) {
    printf("> %d\n", IsBackendReady());
  } else if (strcmp(line, "driven") == 0) {
    printf("> %d\n", IsXDriven());
  } else if (strcmp(line, "variables") == 0) {
    answerNumber(GetVariableCount);
  } else if (strcmp(line, "rows") == 0) {
    answerNumber(GetRowCount);
  } else if (strcmp(line, "cases") == 0) {
    answerNumber(countCases);
  } else if (strcmp(line, "usage") == 0) {
    printf("> %d %d\n", usedHandles(), usedBytes());
  } else {
    printf("> unknown: %s\n", line);
  }
}

int main(int count, char** words) {
  char line[kLongestLine];
  if (count < 2) return 2;
  while (fgets(line, sizeof line, stdin) != NULL) {
    line[strcspn(line, "\r\n")] = '\0';
    perform(line, words[1]);
    fflush(stdout);
  }
  return 0;
}
