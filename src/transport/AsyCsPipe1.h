// A channel of requests and replies between two processes, over two pipes. Each side creates the pipe on which it reads
// and opens the other's: the server reads requests from "<base name>_s", the client reads replies from "<base name>_c".
// The server answers in a loop; the client sends one request at a time and waits for its reply.
//
// An object owns both ends. One thread at a time uses it. cancel and peerHasEnded may be called on any thread, and so
// may the destructor: it ends the waits of a thread that is still inside and waits until that thread has left.
//
// Results are 0, those of KovaPipe and of the message exchange, and 1 where neither opening nor connecting worked. Each
// step writes its trace record.
#ifndef KOVADX_TRANSPORT_ASYCSPIPE1_H
#define KOVADX_TRANSPORT_ASYCSPIPE1_H

#include <memory>
#include <string>

#include "export.h"

class CleXDSmb;
class KovaPipe;

class KOVADX_API AsyCsPipe1 {
 public:
  // What answers the requests. -1 ends the server's loop, once the reply has been sent.
  class KOVADX_API Visitor {
   public:
    Visitor() = default;
    Visitor(const Visitor&) = default;
    Visitor& operator=(const Visitor&) = default;
    virtual ~Visitor();
    virtual int VisitReceiver(CleXDSmb& request, CleXDSmb& reply) = 0;
  };

  // Whether somebody has made a server of that name.
  static bool isServerThere(const std::string& baseName);

  // Keeps both and calls openPipe.
  AsyCsPipe1(const std::string& baseName, bool isServer);
  AsyCsPipe1(const AsyCsPipe1&) = delete;
  AsyCsPipe1& operator=(const AsyCsPipe1&) = delete;

  // Cancels, waits until no thread is inside, closes both pipes, and takes away what a killed process at the other side
  // has left of its own. A handler that is at work is waited for.
  ~AsyCsPipe1();

  // Makes both ends and creates the one that this side reads; 0 also when that was done before. Deliberate: a pipe that
  // could not be created is not told of here; the first read does.
  int openPipe();

  // Server side, to be called before receive: opens the client's pipe (see createPipeFile), then waits until the client
  // has come to this side's own. The code of the failed open, else that of KovaPipe::ConnectPipe: 535 when the client
  // was faster, which is as good as 0.
  int connectClient();

  // Client side, to be called before send: waits until the server has come to this side's own pipe, then opens the
  // server's; its code.
  int connectServer();

  // Opens a pipe of the other side, which may still have to create it: up to 20 attempts, with pauses of 100, 200, ...
  // 2000 ms. 0 also when it is open; the code of the last attempt.
  int createPipeFile(KovaPipe* pipe);

  // Disconnects this side's own pipe and closes both; the code of a failed disconnect, upon which nothing is closed.
  int closePipe();

  // The server's loop: receives a request, has the handler answer it, sends the reply. A failed receive is answered
  // too, with an empty reply, and so is a request that bears an error code. Ends with the send's result after a
  // handler's -1 or a failed send, and with the receive's after 100 reads in a row that failed.
  int receive(int (*handler)(CleXDSmb& request, CleXDSmb& reply));
  int receive(Visitor* visitor);

  // The client's exchange. The code of a failed send, else the receive's: the reply's own error code when one came.
  int send(CleXDSmb& request, CleXDSmb& reply);

  bool isServer() const { return isServer_; }

  // Ends every wait on this object, now and later: a thread inside returns soon, with 995 or what its send gave then.
  void cancel();

  // Tells that the other side's process has ended: what it has still sent is received, and every wait for it ends with
  // 109. Holds until the pipes are closed.
  void peerHasEnded();

 private:
  struct Labels;
  struct Waits;

  int serve(Visitor* visitor, const Labels& labels);
  int refusal() const;
  int openFile(KovaPipe* pipe);
  int connect(KovaPipe* pipe);
  int sendTo(KovaPipe* pipe, CleXDSmb& message);
  int receiveFrom(KovaPipe* pipe, CleXDSmb& message, int* transportStatus);
  KovaPipe* ownPipe() const { return (isServer_ ? serverRead_ : clientRead_).get(); }

  std::unique_ptr<KovaPipe> serverRead_;
  std::unique_ptr<KovaPipe> clientRead_;
  std::string baseName_;
  bool open_ = false;
  bool isServer_;
  std::unique_ptr<Waits> waits_;
};

#endif
