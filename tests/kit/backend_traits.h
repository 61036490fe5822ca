// Where the backends may honestly differ: what the conformance set expects of the one it is linked with.
#ifndef KOVADX_TESTS_KIT_BACKEND_TRAITS_H
#define KOVADX_TESTS_KIT_BACKEND_TRAITS_H

#include <cerrno>

#include "platform/os/error.h"

namespace kova::kit {

struct BackendTraits {
  bool pipesHaveFolder;            // PipeFolder tells of one.
  os::Error secondInstance;        // CreateMessagePipe for a name that has a live server.
  os::Error openBehindClient;      // OpenPipe that never waits, when the server has a client and nobody waits for it.
  bool disconnectDropsUnread;      // DisconnectPeer takes back what the client has not read.
  os::Error readAfterDisconnect;   // The client's read when the server has disconnected it (and all is read).
  os::Error writeAfterDisconnect;  // The client's write then.
  os::Error writeAfterOwnDisconnect;  // The server's own write then.
  os::Error lookAtEmptyMessage;       // TryReadMessage when a message of no bytes is there.
  int handleTolerance;                // How far the count of open handles may wander by itself.
  os::Error interrupt;                // Process::Interrupt.
  int terminatedCode;                 // The exit code that Process::Terminate leaves.
  int interruptedCode;                // The exit code of the child that Interrupt ended, or Terminate where it can not.
  os::Error startTextFile;            // Process::Start of a file that is no program.
  os::Error loadTextFile;             // LoadSharedLibrary of a file that is no library.
  os::Error killEndedThread;          // KillThread of a thread that has ended.
  os::Error pauseThread;              // PauseThread and ContinueThread.
  int refusedNumber;                  // The platform's own number of a connection that was refused.
  char pathSeparator;
  char listSeparator;
  const char* nativePath;  // What NativePath makes of "a\b/c".
};

#if defined(KOVA_KIT_FAKE)
// As Windows, but of one process: nothing else opens handles. It runs no files, so there is none of any name.
constexpr BackendTraits kBackend = {
    .pipesHaveFolder = false,
    .secondInstance = os::kSuccess,
    .openBehindClient = os::kPipeBusy,
    .disconnectDropsUnread = true,
    .readAfterDisconnect = os::kPipeNotConnected,
    .writeAfterDisconnect = os::kNoData,
    .writeAfterOwnDisconnect = os::kNoData,
    .lookAtEmptyMessage = os::kSuccess,
    .handleTolerance = 0,
    .interrupt = os::kSuccess,
    .terminatedCode = 137,
    .interruptedCode = 33,
    .startTextFile = os::kFileNotFound,
    .loadTextFile = 126,
    .killEndedThread = os::kSuccess,
    .pauseThread = os::kNotSupported,
    .refusedNumber = 80061,
    .pathSeparator = '/',
    .listSeparator = ':',
    .nativePath = "a/b/c",
};
#elif defined(_WIN32)
// A disconnected client is told so (233), a client whose server closed is told that the pipe has ended (109).
constexpr BackendTraits kBackend = {
    .pipesHaveFolder = false,
    .secondInstance = os::kSuccess,
    .openBehindClient = os::kPipeBusy,
    .disconnectDropsUnread = true,
    .readAfterDisconnect = os::kPipeNotConnected,
    .writeAfterDisconnect = os::kPipeNotConnected,
    .writeAfterOwnDisconnect = os::kPipeNotConnected,
    .lookAtEmptyMessage = os::kNoData,
    .handleTolerance = 10,
    .interrupt = os::kNotSupported,
    .terminatedCode = 137,
    .interruptedCode = 137,
    .startTextFile = 193,
    .loadTextFile = 193,
    .killEndedThread = os::kSuccess,
    .pauseThread = os::kSuccess,
    .refusedNumber = 10061,
    .pathSeparator = '\\',
    .listSeparator = ';',
    .nativePath = "a\\b/c",
};
#else
// One instance a name. A packet that was sent can not be taken back.
constexpr BackendTraits kBackend = {
    .pipesHaveFolder = true,
    .secondInstance = os::kAccessDenied,
    .openBehindClient = os::kSuccess,
    .disconnectDropsUnread = false,
    .readAfterDisconnect = os::kBrokenPipe,
    .writeAfterDisconnect = os::kNoData,
    .writeAfterOwnDisconnect = os::kPipeNotConnected,
    .lookAtEmptyMessage = os::kSuccess,
    .handleTolerance = 0,
    .interrupt = os::kSuccess,
    .terminatedCode = 137,
    .interruptedCode = 33,
    .startTextFile = 193,
    .loadTextFile = 193,
    .killEndedThread = os::kSuccess,
    .pauseThread = os::kNotSupported,
    .refusedNumber = ECONNREFUSED,
    .pathSeparator = '/',
    .listSeparator = ':',
    .nativePath = "a/b/c",
};
#endif

}  // namespace kova::kit

#endif
