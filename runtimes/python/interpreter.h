// The runtime's part of CPython: an interpreter in a process that has none yet, and the session of blocks that
// session.py keeps in it. All that needs Python's C interface is here, and it is little: the rest is written in Python.
//
// One Session exists. Its functions take the interpreter's lock themselves; any thread may call them, also one that has
// the lock, one call at a time but for run, which may be called while another run waits in a call of the engine.
#ifndef KOVADX_RUNTIMES_PYTHON_INTERPRETER_H
#define KOVADX_RUNTIMES_PYTHON_INTERPRETER_H

#include <string>
#include <vector>

namespace kova::python {

// Shows a text: UTF-8 and its length in bytes.
using ShowOutput = int (*)(const char* text, int length);

// True when this process has an interpreter, whoever started it.
bool isPythonThere();

// True when the calling thread has the interpreter's lock.
bool hasPythonLock();

// Starts an interpreter on the calling thread, which becomes Python's main thread and must stay. Empty, or why there is
// none. It leaves signals and the locale to the process, and is never ended.
std::string startPython();

// What shows the output of blocks from now on; null: the process's standard output.
void setOutput(ShowOutput show);

class Session {
 public:
  // Loads session.py, once. False when Python refused it; Python's error output says why.
  bool load(bool ownsPython);

  // Begins with an empty namespace. The arguments become those of sys.argv when the interpreter is the runtime's own.
  int start(const std::vector<std::string>& arguments);

  // Runs a block: 0, 1 after an exception, or what it gave to sys.exit.
  int run(const char* syntax);

  // Waits for the threads of the blocks and clears the namespace. The interpreter and its modules stay.
  int stop();

 private:
  bool loaded_ = false;
};

}  // namespace kova::python

#endif
