// Environment, files, clock, error texts.
#include <filesystem>
#include <string>

#include "platform/os/clock.h"
#include "platform/os/environment.h"
#include "platform/os/file.h"
#include "tests/conformance/seam_fixture.h"

namespace kova::conformance {
namespace {

class Environment : public SeamTest {};
class Files : public SeamTest {};
class Clock : public SeamTest {};

const char kVariable[] = "KOVA_CONFORMANCE_VARIABLE";

TEST_F(Environment, AVariableIsSetChangedAndRemovedByNoValue) {
  EXPECT_EQ(os::GetEnvironment(kVariable), std::nullopt);
  EXPECT_EQ(os::SetEnvironment(kVariable, "one"), 0u);
  EXPECT_EQ(os::GetEnvironment(kVariable), "one");
  EXPECT_EQ(os::SetEnvironment(kVariable, "two = 2; \\"), 0u);
  EXPECT_EQ(os::GetEnvironment(kVariable), "two = 2; \\");
  EXPECT_EQ(os::SetEnvironment(kVariable, ""), 0u);
  EXPECT_EQ(os::GetEnvironment(kVariable), std::nullopt);
  EXPECT_EQ(os::SetEnvironment(kVariable, ""), 0u) << "nothing to remove";
}

TEST_F(Environment, ALongValueIsGivenWhole) {
  const std::string longValue(5000, 'v');
  EXPECT_EQ(os::SetEnvironment(kVariable, longValue), 0u);
  EXPECT_EQ(os::GetEnvironment(kVariable), longValue);
  os::SetEnvironment(kVariable, "");
}

TEST_F(Environment, SeparatorsAreThePlatforms) {
  EXPECT_EQ(os::kPathSeparator, kit::kBackend.pathSeparator);
  EXPECT_EQ(os::kListSeparator, kit::kBackend.listSeparator);
}

std::FILE* openOrFail(const std::string& path, const char* mode) {
  Error error = os::kSuccess;
  std::FILE* file = os::OpenFile(path, mode, &error);
  EXPECT_NE(file, nullptr) << path << ": " << error;
  return file;
}

std::string contentOf(const std::string& path) {
  std::string content(100, '\0');
  std::FILE* file = openOrFail(path, "rt");
  if (file == nullptr) return {};
  content.resize(std::fread(content.data(), 1, content.size(), file));
  std::fclose(file);
  return content;
}

TEST_F(Files, PathsAreTakenWithBothSeparators) {
  EXPECT_EQ(os::NativePath("a\\b/c"), kit::kBackend.nativePath);
  const std::string folder = kit::scratchPath("both");
  std::filesystem::create_directory(folder);
  std::fclose(openOrFail(folder + "\\file.txt", "w"));
  EXPECT_TRUE(os::FileExists(folder + "\\file.txt"));
  EXPECT_TRUE(os::FileExists(folder + "/file.txt"));
  EXPECT_EQ(os::DeletePlainFile(folder + "\\file.txt"), os::kSuccess);
  std::filesystem::remove(folder);
}

TEST_F(Files, AreWrittenAppendedToAndReadMeanwhile) {
  const std::string path = kit::scratchPath("content.txt");
  std::FILE* writer = openOrFail(path, "w");
  std::fputs("one ", writer);
  std::fclose(writer);
  std::FILE* appender = openOrFail(path, "a+");
  std::fputs("two", appender);
  std::fflush(appender);
  EXPECT_EQ(contentOf(path), "one two") << "while it is open";
  std::fclose(appender);
  EXPECT_EQ(os::DeletePlainFile(path), os::kSuccess);
  EXPECT_FALSE(os::FileExists(path));
}

TEST_F(Files, HoldWhatWasWrittenAndSynced) {
  const std::string path = kit::scratchPath("written.txt");
  std::FILE* writer = openOrFail(path, "wb");
  EXPECT_EQ(os::WriteStream(writer, "one two", 3), os::kSuccess);
  EXPECT_EQ(contentOf(path), "one") << "while it is open";
  EXPECT_EQ(os::WriteStream(writer, "", 0), os::kSuccess);
  EXPECT_EQ(os::SyncStream(writer), os::kSuccess);
  std::fclose(writer);
  std::FILE* reader = openOrFail(path, "rb");
  EXPECT_NE(os::WriteStream(reader, "x", 1), os::kSuccess) << "a stream for reading";
  std::fclose(reader);
  EXPECT_EQ(contentOf(path), "one");
  EXPECT_EQ(os::DeletePlainFile(path), os::kSuccess);
}

TEST_F(Files, AreMovedOverOthers) {
  const std::string from = kit::scratchPath("from.txt");
  const std::string to = kit::scratchPath("to.txt");
  for (const std::string& path : {from, to}) {
    std::FILE* writer = openOrFail(path, "w");
    std::fputs(path == from ? "new" : "old", writer);
    std::fclose(writer);
  }
  EXPECT_EQ(os::MoveFileOver(from, to), os::kSuccess);
  EXPECT_EQ(contentOf(to), "new");
  EXPECT_FALSE(os::FileExists(from));
  EXPECT_EQ(os::MoveFileOver(from, to), os::kFileNotFound);
  EXPECT_EQ(contentOf(to), "new") << "nothing changes on a failure";
  EXPECT_EQ(os::DeletePlainFile(to), os::kSuccess);
}

TEST_F(Files, ThatAreAbsentGive2) {
  const std::string path = kit::scratchPath("absent.txt");
  Error error = os::kSuccess;
  EXPECT_EQ(os::OpenFile(path, "rt", &error), nullptr);
  EXPECT_EQ(error, os::kFileNotFound);
  EXPECT_EQ(os::OpenFile(path, "rt", nullptr), nullptr);
  EXPECT_EQ(os::DeletePlainFile(path), os::kFileNotFound);
  EXPECT_FALSE(os::FileExists(path));
}

TEST_F(Files, AFolderIsThereButNoPlainFile) {
  const std::string folder = kit::scratchPath("folder");
  std::filesystem::create_directory(folder);
  EXPECT_TRUE(os::FileExists(folder));
  EXPECT_EQ(os::DeletePlainFile(folder), os::kAccessDenied);
  EXPECT_TRUE(os::FileExists(folder));
  std::filesystem::remove(folder);
}

void write(const std::string& path, const std::string& content) {
  std::FILE* file = openOrFail(path, "w");
  if (file == nullptr) return;
  std::fputs(content.c_str(), file);
  std::fclose(file);
}

TEST_F(Files, AreCopiedInPlaceOfWhatIsThere) {
  const std::string source = kit::scratchPath("source.txt");
  const std::string target = kit::scratchPath("target.txt");
  write(source, "one");
  EXPECT_EQ(os::CopyPlainFile(source, target), os::kSuccess);
  EXPECT_EQ(contentOf(target), "one");
  write(source, "2");
  EXPECT_EQ(os::CopyPlainFile(source, target), os::kSuccess);
  EXPECT_EQ(contentOf(target), "2");
  EXPECT_EQ(contentOf(source), "2");
  os::DeletePlainFile(source);
  os::DeletePlainFile(target);
}

TEST_F(Files, AreNotCopiedFromNowhereNorToNowhereNorToThemselves) {
  const std::string source = kit::scratchPath("source.txt");
  const std::string target = kit::scratchPath("target.txt");
  write(target, "kept");
  EXPECT_EQ(os::CopyPlainFile(source, target), os::kFileNotFound);
  EXPECT_EQ(os::CopyPlainFile("", target), os::kFileNotFound);
  EXPECT_EQ(contentOf(target), "kept");
  write(source, "one");
  EXPECT_NE(os::CopyPlainFile(source, kit::scratchPath("absent") + "/file.txt"), os::kSuccess);
  EXPECT_NE(os::CopyPlainFile(source, ""), os::kSuccess);
  EXPECT_NE(os::CopyPlainFile(source, source), os::kSuccess);
  EXPECT_EQ(contentOf(source), "one");
  os::DeletePlainFile(source);
  os::DeletePlainFile(target);
}

TEST_F(Files, AFolderIsNoFileToCopy) {
  const std::string folder = kit::scratchPath("folder");
  const std::string target = kit::scratchPath("target.txt");
  std::filesystem::create_directory(folder);
  EXPECT_NE(os::CopyPlainFile(folder, target), os::kSuccess);
  EXPECT_FALSE(os::FileExists(target));
  write(target, "one");
  EXPECT_NE(os::CopyPlainFile(target, folder), os::kSuccess);
  os::DeletePlainFile(target);
  std::filesystem::remove(folder);
}

// What a pipe end asks for when it goes, whatever became of the pipe.
TEST_F(Files, APipesNameIsNoPlainFile) {
  const std::string name = kit::scratchName();
  Connection pipe(name);
  EXPECT_NE(os::DeletePlainFile(name), os::kSuccess);
  ASSERT_EQ(pipe.client.write("x"), os::kSuccess);
  EXPECT_EQ(receive(pipe.server), (Received{os::kSuccess, "x"}));
}

TEST_F(Files, TheProgramAndItsModulesHavePaths) {
  static const int inThisModule = 0;
  EXPECT_FALSE(os::ProgramPath().empty());
  EXPECT_FALSE(os::ModulePath(&inThisModule).empty());
}

TEST_F(Clock, NeverGoesBackAndSleepsAtLeastThatLong) {
  const std::uint64_t us = os::TickUs();
  const std::uint64_t ms = os::TickMs();
  os::SleepMs(15);
  EXPECT_GE(os::TickMs() - ms, 14u);
  EXPECT_GE(os::TickUs() - us, 14000u);
  os::YieldThread();
  os::SleepMs(0);
  EXPECT_GE(os::TickUs(), us);
}

TEST_F(Clock, LocalTimeIsBrokenDown) {
  const std::tm time = os::LocalTime();
  EXPECT_GE(time.tm_year, 120);
  EXPECT_THAT(time.tm_mon, testing::AllOf(testing::Ge(0), testing::Le(11)));
  EXPECT_THAT(time.tm_mday, testing::AllOf(testing::Ge(1), testing::Le(31)));
  EXPECT_THAT(time.tm_hour, testing::AllOf(testing::Ge(0), testing::Le(23)));
}

TEST(ErrorText, HasNoLineBreakAtItsEnd) {
  const std::string text = os::ErrorText(os::kAccessDenied);
  EXPECT_FALSE(text.empty());
  EXPECT_THAT(text, testing::Not(testing::EndsWith("\n")));
  EXPECT_EQ(os::ErrorText(0xABCDEF), "");
}

}  // namespace
}  // namespace kova::conformance
