// Where a Data Package may be written, and what becomes of an older one when a step of it fails.
#include "engine/package_place.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "engine/data_package.h"
#include "engine/data_package_writer.h"
#include "engine/new_file.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

// Fails at one step, counted from 1, or from there on.
class FailingFiles : public FileSystem {
 public:
  FailingFiles(int step, bool goesOn, os::Error error) : step_(step), goesOn_(goesOn), error_(error) {}

  os::Error create(const std::string& path, std::FILE** file) override {
    return fails() ? error_ : FileSystem::create(path, file);
  }
  os::Error write(std::FILE* file, std::string_view bytes) override {
    if (!fails()) return FileSystem::write(file, bytes);
    FileSystem::write(file, bytes.substr(0, bytes.size() / 2));
    return error_;
  }
  os::Error finish(std::FILE* file) override {
    const bool isFailure = fails();
    const os::Error error = FileSystem::finish(file);
    return isFailure ? error_ : error;
  }
  os::Error moveOver(const std::string& from, const std::string& to) override {
    return fails() ? error_ : FileSystem::moveOver(from, to);
  }
  void remove(const std::string& path) override {
    if (!fails()) FileSystem::remove(path);
  }

  int steps() const { return count_; }

 private:
  bool fails() {
    ++count_;
    return goesOn_ ? count_ >= step_ : count_ == step_;
  }

  int step_;
  bool goesOn_;
  os::Error error_;
  int count_ = 0;
};

DataSet numbers(std::size_t cases, double value) {
  Variable variable;
  variable.name = "n";
  DataSet dataSet;
  dataSet.name = "t";
  dataSet.variables = {variable};
  dataSet.cases = CaseStore({0});
  for (std::size_t i = 0; i < cases; ++i) {
    dataSet.cases.appendCase();
    dataSet.cases.setNumber(i, 0, value);
  }
  return dataSet;
}

class PackagePlaceTest : public testing::Test {
 protected:
  ErrorCode write(const DataSet& dataSet, FileSystem& files) {
    return writeDataPackage(dataSet, {}, path_, files, &problem_);
  }
  ErrorCode write(const DataSet& dataSet) { return write(dataSet, files_); }

  double firstNumber() {
    DataSet dataSet;
    std::string problem;
    EXPECT_TRUE(readDataPackage(path_, &dataSet, &problem)) << problem;
    return dataSet.cases.caseCount() == 0 ? 0 : dataSet.cases.number(0, 0);
  }

  std::set<std::string> names() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  const kit::ScratchFolder folder_;
  const std::string path_ = folder_.path("t.json");
  FileSystem files_;
  std::string problem_;
};

TEST_F(PackagePlaceTest, AnOlderPackageIsReplacedInOneStep) {
  ASSERT_EQ(write(numbers(1, 1)), ErrorCode::kNone) << problem_;
  EXPECT_THAT(names(), ElementsAre("t.csv", "t.json"));
  ASSERT_EQ(write(numbers(1, 2)), ErrorCode::kNone) << problem_;
  EXPECT_THAT(names(), ElementsAre("t-2.csv", "t.json"));
  EXPECT_EQ(firstNumber(), 2);
  ASSERT_EQ(write(numbers(1, 3)), ErrorCode::kNone) << problem_;
  EXPECT_THAT(names(), ElementsAre("t.csv", "t.json"));
  EXPECT_EQ(firstNumber(), 3);
}

TEST_F(PackagePlaceTest, ATableOfAnotherIsLeftAlone) {
  folder_.write("t.csv", "mine");
  ASSERT_EQ(write(numbers(1, 1)), ErrorCode::kNone) << problem_;
  EXPECT_EQ(folder_.read("t.csv"), "mine");
  EXPECT_THAT(names(), ElementsAre("t-2.csv", "t.csv", "t.json"));
}

