// The main of every program made with kova_kit_test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/kit/kit.h"
#include "tests/kit/kit_system.h"

namespace {

#ifndef _WIN32
// Fails a test that leaves something behind: a descriptor, a socket file, a process.
class LeftoverCheck : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo&) override { handles_ = kova::kit::openHandleCount(); }
  void OnTestEnd(const testing::TestInfo&) override {
    EXPECT_EQ(kova::kit::openHandleCount(), handles_) << "descriptors left open or closed too often";
    EXPECT_EQ(kova::kit::leftPipeFiles(), "") << "socket files left behind";
    EXPECT_FALSE(kova::kit::hasChildLeft()) << "a child process that nobody waited for";
  }

 private:
  int handles_ = 0;
};
#endif

int runTests(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  kova::kit::makePipeFolder();
#ifndef _WIN32
  // The listener is checked before the printer, so that its failures belong to the test.
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  auto* printer = listeners.Release(listeners.default_result_printer());
  listeners.Append(printer);
  listeners.Append(new LeftoverCheck);
#endif
  const int result = RUN_ALL_TESTS();
  kova::kit::removePipeFolder();
  std::error_code ignored;
  std::filesystem::remove_all(kova::kit::scratchFolder(), ignored);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (!arguments.empty() && arguments[0] == "--kova-kit-child") return kova::kit::runNamedChild(arguments);
  return runTests(argc, argv);
}
