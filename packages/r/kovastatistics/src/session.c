/* Results and failures, and how a process joins its engine. */
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <time.h>

#include "kova.h"
#include "kovadx_ext.h"

SEXP kova_failure(int code, const char* function) {
  SEXP failure = PROTECT(Rf_allocVector(VECSXP, 2));
  SET_VECTOR_ELT(failure, 0, Rf_ScalarInteger(code));
  SET_VECTOR_ELT(failure, 1, Rf_mkString(function));
  Rf_setAttrib(failure, R_ClassSymbol, Rf_mkString("kova_failure"));
  UNPROTECT(1);
  return failure;
}

SEXP kova_done(int code, const char* function) { return code == 0 ? R_NilValue : kova_failure(code, function); }

int kova_outcome(int code) { return code != 0 ? code : KovaLastReceiveStatus(); }

SEXP kova_char(const char* text) { return Rf_mkCharCE(text != NULL ? text : "", CE_UTF8); }

const char* kova_text(SEXP texts, int position) { return Rf_translateCharUTF8(STRING_ELT(texts, position)); }

SEXP kova_error_text(SEXP code) {
  SEXP texts = PROTECT(Rf_allocVector(STRSXP, 2));
  SET_STRING_ELT(texts, 0, kova_char(KovaErrorName(Rf_asInteger(code))));
  SET_STRING_ELT(texts, 1, kova_char(KovaErrorAdvice(Rf_asInteger(code))));
  UNPROTECT(1);
  return texts;
}

SEXP kova_join(SEXP name, SEXP home) {
  SetXNameAndSHome(kova_text(name, 0), kova_text(home, 0));
  SetKovaRunning(true);
  return R_NilValue;
}

SEXP kova_begin(SEXP mode, SEXP temporary, SEXP process, SEXP language) {
  InitXProcess(kova_text(mode, 0), kova_text(temporary, 0), kova_text(process, 0), kova_text(language, 0), "");
  return R_NilValue;
}

/* The question whether the engine is ready, asked on a thread of its own: the call waits without limit for an engine
 * that is not there. Who gives up leaves the thread in its call, and the question to it. */
typedef struct {
  pthread_mutex_t lock;
  pthread_cond_t answered;
  bool has_answer;
  bool is_ready;
} Question;

static void* ask(void* argument) {
  Question* question = argument;
  bool is_ready = IsBackendReady();
  pthread_mutex_lock(&question->lock);
  question->is_ready = is_ready;
  question->has_answer = true;
  pthread_cond_signal(&question->answered);
  pthread_mutex_unlock(&question->lock);
  return NULL;
}

static struct timespec after(double seconds) {
  struct timespec end;
  clock_gettime(CLOCK_REALTIME, &end);
  time_t whole = (time_t)seconds;
  end.tv_sec += whole;
  end.tv_nsec += (long)((seconds - (double)whole) * 1e9);
  if (end.tv_nsec >= 1000000000L) {
    end.tv_nsec -= 1000000000L;
    ++end.tv_sec;
  }
  return end;
}

static bool answer_before(Question* question, struct timespec end) {
  pthread_mutex_lock(&question->lock);
  int status = 0;
  while (!question->has_answer && status == 0) {
    status = pthread_cond_timedwait(&question->answered, &question->lock, &end);
  }
  bool is_ready = question->has_answer && question->is_ready;
  pthread_mutex_unlock(&question->lock);
  return is_ready;
}

/* All signals stay with R's own thread. */
static bool start_thread(void* (*function)(void*), void* argument) {
  sigset_t all;
  sigset_t earlier;
  pthread_t thread;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &earlier);
  bool is_started = pthread_create(&thread, NULL, function, argument) == 0;
  pthread_sigmask(SIG_SETMASK, &earlier, NULL);
  if (is_started) pthread_detach(thread);
  return is_started;
}

SEXP kova_is_ready(SEXP seconds) {
  struct timespec end = after(Rf_asReal(seconds));
  Question* question = calloc(1, sizeof *question);
  bool is_ready = false;
  if (question != NULL) {
    pthread_mutex_init(&question->lock, NULL);
    pthread_cond_init(&question->answered, NULL);
    is_ready = start_thread(ask, question) && answer_before(question, end);
  }
  /* Deliberate: the question is never freed, since the thread may still have it. A process asks once. */
  return Rf_ScalarLogical(is_ready);
}
