#include "trace/DxTracer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <sstream>
#include <thread>
#include <vector>

#include "tests/kit/scratch_folder.h"
#include "tests/os_fake/os_fake.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kBanner = std::string(40, '*') + "TRACE BEGIN" + std::string(40, '*');
// The fake backend's date and time.
const std::string kTime = "01/02/24 03:04:05 ";

class DxTracerTest : public testing::Test {
 protected:
  DxTracerTest() { kova::fake::reset(); }
  ~DxTracerTest() override { SetDxTracer(nullptr); }

  std::string path() const { return folder_.path("PYTHON_trace.log"); }

  // The lines of the file; each ends with the platform's line end.
  std::vector<std::string> lines() const {
    std::istringstream text(folder_.read("PYTHON_trace.log"));
    std::vector<std::string> result;
    for (std::string line; std::getline(text, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      result.push_back(line);
    }
    return result;
  }

  kova::kit::ScratchFolder folder_;
};

TEST_F(DxTracerTest, BannerIsWrittenAtOnce) {
  DxTracer tracer;
  tracer.open(path());
  EXPECT_TRUE(tracer.isOpen());
  EXPECT_THAT(lines(), ElementsAre(kBanner));
  EXPECT_EQ(kBanner.size() + 1, 92u);
  const std::string bytes = folder_.read("PYTHON_trace.log");
  EXPECT_TRUE(bytes == kBanner + "\n" || bytes == kBanner + "\r\n");
}

TEST_F(DxTracerTest, RecordIsCompleteInTheFileAtOnce) {
  DxTracer tracer;
  tracer.open(path());
  tracer.write("first");
  EXPECT_THAT(lines(), ElementsAre(kBanner, kTime + ">>first")) << "no name before setXName";
  tracer.setXName("PYTHON");
  EXPECT_EQ(tracer.getXName(), "PYTHON");
  tracer.write("");
  kova::fake::advanceMs(61000);
  tracer.write("third");
  EXPECT_THAT(lines(), ElementsAre(kBanner, kTime + ">>first", kTime + "PYTHON>>", "01/02/24 03:05:06 PYTHON>>third"));
}

TEST_F(DxTracerTest, WithoutFileNothingHappens) {
  DxTracer tracer;
  tracer.write("lost");
  tracer.open("");
  EXPECT_FALSE(tracer.isOpen());
  tracer.write("lost");
  EXPECT_EQ(kova::fake::callCount("OpenFile"), 0u);
  EXPECT_EQ(tracer.getXName(), "");
}

TEST_F(DxTracerTest, FolderThatIsMissingIsNotReported) {
  DxTracer tracer;
  tracer.open(folder_.path("absent") + "\\PYTHON_trace.log");
  EXPECT_FALSE(tracer.isOpen());
  tracer.write("lost");
  EXPECT_FALSE(folder_.has("absent"));
  SetDxTracer(&tracer);
  DxTrace("lost");
  DxTraceError("lost", 5);
}

TEST_F(DxTracerTest, FileThatCannotBeOpenedMakesItSilent) {
  DxTracer tracer;
  tracer.open(path());
  kova::fake::fail("OpenFile", kova::os::kAccessDenied);
  tracer.open(folder_.path("other.log"));
  EXPECT_FALSE(tracer.isOpen());
  tracer.write("lost");
  EXPECT_THAT(lines(), ElementsAre(kBanner));
}

TEST_F(DxTracerTest, SecondWriterEmptiesTheFile) {
  DxTracer first;
  first.open(path());
  first.write("first");
  DxTracer second;
  second.open(path());
  EXPECT_THAT(lines(), ElementsAre(kBanner));
}

TEST_F(DxTracerTest, PathMayBeWrittenWithBackslashes) {
  DxTracer tracer;
  tracer.open(folder_.path() + "\\PYTHON_trace.log");
  EXPECT_THAT(lines(), SizeIs(1));
}

TEST_F(DxTracerTest, CopiesShareTheFile) {
  auto first = std::make_unique<DxTracer>();
  first->setXName("A");
  first->open(path());
  DxTracer second(*first);
  second.setXName("B");
  first->write("one");
  second.write("two");
  first.reset();
  second.write("three");
  EXPECT_THAT(lines(), ElementsAre(kBanner, kTime + "A>>one", kTime + "B>>two", kTime + "B>>three"));
}

TEST_F(DxTracerTest, InstalledTracer) {
  EXPECT_EQ(GetDxTracer(), nullptr);
  DxTrace("lost");
  DxTraceError("lost", 1);

  DxTracer tracer;
  SetDxTracer(&tracer);
  EXPECT_EQ(GetDxTracer(), &tracer);
  DxTrace("lost: no file yet");
  DxTraceError("lost: no file yet", 1);
  tracer.open(path());
  DxTrace("kept");
  SetDxTracer(nullptr);
  DxTrace("lost again");
  EXPECT_THAT(lines(), ElementsAre(kBanner, kTime + ">>kept"));
}

TEST_F(DxTracerTest, ErrorRecords) {
  DxTracer tracer;
  tracer.open(path());
  SetDxTracer(&tracer);
  const struct {
    int code;
    const char* text;
  } cases[] = {
      {232, " WriteData error code : 232."},
      {0, " WriteData error code : 0."},
      {-1, " WriteData error code : -1."},
      {INT_MAX, " WriteData error code : 2147483647."},
      {INT_MIN, " WriteData error code : -2147483648."},
  };
  for (const auto& c : cases) {
    DxTraceError(" WriteData", c.code);
    EXPECT_EQ(lines().back(), kTime + ">>" + c.text);
  }
}

TEST_F(DxTracerTest, LocaleOfTheHostDoesNotShow) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* const locale : {"de_DE.UTF-8", "ja_JP.UTF-8", "German", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, locale) == nullptr) continue;
    DxTracer tracer;
    tracer.open(path());
    tracer.write("x");
    EXPECT_THAT(lines(), ElementsAre(kBanner, kTime + ">>x")) << locale;
  }
  std::setlocale(LC_ALL, before.c_str());
}

