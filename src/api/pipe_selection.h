// Which pipes a call uses: those of the current pipe suite at its current index.
//
// The current suite is chosen by the first call of the process and kept; the process's pipe manager owns it. One thread
// selects at a time, or several on different levels of nested runs.
#ifndef KOVADX_API_PIPE_SELECTION_H
#define KOVADX_API_PIPE_SELECTION_H

class KovaPipe;
class XPipeSuit;

namespace kova {

// The two ends of a call, owned by their pipe set.
struct CallPipes {
  KovaPipe* request = nullptr;  // This side is its client.
  KovaPipe* reply = nullptr;    // This side is its server.

  // False when the suite has no current set, as after the last run of a runtime.
  explicit operator bool() const { return request != nullptr; }
};

// The pipes of the next call. The reply pipe is made when it does not exist yet, and traced with what came of that;
// the process-wide objects and the suite are made by the first call.
CallPipes SelectPipes();

// The current suite, chosen as the first call would. Null when somebody took the pipe manager away.
XPipeSuit* CurrentSuite();

// Forgets the current suite, since its manager is about to go; the next call chooses anew.
void ForgetCurrentSuite();

}  // namespace kova

#endif
