// Variables that are deleted together: all or none, and in one pass over the cases.
#include "engine/dictionary_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

// How often memory can still be taken while a test lets it run out; without a limit below 0.
thread_local int left = -1;

}  // namespace

void* operator new(std::size_t size) {
  if (left == 0) throw std::bad_alloc();
  if (left > 0) --left;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace kova::engine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Numbers v0, v1 and so on; a case's value of each is its position and the case's.
DataSet dataSetOf(int variables, int cases) {
  DataSet dataSet;
  for (int i = 0; i < variables; ++i) {
    Variable variable;
    variable.name = "v" + std::to_string(i);
    dataSet.variables.push_back(variable);
  }
  dataSet.cases = CaseStore(std::vector<int>(dataSet.variables.size(), 0));
  dataSet.cases.reserve(static_cast<std::size_t>(cases));
  for (int i = 0; i < cases; ++i) {
    dataSet.cases.appendCase();
    for (int variable = 0; variable < variables; ++variable) {
      dataSet.cases.setNumber(static_cast<std::size_t>(i), static_cast<std::size_t>(variable), variable + i);
    }
  }
  return dataSet;
}

DataSet boundDataSet() {
  DataSet dataSet = dataSetOf(6, 3);
  dataSet.weight = "V1";
  dataSet.filter = "v2";
  dataSet.split = {"v1", "v3"};
  dataSet.responseSets = {{"$a", "", ResponseSetKind::kCategories, "", {"v0", "v1", "v2", "v4"}},
                          {"$b", "", ResponseSetKind::kCategories, "", {"v4", "v5"}}};
  return dataSet;
}

TEST(DeletedVariables, AreTakenOutOfEverything) {
  DataSet dataSet = boundDataSet();
  deleteVariables(&dataSet, std::vector<std::size_t>{1, 2, 5});
  ASSERT_EQ(dataSet.variables.size(), 3U);
  EXPECT_EQ(dataSet.variables.find("v4"), 2U);
  EXPECT_EQ(dataSet.cases.number(2, 2), 6);
  EXPECT_EQ(dataSet.cases.caseBytes(), 24U);
  EXPECT_EQ(dataSet.weight + dataSet.filter, "");
  EXPECT_THAT(dataSet.split, ElementsAre("v3"));
  ASSERT_EQ(dataSet.responseSets.size(), 1U);
  EXPECT_THAT(dataSet.responseSets[0].variables, ElementsAre("v0", "v4"));
  deleteVariables(&dataSet, {});
  EXPECT_EQ(dataSet.cases.caseCount(), 3U);
  deleteVariables(&dataSet, std::vector<std::size_t>{0, 1, 2});
  EXPECT_EQ(dataSet.cases.caseCount(), 0U);
  EXPECT_THAT(dataSet.responseSets, IsEmpty());
}

TEST(DeletedVariables, AreAllThereWhenMemoryRunsOut) {
  const DataSet before = boundDataSet();
  const std::vector<std::size_t> positions{1, 2, 5};
  int failures = 0;
  for (bool failed = true; failed; failures += failed ? 1 : 0) {
    DataSet dataSet = boundDataSet();
    failed = false;
    left = failures;
    try {
      deleteVariables(&dataSet, positions);
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    left = -1;
    EXPECT_EQ(failed, dataSet == before) << "memory was taken " << failures << " times";
  }
  EXPECT_GT(failures, 3);
}

TEST(DeletedVariables, TakeOnePassOverTheCases) {
  DataSet dataSet = dataSetOf(2'000, 5'000);
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < 2'000; i += 2) positions.push_back(i);
  const auto start = std::chrono::steady_clock::now();
  deleteVariables(&dataSet, positions);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << "under a sanitizer too";
  EXPECT_EQ(dataSet.cases.number(4'999, 999), 1'999 + 4'999);
}

}  // namespace
}  // namespace kova::engine
