// Message pipes by name. One pipe message is what one write wrote; a read never crosses its end.
//
// Results are Windows error numbers, 0 for success; an output is stored on success and untouched on failure unless its
// comment says otherwise. Names have the form \\.\pipe\<name>. A handle is used by one thread at a time, save for
// CancelPipeWait, DeclarePeerGone and DisconnectPeer, which may be called while another thread is blocked on the
// handle.
//
// A platform without message pipes maps a name to a local packet socket in a folder that belongs to the user alone.
#ifndef KOVADX_PLATFORM_OS_NAMED_PIPE_H
#define KOVADX_PLATFORM_OS_NAMED_PIPE_H

#include <cstdint>
#include <string>

#include "platform/os/error.h"

namespace kova::os {

using NativeHandle = void*;

enum class PipeAccess { Read, ReadWrite };

// What a client does that finds all server ends taken.
enum class WhenTaken { Wait, GiveUp };

// The folder, by its full path, in which this platform keeps what stands for the pipes; empty where pipes need none.
// Both processes of a conversation must come to the same one, and none changes it once it has used a pipe.
std::string PipeFolder();

// Takes away what processes that were killed left of their pipes: those of this user whose names have that part in
// them, all for an empty one (a name so long that the platform shortens it only has its shortened form's parts). Pipes
// in use stay. 0 also where nothing is ever left.
Error SweepStalePipes(const std::string& namePart);

// Makes a server end: message type, blocking, duplex, of that buffer size. From its birth on it takes in one client and
// that client's first bufferSize bytes. 5 when the name is another user's, when its folder is not the user's alone, or,
// where a platform allows one instance only, when a live server has the name; 206 when no name of that length can be
// made; 123 for no name at all.
Error CreateMessagePipe(const char* name, std::uint32_t bufferSize, NativeHandle* out);

// Server end: waits for a client. 535 when it came first, 0 when it came during the wait, 995 when cancelled.
Error AcceptPeer(NativeHandle pipe);

// Server end: drops the client; the end can accept again. 0 also without a client. What the client has not read is lost
// where the platform can take it back; elsewhere the client reads that first and is then told that the pipe has ended.
// An AcceptPeer under way goes on, and where a platform can not tell, a client that comes at that very moment stays.
Error DisconnectPeer(NativeHandle pipe);

// Frees the end. A server end takes its name with it, a client end nothing. Afterwards the handle is gone.
Error ClosePipeHandle(NativeHandle pipe);

// Waits until a server end of that name is there; kWaitForever waits without limit while all of them are busy. 2 at
// once when there is none, 121 when the time is up. A platform that can not see "busy" from outside answers 0 and lets
// OpenPipe wait.
constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;
Error AwaitServer(const char* name, std::uint32_t timeoutMs);

// Makes a client end. 2 when nobody listens, 231 when all server ends are taken, 5 when the server is another user's.
// With WhenTaken::Wait, a platform on which AwaitServer can not see "busy" waits here instead of giving 231; with
// GiveUp the call never waits. The server can learn who the client is, but not act as the client.
Error OpenPipe(const char* name, PipeAccess access, WhenTaken whenTaken, NativeHandle* out);

// Reads return whole messages (the state of a new end). 233 when the peer has gone; a
// platform that would need a system call to see that may leave it to the next read or write.
Error SetMessageReadMode(NativeHandle pipe);

// From now on reads without data give 232 at once instead of waiting.
Error SetNoWaitMode(NativeHandle pipe);

// One message, or the part that fits: then 234, and the rest stays to be read. Waits for it. *read is always stored. A
// message of no bytes gives 0 and *read 0. 109 when the peer has closed and nothing is left, 536 when no client has
// come yet, 233 after a disconnect, 995 when cancelled.
Error ReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read);

// As ReadMessage, but 232 at once when no message is there. A platform whose look does not show a message of no bytes
// gives 232 for it too; ReadMessage gets it then.
Error TryReadMessage(NativeHandle pipe, void* buffer, std::uint32_t size, std::uint32_t* read);

// How many microseconds a reader of small messages does well to look with TryReadMessage before it waits in
// ReadMessage; 0 where a look costs about as much as being woken does.
std::uint32_t GoodLookUs();

// Writes one message. Waits while the pipe is full. 232 when the peer has gone, 233 or 232 after a disconnect, 536 when
// no client has come yet. Raises no signal.
Error WriteMessage(NativeHandle pipe, const void* data, std::uint32_t size, std::uint32_t* written);

// Waits until the peer has read everything, where the platform can; 0 otherwise.
Error FlushMessages(NativeHandle pipe);

// Wakes the threads that wait in AcceptPeer, ReadMessage or WriteMessage of this end; they return 995, and so does
// every later wait and write on this end until it is closed. What was being written may have been sent or not.
Error CancelPipeWait(NativeHandle pipe);

// Tells an end that the process at the other side is gone, so that nobody else is to be waited for: another process may
// still hold a copy of that process's end, and a server may still have no client. What the peer has done counts: an
// AcceptPeer, under way or later, takes a client that has come already and gives 109 without one; a ReadMessage gives
// the messages that have come already, and then 109. Holds until DisconnectPeer. Writes are not concerned.
Error DeclarePeerGone(NativeHandle pipe);

}  // namespace kova::os

#endif
