// The functions that never leave the process.
#include <cstdlib>
#include <cstring>

#include "tests/api/client_test.h"

namespace {

class LocalFunctions : public kova::ClientTest {};

char* copyOf(const char* text) {
  char* const copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
  std::strcpy(copy, text);
  return copy;
}

char** listOf(int count) {
  char** const list = static_cast<char**>(std::malloc(static_cast<std::size_t>(count) * sizeof(char*)));
  for (int i = 0; i < count; ++i) list[i] = copyOf("text");
  return list;
}

double* doubles(int count) {
  return static_cast<double*>(std::malloc(static_cast<std::size_t>(count) * sizeof(double)));
}

// What is freed twice or not at all shows under the address sanitizer.
TEST_F(LocalFunctions, FreeWhatTheyAreGiven) {
  EXPECT_EQ(FreeString(copyOf("text")), 0);
  EXPECT_EQ(FreeStringArray(listOf(3), 3), 0);
  EXPECT_EQ(FreeAttributeNames(listOf(1), 1), 0);
  EXPECT_EQ(FreeAttributes(listOf(2), 2), 0);
  EXPECT_EQ(FreeDoubleArray(doubles(2), 2), 0);
  EXPECT_EQ(FreeNValueLabels(doubles(2), listOf(2), 2), 0);
  EXPECT_EQ(FreeCValueLabels(listOf(2), listOf(2), 2), 0);
  EXPECT_THAT(kova::fake::calls(), testing::IsEmpty());
}

TEST_F(LocalFunctions, ACountBelowOneFreesNothing) {
  for (const int count : {0, -1}) {
    char** const list = listOf(1);
    double* const values = doubles(1);
    EXPECT_EQ(FreeStringArray(list, count), 0);
    EXPECT_EQ(FreeAttributeNames(list, count), 0);
    EXPECT_EQ(FreeAttributes(list, count), 0);
    EXPECT_EQ(FreeDoubleArray(values, count), 0);
    EXPECT_EQ(FreeNValueLabels(values, list, count), 0);
    EXPECT_EQ(FreeCValueLabels(list, list, count), 0);
    EXPECT_STREQ(list[0], "text");
    values[0] = 1;
    FreeStringArray(list, 1);
    FreeDoubleArray(values, 1);
  }
}

TEST_F(LocalFunctions, ListsStayWhileTheEngineIsNotRunning) {
  SetKovaRunning(false);
  char** const list = listOf(1);
  double* const values = doubles(1);
  EXPECT_EQ(FreeStringArray(list, 1), 17);
  EXPECT_EQ(FreeAttributeNames(list, 1), 17);
  EXPECT_EQ(FreeAttributes(list, 1), 17);
  EXPECT_EQ(FreeNValueLabels(values, list, 1), 17);
  EXPECT_EQ(FreeCValueLabels(list, list, 1), 17);
  EXPECT_STREQ(list[0], "text");
  EXPECT_EQ(FreeString(copyOf("text")), 0);
  EXPECT_EQ(FreeDoubleArray(values, 1), 0);
  SetKovaRunning(true);
  EXPECT_EQ(FreeStringArray(list, 1), 0);
}

TEST_F(LocalFunctions, NullIsAllowed) {
  EXPECT_EQ(FreeString(nullptr), 0);
  EXPECT_EQ(FreeStringArray(nullptr, 2), 0);
  EXPECT_EQ(FreeDoubleArray(nullptr, 2), 0);
  EXPECT_EQ(FreeNValueLabels(nullptr, nullptr, 2), 0);
  EXPECT_EQ(FreeCValueLabels(nullptr, nullptr, 2), 0);
}

TEST_F(LocalFunctions, TheFolderIsKept) {
  EXPECT_STREQ(GetRTempFolderToKOVA(), "");
  EXPECT_EQ(SetRTempFolderToKOVA("C:\\r temp"), 0);
  EXPECT_STREQ(GetRTempFolderToKOVA(), "C:\\r temp");
  EXPECT_EQ(SetRTempFolderToKOVA(nullptr), 0);
  EXPECT_STREQ(GetRTempFolderToKOVA(), "");
}

TEST_F(LocalFunctions, TheRestOnlyAnswer) {
  EXPECT_EQ(SaveFileInDS(), 0);
  EXPECT_EQ(SetKovaRunning(true), 0);
  EXPECT_EQ(SetKovaRunning(false), 0);
  EXPECT_THAT(kova::fake::calls(), testing::IsEmpty());
}

}  // namespace
