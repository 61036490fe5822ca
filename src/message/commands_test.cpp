// The command table once more, in words, so that a slip in commands.def does not pass for the protocol.
#include "message/commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// What commands.def says.
struct Definition {
  int code;
  std::string name;
  std::string request;
  std::string reply;
};

const Definition kDefinitions[] = {
#define KOVA_COMMAND(code, name, request, reply) {code, #name, request, reply},
#include "message/commands.def"
#undef KOVA_COMMAND
};

// "string*3, long" stands for three strings and then a long.
struct Row {
  int code;
  const char* name;
  const char* request;
  const char* reply;
};

// clang-format off
const Row kTable[] = {
    {0, "Submit", "string", ""},
    {1, "IsBackendReady", "", "long"},
    {2, "IsXDriven", "", "long"},
    {4, "StopKova", "", ""},
    {5, "QueueCommandPart", "string", ""},
    {6, "PostKovaOutput", "string", ""},
    {7, "GetVariableCount", "", "long"},
    {8, "GetRowCount", "", "long"},
    {9, "GetVariableName", "long", "string"},
    {10, "GetVariableLabel", "long", "string"},
    {11, "GetVariableType", "long", "long"},
    {12, "GetVariableFormat", "long", "string"},
    {13, "GetVariableMeasurementLevel", "long", "long"},
    {14, "CreateXPathDictionary", "string", ""},
    {15, "RemoveXPathHandle", "string", ""},
    {16, "EvaluateXPath", "string*3", "string"},
    {20, "GetXmlUtf16", "string", "wide string"},
    {21, "GetImage", "string*2", "string, binary block, long"},
    {22, "GetSetting", "string*2", "string"},
    {23, "GetOMSTagList", "", "string"},
    {24, "GetHandleList", "", "string"},
    {25, "GetNumericValue", "long", "long, double"},
    {26, "GetStringValue", "long*2", "long, string"},
    {27, "NextCase", "", "long, raw block, long"},
    {28, "RemoveCaseCursor", "", ""},
    {29, "GetVariableFormatType", "long", "long"},
    {30, "GetCursorPosition", "", "long"},
    {31, "GetVarCMissingValues", "long", "long, string"},
    {32, "GetVarNMissingValues", "long", "long, double"},
    {33, "MakeCaseCursor", "string", ""},
    {34, "HasCursor", "", "long"},
    {35, "StartPivotTable", "string*3, long", ""},
    {36, "AddOutlineFootnotes", "string*4, long", ""},
    {37, "AddProcFootnotes", "string", ""},
    {38, "AddTitleFootnotes", "string*4, long", ""},
    {39, "HidePivotTableTitle", "string*3, long", ""},
    {40, "PivotTableCaption", "string*3, long, string", ""},
    {41, "AddCaptionFootnotes", "string*3, long, string*2", ""},
    {42, "MinDataColumnWidth", "string*3, long*2", ""},
    {43, "MaxDataColumnWidth", "string*3, long*2", ""},
    {44, "AddDimension", "string*3, long, string, long*4", ""},
    {45, "AddDimFootnotes", "string*3, long, string, long*4, string", ""},
    {46, "SetFormatSpecCoefficient", "", ""},
    {47, "SetFormatSpecCoefficientSE", "", ""},
    {48, "SetFormatSpecCoefficientVar", "", ""},
    {49, "SetFormatSpecCorrelation", "", ""},
    {50, "SetFormatSpecGeneralStat", "", ""},
    {51, "SetFormatSpecMean", "long", ""},
    {52, "SetFormatSpecCount", "", ""},
    {53, "SetFormatSpecPercent", "", ""},
    {54, "SetFormatSpecPercentNoSign", "", ""},
    {55, "SetFormatSpecProportion", "", ""},
    {56, "SetFormatSpecSignificance", "", ""},
    {57, "SetFormatSpecResidual", "", ""},
    {58, "SetFormatSpecVariable", "long", ""},
    {59, "SetFormatSpecStdDev", "long", ""},
    {60, "SetFormatSpecDifference", "long", ""},
    {61, "SetFormatSpecSum", "long", ""},
    {62, "AddNumberCategory", "string*3, long, string, long*4, double", ""},
    {63, "AddStringCategory", "string*3, long, string, long*4, string", ""},
    {64, "AddVarNameCategory", "string*3, long, string, long*5", ""},
    {65, "AddVarValueDoubleCategory", "string*3, long, string, long*5, double", ""},
    {66, "AddVarValueStringCategory", "string*3, long, string, long*5, string", ""},
    {67, "AddCategoryFootnotes", "string*3, long, string, long*4, string", ""},
    {68, "SetNumberCell", "string*3, long, string, long*4, double", ""},
    {69, "SetStringCell", "string*3, long, string, long*4, string", ""},
    {70, "SetVarNameCell", "string*3, long, string, long*5", ""},
    {71, "SetVarValueDoubleCell", "string*3, long, string, long*5, double", ""},
    {72, "SetVarValueStringCell", "string*3, long, string, long*5, string", ""},
    {73, "AddCellFootnotes", "string*5, long*5", ""},
    {74, "AddTextBlock", "string*3, long", ""},
    {75, "SplitChange", "string", ""},
    {76, "GetKovaOutputWidth", "", "long"},
    {77, "GetSplitVariableNames", "", "string"},
    {78, "StartProcedure", "string*2", ""},
    {79, "EndProcedure", "", ""},
    {80, "SetVarNameAndType", "long, string, long", ""},
    {81, "SetVarLabel", "string*2", ""},
    {82, "SetVarCValueLabel", "string*3", ""},
    {83, "SetVarNValueLabel", "string, double, string", ""},
    {84, "SetVarCMissingValues", "string, long, string*3", ""},
    {85, "SetVarNMissingValues", "string, long, double*3", ""},
    {86, "SetVarMeasureLevel", "string, long", ""},
    {87, "SetVarAlignment", "string, long", ""},
    {88, "SetVarFormat", "string, long*3", ""},
    {89, "CommitHeader", "", ""},
    {92, "CommitCaseRecord", "double, string, string list*2, long*2", "raw block, long"},
    {93, "CommitNewCase", "double, string, string list*2", ""},
    {94, "EndChanges", "", ""},
    {95, "IsEndSplit", "", "long"},
    {96, "GetVarAttributeNames", "long", "long, string"},
    {97, "GetDataFileAttributeNames", "", "long, string"},
    {99, "GetVarAttributes", "long, string", "long, string"},
    {100, "GetDataFileAttributes", "string", "long, string"},
    {102, "SetVarAttributes", "string*3, long", ""},
    {103, "GetRowCountInProcDS", "", "long"},
    {104, "GetVariableCountInProcDS", "", "long"},
    {105, "GetVariableFormatInProcDS", "long", "string"},
    {106, "GetVariableLabelInProcDS", "long", "string"},
    {107, "GetVariableMeasurementLevelInProcDS", "long", "long"},
    {108, "GetVariableNameInProcDS", "long", "string"},
    {109, "GetVariableTypeInProcDS", "long", "long"},
    {110, "GetVarAttributeNamesInProcDS", "long", "long, string"},
    {111, "GetDataFileAttributeNamesInProcDS", "", "long, string"},
    {112, "GetVarAttributesInProcDS", "long, string", "long, string"},
    {113, "GetDataFileAttributesInProcDS", "string", "long, string"},
    {114, "GetVarCMissingValuesInProcDS", "long", "long, string"},
    {115, "GetVarNMissingValuesInProcDS", "long", "long, double"},
    {116, "GetVariableFormatTypeInProcDS", "long", "long"},
    {117, "HasProcedure", "", "long"},
    {118, "GetWeightVar", "", "string"},
    {119, "GetKOVALowHigh", "", "double"},
    {120, "ResetDataPass", "", ""},
    {121, "AllocNewVarsBuffer", "long", ""},
    {122, "SetOneVarNameAndType", "string, long", ""},
    {123, "GetNValueLabels", "long", "long, double, string"},
    {125, "GetCValueLabels", "long", "long, string list"},
    {127, "IsNeedCache", "", "long"},
    {128, "GetSystemMissingValue", "", "double"},
    {129, "ValidateVarName", "string", "long"},
    {130, "SetXDriveMode", "long", ""},
    {131, "GetXDriveMode", "", "long"},
    {132, "StartDataStep", "", ""},
    {133, "EndDataStep", "", ""},
    {134, "CreateDataset", "string, long*2", ""},
    {135, "SetDatasetName", "string*2", ""},
    {136, "GetNewDatasetName", "", "string"},
    {137, "GetActive", "", "string"},
    {138, "SetActive", "string", ""},
    {139, "CopyDataset", "string*2", ""},
    {140, "GetKovaDatasets", "", "string"},
    {141, "GetOpenedKovaDatasets", "", "string"},
    {142, "GetDatastepDatasets", "", "string"},
    {145, "CloseDataset", "string", ""},
    {146, "InsertVariable", "string, long, string, long", ""},
    {147, "DeleteVariable", "string, long", ""},
    {148, "GetVarCountInDS", "string", "long"},
    {149, "GetVarNameInDS", "string, long", "string"},
    {150, "SetVarNameInDS", "string, long, string", ""},
    {151, "GetVarLabelInDS", "string, long", "string"},
    {152, "SetVarLabelInDS", "string, long, string", ""},
    {153, "GetVarTypeInDS", "string, long", "long"},
    {154, "SetVarTypeInDS", "string, long*2", ""},
    {155, "GetVarFormatInDS", "string, long", "string"},
    {156, "SetVarFormatInDS", "string, long*4", ""},
    {157, "GetVarAlignmentInDS", "string, long", "long"},
    {158, "SetVarAlignmentInDS", "string, long*2", ""},
    {159, "GetVarMeasurementLevelInDS", "string, long", "string"},
    {160, "SetVarMeasurementLevelInDS", "string, long, string", ""},
    {161, "GetVarNMissingValuesInDS", "string, long", "long, double"},
    {162, "GetVarCMissingValuesInDS", "string, long", "long, string"},
    {163, "SetVarNMissingValuesInDS", "string, long*2, double*3", ""},
    {164, "SetVarCMissingValuesInDS", "string, long*2, string*3", ""},
    {165, "GetVarAttributesNameInDS", "string, long", "long, string"},
    {166, "GetVarAttributesInDS", "string, long, string", "long, string"},
    {167, "SetVarAttributesInDS", "string, long, string, string list", ""},
    {168, "DelVarAttributesInDS", "string, long, string", ""},
    {169, "SetDataFileAttributesInDS", "string*2, string list", ""},
    {170, "GetVarNValueLabelInDS", "string, long", "long, double, string"},
    {172, "GetVarCValueLabelInDS", "string, long", "long, string list"},
    {173, "SetVarNValueLabelInDS", "string, long, double, string", ""},
    {174, "SetVarCValueLabelInDS", "string, long, string*2", ""},
    {175, "DelVarValueLabelInDS", "string, long", ""},
    {176, "DelVarNValueLabelInDS", "string, long, double", ""},
    {177, "DelVarCValueLabelInDS", "string, long, string", ""},
    {178, "InsertCase", "string, long", ""},
    {179, "DeleteCase", "string, long", ""},
    {180, "GetCaseCountInDS", "string", "long"},
    {181, "GetNCellValue", "string, long*2", "double, long"},
    {182, "GetCCellValue", "string, long*2", "string, long"},
    {185, "IsUTF8mode", "", "long"},
    {186, "GetMultiResponseSetNames", "", "string"},
    {187, "GetMultiResponseSet", "string", "long, string"},
    {188, "SetMultiResponseSetInDS", "string*3, long, string, string list", ""},
    {189, "GetMultiResponseSetNamesInProcDS", "", "string"},
    {190, "GetMultiResponseSetInProcDS", "string", "long, string"},
    {191, "GetDataFileAttributeNamesInDS", "string", "long, string"},
    {192, "GetDataFileAttributesInDS", "string*2", "long, string"},
    {193, "GetMultiResponseSetNamesInDS", "string", "string"},
    {194, "GetMultiResponseSetInDS", "string*2", "long, string"},
    {195, "GetVarColumnWidthInDS", "string, long", "long"},
    {196, "SetVarColumnWidthInDS", "string, long*2", ""},
    {198, "DelDataFileAttributesInDS", "string*2", ""},
    {199, "DelMultiResponseSetInDS", "string*2", ""},
    {200, "StopReceiveXdApiThread", "", ""},
    {201, "GetGraphic", "string", ""},
    {202, "GetKOVALocale", "", "string"},
    {203, "GetOutputLanguage", "", "string"},
    {204, "SetOutputLanguage", "string", ""},
    {208, "GetCLocale", "", "string"},
    {209, "GetNestDepth", "", "long"},
    {210, "GetHostAppNameAndVersion", "", "string"},
    {213, "GetHostAppCopyright", "", "string"},
    {214, "SetHostAppNameAndVersion", "string*2", ""},
    {215, "SetHostAppCopyright", "string", ""},
    {216, "GetFileHandles", "", "string"},
    {217, "SetDateCell", "string*3, long, string, long*4, string", ""},
    {219, "TransCode", "string", "string"},
    {220, "CommitManyCases", "string, raw block, long*2, long list", ""},
    {221, "FetchDatastep", "string, long*2", "long, long list, double list, string list"},
    {222, "GetVariableRole", "long", "long"},
    {223, "GetVariableRoleInProcDS", "long", "long"},
    {224, "SetVarRole", "string, long", ""},
    {225, "GetVarRoleInDS", "string, long", "long"},
    {226, "SetVarRoleInDS", "string, long*2", ""},
    {227, "NextCaseBatch", "long*2", "long, raw block, long"},
    {228, "CommitDataSet", "data-set record", ""},
    {229, "GetZenthorServerMode", "", "long"},
    {230, "SetZenthorServerMode", "long", ""},
    {231, "SetGraphicsLabel", "string*2", ""},
    {232, "SaveDataToTempFile", "string, long", ""},
    {233, "GetDataFromTempFile", "string, long*2", ""},
    {234, "GetSplitEndIndex", "", "long"},
    {235, "SetMode", "long", ""},
    {236, "GetRowCountInTempFile", "", "long"},
    {237, "GetCaseValue", "string, long*2", "raw block"},
    {238, "SetCasePartValue", "string, long*5, raw block", ""},
    {238, "SetCaseValue", "string, long*2, raw block", ""},
    {239, "GetCaseLength", "string", "long"},
    {240, "GetVarObsIndex", "string, long", "long"},
    {241, "SetCacheInDS", "string, long", ""},
    {242, "IsDistributedMode", "", "long"},
    {243, "GetXmlUtf16Length", "", "long"},
    {244, "IsUseOrFilter", "", "long"},
    {245, "MoveVariables", "string, long*2", ""},
    {246, "CreateSocket", "", "long"},
    {247, "AcceptSocket", "", ""},
    {248, "GetTrendsInfoInDS", "string", "long"},
    {249, "GetSelectedRowCountInProcDS", "", "long"},
};
// clang-format on

