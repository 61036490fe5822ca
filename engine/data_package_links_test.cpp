// Links on the way to a table, and what is no plain file.
#include <gtest/gtest.h>

#include "engine/data_package.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

// The package lies in a folder of its own beside one that it must not reach.
class DataPackageLinks : public testing::Test {
 protected:
  DataPackageLinks() {
    std::filesystem::create_directories(folder_.path("package/own"));
    std::filesystem::create_directory(folder_.path("package2"));
    folder_.write("package/own/t.csv", "a\n1\n");
    folder_.write("package2/t.csv", "a\n1\n");
  }

  void link(const std::string& target, const std::string& name) {
    std::filesystem::create_symlink(target, folder_.path("package/" + name));
  }

  // The problem of reading that table, or nothing.
  std::string problemOf(const std::string& path) {
    folder_.write("package/datapackage.json",
                  R"({"resources": [{"path": ")" + path + R"(", "schema": {"fields": [{"name": "a"}]}}]})");
    DataSet dataSet;
    std::string problem;
    readDataPackage(folder_.path("package"), &dataSet, &problem);
    return problem;
  }

  void expectRefused(const std::string& path) {
    EXPECT_EQ(problemOf(path), folder_.path("package/datapackage.json") +
                                   ", row 1, column 25 (resources/0/path): expected a path that no link leads out of "
                                   "the descriptor's folder, found \"" +
                                   path + "\"");
  }

  const kit::ScratchFolder folder_;
};

TEST_F(DataPackageLinks, ThatLeadOutAreRefused) {
  link(folder_.path("package2"), "absolute");
  link("../package2", "relative");
  link("../package2/t.csv", "t.csv");
  link("relative", "chain");
  for (const char* path : {"absolute/t.csv", "relative/t.csv", "t.csv", "chain/t.csv"}) expectRefused(path);
  EXPECT_NE(problemOf("relative\\\\t.csv").find("a path that no link leads out of"), std::string::npos);
}

TEST_F(DataPackageLinks, ThatStayInsideAreFollowed) {
  link("own", "other");
  link("../package/own/t.csv", "t.csv");
  EXPECT_EQ(problemOf("other/t.csv"), "");
  EXPECT_EQ(problemOf("t.csv"), "");
}

TEST_F(DataPackageLinks, TheDescriptorMayBeReachedThroughOne) {
  link("own", "other");
  folder_.write("package/own/datapackage.json",
                R"({"resources": [{"path": "t.csv", "schema": {"fields": [{"name": "a"}]}}]})");
  DataSet dataSet;
  std::string problem;
  EXPECT_TRUE(readDataPackage(folder_.path("package/other"), &dataSet, &problem)) << problem;
}

TEST(DataPackageDevices, AreNotRead) {
  DataSet dataSet;
  std::string problem;
  EXPECT_FALSE(readDescriptor("/dev/null", &dataSet, &problem));
  EXPECT_EQ(problem, "/dev/null: expected a file that can be read, found a pipe or a device");
}

}  // namespace
}  // namespace kova::engine
