#include "platform/posix/error_posix.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "platform/os/error.h"

namespace kova::os {
namespace {

struct ErrorPair {
  int number;
  Error error;
};

// The first errno of a Windows number gives its text.
constexpr ErrorPair kErrors[] = {
    {ENOENT, 2},          // file not found
    {ENOTDIR, 3},         // path not found
    {EMFILE, 4},          // too many open files
    {ENFILE, 4},          //
    {EACCES, 5},          // access denied
    {EPERM, 5},           //
    {EISDIR, 5},          //
    {EROFS, 19},          // write protected
    {EBADF, 6},           // invalid handle
    {ENOTSOCK, 6},        //
    {ENOMEM, 8},          // not enough memory
    {ENOBUFS, 8},         //
    {EFAULT, 998},        // no access to a place in memory
    {EXDEV, 17},          // not the same device
    {EMSGSIZE, 24},       // bad length
    {EIO, 1117},          // I/O device
    {ETXTBSY, 32},        // sharing violation
    {EOPNOTSUPP, 50},     // not supported
    {ENOSYS, 50},         //
    {EAFNOSUPPORT, 50},   //
    {EADDRINUSE, 5},      // a name that is taken
    {EEXIST, 183},        // already exists
    {EINVAL, 87},         // invalid parameter
    {ESRCH, 87},          //
    {E2BIG, 206},         // file name or argument list too long
    {ECONNRESET, 109},    // broken pipe
    {ENOTCONN, 233},      // pipe not connected
    {EPIPE, 232},         // the pipe is being closed
    {ECONNREFUSED, 2},    // nobody serves the name
    {EPROTOTYPE, 161},    // a name of another kind
    {ENOSPC, 112},        // disk full
    {EDQUOT, 1295},       // disk quota exceeded
    {EFBIG, 223},         // file too large
    {ECHILD, 128},        // no child processes to wait for
    {ENOTEMPTY, 145},     // folder not empty
    {EBUSY, 170},         // busy
    {ENOEXEC, 193},       // no program
    {ENAMETOOLONG, 206},  // file name too long
    {EAGAIN, 232},        // nothing to read now
    {ETIMEDOUT, 258},     // wait time-out
    {ECANCELED, 995},     // operation aborted
    {EINTR, 995},         //
    {EDEADLK, 1131},      // possible deadlock
    {ELOOP, 1921},        // a link that can not be resolved
};

// What a stream socket means by an errno; for the others the table above stands.
constexpr ErrorPair kSocketErrors[] = {
    {EACCES, 10013},         // not allowed
    {EPERM, 10013},          //
    {EINVAL, 10022},         // invalid parameter
    {EMFILE, 10024},         // too many open sockets
    {ENFILE, 10024},         //
    {ENOTSOCK, 10038},       // no socket
    {EADDRINUSE, 10048},     // port in use
    {EADDRNOTAVAIL, 10049},  // no such address here
    {ENETUNREACH, 10051},    // no way to the network
    {ECONNABORTED, 10053},   // connection aborted
    {ECONNRESET, 10054},     // connection reset by the peer
    {EPIPE, 10054},          //
    {ENOBUFS, 10055},        // no buffer space
    {ENOTCONN, 10057},       // not connected
    {ETIMEDOUT, 10060},      // the peer does not answer
    {ECONNREFUSED, 10061},   // nobody listens
    {EHOSTUNREACH, 10065},   // no way to the machine
};

}  // namespace

Error errorOfErrno(int number) {
  if (number == 0) return kSuccess;
  for (const ErrorPair& pair : kErrors) {
    if (pair.number == number) return pair.error;
  }
  return kGeneralFailure;
}

Error socketErrorOfErrno(int number) {
  for (const ErrorPair& pair : kSocketErrors) {
    if (pair.number == number) return pair.error;
  }
  return errorOfErrno(number);
}

Error lastError() { return errorOfErrno(errno); }

std::string ErrorText(Error error) {
  for (const ErrorPair& pair : kErrors) {
    if (pair.error == error) return std::generic_category().message(pair.number);
  }
  return {};
}

}  // namespace kova::os
