// What message pipes are on this platform beyond the seam's contract: files, users, descriptors, signals.
#include "platform/os/named_pipe.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/error_posix.h"
#include "platform/posix/pipe_address_posix.h"
#include "tests/kit/kit.h"
#include "tests/kit/pipe_folder_scope_posix.h"

namespace kova::os {
namespace {

constexpr std::uint32_t kArea = 8192;
constexpr uid_t kStranger = 65534;

class PosixPipes : public testing::Test {
 protected:
  ~PosixPipes() override {
    for (NativeHandle handle : handles_) EXPECT_EQ(ClosePipeHandle(handle), kSuccess);
  }

  NativeHandle create(Error expected = kSuccess) {
    NativeHandle handle = nullptr;
    EXPECT_EQ(CreateMessagePipe(name_.c_str(), kArea, &handle), expected);
    return kept(handle);
  }
  NativeHandle open(Error expected = kSuccess) {
    NativeHandle handle = nullptr;
    EXPECT_EQ(OpenPipe(name_.c_str(), PipeAccess::ReadWrite, &handle), expected);
    return kept(handle);
  }
  NativeHandle kept(NativeHandle handle) {
    if (handle != nullptr) handles_.push_back(handle);
    return handle;
  }
  sockaddr_un address() const {
    sockaddr_un result = {};
    EXPECT_EQ(pipeAddress(pipeFolder(), name_.c_str(), &result), kSuccess);
    return result;
  }

