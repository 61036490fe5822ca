/* What the C examples share: a program that `kovadx run` starts finds its engine, and ends at the first call that
 * fails. */
#ifndef KOVA_ENGINE_H
#define KOVA_ENGINE_H

#include <stdio.h>
#include <stdlib.h>

#include "kovadx.h"

static const char* programName = "";

/* Every call of the engine ends in a code; an example may simply stop at the first that is not 0. */
static void check(int code, const char* call) {
  if (code == 0) return;
  fprintf(stderr, "%s: %s failed with code %d\n", programName, call, code);
  exit(1);
}

static inline void connectToEngine(const char* name) {
  const char* const home = getenv("KOVA_HOME");
  const char* const instance = getenv("KOVA_XNAME");
  programName = name;
  if (home == NULL || instance == NULL) {
    fprintf(stderr, "%s: no engine; start this program with: kovadx run --data FOLDER -- %s\n", name, name);
    exit(1);
  }
  SetXNameAndSHome(instance, home);
  SetKovaRunning(true);
}

#endif
