// What the tests of the transport share: a fixture on the in-memory backend that reads back what was traced.
#ifndef KOVADX_TESTS_TRANSPORT_TRACED_TEST_H
#define KOVADX_TESTS_TRANSPORT_TRACED_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "tests/os_fake/os_fake.h"
#include "trace/DxTracer.h"
#include "transport/yielding_wait.h"

namespace kova {

class TracedTest : public testing::Test {
 protected:
  TracedTest() {
    fake::reset();
    SetYieldLimitUs(0);
    endsBefore_ = fake::openPipeEnds();
    tracer_.open(file_.string());
    SetDxTracer(&tracer_);
  }

  ~TracedTest() override {
    SetDxTracer(nullptr);
    EXPECT_EQ(fake::openPipeEnds(), endsBefore_ + leftEnds_) << "pipe ends left open";
    tracer_ = DxTracer();
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }

  // The messages of all records since the last call, without time and name.
  std::vector<std::string> Traced() {
    std::vector<std::string> messages;
    std::ifstream stream(file_);
    for (std::string line; std::getline(stream, line);) {
      const auto mark = line.find(">>");
      if (mark != std::string::npos) messages.push_back(line.substr(mark + 2));
    }
    const auto seen = static_cast<std::ptrdiff_t>(seen_);
    seen_ = messages.size();
    return {messages.begin() + seen, messages.end()};
  }

  // Tells that the test loses so many ends on purpose.
  void LosesEnds(unsigned count) { leftEnds_ = count; }

 private:
  const std::filesystem::path file_ =
      std::filesystem::temp_directory_path() / ("kova_traced_" + std::to_string(std::random_device{}()) + ".log");
  DxTracer tracer_;
  std::size_t seen_ = 0;
  unsigned endsBefore_ = 0;
  unsigned leftEnds_ = 0;
};

}  // namespace kova

#endif
