// A pending change of one cell of a named data set.
#ifndef KOVADX_MESSAGE_DATASET_H
#define KOVADX_MESSAGE_DATASET_H

#include <cstdint>
#include <string>

struct dataSet {
  std::string datasetName;
  std::int32_t caseIndex = 0;
  std::int32_t varIndex = 0;
  std::int32_t valueKind = 0;  // 0: numValue holds the value, 1: strValue does.
  double numValue = 0;
  std::string strValue;

  bool operator==(const dataSet&) const = default;
};

#endif
