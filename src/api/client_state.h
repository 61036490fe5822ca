// What the client side of a process remembers between its calls.
//
// One state for the process, never destroyed. Flags, status and the kept texts may be touched on any thread, since a
// nested run calls on a second thread while the first one waits; the texts of ClientIdentity belong to the thread that
// calls the client interface.
#ifndef KOVADX_API_CLIENT_STATE_H
#define KOVADX_API_CLIENT_STATE_H

#include <atomic>
#include <string>

#include "message/wide_text.h"

namespace kova {

// Whether there is an engine to talk to. It is asked for every single value of a case, and so stands here, to be
// compiled into its callers.
inline std::atomic<bool> engineRunningFlag = false;
inline bool IsEngineRunning() { return engineRunningFlag.load(std::memory_order_relaxed); }
void SetEngineRunning(bool running);

// Whether the pipe-suite initialiser has made a runtime host in this process.
bool IsHostCreatedHere();
void SetHostCreatedHere(bool created);

// What tells of the end of the engine that this process has started; null without one. Not owned.
class PeerWatch;
PeerWatch* EngineWatch();
void SetEngineWatch(PeerWatch* watch);

// The transport's own result of the last reply: 0 when it came whole.
int LastReceiveStatus();
void SetLastReceiveStatus(int status);

// Keeps a copy of the text in the one block that the text-returning calls share, in place of the earlier one, and
// returns it. It lives until the next call of this or of DropSharedText. Throws std::bad_alloc; no text is kept then.
char* KeepSharedText(const std::string& text);

// Frees the shared text.
void DropSharedText();

// Keeps a copy of the NUL-terminated wide text (null counts as empty) in the one block of its kind, in place of the
// earlier one, and returns it. It lives until the next call of this or of DropWideText. Throws std::bad_alloc, the
// earlier text kept.
const unsigned short* KeepWideText(const WideUnit* text);

// Frees the wide text.
void DropWideText();

// What SetXNameAndSHome, SetRTempFolderToKOVA, InitXProcess and StartKova have stored.
struct ClientIdentity {
  std::string xName;
  std::string kovaHome;
  std::string rTempFolder;
  std::string reserved;
  std::string tempFolder;
};
ClientIdentity& StoredIdentity();

}  // namespace kova

#endif
