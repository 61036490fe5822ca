// What message pipes are on this platform beyond the seam's contract: files, users, descriptors, signals.
#include "platform/os/named_pipe.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
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
    EXPECT_EQ(OpenPipe(name_.c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &handle), expected);
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
  for (const char* end : {"", "/", "//", "/.", "/./"}) {
    SCOPED_TRACE(end);
    name_ = kit::scratchName();
    scope_.use(scope_.folder() + end);
    create(kAccessDenied);
    open(kAccessDenied);
    EXPECT_EQ(AwaitServer(name_.c_str(), 0), kAccessDenied);
  }
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
  ASSERT_EQ(OpenPipe(name_.c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &client), kSuccess);
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

// Lets this process open no more descriptors for a scope.
class Shortage {
 public:
  Shortage() {
    getrlimit(RLIMIT_NOFILE, &before_);
    const Descriptor next(dup(0));
    rlimit none = before_;
    none.rlim_cur = static_cast<rlim_t>(next.get());
    setrlimit(RLIMIT_NOFILE, &none);
  }
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
  ~Shortage() { setrlimit(RLIMIT_NOFILE, &before_); }

 private:
  rlimit before_ = {};
};

TEST_F(PosixPipes, AClientThatCanNotBeTakenInKeepsItsPlace) {
  const NativeHandle server = create();
  const NativeHandle client = open();
  std::uint32_t count = 0;
  ASSERT_EQ(WriteMessage(client, "x", 1, &count), kSuccess);
  {
    const Shortage shortage;
    EXPECT_EQ(AcceptPeer(server), 4u);
  }
  EXPECT_EQ(DisconnectPeer(server), kSuccess);
  char area = 0;
  ASSERT_EQ(TryReadMessage(client, &area, 1, &count), kNoData) << "it was sent away";
  EXPECT_EQ(AcceptPeer(server), kPipeConnected);
  EXPECT_EQ(ReadMessage(server, &area, 1, &count), kSuccess);
  EXPECT_EQ(area, 'x');
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

TEST_F(PosixPipes, WhatIsLeftIsSweptAwayWithoutMakingAFolder) {
  EXPECT_EQ(SweepStalePipes("xdapi"), kSuccess);
  EXPECT_FALSE(std::filesystem::exists(scope_.folder()));
  ASSERT_EQ(mkdir(scope_.folder().c_str(), 0700), 0);
  ASSERT_EQ(chmod(scope_.folder().c_str(), 0755), 0);
  EXPECT_EQ(SweepStalePipes("xdapi"), kAccessDenied);
}

// Another user. Only the superuser can become one: a user namespace of one's own has but one user in it. The test run
// names these tests as skipped for anybody else.
class PosixStrangers : public PosixPipes {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can become another user";
  }
};

constexpr int kCanNotSwitch = 77;

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

TEST_F(PosixStrangers, AClientIsSentAway) {
  const NativeHandle server = create();
  const std::string path = address().sun_path;
  const std::filesystem::path scratch = kit::scratchFolder();
  // Opens the way that a stranger does not have.
  for (const std::string& folder : {scratch.string(), scope_.place(), scope_.folder()}) chmod(folder.c_str(), 0711);
  chmod(path.c_str(), 0777);
  os::Process stranger = kit::startChild("stranger_connects", {path});
  Error accepted = kGeneralFailure;
  std::thread acceptor([&] { accepted = AcceptPeer(server); });
  EXPECT_EQ(kit::waitForChild(stranger), 0);
  chmod(scope_.folder().c_str(), 0700);
  open();
  acceptor.join();
  EXPECT_EQ(accepted, kSuccess) << "the wait went on until the user's own client came";
}

TEST_F(PosixStrangers, AServerIsRefused) {
  create();
  name_ += "stranger";
  const std::string path = address().sun_path;
  os::Process stranger = kit::startChild("stranger_serves", {path});
  Error error = kFileNotFound;
  int code = 0;
  while (error == kFileNotFound && stranger.Wait(0, &code) == kWaitTimeout) {
    NativeHandle none = nullptr;
    error = OpenPipe(name_.c_str(), PipeAccess::ReadWrite, WhenTaken::Wait, &none);
    kept(none);
  }
  EXPECT_EQ(error, kAccessDenied);
  EXPECT_EQ(kit::waitForChild(stranger), 0);
}

}  // namespace
}  // namespace kova::os
