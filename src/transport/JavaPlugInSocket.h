// The listening end of the one TCP connection over which a process reaches a Java runtime: it listens, takes in one
// peer, and carries the bytes of messages to and from it.
//
// Deliberate: it listens on every interface of the machine (see docs/platform_notes.md for what that means), and its
// destructor closes nothing: whoever made it calls CloseSocket. It has no lock that a caller could rely on: one thread
// at a time uses an object, save for CancelWait.
//
// Results are 0 for success or one of the codes below. A failure while bytes are read or written closes the connection
// and writes one trace record, the operation's label with the platform's own number of the failure; the object is of no
// more use then until CreateSocket is called again.
#ifndef KOVADX_TRANSPORT_JAVAPLUGINSOCKET_H
#define KOVADX_TRANSPORT_JAVAPLUGINSOCKET_H

#include "export.h"

namespace kova {

constexpr int kSocketNotMade = 99121;  // A socket can not be made, or a peer not be taken in.
constexpr int kSocketBroken = 99122;   // Every other failure of a socket.

// AwaitPeer: nobody has come within the time.
constexpr int kNoPeerYet = 258;

// The most that is handed to the platform in one send.
constexpr int kSocketChunk = 8192;

struct SocketPair;

}  // namespace kova

class KOVADX_API JavaPlugInSocket {
 public:
  JavaPlugInSocket();
  JavaPlugInSocket(const JavaPlugInSocket&) = delete;
  JavaPlugInSocket& operator=(const JavaPlugInSocket&) = delete;

  // Deliberate: an open socket stays open until the process ends.
  ~JavaPlugInSocket();

  // Listens on that port of every interface, for up to 5 peers at a time; the recorded port stays as it is. Sockets
  // that are held are closed first. 99121 when no socket can be made; 99122 when the platform has no sockets of version
  // 2.2, and when the port is out of range, in use or not allowed.
  int CreateSocket(int port);

  // The same on a port that the system chooses, which is recorded.
  int CreateSocket();

  // Waits for a peer, without limit, and takes it in. 99121 when that fails, or after CancelWait: the listening socket
  // is closed then. 99121 also when a peer has been taken in already: that one stays.
  int AcceptSocket();

  // Waits at most that time for a peer; 0 when one has come, so that AcceptSocket will not wait. 258 when none has: a
  // caller that watches its child process meanwhile comes back as often as it likes. Otherwise as AcceptSocket.
  int AwaitPeer(int milliseconds);

  // Reads what has come, at most `size` bytes; waits for the first. A count of 0 with result 0 tells that the peer has
  // closed; nothing more will come. 99122 when it fails, or after CancelWait; the count is then 0.
  int ReadData(char* buffer, int size, unsigned long& read);

  // Sends the bytes in pieces of 8192, the last one of what remains, and adds what was sent to `written`. A null
  // pointer sends nothing; 0. 99122 when it fails, or after CancelWait.
  int WriteData(const void* data, int length, unsigned long& written);

  // Closes the connection and then the listening socket. What is not open can not be closed: that is traced, and for
  // the listening socket the result is -1; 0 otherwise.
  int CloseSocket();

  // The port that CreateSocket() has recorded, or that was set; 0 at first.
  int GetSocketPort() const;
  void SetSocketPort(int port);

  // Wakes the thread that waits in an operation of this object, within a fifth of a second; the operation fails, and so
  // does every later one that would have to wait, until CreateSocket. The one operation that another thread may call.
  void CancelWait();

 private:
  int Listen(int port, bool recordPort);
  int Broken(const char* label, int number);

  kova::SocketPair* const sockets_;
};

// The process's socket; null until it is set. Setting stores the pointer and nothing else: whoever made the socket owns
// it. (The setter's name is a part of the interface: sic.) Set on one thread, before it is used.
KOVADX_API JavaPlugInSocket* GetJavaExtSocket();
KOVADX_API void SetavaExtSocket(JavaPlugInSocket* socket);

#endif