const int kUnassigned[] = {3,   17,  18,  19,  90,  91,  98,  101, 124, 126, 143,
                           144, 171, 183, 184, 197, 205, 206, 207, 211, 212, 218};

std::string lettersOf(const std::string& words) {
  static const std::map<std::string, char> kLetters = {
      {"long", 'l'},        {"double", 'd'},    {"string", 's'},       {"long list", 'L'},   {"double list", 'D'},
      {"string list", 'S'}, {"raw block", 'b'}, {"binary block", 'B'}, {"wide string", 'w'}, {"data-set record", 'c'}};
  std::string letters;
  std::istringstream stream(words);
  for (std::string item; std::getline(stream >> std::ws, item, ',');) {
    const std::size_t star = item.find('*');
    const std::size_t times = star == std::string::npos ? 1 : std::stoul(item.substr(star + 1));
    letters.append(times, kLetters.at(item.substr(0, star)));
  }
  return letters;
}

TEST(Commands, AreExactlyThoseOfTheTable) {
  ASSERT_EQ(std::size(kDefinitions), std::size(kTable));
  for (std::size_t i = 0; i < std::size(kTable); ++i) {
    SCOPED_TRACE(kTable[i].name);
    EXPECT_EQ(kDefinitions[i].code, kTable[i].code);
    EXPECT_EQ(kDefinitions[i].name, kTable[i].name);
    EXPECT_EQ(kDefinitions[i].request, lettersOf(kTable[i].request));
    EXPECT_EQ(kDefinitions[i].reply, lettersOf(kTable[i].reply));
  }
}

