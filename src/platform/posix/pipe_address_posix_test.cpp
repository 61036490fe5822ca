#include "platform/posix/pipe_address_posix.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "platform/posix/error_posix.h"
#include "platform/posix/socket_file_posix.h"
#include "tests/kit/pipe_folder_scope_posix.h"

namespace kova::os {
namespace {

TEST(PipeFolder, IsTheChosenOneThenTheRuntimesThenTheUsers) {
  PipeFolderScope scope;
  scope.use("/chosen", "/run/user/7");
  EXPECT_EQ(pipeFolder(), "/chosen");
  scope.use("", "/run/user/7");
  EXPECT_EQ(pipeFolder(), "/run/user/7/kova");
  scope.use("", "");
  EXPECT_EQ(pipeFolder(), "/tmp/kova-" + std::to_string(geteuid()));
}

TEST(PipeFolder, IsAFullPathWithoutASeparatorAtItsEnd) {
  PipeFolderScope scope;
  const std::string here = std::filesystem::current_path().string();
  for (const auto& [chosen, folder] : {std::pair<std::string, std::string>{"/chosen/", "/chosen"},
                                       {"/chosen//", "/chosen"},
                                       {"/chosen/.", "/chosen"},
                                       {"/chosen/./", "/chosen"},
                                       {"/", "/"},
                                       {"pipes", here + "/pipes"},
                                       {"../pipes/", here + "/../pipes"},
                                       {".", here}}) {
    scope.use(chosen);
    EXPECT_EQ(pipeFolder(), folder) << chosen;
  }
}

TEST(PipeFolder, IsReadFromTheEnvironmentOnce) {
  PipeFolderScope scope;
  scope.use("/first");
  EXPECT_EQ(pipeFolder(), "/first");
  SetEnvironment("KOVA_PIPE_DIR", "/second");
  EXPECT_EQ(pipeFolder(), "/first");
}

TEST(NameHash, IsFnv1a64) {
  EXPECT_EQ(nameHash(""), 0xcbf29ce484222325u);
  EXPECT_EQ(nameHash("a"), 0xaf63dc4c8601ec8cu);
  EXPECT_EQ(nameHash("foobar"), 0x85944171f73967e8u);
  EXPECT_EQ(nameHash("\xE9"), (0xcbf29ce484222325u ^ 0xE9u) * 0x100000001b3u) << "bytes count without a sign";
}

struct NameRow {
  const char* label;
  std::string folder;
  std::string name;
  Error error;
  std::string path;
};

class PipeAddress : public testing::TestWithParam<NameRow> {};

TEST_P(PipeAddress, FollowsFromTheName) {
  sockaddr_un address = {};
  EXPECT_EQ(pipeAddress(GetParam().folder, GetParam().name.c_str(), &address), GetParam().error);
  EXPECT_STREQ(address.sun_path, GetParam().path.c_str());
}

const std::string kPrefix = "\\\\.\\pipe\\";
const NameRow kNames[] = {
    {"Plain", "/f", kPrefix + "1234X0xdapi", 0, "/f/1234X0xdapi"},
    {"WithBlanksAndDots", "/f", kPrefix + "a b.c", 0, "/f/a b.c"},
    {"LongestPlain", "/f", kPrefix + std::string(104, 'n'), 0, "/f/" + std::string(104, 'n')},
    {"OneLongerIsHashed", "/f", kPrefix + std::string(105, 'n'), 0, "/f/k881bf14f456d3211"},
    {"FolderThatLeavesNoRoom", "/" + std::string(90, 'f'), kPrefix + "1234567890123456789", kFileNameTooLong, ""},
    {"FolderThatLeavesJustEnough", "/" + std::string(88, 'f'), kPrefix + std::string(18, 'n'), 0,
     "/" + std::string(88, 'f') + "/kb7ceef5ed17ef8ed"},
    {"NoPrefix", "/f", "plain", kInvalidName, ""},
    {"NoName", "/f", kPrefix, kInvalidName, ""},
    {"Empty", "/f", "", kInvalidName, ""},
    {"BackslashInside", "/f", kPrefix + "a\\b", kInvalidName, ""},
    {"SlashInside", "/f", kPrefix + "../b", kInvalidName, ""},
    {"TheFolderItself", "/f", kPrefix + ".", kInvalidName, ""},
    {"TheFolderAbove", "/f", kPrefix + "..", kInvalidName, ""},
};

INSTANTIATE_TEST_SUITE_P(All, PipeAddress, testing::ValuesIn(kNames),
                         [](const testing::TestParamInfo<NameRow>& row) { return std::string(row.param.label); });

TEST(PipeAddressOfNoName, IsRefused) {
  sockaddr_un address = {};
  EXPECT_EQ(pipeAddress("/f", nullptr, &address), kInvalidName);
}

class Folders : public testing::Test {
 protected:
  Error lock() {
    FolderLock ignored;
    return lockPipeFolder(scope_.folder(), geteuid(), &ignored);
  }
  Error check() const { return checkPipeFolder(scope_.folder(), geteuid()); }