  PipeFolderScope scope_;
  std::string name_ = kit::scratchName();
  std::vector<NativeHandle> handles_;
};

TEST_F(PosixPipes, LieInTheFolderUnderTheirName) {
  create();
  struct stat status = {};
  ASSERT_EQ(lstat((scope_.folder() + "/" + name_.substr(9)).c_str(), &status), 0);
  EXPECT_TRUE(S_ISSOCK(status.st_mode));
}

TEST_F(PosixPipes, AreRefusedInAFolderOfAnotherMode) {
  ASSERT_EQ(mkdir(scope_.folder().c_str(), 0700), 0);
  ASSERT_EQ(chmod(scope_.folder().c_str(), 0755), 0);
  create(kAccessDenied);
  open(kAccessDenied);
  EXPECT_EQ(AwaitServer(name_.c_str(), 0), kAccessDenied);
}

TEST_F(PosixPipes, AreRefusedInALinkedFolder) {
  const std::string target = scope_.place() + "/target";
  ASSERT_EQ(mkdir(target.c_str(), 0700), 0);
  ASSERT_EQ(symlink(target.c_str(), scope_.folder().c_str()), 0);
  create(kAccessDenied);
  open(kAccessDenied);
  EXPECT_EQ(AwaitServer(name_.c_str(), 0), kAccessDenied);
  EXPECT_TRUE(std::filesystem::is_empty(target));
}

TEST_F(PosixPipes, AreAbsentWithoutAFolder) {
  EXPECT_EQ(AwaitServer(name_.c_str(), kWaitForever), kFileNotFound);
  open(kFileNotFound);
}

TEST_F(PosixPipes, HaveNamesOfOneForm) {
  for (const char* bad : {"plain", "\\\\.\\pipe\\", "\\\\.\\pipe\\a\\b", "\\\\.\\pipe\\a/b"}) {
    name_ = bad;
    create(kInvalidName);
    open(kInvalidName);
    EXPECT_EQ(AwaitServer(bad, 0), kInvalidName);
  }
}

TEST_F(PosixPipes, NeedAFolderThatLeavesRoomForAName) {
  scope_.use(scope_.place() + "/" + std::string(100, 'f'));
  create(kFileNameTooLong);
  open(kFileNameTooLong);
}

TEST_F(PosixPipes, AStaleFileIsNoServerAndIsReplaced) {
  create();
  {
    const Descriptor stale(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    name_ += "stale";
    const sockaddr_un place = address();
    ASSERT_EQ(bind(stale.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
  }
  EXPECT_EQ(AwaitServer(name_.c_str(), kWaitForever), kFileNotFound);
  open(kFileNotFound);
  create();
  EXPECT_EQ(AwaitServer(name_.c_str(), kWaitForever), kSuccess);
}

TEST_F(PosixPipes, WritingToAGonePeerRaisesNoSignal) {
  struct sigaction plain = {};
  struct sigaction before = {};
  plain.sa_handler = SIG_DFL;
  sigaction(SIGPIPE, &plain, &before);
  const NativeHandle server = create();
  NativeHandle client = nullptr;
  ASSERT_EQ(OpenPipe(name_.c_str(), PipeAccess::ReadWrite, &client), kSuccess);
  ASSERT_EQ(AcceptPeer(server), kPipeConnected);
  ASSERT_EQ(ClosePipeHandle(client), kSuccess);
  std::uint32_t written = 0;
  EXPECT_EQ(WriteMessage(server, "x", 1, &written), kNoData);
  sigaction(SIGPIPE, &before, nullptr);
}

TEST_F(PosixPipes, EveryDescriptorClosesOnExec) {
  const NativeHandle server = create();
  open();
  ASSERT_EQ(AcceptPeer(server), kPipeConnected);
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int number = std::stoi(entry.path().filename());
    std::error_code gone;
    const auto target = std::filesystem::read_symlink(entry.path(), gone).string();
    const bool ours = target.starts_with("socket:") || target == "anon_inode:[eventfd]";
    if (number > 2 && ours) {
      EXPECT_NE(fcntl(number, F_GETFD) & FD_CLOEXEC, 0) << number << " " << target;
    }
  }
}

TEST_F(PosixPipes, APacketBeyondTheSystemsLimitIsRefusedWhole) {
  const NativeHandle server = create();
  const NativeHandle client = open();
  const std::string large(16 << 20, 'x');
  std::uint32_t count = 0;
  EXPECT_EQ(WriteMessage(client, large.data(), static_cast<std::uint32_t>(large.size()), &count), 24u);
  char area[4];
  EXPECT_EQ(TryReadMessage(server, area, sizeof area, &count), kNoData);
}

TEST_F(PosixPipes, ModeChangesTellAPeerThatIsKnownToHaveGone) {
  create();
  const NativeHandle client = open();
  EXPECT_EQ(SetMessageReadMode(client), kSuccess);
  EXPECT_EQ(ClosePipeHandle(handles_.front()), kSuccess);
  handles_.erase(handles_.begin());
  std::uint32_t count = 0;
  EXPECT_EQ(WriteMessage(client, "x", 1, &count), kNoData);
  EXPECT_EQ(SetMessageReadMode(client), kPipeNotConnected);
}

// ---- Another user. Only the superuser can become one; for anybody else the children below end with kCanNotSwitch, and
// the tests then see that much.

constexpr int kCanNotSwitch = 77;

int expectedOfStranger() { return geteuid() == 0 ? 0 : kCanNotSwitch; }

sockaddr_un addressAt(const std::string& path) {
  sockaddr_un result = {};
  result.sun_family = AF_UNIX;
  path.copy(result.sun_path, sizeof result.sun_path - 1);
  return result;
}

// Connects as another user and waits to be sent away.
KOVA_KIT_CHILD(stranger_connects) {
  if (setuid(kStranger) != 0) return kCanNotSwitch;
  const sockaddr_un address = addressAt(arguments.at(0));
  const Descriptor connection(socket(AF_UNIX, SOCK_SEQPACKET, 0));
  if (connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return 1;
  char area = 0;
  return recv(connection.get(), &area, 1, 0) > 0 ? 2 : 0;
}

// Serves a socket file as another user until its own end is closed by the test.
KOVA_KIT_CHILD(stranger_serves) {
  const sockaddr_un address = addressAt(arguments.at(0));
  const Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET, 0));
  if (bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return 1;
  if (setuid(kStranger) != 0) return kCanNotSwitch;
  if (listen(listener.get(), 5) != 0) return 2;
  const Descriptor connection(accept(listener.get(), nullptr, nullptr));
  char area = 0;
  return recv(connection.get(), &area, 1, 0) > 0 ? 3 : 0;
}

TEST_F(PosixPipes, AnotherUsersClientIsSentAway) {
  const NativeHandle server = create();
  const std::string path = address().sun_path;
  const std::filesystem::path scratch = kit::scratchFolder();
  // Opens the way that a stranger does not have.
  for (const std::string& folder : {scratch.string(), scope_.place(), scope_.folder()}) chmod(folder.c_str(), 0711);
  chmod(path.c_str(), 0777);
  os::Process stranger = kit::startChild("stranger_connects", {path});
  Error accepted = kGeneralFailure;
  std::thread acceptor([&] { accepted = AcceptPeer(server); });
  EXPECT_EQ(kit::waitForChild(stranger), expectedOfStranger());
  chmod(scope_.folder().c_str(), 0700);
  open();
  acceptor.join();
  EXPECT_EQ(accepted, kSuccess) << "the wait went on until the user's own client came";
}

TEST_F(PosixPipes, AnotherUsersServerIsRefused) {
  create();
  name_ += "stranger";
  const std::string path = address().sun_path;
  os::Process stranger = kit::startChild("stranger_serves", {path});
  Error error = kFileNotFound;
  int code = 0;
  while (error == kFileNotFound && stranger.Wait(0, &code) == kWaitTimeout) {
    NativeHandle none = nullptr;
    error = OpenPipe(name_.c_str(), PipeAccess::ReadWrite, &none);
    kept(none);
  }
  EXPECT_EQ(error, geteuid() == 0 ? kAccessDenied : kFileNotFound);
  EXPECT_EQ(kit::waitForChild(stranger), expectedOfStranger());
}

}  // namespace
}  // namespace kova::os
