// Where the runtimes' programs are found. This runs on the platform's own backend: platforms differ in the fall-backs.
#include "host/child_programs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>

#include "config/text_utilities.h"
#include "platform/os/environment.h"
#include "tests/kit/scratch_folder.h"

namespace {

namespace os = kova::os;

// Programs have names of their own form here.
const bool kHasFallBacks = os::kPathSeparator == '/';

class ChildPrograms : public testing::Test {
 protected:
  ChildPrograms() {
    javaHome_ = os::GetEnvironment("JAVA_HOME").value_or("");
    os::SetEnvironment("JAVA_HOME", "");
    DecoratePathEnd(folder_);
  }
  ~ChildPrograms() override { os::SetEnvironment("JAVA_HOME", javaHome_); }

  // Makes the files anew, and no others.
  void provide(std::initializer_list<const char*> files) {
    for (const auto& entry : std::filesystem::directory_iterator(scratch_.path())) {
      std::filesystem::remove_all(entry.path());
    }
    for (const char* file : files) {
      std::filesystem::create_directories(std::filesystem::path(scratch_.path(file)).parent_path());
      scratch_.write(file, "program");
    }
  }

  kova::kit::ScratchFolder scratch_;
  std::string folder_ = scratch_.path();  // With its separator at the end, as in every program's path.

 private:
  std::string javaHome_;
};

TEST_F(ChildPrograms, StartxIsTheStatedNameOrThePlatformsForm) {
  EXPECT_EQ(kova::startxProgram(scratch_.path(), false), folder_ + "startx.exe") << "told of as stated";
  EXPECT_EQ(kova::startxProgram(scratch_.path(), true), folder_ + "startx32.exe");
  provide({"startx", "startx32"});
  const std::string ending = kHasFallBacks ? "" : ".exe";
  EXPECT_EQ(kova::startxProgram(scratch_.path(), false), folder_ + "startx" + ending);
  EXPECT_EQ(kova::startxProgram(scratch_.path(), true), folder_ + "startx32" + ending);
  provide({"startx", "startx.exe", "startx32", "startx32.exe"});
  EXPECT_EQ(kova::startxProgram(scratch_.path(), false), folder_ + "startx.exe");
  EXPECT_EQ(kova::startxProgram(folder_, true), folder_ + "startx32.exe");
}

TEST_F(ChildPrograms, TheConsoleOfRLiesBelowItsHome) {
  const std::string stated = folder_ + "bin\\x64\\Rterm.exe";
  EXPECT_EQ(kova::rConsoleProgram(scratch_.path()), stated);
  provide({"bin/R"});
  EXPECT_EQ(kova::rConsoleProgram(scratch_.path()), kHasFallBacks ? folder_ + "bin\\R" : stated);
  provide({"bin/R", "bin/x64/Rterm.exe"});
  EXPECT_EQ(kova::rConsoleProgram(folder_), stated);
}

TEST_F(ChildPrograms, JavaIsTheHomesOwnOrThatOfJavaHome) {
  const std::string stated = folder_ + "JRE/bin/java.exe";
  EXPECT_EQ(kova::javaProgram(scratch_.path()), stated);
  os::SetEnvironment("JAVA_HOME", scratch_.path("jdk"));
  EXPECT_EQ(kova::javaProgram(scratch_.path()), stated) << "nothing is there either";
  provide({"jdk/bin/java"});
  EXPECT_EQ(kova::javaProgram(scratch_.path()), kHasFallBacks ? folder_ + "jdk\\bin/java" : stated);
  provide({"jdk/bin/java", "JRE/bin/java"});
  EXPECT_EQ(kova::javaProgram(scratch_.path()), kHasFallBacks ? folder_ + "JRE/bin/java" : stated);
  provide({"jdk/bin/java", "JRE/bin/java", "JRE/bin/java.exe"});
  EXPECT_EQ(kova::javaProgram(scratch_.path()), stated);
}

// A program that happens to lie below the current folder is nobody's runtime.
TEST_F(ChildPrograms, WithoutAFolderNothingIsLookedFor) {
  provide({"bin/java", "bin/R"});
  const std::filesystem::path current = std::filesystem::current_path();
  std::filesystem::current_path(scratch_.path());
  EXPECT_EQ(kova::javaProgram("C:\\nowhere"), "C:\\nowhere\\JRE/bin/java.exe");
  EXPECT_EQ(kova::rConsoleProgram(""), "bin\\x64\\Rterm.exe");
  std::filesystem::current_path(current);
}

}  // namespace
