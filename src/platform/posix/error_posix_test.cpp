#include "platform/posix/error_posix.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace kova::os {
namespace {

struct Row {
  const char* label;
  int number;
  Error error;
};

class ErrnoTable : public testing::TestWithParam<Row> {};

TEST_P(ErrnoTable, GivesTheWindowsNumber) { EXPECT_EQ(errorOfErrno(GetParam().number), GetParam().error); }

TEST_P(ErrnoTable, IsReadFromErrno) {
  errno = GetParam().number;
  EXPECT_EQ(lastError(), GetParam().error);
}

constexpr Row kRows[] = {
    {"NoError", 0, 0},
    {"NoFile", ENOENT, 2},
    {"NobodyListens", ECONNREFUSED, 2},
    {"NoFolder", ENOTDIR, 3},
    {"TooManyOpen", EMFILE, 4},
    {"TooManyOpenInTheSystem", ENFILE, 4},
    {"NoAccess", EACCES, 5},
    {"NotPermitted", EPERM, 5},
    {"IsAFolder", EISDIR, 5},
    {"NameTaken", EADDRINUSE, 5},
    {"BadDescriptor", EBADF, 6},
    {"NoSocket", ENOTSOCK, 6},
    {"NoMemory", ENOMEM, 8},
    {"NoBuffers", ENOBUFS, 8},
    {"OtherDevice", EXDEV, 17},
    {"ReadOnlyDisk", EROFS, 19},
    {"PacketTooLong", EMSGSIZE, 24},
    {"ProgramBusy", ETXTBSY, 32},
    {"NotSupported", EOPNOTSUPP, 50},
    {"NoSuchCall", ENOSYS, 50},
    {"NoSuchFamily", EAFNOSUPPORT, 50},
    {"Invalid", EINVAL, 87},
    {"NoProcess", ESRCH, 87},
    {"Reset", ECONNRESET, 109},
    {"DiskFull", ENOSPC, 112},
    {"NoChild", ECHILD, 128},
    {"FolderNotEmpty", ENOTEMPTY, 145},
    {"SocketOfAnotherKind", EPROTOTYPE, 161},
    {"Busy", EBUSY, 170},
    {"Exists", EEXIST, 183},
    {"NoProgram", ENOEXEC, 193},
    {"NameTooLong", ENAMETOOLONG, 206},
    {"ArgumentsTooLong", E2BIG, 206},
    {"FileTooLarge", EFBIG, 223},
    {"ReaderGone", EPIPE, 232},
    {"NothingThere", EAGAIN, 232},
    {"NotConnected", ENOTCONN, 233},
    {"TimeUp", ETIMEDOUT, 258},
    {"Cancelled", ECANCELED, 995},
    {"Interrupted", EINTR, 995},
    {"BadAddress", EFAULT, 998},
    {"DiskError", EIO, 1117},
    {"Deadlock", EDEADLK, 1131},
    {"Quota", EDQUOT, 1295},
    {"LinksWithoutEnd", ELOOP, 1921},
    {"NotInTheTable", EXFULL, 31},
    {"NoErrnoAtAll", -5, 31},
};

INSTANTIATE_TEST_SUITE_P(All, ErrnoTable, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& row) { return std::string(row.param.label); });

class SocketErrnoTable : public testing::TestWithParam<Row> {};

TEST_P(SocketErrnoTable, GivesTheNumberOfSockets) {
  EXPECT_EQ(socketErrorOfErrno(GetParam().number), GetParam().error);
}

constexpr Row kSocketRows[] = {
    {"NoError", 0, 0},
    {"NoAccess", EACCES, 10013},
    {"NotPermitted", EPERM, 10013},
    {"Invalid", EINVAL, 10022},
    {"TooManyOpen", EMFILE, 10024},
    {"TooManyOpenInTheSystem", ENFILE, 10024},
    {"NoSocket", ENOTSOCK, 10038},
    {"PortTaken", EADDRINUSE, 10048},
    {"NoSuchAddress", EADDRNOTAVAIL, 10049},
    {"NoNetwork", ENETUNREACH, 10051},
    {"Aborted", ECONNABORTED, 10053},
    {"Reset", ECONNRESET, 10054},
    {"PeerGone", EPIPE, 10054},
    {"NoBuffers", ENOBUFS, 10055},
    {"NotConnected", ENOTCONN, 10057},
    {"TimeUp", ETIMEDOUT, 10060},
    {"NobodyListens", ECONNREFUSED, 10061},
    {"NoHost", EHOSTUNREACH, 10065},
    {"BadDescriptor", EBADF, 6},
    {"NoMemory", ENOMEM, 8},
    {"NotInTheTable", EXFULL, 31},
};

INSTANTIATE_TEST_SUITE_P(All, SocketErrnoTable, testing::ValuesIn(kSocketRows),
                         [](const testing::TestParamInfo<Row>& row) { return std::string(row.param.label); });

TEST(ErrorText, IsTheSystemsOwn) {
  EXPECT_EQ(ErrorText(kFileNotFound), "No such file or directory");
  EXPECT_EQ(ErrorText(kAccessDenied), "Permission denied");
}

TEST(ErrorText, IsEmptyForANumberWithoutOne) {
  EXPECT_EQ(ErrorText(kMoreData), "");
  EXPECT_EQ(ErrorText(999999), "");
}

}  // namespace
}  // namespace kova::os
