// The main of every program made with kova_test(... KIT).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/kit/backend_traits.h"
#include "tests/kit/kit.h"
#include "tests/kit/kit_system.h"

namespace {

// Fails a test that leaves something behind: a descriptor or handle, a socket file, a process.
class LeftoverCheck : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo&) override { handles_ = kova::kit::openHandleCount(); }
  void OnTestEnd(const testing::TestInfo&) override {
    EXPECT_NEAR(kova::kit::openHandleCount(), handles_, kova::kit::kBackend.handleTolerance)
        << "descriptors left open or closed too often";
    EXPECT_EQ(kova::kit::leftPipeFiles(), "") << "socket files left behind";
    EXPECT_FALSE(kova::kit::hasChildLeft()) << "a child process that nobody waited for";
  }

 private:
  int handles_ = 0;
};

int runTests(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  kova::kit::takeInterrupts();
  kova::kit::makePipeFolder();
  // The listener is checked before the printer, so that its failures belong to the test.
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  auto* printer = listeners.Release(listeners.default_result_printer());
  listeners.Append(printer);
  listeners.Append(new LeftoverCheck);
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