TEST_F(DxTracerTest, EightThreadsWriteWholeRecords) {
  constexpr int kThreads = 8;
  constexpr int kRecords = 250;
  DxTracer tracer;
  tracer.setXName("N");
  tracer.open(path());
  SetDxTracer(&tracer);
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([i] {
      for (int k = 0; k < kRecords; ++k) DxTraceError(std::string(50, static_cast<char>('a' + i)), k);
    });
  }
  for (std::thread& thread : threads) thread.join();

  const std::vector<std::string> written = lines();
  ASSERT_THAT(written, SizeIs(1 + kThreads * kRecords));
  // Each record of each thread stands there once, in the thread's own order.
  std::vector<int> next(kThreads, 0);
  const std::string head = kTime + "N>>";
  for (std::size_t i = 1; i < written.size(); ++i) {
    ASSERT_GT(written[i].size(), head.size()) << written[i];
    const int thread = written[i][head.size()] - 'a';
    ASSERT_TRUE(thread >= 0 && thread < kThreads) << written[i];
    const std::string text(50, static_cast<char>('a' + thread));
    const int code = next[static_cast<std::size_t>(thread)]++;
    ASSERT_EQ(written[i], head + text + " error code : " + std::to_string(code) + ".");
  }
}

// A nested run begins on one thread while the outer one traces on another.
TEST_F(DxTracerTest, TheNameMayChangeWhileOthersWrite) {
  constexpr int kRecords = 500;
  const std::string longName(100, 'L');
  DxTracer tracer;
  tracer.setXName("S");
  tracer.open(path());
  std::thread writer([&tracer] {
    for (int k = 0; k < kRecords; ++k) tracer.write("text");
  });
  for (int k = 0; k < kRecords; ++k) tracer.setXName(k % 2 == 0 ? longName : "S");
  writer.join();
  EXPECT_EQ(tracer.getXName(), "S");
  const std::vector<std::string> written = lines();
  ASSERT_THAT(written, SizeIs(1 + kRecords));
  for (std::size_t i = 1; i < written.size(); ++i) {
    ASSERT_THAT(written[i], testing::AnyOf(kTime + "S>>text", kTime + longName + ">>text"));
  }
}

}  // namespace