  PipeFolderScope scope_;
};

TEST_F(Folders, AnAbsentOneIsMadeForTheUserAlone) {
  EXPECT_EQ(check(), kFileNotFound);
  EXPECT_EQ(lock(), kSuccess);
  EXPECT_EQ(check(), kSuccess);
  struct stat status = {};
  ASSERT_EQ(lstat(scope_.folder().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFDIR | 0700));
  EXPECT_EQ(lock(), kSuccess) << "one that is there is taken";
}

TEST_F(Folders, AreMadeForTheUserWhateverTheMaskTakes) {
  const mode_t before = umask(0777);
  const Error locked = lock();
  umask(before);
  EXPECT_EQ(locked, kSuccess);
  EXPECT_EQ(check(), kSuccess);
}

// A child that another thread forks just then has a copy of the lock's descriptor.
TEST_F(Folders, AreLockedNoLongerThanTheLockLives) {
  pid_t copy = -1;
  {
    FolderLock held;
    ASSERT_EQ(lockPipeFolder(scope_.folder(), geteuid(), &held), kSuccess);
    copy = fork();
    if (copy == 0) {
      for (;;) pause();
    }
  }
  const Descriptor folder(open(scope_.folder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  EXPECT_EQ(flock(folder.get(), LOCK_EX | LOCK_NB), 0);
  kill(copy, SIGKILL);
  EXPECT_EQ(waitpid(copy, nullptr, 0), copy);
}

TEST_F(Folders, OfAnotherModeAreRefused) {
  ASSERT_EQ(lock(), kSuccess);
  for (const mode_t mode : {0755, 0750, 0701, 0500, 0777}) {
    ASSERT_EQ(chmod(scope_.folder().c_str(), mode), 0);
    EXPECT_EQ(check(), kAccessDenied) << std::oct << mode;
    EXPECT_EQ(lock(), kAccessDenied) << std::oct << mode;
  }
  chmod(scope_.folder().c_str(), 0700);
}

TEST_F(Folders, ThatAreLinksAreRefused) {
  const std::string target = scope_.place() + "/target";
  ASSERT_EQ(mkdir(target.c_str(), 0700), 0);
  ASSERT_EQ(symlink(target.c_str(), scope_.folder().c_str()), 0);
  EXPECT_EQ(check(), kAccessDenied);
  EXPECT_EQ(lock(), kAccessDenied);
}

TEST_F(Folders, ThatAreFilesAreRefused) {
  std::fclose(std::fopen(scope_.folder().c_str(), "w"));
  EXPECT_EQ(check(), kAccessDenied);
  EXPECT_EQ(lock(), kAccessDenied);
}

TEST_F(Folders, OfAnotherUserAreRefused) {
  ASSERT_EQ(lock(), kSuccess);
  FolderLock ignored;
  EXPECT_EQ(checkPipeFolder(scope_.folder(), geteuid() + 1), kAccessDenied);
  EXPECT_EQ(lockPipeFolder(scope_.folder(), geteuid() + 1, &ignored), kAccessDenied);
  EXPECT_FALSE(ignored);
}

TEST(Peers, OfAnotherUserAreRefused) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends), 0);
  const Descriptor one(ends[0]);
  const Descriptor other(ends[1]);
  EXPECT_EQ(checkPeer(one.get(), geteuid()), kSuccess);
  EXPECT_EQ(checkPeer(one.get(), geteuid() + 1), kAccessDenied);
}

class SocketFiles : public testing::Test {
 protected:
  SocketFiles() {
    EXPECT_EQ(lockPipeFolder(scope_.folder(), geteuid(), &lock_), kSuccess);
    EXPECT_EQ(pipeAddress(scope_.folder(), "\\\\.\\pipe\\file", &address_), kSuccess);
  }

