// The real Python inside the process of the reference engine: blocks that call the engine, which may run further blocks
// before it answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

#include "engine/data_package.h"
#include "engine/inner_runtime.h"
#include "engine/serving_test.h"
#include "message/commands.h"
#include "tests/kit/kit.h"
#include "tests/kit/scratch_folder.h"

namespace kova::engine {
namespace {

using testing::ElementsAre;

// The functions that the blocks call, of the library that the process has loaded already.
constexpr const char* kClient =
    "import ctypes, os, threading\n"
    "api = ctypes.CDLL('libkovadx.so.1', mode=os.RTLD_NOLOAD | os.RTLD_NOW)\n"
    "def count():\n"
    "    code = ctypes.c_int()\n"
    "    return api.GetVariableCount(ctypes.byref(code)) if code.value == 0 else -code.value\n"
    "def submit(text):\n"
    "    return api.Submit(text.encode(), len(text))";

// One for the process, as its configuration is.
const std::string& home() {
  static const kit::ScratchFolder folder;
  static const std::string path = [] {
    folder.write("kovadxcfg.ini", "[SUPPORTED_LANG]\nX=PYTHON\n[PYTHON]\nLIB_NAME=kovapython\nARGS=one two\n");
    std::filesystem::copy(KOVA_RUNTIME_DIR "/kovapython.so", folder.path());
    return folder.path();
  }();
  return path;
}

class PythonInEngine : public ServingTest {
 protected:
  PythonInEngine() : ServingTest(home()), runtime_("PYTHON", home(), Performer()) {
    DataSet penguins;
    std::string problem;
    EXPECT_TRUE(readDataPackage(KOVA_SOURCE_DIR "/examples/penguins", &penguins, &problem)) << problem;
    engine_.open(std::move(penguins));
    EXPECT_EQ(runtime_.start(), 0);
    EXPECT_EQ(runtime_.run({kClient}), 0);
  }
  ~PythonInEngine() override { EXPECT_EQ(runtime_.stop(), 0); }

  InnerRuntime runtime_;
};

TEST_F(PythonInEngine, OutputReachesTheEngine) {
  EXPECT_EQ(runtime_.run({"import sys", "print(sys.argv)", "print('caf\xC3\xA9', file=sys.stderr)"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("['', 'one', 'two']", "caf\xC3\xA9"));
  EXPECT_EQ(runtime_.run({"raise ValueError('x')"}), 1);
  EXPECT_THAT(Shown(), ElementsAre("Traceback (most recent call last):\n  File \"<syntax 3>\", line 1, in <module>\n"
                                   "    raise ValueError('x')\nValueError: x"));
  EXPECT_EQ(runtime_.run({"sys.exit(7)"}), 7);
}

TEST_F(PythonInEngine, TenThousandCalls) {
  EXPECT_EQ(runtime_.run({"print(sum(count() for _ in range(10000)))"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("70000"));
}

TEST_F(PythonInEngine, ThreadsTakeTurns) {
  EXPECT_EQ(runtime_.run({"turn, total = threading.Lock(), 0",  //
                          "def work():",                        //
                          "    global total",                   //
                          "    for _ in range(500):",           //
                          "        with turn:",                 //
                          "            total += count()",       //
                          "threads = [threading.Thread(target=work) for _ in range(4)]",
                          "for thread in threads: thread.start()",  //
                          "for thread in threads: thread.join()",   //
                          "print(total)"}),
            0);
  EXPECT_THAT(Shown(), ElementsAre("14000"));
}

TEST_F(PythonInEngine, AThreadMayCallUntilTheStopHasEnded) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(runtime_.run({"def work():",                                   //
                          "    ended.wait()",                              //
                          "    print(sum(count() for _ in range(1000)))",  //
                          "ended = threading.Event()",                     //
                          "threading.Thread(target=work).start()",         //
                          "threading.Thread(target=threading.Timer(0, ended.set).run).start()"}),
            0);
  EXPECT_EQ(runtime_.stop(), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "7000\n");
  EXPECT_EQ(runtime_.start(), 0);
}

TEST_F(PythonInEngine, RunsNestEightDeep) {
  onSubmit_ = [&](const std::string& text) {
    const int left = std::stoi(text);
    if (left == 0) return runtime_.run({"print('deepest', count())", "raise SystemExit(10)"});
    return runtime_.run({"print('down " + text + "', count())", "result = submit('" + std::to_string(left - 1) + "')",
                         "print('up " + text + "', result, count())", "raise SystemExit(result + 1)"});
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(runtime_.run({"raise SystemExit(submit('7'))"}), 17);
    EXPECT_THAT(Shown(), ElementsAre("down 7 7", "down 6 7", "down 5 7", "down 4 7", "down 3 7", "down 2 7", "down 1 7",
                                     "deepest 7", "up 1 10 7", "up 2 11 7", "up 3 12 7", "up 4 13 7", "up 5 14 7",
                                     "up 6 15 7", "up 7 16 7"));
  }
}

TEST_F(PythonInEngine, AStopInsideABlockStopsNothing) {
  onSubmit_ = [&](const std::string&) { return runtime_.stop(); };
  EXPECT_EQ(runtime_.run({"print(submit('stop'), count())"}), 0);
  EXPECT_THAT(Shown(), ElementsAre("170 7"));
}

TEST_F(PythonInEngine, StopsAndStartsAHundredTimesWithNumpy) {
  for (int cycle = 0; cycle < 100; ++cycle) {
    ASSERT_EQ(runtime_.stop(), 0);
    ASSERT_EQ(runtime_.run({"pass"}), 99115);
    ASSERT_EQ(runtime_.start(), 0);
    ASSERT_EQ(runtime_.run({kClient, "import numpy", "print(numpy.full(3, count()).sum())"}), 0);
    ASSERT_THAT(Shown(), ElementsAre("21"));
  }
}

}  // namespace
}  // namespace kova::engine
