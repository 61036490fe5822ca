// Saving the active data set's cases and getting them back.
#include "engine/data_package.h"
#include "engine/request_kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

class TempFiles : public RequestTest {
 protected:
  TempFiles() {
    for (std::size_t i = 0; i < main().cases.caseCount(); ++i) {
      main().cases.setNumber(i, 0, static_cast<double>(i));
      main().cases.setNumber(i, 2, i % 2 == 0 ? 1 : 0);
    }
  }

  std::vector<double> scores() {
    std::vector<double> scores;
    for (std::size_t i = 0; i < main().cases.caseCount(); ++i) scores.push_back(main().cases.number(i, 0));
    return scores;
  }

  int rowCount() { return ask(Command::GetRowCountInTempFile).FirstLong(); }

  const kit::ScratchFolder folder_;
  const std::string path_ = folder_.path("saved.tmp");
};

TEST_F(TempFiles, HoldTheActiveDataSet) {
  const DataSet before = main();
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  EXPECT_EQ(rowCount(), 5);
  DataSet read;
  std::string problem;
  ASSERT_TRUE(readDescriptor(path_, &read, &problem)) << problem;
  read.source.clear();
  EXPECT_TRUE(read == before);
  EXPECT_TRUE(main() == before);
  EXPECT_TRUE(folder_.has("saved.tmp.csv"));
  main().cases = CaseStore({0, 12, 0, 0});
  ASSERT_EQ(tell(Command::GetDataFromTempFile, path_, 0, 5), 0);
  EXPECT_TRUE(main() == before);
}

TEST_F(TempFiles, MayHoldTheSelectedCasesAlone) {
  main().filter = "one";
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 1), 0);
  EXPECT_EQ(rowCount(), 3);
  ASSERT_EQ(tell(Command::GetDataFromTempFile, path_, 0, 100), 0);
  EXPECT_THAT(scores(), testing::ElementsAre(0, 2, 4));
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  EXPECT_EQ(rowCount(), 3) << "of the three that are left, all";
}

TEST_F(TempFiles, WithoutAFilterEveryCaseIsSelected) {
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 1), 0);
  EXPECT_EQ(rowCount(), 5);
}

TEST_F(TempFiles, GiveARangeOfRows) {
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  const std::tuple<int, int, std::vector<double>> rows[] = {
      {1, 2, {1, 2}},
      {3, 9, {3, 4}},
      {0, 1, {0}},
      {4, 1, {4}},
      {0, 0, {}},
      {5, 1, {}},
      {9, 9, {}},
      {2, 0, {}},
      {2, 2147483647, {2, 3, 4}},
      {0, 5, {0, 1, 2, 3, 4}},
  };
  for (const auto& [first, count, expected] : rows) {
    ASSERT_EQ(tell(Command::GetDataFromTempFile, path_, first, count), 0);
    EXPECT_EQ(scores(), expected) << first << " " << count;
    EXPECT_EQ(rowCount(), 5) << "of the file";
  }
}

TEST_F(TempFiles, WithoutOneThereIsNoRowCount) {
  expectRefused(ErrorCode::kNoTempFile, Command::GetRowCountInTempFile);
}

TEST_F(TempFiles, AreWrittenToPlainFilesAlone) {
  folder_.write("table.csv", "a\n1\n");
  expectRefused(ErrorCode::kDataFileNotPlain, Command::SaveDataToTempFile, folder_.path(), 0);
  expectRefused(ErrorCode::kDataFileNotPlain, Command::SaveDataToTempFile, "", 0);
  expectRefused(ErrorCode::kDataFileForeign, Command::SaveDataToTempFile, folder_.path("table.csv"), 0);
  expectRefused(ErrorCode::kDataFileNotWritable, Command::SaveDataToTempFile, folder_.path("no/such"), 0);
  expectRefused(ErrorCode::kSaveFlagOutOfRange, Command::SaveDataToTempFile, path_, 2);
  expectRefused(ErrorCode::kSaveFlagOutOfRange, Command::SaveDataToTempFile, path_, -1);
  expectRefused(ErrorCode::kTextNotUtf8, Command::SaveDataToTempFile, "\xFF", 0);
  EXPECT_FALSE(folder_.has("saved.tmp"));
  EXPECT_EQ(folder_.read("table.csv"), "a\n1\n");
}