  // Leaves a file that nobody serves, as a process that was killed does.
  void leaveStale() {
    const Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<const sockaddr*>(&address_), sizeof address_), 0);
  }
  bool exists() const { return access(address_.sun_path, F_OK) == 0; }

  PipeFolderScope scope_;
  FolderLock lock_;
  sockaddr_un address_ = {};
};

TEST_F(SocketFiles, AreProbedWithoutTheServersNotice) {
  EXPECT_EQ(probeServer(address_), kFileNotFound);
  leaveStale();
  EXPECT_EQ(probeServer(address_), kFileNotFound);
  SocketFile file;
  Descriptor listener;
  ASSERT_EQ(file.create(address_, geteuid(), &listener), kSuccess);
  EXPECT_EQ(probeServer(address_), kSuccess);
  EXPECT_EQ(accept(listener.get(), nullptr, nullptr), -1) << "the probe is no client";
}

TEST_F(SocketFiles, StaleOnesAreReplaced) {
  leaveStale();
  {
    SocketFile file;
    Descriptor listener;
    EXPECT_EQ(file.create(address_, geteuid(), &listener), kSuccess);
    EXPECT_EQ(probeServer(address_), kSuccess);
  }
  EXPECT_FALSE(exists());
}

TEST_F(SocketFiles, ServedOnesAreNotReplaced) {
  SocketFile file;
  SocketFile second;
  Descriptor listener;
  Descriptor none;
  ASSERT_EQ(file.create(address_, geteuid(), &listener), kSuccess);
  EXPECT_EQ(second.create(address_, geteuid(), &none), kAccessDenied);
  EXPECT_EQ(probeServer(address_), kSuccess);
}

TEST_F(SocketFiles, StaleOnesOfAnotherUserAreNotReplaced) {
  leaveStale();
  EXPECT_EQ(removeStaleFile(address_, geteuid() + 1), kAccessDenied);
  EXPECT_TRUE(exists());
}

TEST_F(SocketFiles, OtherThingsOfThatNameAreNotReplaced) {
  std::fclose(std::fopen(address_.sun_path, "w"));
  SocketFile file;
  Descriptor none;
  EXPECT_EQ(file.create(address_, geteuid(), &none), kAccessDenied);
  EXPECT_TRUE(exists());
}

TEST_F(SocketFiles, AreTakenAwayOnlyByTheirOwner) {
  SocketFile successor;
  Descriptor secondListener;
  {
    SocketFile file;
    Descriptor listener;
    ASSERT_EQ(file.create(address_, geteuid(), &listener), kSuccess);
    ASSERT_EQ(unlink(address_.sun_path), 0);
    ASSERT_EQ(successor.create(address_, geteuid(), &secondListener), kSuccess);
  }
  EXPECT_TRUE(exists()) << "the file is the successor's";
}

TEST_F(SocketFiles, AreNotTakenAwayByAForkedCopyOfTheirOwner) {
  auto file = std::make_unique<SocketFile>();
  Descriptor listener;
  ASSERT_EQ(file->create(address_, geteuid(), &listener), kSuccess);
  const pid_t copy = fork();
  if (copy == 0) {
    file.reset();
    _exit(0);
  }
  EXPECT_EQ(waitpid(copy, nullptr, 0), copy);
  EXPECT_TRUE(exists());
}

TEST_F(SocketFiles, ThatNobodyServesAreSweptAwayByAPartOfTheirName) {
  leaveStale();
  removeStaleFiles(scope_.folder(), geteuid(), "other");
  EXPECT_TRUE(exists()) << "another name";
  removeStaleFiles(scope_.folder(), geteuid() + 1, "il");
  EXPECT_TRUE(exists()) << "another user's";
  removeStaleFiles(scope_.folder(), geteuid(), "il");
  EXPECT_FALSE(exists());
  std::fclose(std::fopen(address_.sun_path, "w"));
  removeStaleFiles(scope_.folder(), geteuid(), "il");
  EXPECT_TRUE(exists()) << "no socket";
  unlink(address_.sun_path);
  SocketFile file;
  Descriptor listener;
  ASSERT_EQ(file.create(address_, geteuid(), &listener), kSuccess);
  removeStaleFiles(scope_.folder(), geteuid(), "il");
  EXPECT_TRUE(exists()) << "served";
  removeStaleFiles(scope_.place() + "/absent", geteuid(), "il");
}

}  // namespace
}  // namespace kova::os
