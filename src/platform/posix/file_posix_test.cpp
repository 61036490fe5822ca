// What files are on this platform beyond the seam's contract.
#include "platform/os/file.h"

#include <fcntl.h>
#include <gnu/libc-version.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tests/kit/kit.h"

namespace kova::os {
namespace {

TEST(PosixFile, OpenedFilesCloseOnExec) {
  const std::string path = kit::scratchPath("plain");
  std::FILE* file = OpenFile(path, "wt", nullptr);
  ASSERT_NE(file, nullptr);
  EXPECT_NE(fcntl(fileno(file), F_GETFD) & FD_CLOEXEC, 0);
  std::fclose(file);
  EXPECT_EQ(DeletePlainFile(path), kSuccess);
}

TEST(PosixFile, AFullDiskIsTold) {
  std::FILE* file = OpenFile("/dev/full", "wb", nullptr);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(WriteStream(file, "x", 1), 112u);
  std::fclose(file);
}

TEST(PosixFile, LinksAreNotFollowedByDelete) {
  const std::string path = kit::scratchPath("plain");
  const std::string link = kit::scratchPath("link");
  std::fclose(OpenFile(path, "w", nullptr));
  ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
  EXPECT_EQ(DeletePlainFile(link), kAccessDenied);
  EXPECT_TRUE(FileExists(path));
  unlink(link.c_str());
  EXPECT_EQ(DeletePlainFile(path), kSuccess);
}

TEST(PosixFile, ModulesAreToldByTheirFullPath) {
  static const int inTheProgram = 0;
  EXPECT_EQ(ModulePath(&inTheProgram), ProgramPath());
  EXPECT_EQ(ProgramPath().front(), '/');
  const std::string library = ModulePath(reinterpret_cast<const void*>(&gnu_get_libc_version));
  EXPECT_NE(library.find("libc.so"), std::string::npos) << library;
  EXPECT_EQ(ModulePath(nullptr), "");
}

}  // namespace
}  // namespace kova::os
