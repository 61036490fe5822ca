// Where this platform's loader looks for a library.
#include "platform/os/loader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/kit/kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::os {
namespace {

constexpr const char* kSample = KOVA_SAMPLE_DIR "/sample_1.so";

class PosixLoader : public testing::Test {
 protected:
  void Provide(const std::string& name) { std::filesystem::copy_file(kSample, folder_.path(name)); }

  Error Load(const std::string& name) {
    LibraryHandle library = nullptr;
    const Error error = LoadSharedLibrary(folder_.path(name), &library, &message_);
    if (error == kSuccess) UnloadLibrary(library);
    return error;
  }

  kit::ScratchFolder folder_;
  std::string message_;
};

TEST_F(PosixLoader, TriesTheNameAsItIsFirst) {
  Provide("plain");
  folder_.write("plain.so", "no library");
  EXPECT_EQ(Load("plain"), kSuccess);
}

TEST_F(PosixLoader, ThenWithItsEnding) {
  Provide("ended.so");
  folder_.write("libended.so", "no library");
  EXPECT_EQ(Load("ended"), kSuccess);
}

TEST_F(PosixLoader, ThenWithPrefixAndEnding) {
  Provide("libwhole.so");
  EXPECT_EQ(Load("whole"), kSuccess);
}

TEST_F(PosixLoader, AFolderOfTheNameIsPassedOver) {
  std::filesystem::create_directory(folder_.path("runtime"));
  Provide("runtime.so");
  EXPECT_EQ(Load("runtime"), kSuccess);
}

TEST_F(PosixLoader, ANameWithAPeriodIsTakenAsItIs) {
  Provide("runtime.dll.so");
  Provide("libruntime.dll.so");
  EXPECT_EQ(Load("runtime.dll"), 126u);
  EXPECT_NE(message_.find("runtime.dll"), std::string::npos);
}

TEST_F(PosixLoader, AFileThatIsThereAndWrongIsTheOneToldOf) {
  folder_.write("broken.so", "no library");
  Provide("libbroken.so");
  EXPECT_EQ(Load("broken"), 193u);
  EXPECT_NE(message_.find("broken.so"), std::string::npos);
}

TEST_F(PosixLoader, ALibraryWhoseRestIsMissing) {
  std::ifstream whole(kSample, std::ios::binary);
  std::string begin(100, '\0');
  whole.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  folder_.write("cut.so", begin);
  EXPECT_EQ(Load("cut.so"), 126u);
  folder_.write("tiny.so", "\177E");
  EXPECT_EQ(Load("tiny.so"), 193u);
}

}  // namespace
}  // namespace kova::os
