/* Who asks at the console. The engine types statements there, each when R prompts for one, and nothing else; so
 * whatever asks in another way would wait for ever, or take a statement of the engine's for its answer. */
#include <dlfcn.h>
#include <fcntl.h>
#include <libintl.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include "kova.h"

/* Writes the prompt, and reads a line with its line feed into `line`: how R reads all that comes from the console.
 * Gives 0 at the end of the input. Only what asks for statements wants them in the history. */
typedef int (*ReadConsole)(const char* prompt, unsigned char* line, int size, int is_statement);

/* What R reads with by itself, and what its standard input was, and is while no statement is read. */
static ReadConsole read_console;
static int statements;
static int nothing;

static int give(unsigned char* line, int size, const char* answer) {
  snprintf((char*)line, (size_t)size, "%s", answer);
  return *answer != '\0';
}

/* Whether a menu asks for a choice. It would ask again until it gets one. */
static bool is_menu(const char* prompt) { return strcmp(prompt, dgettext("utils", "Selection: ")) == 0; }

/* As for who presses the key for the end of the input. */
static int answer(const char* question, unsigned char* line, int size) {
  if (*question != '\0') Rprintf("%s\n", question);
  return give(line, size, is_menu(question) ? "0\n" : "");
}

/* The engine ends an open statement by that word. It takes a statement for open too when a program has printed what
 * looks like R's prompt for the rest of one; R has nothing to end then. */
static bool is_needless_end(const char* prompt, const unsigned char* line) {
  return strcmp(prompt, "> ") == 0 && strcmp((const char*)line, "END\n") == 0 &&
         Rf_findVar(Rf_install("END"), R_GlobalEnv) == R_UnboundValue;
}

static int read_statement(const char* prompt, unsigned char* line, int size) {
  dup2(statements, STDIN_FILENO);
  int has_line = read_console(prompt, line, size, true);
  dup2(nothing, STDIN_FILENO);
  return has_line && is_needless_end(prompt, line) ? give(line, size, "\n") : has_line;
}

/* In a script only the debugger prompts for statements; the script goes on. */
static int read_typed(const char* prompt, unsigned char* line, int size, int is_statement) {
  if (!is_statement) return answer(prompt, line, size);
  return kova_runs_script() ? give(line, size, "c\n") : read_statement(prompt, line, size);
}

/* R's own handler would ask at the console what to do. */
static void die_of_crashes(void) {
  signal(SIGSEGV, SIG_DFL);
  signal(SIGILL, SIG_DFL);
  signal(SIGBUS, SIG_DFL);
}

/* Deliberate: R's reader is looked up by its name, since R offers it to programs that embed R, not to packages. An R
 * without it keeps its console; what asks there waits. */
SEXP kova_take_console(void) {
  die_of_crashes();
  ReadConsole* reader = dlsym(dlopen(NULL, RTLD_LAZY), "ptr_R_ReadConsole");
  if (reader == NULL || read_console != NULL) return R_NilValue;
  statements = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  if (statements < 0 || nothing < 0) return R_NilValue;
  read_console = *reader;
  *reader = read_typed;
  dup2(nothing, STDIN_FILENO);
  return R_NilValue;
}
