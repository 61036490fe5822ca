// The trace file of a process, switched on or off by its configuration. The configuration is read once a process, so
// each case has a process of its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "api/InitDxGlobal.h"
#include "tests/kit/kit.h"
#include "trace/DxTracer.h"

namespace {

// Home folder; exit code 0 when a tracer is installed and kept.
KOVA_KIT_CHILD(initialises) {
  InitDxGlobal("D:\\t\\", "0a1b", "tracetest", arguments.at(0));
  DxTracer* const tracer = GetDxTracer();
  FinalizeDXGlobal();
  InitDxGlobal("D:\\t\\", "0a1b", "OTHER", "");
  const bool kept = tracer && GetDxTracer() == tracer;
  FinalizeDXGlobal();
  SetDxTracer(nullptr);
  delete tracer;
  return kept ? 0 : 1;
}

std::string homeWith(const std::string& name, const std::string& configuration) {
  const std::filesystem::path home = kova::kit::scratchPath(name);
  std::filesystem::create_directories(home);
  std::ofstream(home / "kovadxcfg.ini") << configuration;
  return home.string();
}

std::string fileText(const std::filesystem::path& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST(TraceFile, LiesInTheConfiguredFolderUnderTheUpperCaseName) {
  const std::string folder = kova::kit::scratchPath("traces");
  std::filesystem::create_directories(folder);
  std::string slashes = folder;
  for (char& c : slashes) {
    if (c == '\\') c = '/';
  }
  ASSERT_EQ(kova::kit::runChild("initialises", {homeWith("traced", "[SUPPORTED_LANG]\nTRACE=" + slashes + "\n")}), 0);
  const std::string text = fileText(std::filesystem::path(folder) / "TRACETEST_trace.log");
  EXPECT_EQ(text.substr(0, 51), std::string(40, '*') + "TRACE BEGIN");
  EXPECT_NE(text.find(">>InitDxGlobal>pid:0a1b"), std::string::npos);
  EXPECT_NE(text.find(">>InitDxGlobal>xname:OTHER"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(folder) / "OTHER_trace.log"));
}

TEST(TraceFile, WithoutAFolderTheTracerIsSilent) {
  EXPECT_EQ(kova::kit::runChild("initialises", {homeWith("silent", "[SUPPORTED_LANG]\nTRACE=\n")}), 0);
}

TEST(TraceFile, AFolderThatIsNotThereIsHarmless) {
  EXPECT_EQ(kova::kit::runChild("initialises", {homeWith("missing", "[SUPPORTED_LANG]\nTRACE=/no/such/folder\n")}), 0);
}

TEST(TraceFile, AHomeWithoutAConfigurationIsHarmless) {
  EXPECT_EQ(kova::kit::runChild("initialises", {kova::kit::scratchPath("nowhere")}), 0);
}

}  // namespace
