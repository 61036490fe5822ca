// The record file, and when its texts are converted.
#include "api/record_file.h"

#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/api/client_test.h"

namespace {

using kova::WireImage;
using testing::IsEmpty;
using testing::SizeIs;

class RecordFile : public kova::ClientTest {
 protected:
  RecordFile() {
    folder_ = std::filesystem::temp_directory_path() / ("kova_record_" + std::to_string(std::random_device{}()));
    std::filesystem::create_directory(folder_);
  }

  ~RecordFile() override {
    SetRecordBrowserOutput(nullptr, false);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string Path(const char* name) const { return (folder_ / name).string(); }

  std::string Content(const char* name) const {
    std::ifstream file(Path(name));
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool Exists(const char* name) const { return std::filesystem::exists(Path(name)); }

 private:
  std::filesystem::path folder_;
};

TEST_F(RecordFile, KeepsToTheFirstFileUntilItIsSwitchedOff) {
  EXPECT_EQ(SetRecordBrowserOutput(Path("one").c_str(), true), 0);
  EXPECT_EQ(SetRecordBrowserOutput(Path("two").c_str(), true), 0);
  RecordBrowserOutput("first ", 1, nullptr);
  EXPECT_EQ(Content("one"), "first ");  // At once, before the file is closed.
  EXPECT_FALSE(Exists("two"));
  EXPECT_EQ(SetRecordBrowserOutput(nullptr, false), 0);
  RecordBrowserOutput("lost", 4, nullptr);
  EXPECT_EQ(SetRecordBrowserOutput(Path("two").c_str(), true), 0);
  RecordBrowserOutput("second", 6, nullptr);
  EXPECT_EQ(Content("one"), "first ");
  EXPECT_EQ(Content("two"), "second");
  EXPECT_EQ(kova::fake::callCount("OpenFile"), 2u);
}

TEST_F(RecordFile, AppendsToWhatIsThere) {
  for (const char* const text : {"one ", "two "}) {
    SetRecordBrowserOutput(Path("log").c_str(), true);
    RecordBrowserOutput(text, 1, nullptr);
    SetRecordBrowserOutput(nullptr, false);
  }
  EXPECT_EQ(Content("log"), "one two ");
}

TEST_F(RecordFile, TheLengthIsOnlyTested) {
  SetRecordBrowserOutput(Path("log").c_str(), true);
  RecordBrowserOutput("nothing", 0, nullptr);
  RecordBrowserOutput(nullptr, 5, nullptr);
  RecordBrowserOutput("100%s whole", 1, nullptr);
  EXPECT_EQ(Content("log"), "100%s whole");
}

TEST_F(RecordFile, AFileThatCanNotBeOpenedLeavesRecordingOff) {
  EXPECT_EQ(SetRecordBrowserOutput(Path("no/such/folder").c_str(), true), 0);
  EXPECT_EQ(SetRecordBrowserOutput(nullptr, true), 0);
  EXPECT_EQ(SetRecordBrowserOutput("", true), 0);
  RecordBrowserOutput("lost", 4, nullptr);
  EXPECT_EQ(SetRecordBrowserOutput(Path("log").c_str(), true), 0);
  RecordBrowserOutput("kept", 4, nullptr);
  EXPECT_EQ(Content("log"), "kept");
}

// ---- Conversion.

std::size_t givenLength = 0;
std::size_t givenRoom = 0;
bool givenZeros = false;

void toUpper(const char* input, std::size_t inputLength, char* output, std::size_t outputSize) {
  givenLength = inputLength;
  givenRoom = outputSize;
  givenZeros = std::all_of(output, output + outputSize, [](char byte) { return byte == 0; });
  for (std::size_t i = 0; i + 1 < inputLength; ++i) output[i] = static_cast<char>(input[i] - 'a' + 'A');
}

void fillWithStars(const char*, std::size_t, char* output, std::size_t outputSize) {
  std::memset(output, '*', outputSize);
}

TEST_F(RecordFile, ConvertsWhileTheEnginesTextsAreUtf8AndAsksEachTime) {
  int utf8 = 1;
  StartEngine([&](const kova::kit::Bytes&) { return Answer{WireImage{.longs = {utf8}}.bytes()}; });
  SetRecordBrowserOutput(Path("log").c_str(), true);
  RecordBrowserOutput("abc", 99, toUpper);
  EXPECT_EQ(givenLength, 4u);
  EXPECT_EQ(givenRoom, 16u);
  EXPECT_TRUE(givenZeros);
  utf8 = 0;
  RecordBrowserOutput("def", 1, toUpper);
  utf8 = -3;
  RecordBrowserOutput("ghi", 1, toUpper);
  RecordBrowserOutput("jkl", 1, nullptr);
  EXPECT_EQ(Content("log"), "ABCdefGHIjkl");
  EXPECT_THAT(Requests(), SizeIs(3));
  EXPECT_EQ(Requests().at(0), WireImage{.code = 185}.bytes());
}

TEST_F(RecordFile, AConverterMayFillItsRoom) {
  StartEngine({.longs = {1}});
  SetRecordBrowserOutput(Path("log").c_str(), true);
  RecordBrowserOutput("ab", 1, fillWithStars);
  RecordBrowserOutput("", 1, fillWithStars);
  EXPECT_EQ(Content("log"), std::string(12 + 4, '*'));
}

TEST_F(RecordFile, WithoutAnAnswerTheTextIsWrittenAsItIs) {
  SetRecordBrowserOutput(Path("log").c_str(), true);
  SetKovaRunning(false);
  RecordBrowserOutput("abc", 1, toUpper);
  SetKovaRunning(true);
  StartEngine({.error = 31, .longs = {1}});
  RecordBrowserOutput("def", 1, toUpper);
  EXPECT_EQ(Content("log"), "abcdef");
}

TEST_F(RecordFile, AsksNobodyWhileRecordingIsOff) {
  StartEngine({.longs = {1}});
  RecordBrowserOutput("abc", 1, toUpper);
  SetRecordBrowserOutput(Path("log").c_str(), true);
  RecordBrowserOutput("abc", 0, toUpper);
  EXPECT_THAT(Requests(), IsEmpty());
}

}  // namespace