TEST_F(TempFiles, ThatCanNotBeReadChangeNothing) {
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  folder_.write("text", "no descriptor");
  expectRefused(ErrorCode::kDataFileNotReadable, Command::GetDataFromTempFile, folder_.path("none"), 0, 5);
  expectRefused(ErrorCode::kDataFileNotReadable, Command::GetDataFromTempFile, folder_.path(), 0, 5);
  expectRefused(ErrorCode::kDataFileDamaged, Command::GetDataFromTempFile, folder_.path("text"), 0, 5);
  expectRefused(ErrorCode::kRowRangeNegative, Command::GetDataFromTempFile, path_, -1, 5);
  expectRefused(ErrorCode::kRowRangeNegative, Command::GetDataFromTempFile, path_, 0, -1);
  folder_.write("saved.tmp.csv", "score,town,one,two\n1,x\n");
  expectRefused(ErrorCode::kDataFileDamaged, Command::GetDataFromTempFile, path_, 0, 5);
  std::filesystem::remove(folder_.path("saved.tmp.csv"));
  expectRefused(ErrorCode::kDataFileDamaged, Command::GetDataFromTempFile, path_, 0, 5);
  EXPECT_EQ(rowCount(), 5) << "of the one that was saved";
}

TEST_F(TempFiles, OfOtherVariablesAreRefused) {
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  state_.active = state_.dataSets[1].get();
  expectRefused(ErrorCode::kDataFileDiffers, Command::GetDataFromTempFile, path_, 0, 5);
  state_.active = state_.dataSets[0].get();
  ASSERT_EQ(tell(Command::SetVarLabel, "score", "Another label"), 0);
  ASSERT_EQ(tell(Command::GetDataFromTempFile, path_, 0, 5), 0);
  EXPECT_EQ(variable("score").label, "Another label") << "cases are read, no dictionary";
  ASSERT_EQ(tell(Command::SetVarNameInDS, "main", 3, "second"), 0);
  expectRefused(ErrorCode::kDataFileDiffers, Command::GetDataFromTempFile, path_, 0, 5);
  ASSERT_EQ(tell(Command::SetVarNameInDS, "main", 3, "TWO"), 0);
  EXPECT_EQ(tell(Command::GetDataFromTempFile, path_, 0, 5), 0);
  ASSERT_EQ(tell(Command::SetVarTypeInDS, "main", 1, 13), 0);
  expectRefused(ErrorCode::kDataFileDiffers, Command::GetDataFromTempFile, path_, 0, 5);
}

TEST_F(TempFiles, AreNotReadUnderACursor) {
  ASSERT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0);
  ASSERT_EQ(tell(Command::MakeCaseCursor, "r"), 0);
  expectRefused(ErrorCode::kDataSetInUse, Command::GetDataFromTempFile, path_, 0, 5);
  EXPECT_EQ(tell(Command::SaveDataToTempFile, path_, 0), 0) << "writing them changes nothing";
  ASSERT_EQ(tell(Command::RemoveCaseCursor), 0);
  EXPECT_EQ(tell(Command::GetDataFromTempFile, path_, 0, 5), 0);
}

TEST_F(TempFiles, NeedAnActiveDataSet) {
  state_.active = nullptr;
  expectRefused(ErrorCode::kNoActiveDataSet, Command::SaveDataToTempFile, path_, 0);
  expectRefused(ErrorCode::kNoActiveDataSet, Command::GetDataFromTempFile, path_, 0, 5);
}

TEST_F(TempFiles, WithoutVariablesCanNotBeSaved) {
  state_.dataSets.push_back(std::make_unique<DataSet>());
  state_.active = state_.dataSets.back().get();
  expectRefused(ErrorCode::kDataSetWithoutVariables, Command::SaveDataToTempFile, path_, 0);
}

}  // namespace
}  // namespace kova::engine