TEST(Commands, NoCodeIsAssignedTwiceBut238) {
  std::map<int, std::vector<std::string>> byCode;
  std::set<std::string> names;
  for (const Definition& definition : kDefinitions) {
    byCode[definition.code].push_back(definition.name);
    EXPECT_TRUE(names.insert(definition.name).second) << definition.name;
  }
  for (const auto& [code, sharing] : byCode) EXPECT_EQ(sharing.size(), code == 238 ? 2u : 1u) << code;
  EXPECT_EQ(byCode[238], (std::vector<std::string>{"SetCasePartValue", "SetCaseValue"}));
}

TEST(Commands, EveryCodeFrom0To249IsAssignedOrNamedAsUnassigned) {
  std::set<int> assigned;
  for (const Definition& definition : kDefinitions) assigned.insert(definition.code);
  EXPECT_EQ(*assigned.begin(), 0);
  EXPECT_EQ(*assigned.rbegin(), 249);
  for (int code = 0; code < 250; ++code) {
    const bool unassigned = std::find(std::begin(kUnassigned), std::end(kUnassigned), code) != std::end(kUnassigned);
    EXPECT_EQ(assigned.count(code), unassigned ? 0u : 1u) << code;
  }
}

TEST(Commands, HaveTheirNumbersInTheEnumeration) {
  using kova::Command;
  EXPECT_EQ(static_cast<int>(Command::kNone), -1);
  EXPECT_EQ(static_cast<int>(Command::Submit), 0);
  EXPECT_EQ(static_cast<int>(Command::GetVariableCount), 7);
  EXPECT_EQ(static_cast<int>(Command::NextCase), 27);
  EXPECT_EQ(static_cast<int>(Command::NextCaseBatch), 227);
  EXPECT_EQ(static_cast<int>(Command::GetNCellValue), 181);
  EXPECT_EQ(Command::SetCaseValue, Command::SetCasePartValue);
  EXPECT_EQ(static_cast<int>(Command::GetSelectedRowCountInProcDS), 249);
}

TEST(Commands, HaveNames) {
  EXPECT_STREQ(kova::commandName(0), "Submit");
  EXPECT_STREQ(kova::commandName(7), "GetVariableCount");
  EXPECT_STREQ(kova::commandName(238), "SetCasePartValue");
  EXPECT_STREQ(kova::commandName(249), "GetSelectedRowCountInProcDS");
  for (const int code : kUnassigned) EXPECT_STREQ(kova::commandName(code), "") << code;
  for (const int code : {-1, 250, 0x7FFFFFFF}) EXPECT_STREQ(kova::commandName(code), "") << code;
}

}  // namespace
