/* The echo runtime: a language whose lines say what happens next. It shows what a runtime library needs, and lets tests
 * see what a host does.
 *
 *     return 7          the block ends here with the code 7
 *     pre 7             from now on pre_action answers 7; "post" and "stop" likewise
 *     calls             shows how often each entry point was called
 *     arguments         shows the arguments of the start, one a line
 *     environment NAME  shows a variable of the environment
 *     variables         asks the engine for the number of variables and shows it
 *     submit TEXT       submits syntax to the engine; another code than 0 ends the block
 *     queue TEXT        hands a line over that the next "submit" puts in front of its text
 *     forever           never ends
 *
 * Every other line is shown as it is. An argument --init=7 has the start answer 7, --pre=7 every pre_action.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "kovadx.h"
#include "kovadx_runtime.h"

#define LONGEST_ARGUMENTS 1000

static struct { int init, pre, execute, post, stop, callback, output; } calls;
static struct { int pre, post, stop; } answers;
static char arguments[LONGEST_ARGUMENTS];
static int (*show)(const char* text, int length);

static int show_text(const char* text) { return show == NULL || *text == '\0' ? 0 : show(text, (int)strlen(text)); }

/* What stands behind the beginning; null when the text does not begin so. */
static const char* after(const char* text, const char* beginning) {
  const size_t length = strlen(beginning);
  return strncmp(text, beginning, length) == 0 ? text + length : NULL;
}

static void note_argument(const char* argument, int* result) {
  const char* number = after(argument, "--init=");
  if (number != NULL) *result = atoi(number);
  number = after(argument, "--pre=");
  if (number != NULL) answers.pre = atoi(number);
  strncat(arguments, argument, sizeof arguments - strlen(arguments) - 1);
  strncat(arguments, "\n", sizeof arguments - strlen(arguments) - 1);
}

static int show_calls(void) {
  char text[200];
  snprintf(text, sizeof text, "init %d, pre %d, execute %d, post %d, stop %d, callback %d, output %d", calls.init,
           calls.pre, calls.execute, calls.post, calls.stop, calls.callback, calls.output);
  return show_text(text);
}

static int show_environment(const char* name) {
  const char* value = getenv(name);
  return show_text(value == NULL ? "(not set)" : value);
}

static int go_on_forever(void) {
  volatile int goes_on = 1;
  while (goes_on) {
  }
  return 0;
}

static int show_variables(void) {
  int code = 0;
  char text[20];
  snprintf(text, sizeof text, "%d", GetVariableCount(&code));
  return code != 0 ? code : show_text(text);
}

/* Carries one line out. The result is the line's code; *ends is set when it ends the block whatever that is. */
static int perform(const char* line, int* ends) {
  const char* rest = after(line, "return ");
  if (rest != NULL) {
    *ends = 1;
    return atoi(rest);
  }
  if ((rest = after(line, "pre ")) != NULL) return answers.pre = atoi(rest), 0;
  if ((rest = after(line, "post ")) != NULL) return answers.post = atoi(rest), 0;
  if ((rest = after(line, "stop ")) != NULL) return answers.stop = atoi(rest), 0;
  if ((rest = after(line, "environment ")) != NULL) return show_environment(rest);
  if ((rest = after(line, "submit ")) != NULL) return Submit(rest, (int)strlen(rest));
  if ((rest = after(line, "queue ")) != NULL) return QueueCommandPart(rest, (int)strlen(rest));
  if (strcmp(line, "calls") == 0) return show_calls();
  if (strcmp(line, "arguments") == 0) return show_text(arguments);
  if (strcmp(line, "variables") == 0) return show_variables();
  if (strcmp(line, "forever") == 0) return go_on_forever();
  return show_text(line);
}

int init_embedded_x(int argc, char** argv) {
  int result = 0;
  ++calls.init;
  memset(&answers, 0, sizeof answers);
  arguments[0] = '\0';
  for (int i = 0; i < argc; ++i) note_argument(argv[i], &result);
  return result;
}

int execute_x(char* syntax) {
  int code = 0;
  int ends = 0;
  ++calls.execute;
  while (*syntax != '\0' && code == 0 && !ends) {
    char* const end = syntax + strcspn(syntax, "\n");
    char* const next = *end == '\0' ? end : end + 1;
    *end = '\0';
    code = perform(syntax, &ends);
    syntax = next;
  }
  return code;
}

int stop_embedded_x(void) {
  ++calls.stop;
  return answers.stop;
}

int pre_action(void) {
  ++calls.pre;
  return answers.pre;
}

int post_action(void) {
  ++calls.post;
  return answers.post;
}

void setup_dxcallback(void* callback) {
  if (callback != NULL) ++calls.callback;
}

void set_post_kova_output(int (*post)(const char* text, int length)) {
  ++calls.output;
  show = post;
}
