// The rows of the wire table for engine control, the engine's surroundings and the data of the active data set.
#include "tests/api/wire_row.h"

namespace kova::wire {
namespace {

Outcome setting() {
  char* value = nullptr;
  const int code = GetSetting("OUTPUT", "WIDTH", &value);
  return outcome(code, static_cast<const char*>(value));
}

Outcome hostApplication() {
  char* name = nullptr;
  char* version = nullptr;
  const int code = GetHostAppNameAndVersion(&name, &version);
  const Outcome result = outcome(code, static_cast<const char*>(name), static_cast<const char*>(version));
  FreeString(name);
  FreeString(version);
  return result;
}

Outcome outputLanguageSet() {
  int code = kUntouched;
  const int result = SetOutputLanguage("Deutsch", &code);
  EXPECT_EQ(result, code);
  return outcome(code);
}

}  // namespace

std::vector<Row> controlRows() {
  return {
      tells("Submit", [] { return Submit("RUN 1.\0x", 8); }, {.code = 0, .texts = {std::string("RUN 1.\0x", 8)}}),
      tells("QueueCommandPart", [] { return QueueCommandPart("FREQ x", 4); }, {.code = 5, .texts = {"FREQ"}}),
      makeRow(
          "IsBackendReady", kRunningQuestion, [] { return outcome(0, IsBackendReady()); }, {.code = 1}, {.longs = {5}},
          "true", "false", "false"),
      behind({.code = 1}, makeRow(
                              "IsXDriven", kRunningQuestion, [] { return outcome(0, IsXDriven()); }, {.code = 2},
                              {.longs = {-1}}, "true", "false", "false")),
      {"StopReceiveXdApiThread", kValue, [] { return outcome(StopReceiveXdApiThread()); }, {.code = 200}},
      tellsNumber("GetXDriveMode", [] { return numberOf(GetXDriveMode); }, {.code = 131}),
      tells("SetXDriveMode", [] { return SetXDriveMode(3); }, {.code = 130, .longs = {3}}),
      tells("SetMode", [] { return SetMode(-2); }, {.code = 235, .longs = {-2}}),
      makeRow("GetSetting", kStatus, setting, {.code = 22, .texts = {"OUTPUT", "WIDTH"}}, {.texts = {"80", "more"}},
              "'80'", "''", "null"),

      asksNumber("GetKovaOutputWidth", [] { return valueOf(GetKovaOutputWidth); }, {.code = 76}),
      asksText("GetKOVALocale", [] { return valueOf(GetKOVALocale); }, {.code = 202}),
      asksText("GetOutputLanguage", [] { return valueOf(GetOutputLanguage); }, {.code = 203}),
      {"SetOutputLanguage", kValue, outputLanguageSet, {.code = 204, .texts = {"Deutsch"}}},
      tellsOwnText("GetCLocale", [] { return ownTextOf(GetCLocale); }, {.code = 208}),
      tellsNumber("IsUTF8mode", [] { return numberOf(IsUTF8mode); }, {.code = 185}),
      asksText("TransCode", [] { return valueOf(TransCode, "caf\xE9"); }, {.code = 219, .texts = {"caf\xE9"}}),
      tellsNumber("GetNestDepth", [] { return numberOf(GetNestDepth); }, {.code = 209}),
      makeRow("GetHostAppNameAndVersion", kStatus, hostApplication, {.code = 210}, {.texts = {"Desk", "1.2", "more"}},
              "'Desk' '1.2'", "'' ''", "null null"),
      tells("SetHostAppNameAndVersion", [] { return SetHostAppNameAndVersion("Desk", "1.2"); },
            {.code = 214, .texts = {"Desk", "1.2"}}),
      tellsOwnText("GetHostAppCopyright", [] { return ownTextOf(GetHostAppCopyright); }, {.code = 213}),
      tells("SetHostAppCopyright", [] { return SetHostAppCopyright("(c) 2026"); },
            {.code = 215, .texts = {"(c) 2026"}}),
      makeRow(
          "GetFileHandles", kStatus, [] { return textsOf(GetFileHandles); }, {.code = 216}, {.texts = {"data", "temp"}},
          "2 ['data' 'temp']", "0", "-77"),
      makeRow(
          "IsDistributedMode", kRunningQuestion, [] { return outcome(0, IsDistributedMode()); }, {.code = 242},
          {.longs = {1}}, "true", "false", "false"),
      makeRow(
          "GetZenthorServerMode", kRunningQuestion, [] { return outcome(0, GetZenthorServerMode()); }, {.code = 229},
          {.longs = {2}}, "2", "0", "-1"),
      tells("SetZenthorServerMode", [] { return SetZenthorServerMode(2); }, {.code = 230, .longs = {2}}),
      tellsNumber("CreateSocket", [] { return numberOf(CreateSocket); }, {.code = 246}),
      tells("AcceptSocket", AcceptSocket, {.code = 247}),

      asksNumber("GetRowCount", [] { return valueOf(GetRowCount); }, {.code = 8}),
      asksTexts("GetSplitVariableNames", [] { return textsOf(GetSplitVariableNames); }, {.code = 77}),
      asksNumber("GetSplitEndIndex", [] { return valueOf(GetSplitEndIndex); }, {.code = 234}),
      tells("SplitChange", [] { return SplitChange("Means"); }, {.code = 75, .texts = {"Means"}}),
      tellsNumber("IsUseOrFilter", [] { return numberOf(IsUseOrFilter); }, {.code = 244}),
  };
}

}  // namespace kova::wire
