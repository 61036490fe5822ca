// What only some platforms have: links, a device that is always full, names of any bytes.
#include <gtest/gtest.h>

#include "engine/data_package.h"
#include "engine/data_package_writer.h"
#include "engine/new_file.h"
#include "engine/package_place.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

// Writes to the device whatever the file is called.
class FullDisk : public FileSystem {
 public:
  os::Error create(const std::string& /*path*/, std::FILE** file) override {
    return FileSystem::create("/dev/full", file);
  }
};

DataSet oneNumber() {
  Variable variable;
  variable.name = "n";
  DataSet dataSet;
  dataSet.variables = {variable};
  dataSet.cases = CaseStore({0});
  dataSet.cases.appendCase();
  return dataSet;
}

TEST(PackagePlacePosix, AFullDiskIsTold) {
  const kit::ScratchFolder folder;
  FullDisk files;
  std::string problem;
  EXPECT_EQ(writeDataPackage(oneNumber(), {}, folder.path("t.json"), files, &problem), ErrorCode::kDiskFull);
  EXPECT_EQ(problem, folder.path("t.csv") +
                         " can not be written (No space left on device); free some room, or choose another folder");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(PackagePlacePosix, LinksAndDevicesAreRefused) {
  const kit::ScratchFolder folder;
  folder.write("t.json", R"({"resources": []})");
  std::filesystem::create_symlink(folder.path("t.json"), folder.path("link.json"));
  std::filesystem::create_symlink(folder.path("none"), folder.path("loose.json"));
  FileSystem files;
  std::string problem;
  for (const std::string& path : {folder.path("link.json"), folder.path("loose.json"), std::string("/dev/null")}) {
    EXPECT_EQ(checkPackagePlace(path, files, &problem), ErrorCode::kDataFileNotPlain) << path;
  }
}

TEST(PackagePlacePosix, ANameOfAnyBytesHasATable) {
  const kit::ScratchFolder folder;
  FileSystem files;
  std::string problem;
  for (const char* name : {"a:b.json", "\xFF.json", "a\nb.json"}) {
    ASSERT_EQ(writeDataPackage(oneNumber(), {}, folder.path(name), files, &problem), ErrorCode::kNone) << problem;
    DataSet read;
    EXPECT_TRUE(readDescriptor(folder.path(name), &read, &problem)) << problem;
  }
  EXPECT_TRUE(folder.has("a_b.csv"));
  EXPECT_TRUE(folder.has("table.csv"));
  EXPECT_TRUE(folder.has("a_b-2.csv"));
}

}  // namespace
}  // namespace kova::engine
