// A process that ends while data is being moved: the end waits for it.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "api/kovadx.h"
#include "tests/kit/kit.h"

namespace {

constexpr std::uintmax_t kLength = 64 << 20;

KOVA_KIT_CHILD(moves_and_ends) {
  SetKovaRunning(true);
  return TransportData(arguments.at(0).c_str(), arguments.at(1).c_str(), true);
}

TEST(TransferAtEnd, IsFinishedFirst) {
  const std::string source = kova::kit::scratchPath("source");
  const std::string target = kova::kit::scratchPath("target");
  std::ofstream(source) << "x";
  std::filesystem::resize_file(source, kLength);
  EXPECT_EQ(kova::kit::runChild("moves_and_ends", {source, target}), 0);
  EXPECT_FALSE(std::filesystem::exists(source));
  ASSERT_TRUE(std::filesystem::exists(target));
  EXPECT_EQ(std::filesystem::file_size(target), kLength);
  std::filesystem::remove(target);
}

}  // namespace
