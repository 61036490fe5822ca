// Moves one message through a pipe or over the socket: SendData on one side, ReceiveData on the other. On pipes,
// request and reply travel on two of them; a client call pairs SendData(requestPipe, request, false) with
// ReceiveData(replyPipe, reply, true).
//
// A message crosses a pipe as pipe messages of 8192 bytes, the last one of what remains, and a socket as one run of
// bytes, with no framing but its own first field, the total length.
//
// Pipe, socket and message belong to the caller; nothing here keeps them. One thread at a time uses a pipe or a socket.
// Nothing throws: a failed allocation gives 8.
#ifndef KOVADX_TRANSPORT_MESSAGE_EXCHANGE_H
#define KOVADX_TRANSPORT_MESSAGE_EXCHANGE_H

#include "export.h"

class CleXDSmb;
class JavaExtensionSmb;
class JavaPlugInSocket;
class KovaPipe;

// Writes the message. On success it is cleared with CleanUp() and the result is 0; on failure it is left as it is, so
// that the caller may try again, and the result is 99104.
KOVADX_API int SendData(KovaPipe* pipe, CleXDSmb& message);

// As above. With serverSide false it first opens the pipe with KOVACreateFile when no handle is held (and gives its
// code when that fails), then calls ChangeReadMode (and closes the pipe and gives its code when that fails).
KOVADX_API int SendData(KovaPipe* pipe, CleXDSmb& message, bool serverSide);

// Reads one message. The result is the message's own error code when a message was put together, also when it was cut
// short after its error code: what is missing then reads as zeros. Otherwise 99103 for an empty read, 13 for a message
// whose length can not be right, 8 when there is no memory for it, or the error number of the failed read, such as 109
// when the peer has closed.
KOVADX_API int ReceiveData(KovaPipe* pipe, CleXDSmb& message);

// As above. With serverSide false it first opens the pipe with KOVACreateFile when no handle is held, and gives its
// code when that fails.
KOVADX_API int ReceiveData(KovaPipe* pipe, CleXDSmb& message, bool serverSide);

// Writes the message over the socket. On success it is cleared with CleanUp() and the result is 0; on failure it is
// left as it is, and the result is 99122.
KOVADX_API int SendData(JavaPlugInSocket* socket, CleXDSmb& message);

// Reads one message and nothing of the next one. The result is the message's own error code when a message was put
// together, also when it was cut short after its error code, as on a pipe. Otherwise 8 when there is no memory for it
// and 99122: for a length that can not be right (what follows in the stream is then of no use), for a failed read, and
// for a peer that has closed. The latter is noticed by empty reads: 100 in a row, 10 ms apart.
KOVADX_API int ReceiveData(JavaPlugInSocket* socket, CleXDSmb& message);

// Writes the record's bytes as they stand, if it holds any. On success the record is cleared with CleanUp() and the
// result is 0; on failure it is left as it is, and the result is 99122.
KOVADX_API int SendData(JavaPlugInSocket* socket, JavaExtensionSmb& record);

// Does nothing; 0. Nothing is ever read back for such a record.
KOVADX_API int ReceiveData(JavaPlugInSocket* socket, JavaExtensionSmb& record);

namespace kova {

// ReceiveData, which also tells how the transport itself fared: *transportStatus is 0 when a whole message came, else
// why it did not, even where the result is the error code of a message cut short.
KOVADX_API int ReceiveMessage(KovaPipe* pipe, CleXDSmb& message, int* transportStatus);
KOVADX_API int ReceiveMessage(JavaPlugInSocket* socket, CleXDSmb& message, int* transportStatus);

}  // namespace kova

#endif