TEST_F(PackagePlaceTest, ATableWithANameOfItsOwnStays) {
  for (const char* path : {"own.csv", "t-.csv", "t-2x.csv", "sub/t.csv", "../t.csv", "t2.csv"}) {
    folder_.write("t.json", std::string(R"({"resources": [{"path": ")") + path + R"("}]})");
    EXPECT_EQ(PackagePlace(path_).oldTablePath(), "") << path;
  }
  for (const char* old : {R"({"resources": []})", R"({"resources": [1]})", R"({"resources": [{"path": ["t.csv"]}]})"}) {
    folder_.write("t.json", old);
    EXPECT_EQ(PackagePlace(path_).oldTablePath(), "") << old;
  }
}

TEST_F(PackagePlaceTest, EveryStepMayFail) {
  const DataSet old = numbers(1, 1);
  const DataSet next = numbers(100000, 2);  // Some pieces of the table.
  ASSERT_EQ(write(old), ErrorCode::kNone) << problem_;
  FailingFiles counting(0, false, 0);
  ASSERT_EQ(write(next, counting), ErrorCode::kNone) << problem_;
  ASSERT_GT(counting.steps(), 8);
  for (const bool goesOn : {false, true}) {
    for (int step = 1; step <= counting.steps(); ++step) {
      SCOPED_TRACE(step);
      std::filesystem::remove_all(folder_.path());
      std::filesystem::create_directory(folder_.path());
      ASSERT_EQ(write(old), ErrorCode::kNone) << problem_;
      FailingFiles files(step, goesOn, 112);
      const bool isLast = step == counting.steps();  // The old table is removed when all is done.
      EXPECT_EQ(write(next, files), isLast ? ErrorCode::kNone : ErrorCode::kDiskFull);
      EXPECT_EQ(firstNumber(), isLast ? 2 : 1);
      if (!goesOn && !isLast) {
        EXPECT_THAT(names(), ElementsAre("t.csv", "t.json"));
      }
      ASSERT_EQ(write(next), ErrorCode::kNone) << "what is left is in nobody's way";
      EXPECT_EQ(firstNumber(), 2);
    }
  }
}

TEST_F(PackagePlaceTest, AFailureIsOneLineAboutTheFile) {
  struct Row {
    os::Error error;
    ErrorCode code;
    const char* advice;
  };
  const Row rows[] = {
      {112, ErrorCode::kDiskFull, "; free some room, or choose another folder"},
      {1295, ErrorCode::kDiskFull, "; free some room, or choose another folder"},
      {223, ErrorCode::kDiskFull, "; free some room, or choose another folder"},
      {5, ErrorCode::kDataFileNotWritable, "; check that its folder is there and that files may be made in it"},
      {0xABCDEF, ErrorCode::kDataFileNotWritable,
       " (error 11259375); check that its folder is there and that files may "
       "be made in it"},
  };
  for (const Row& row : rows) {
    FailingFiles files(2, false, row.error);
    EXPECT_EQ(write(numbers(1, 1), files), row.code);
    EXPECT_EQ(problem_.find(folder_.path("t.csv") + " can not be written ("), 0U) << problem_;
    EXPECT_TRUE(problem_.ends_with(row.advice)) << problem_;
  }
}

TEST_F(PackagePlaceTest, AFolderThatIsNotThereIsTold) {
  const std::string path = folder_.path("no") + "/t.json";
  EXPECT_EQ(checkPackagePlace(path, files_, &problem_), ErrorCode::kDataFileNotWritable);
  EXPECT_EQ(problem_.find(path + " can not be made ("), 0U) << problem_;
  EXPECT_EQ(writeDataPackage(numbers(1, 1), {}, path, files_, &problem_), ErrorCode::kDataFileNotWritable);
}

TEST_F(PackagePlaceTest, WhatIsNoPlainFileIsRefused) {
  std::filesystem::create_directory(folder_.path("d.json"));
  for (const std::string& path : {folder_.path("d.json"), folder_.path() + "/", folder_.path(), std::string()}) {
    EXPECT_EQ(checkPackagePlace(path, files_, &problem_), ErrorCode::kDataFileNotPlain);
    EXPECT_EQ(problem_, path + " is a folder, a link or a device; name a file");
  }
}

TEST_F(PackagePlaceTest, OnlyADescriptorIsReplaced) {
  for (const char* content : {"a,b\n1,2\n", "{\"a\": 1}", "{\"resources\": 1}", "[]", "{", " ", "{\"resources\": []} x",
                              "{\"resources\": [\"\xFF\"]}"}) {
    folder_.write("t.json", content);
    EXPECT_EQ(write(numbers(1, 1)), ErrorCode::kDataFileForeign) << content;
    EXPECT_EQ(problem_, path_ + " is no descriptor of a Data Package; choose another name, or remove it");
    EXPECT_EQ(folder_.read("t.json"), content);
    EXPECT_THAT(names(), ElementsAre("t.json"));
  }
  for (const char* content : {"", "{\"resources\": []}", " \n{\"resources\": []}", "\xEF\xBB\xBF{\"resources\": []}"}) {
    folder_.write("t.json", content);
    EXPECT_EQ(checkPackagePlace(path_, files_, &problem_), ErrorCode::kNone) << content;
    EXPECT_EQ(folder_.read("t.json"), content);
    EXPECT_THAT(names(), ElementsAre("t.json"));
  }
}

TEST_F(PackagePlaceTest, TheTablesNameFollowsTheDescriptors) {
  const std::pair<const char*, const char*> rows[] = {
      {"a.json", "a.csv"}, {"a", "a.csv"}, {"a.tmp", "a.tmp.csv"}, {".json", ".json.csv"}, {"a b.json", "a b.csv"}};
  for (const auto& [descriptor, table] : rows) {
    EXPECT_EQ(PackagePlace(folder_.path(descriptor)).tableName(), table);
    EXPECT_EQ(PackagePlace(folder_.path(descriptor)).tablePath(), folder_.path(table));
  }
}

}  // namespace
}  // namespace kova::engine
