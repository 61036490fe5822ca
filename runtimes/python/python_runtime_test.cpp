// Blocks of syntax in the real Python: how they end, what they show, what is left of them.
#include <clocale>

#include "platform/os/environment.h"
#include "runtimes/python/runtime_fixture.h"
#include "tests/kit/kit.h"

namespace kova::python {
namespace {

using ::testing::ElementsAre;

TEST_F(PythonRuntime, BlocksShareOneNamespace) {
  EXPECT_EQ(run("x = 20\ndef twice():\n    return 2 * x\n"), 0);
  EXPECT_EQ(run("x += 1\n"), 0);
  EXPECT_EQ(valueOf("twice(), __name__"), "42 __main__\n");
  EXPECT_EQ(valueOf("__import__('__main__').x"), "21\n");
}

TEST_F(PythonRuntime, AStopClearsTheNamespace) {
  EXPECT_EQ(run("x = 1\nimport json\n"), 0);
  EXPECT_EQ(library().stop(), 0);
  EXPECT_EQ(library().preAction(), 1);
  EXPECT_EQ(run("pass"), 99115);
  EXPECT_EQ(library().stop(), 0) << "a second stop does nothing";
  EXPECT_EQ(library().init(0, nullptr), 0);
  EXPECT_EQ(library().preAction(), 0);
  EXPECT_EQ(valueOf("'x' in globals(), 'json' in globals()"), "False False\n");
  EXPECT_EQ(run("raise ValueError"), 1);
  EXPECT_THAT(output(), ::testing::HasSubstr("\"<syntax 2>\"")) << "blocks are counted anew";
}

TEST_F(PythonRuntime, ASecondStartChangesNothing) {
  EXPECT_EQ(run("x = 1\n"), 0);
  EXPECT_EQ(library().init(0, nullptr), 0);
  EXPECT_EQ(valueOf("x"), "1\n");
  EXPECT_EQ(library().postAction(), 0);
  library().setupCallback(&posted());
}

TEST_F(PythonRuntime, ArgumentsOfTheStart) {
  EXPECT_EQ(valueOf("__import__('sys').argv"), "['']\n");
  EXPECT_EQ(library().stop(), 0);
  std::string words[] = {"--fast", "gr\xC3\xBC\xC3\x9F", ""};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data()};
  EXPECT_EQ(library().init(3, arguments), 0);
  EXPECT_EQ(valueOf("__import__('sys').argv"), "['', '--fast', 'gr\xC3\xBC\xC3\x9F', '']\n");
}

TEST_F(PythonRuntime, TracebacksShowTheLinesOfTheBlocks) {
  EXPECT_EQ(run("def ratio(a, b):\n    return a / b\n"), 0);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(run("pass\n"), 0);
  EXPECT_EQ(run("try:\n    ratio(1, 0)\nexcept ZeroDivisionError:\n    raise ValueError('gr\xC3\xBC\xC3\x9F')\n"), 1);
  EXPECT_EQ(output(),
            "Traceback (most recent call last):\n"
            "  File \"<syntax 102>\", line 2, in <module>\n"
            "    ratio(1, 0)\n"
            "  File \"<syntax 1>\", line 2, in ratio\n"
            "    return a / b\n"
            "           ~~^~~\n"
            "ZeroDivisionError: division by zero\n"
            "\n"
            "During handling of the above exception, another exception occurred:\n"
            "\n"
            "Traceback (most recent call last):\n"
            "  File \"<syntax 102>\", line 4, in <module>\n"
            "    raise ValueError('gr\xC3\xBC\xC3\x9F')\n"
            "ValueError: gr\xC3\xBC\xC3\x9F\n");
}

TEST_F(PythonRuntime, AnExceptionThatWasKeptStillKnowsItsLine) {
  EXPECT_EQ(run("try:\n    1 / 0\nexcept ZeroDivisionError as error:\n    kept = error\n"), 0);
  EXPECT_EQ(run("pass"), 0);
  EXPECT_EQ(run("raise kept"), 1);
  EXPECT_EQ(output(),
            "Traceback (most recent call last):\n"
            "  File \"<syntax 3>\", line 1, in <module>\n"
            "    raise kept\n"
            "  File \"<syntax 1>\", line 2, in <module>\n"
            "    1 / 0\n"
            "    ~~^~~\n"
            "ZeroDivisionError: division by zero\n");
}

struct ErrorRow {
  const char* block;
  const char* shown;
};

TEST_F(PythonRuntime, SyntaxErrorsTellTheLine) {
  const ErrorRow rows[] = {
      {"x = 1\ny = = 2\n", "  File \"<syntax 1>\", line 2\n    y = = 2\n        ^\nSyntaxError: invalid syntax\n"},
      {"if True:\nx = 1\n",
       "  File \"<syntax 2>\", line 2\n    x = 1\n    ^\n"
       "IndentationError: expected an indented block after 'if' statement on line 1\n"},
      {"print('a'\n", "  File \"<syntax 3>\", line 1\n    print('a'\n         ^\nSyntaxError: '(' was never closed\n"},
      {"'\xFF'\n",
       "  File \"<syntax 4>\", line 1\n    '\xEF\xBF\xBD'\n       ^\n"
       "SyntaxError: (unicode error) 'utf-8' codec can't decode byte 0xff in position 0: invalid start byte\n"},
  };
  for (const ErrorRow& row : rows) {
    EXPECT_EQ(run(row.block), 1) << row.block;
    EXPECT_EQ(output(), row.shown);
  }
}

TEST_F(PythonRuntime, BlocksThatDoNothing) {
  for (const char* block : {"", "\n", "# Nothing.", "pass\r\npass\r\n", "\xEF\xBB\xBFpass\n"})
    EXPECT_EQ(run(block), 0) << block;
  EXPECT_EQ(output(), "");
}

struct EndRow {
  const char* block;
  int result;
  const char* shown;
};

TEST_F(PythonRuntime, EndsOfABlock) {
  const EndRow rows[] = {
      {"import sys", 0, ""},
      {"sys.exit()", 0, ""},
      {"sys.exit(0)", 0, ""},
      {"sys.exit(7)", 7, ""},
      {"sys.exit(-7)", -7, ""},
      {"sys.exit(True)", 1, ""},
      {"sys.exit(2**31 - 1)", 2147483647, ""},
      {"sys.exit(2**31)", -1, ""},
      {"sys.exit('no data')", 1, "no data\n"},
      {"sys.exit((1, 2))", 1, "(1, 2)\n"},
      {"raise SystemExit(3)", 3, ""},
      {"exit(4)", 4, ""},
      {"def f():\n    try:\n        sys.exit(5)\n    finally:\n        print('left')\nf()\n", 5, "left\n"},
      {"raise KeyboardInterrupt", 130,
       "Traceback (most recent call last):\n  File \"<syntax 14>\", line 1, in <module>\n    raise KeyboardInterrupt\n"
       "KeyboardInterrupt\n"},
      {"class End(BaseException): pass\nraise End(1)", 1,
       "Traceback (most recent call last):\n  File \"<syntax 15>\", line 2, in <module>\n    raise End(1)\nEnd: 1\n"},
      {"class Mute(Exception):\n    def __str__(self): raise ValueError\nraise Mute", 1,
       "Traceback (most recent call last):\n  File \"<syntax 16>\", line 3, in <module>\n    raise Mute\n"
       "Mute: <exception str() failed>\n"},
      {"print('still here')", 0, "still here\n"},
  };
  for (const EndRow& row : rows) {
    EXPECT_EQ(run(row.block), row.result) << row.block;
    EXPECT_EQ(output(), row.shown) << row.block;
  }
}

// What can not be told as a text, in the runtime's own part: told on the process's error output, and no more than that.
TEST_F(PythonRuntime, AnExitWithoutAText) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(run("class Mute:\n    def __str__(self): raise ValueError('no text')\nraise SystemExit(Mute())"), 1);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), ::testing::HasSubstr("ValueError: no text"));
  EXPECT_EQ(valueOf("1"), "1\n");
}

TEST_F(PythonRuntime, EndlessRecursion) {
  EXPECT_EQ(run("def f(): f()\nf()\n"), 1);
  EXPECT_THAT(output(), ::testing::EndsWith("RecursionError: maximum recursion depth exceeded\n"));
}

TEST_F(PythonRuntime, OutputKeepsItsOrderAndComesInLines) {
  EXPECT_EQ(run("import sys\n"
                "sys.stdout.write('one ')\nsys.stderr.write('two ')\nprint('three')\n"
                "print('four', file=sys.stderr)\nprint('five\\nsix\\nseven', end='', flush=True)\n"),
            0);
  EXPECT_THAT(posted(), ElementsAre("one two three\n", "four\n", "five\nsix\n", "seven"));
}

TEST_F(PythonRuntime, OutputBeforeATraceback) {
  EXPECT_EQ(run("print('half', end='')\nraise ValueError"), 1);
  EXPECT_THAT(output(), ::testing::StartsWith("halfTraceback (most recent call last):\n"));
}

TEST_F(PythonRuntime, OutputIsUtf8WhateverIsWritten) {
  EXPECT_EQ(run("import sys\nout = sys.stdout.buffer\n"), 0);
  EXPECT_EQ(valueOf("'a\\0b \\u00e4 \\U0001F427'"), std::string("a\0b \xC3\xA4 \xF0\x9F\x90\xA7\n", 12));
  EXPECT_EQ(valueOf("'\\udcff'"), "\\udcff\n") << "half a character is shown as its number";
  EXPECT_EQ(run("n = sys.stdout.buffer.write(b'\\xff\\x00\\xc3\\xa4\\n')"), 0);
  EXPECT_EQ(output(), std::string("\xEF\xBF\xBD\0\xC3\xA4\n", 7));
  EXPECT_EQ(run("b = sys.stdout.buffer\nn = b.write(b'\\xc3')\nb.flush()\nn = b.write(bytearray(b'\\xa4'))"), 0);
  EXPECT_EQ(output(), "\xC3\xA4") << "a character that came in two pieces";
  EXPECT_EQ(run("sys.stdout.buffer.write('text')"), 1);
  EXPECT_THAT(output(), ::testing::HasSubstr("TypeError"));
  EXPECT_EQ(valueOf("sys.stdout.encoding, open('/dev/null').encoding, sys.getfilesystemencoding()"),
            "utf-8 utf-8 utf-8\n");
}

TEST_F(PythonRuntime, LargeOutput) {
  constexpr std::size_t kSize = 2 << 20;
  EXPECT_EQ(run("print('x' * 2**21)\n"), 0);
  ASSERT_EQ(posted().size(), 1U);
  EXPECT_EQ(output(), std::string(kSize, 'x') + "\n");
  EXPECT_EQ(run("for i in range(2**15): print('y' * 63)\n"), 0);
  EXPECT_EQ(posted().size(), kSize / 64);
  EXPECT_EQ(output().size(), kSize);
}

TEST_F(PythonRuntime, ABlockCanNotSpoilTheOutputOfTheNext) {
  EXPECT_EQ(run("import sys\nsys.stdout.close()\nsys.stderr.detach()\n"), 0);
  EXPECT_EQ(valueOf("'closed'"), "closed\n");
  EXPECT_EQ(run("import io\nsys.stdout = sys.stderr = io.StringIO()\nprint('kept')\n1 / 0\n"), 1);
  EXPECT_THAT(output(), ::testing::EndsWith("ZeroDivisionError: division by zero\n"));
  EXPECT_EQ(run("sys.stdout = sys.stderr = None\nraise ValueError('x')\n"), 1);
  EXPECT_THAT(output(), ::testing::EndsWith("ValueError: x\n"));
  EXPECT_EQ(valueOf("'back'"), "back\n");
}

TEST_F(PythonRuntime, AStreamThatABlockKept) {
  EXPECT_EQ(run("import logging, sys\nlog = logging.getLogger('kept')\nlog.addHandler(logging.StreamHandler())\n"
                "log.warning('first')\n"),
            0);
  EXPECT_EQ(run("log.warning('second')\n"), 0);
  EXPECT_EQ(output(), "first\nsecond\n");
}

TEST_F(PythonRuntime, WithoutAnOutputFunctionTheProcessShowsIt) {
  library().setPostOutput(nullptr);
  testing::internal::CaptureStdout();
  EXPECT_EQ(run("import sys\nprint('a\\nb')\nprint('c', file=sys.stderr)\n"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "a\nb\nc\n");
  EXPECT_THAT(posted(), ElementsAre());
}

TEST_F(PythonRuntime, WhatTheOutputFunctionAnswersChangesNothing) {
  library().setPostOutput([](const char* text, int length) { return keep(text, length) + 17; });
  EXPECT_EQ(run("print('a')\nprint('b')\n"), 0);
  EXPECT_EQ(output(), "a\nb\n");
}

// The host loads the library for its own eyes; Python's extension modules find libpython all the same.
TEST_F(PythonRuntime, ExtensionModules) {
  EXPECT_EQ(valueOf("hasattr(__import__('ctypes').CDLL(None), 'execute_x')"), "False\n");
  EXPECT_EQ(
      run("import sqlite3\nbase = sqlite3.connect(':memory:')\nprint(*base.execute('select 6 * 7').fetchone())\n"), 0);
  EXPECT_EQ(output(), "42\n");
  EXPECT_EQ(run("import numpy\nprint(numpy.arange(12).reshape(3, 4).sum(axis=0))\n"), 0);
  EXPECT_EQ(output(), "[12 15 18 21]\n");
  EXPECT_EQ(run("import decimal, json, ssl, multiprocessing, concurrent.futures, asyncio\n"), 0);
}

TEST_F(PythonRuntime, TheProcessKeepsItsLocaleAndSignals) {
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  EXPECT_EQ(valueOf("__import__('signal').getsignal(2).name"), "SIG_DFL\n");
}

TEST_F(PythonRuntime, AForkedCopyEndsWithItsBlock) {
  EXPECT_EQ(run("import os, sys\nprint('before', end='')\nchild = os.fork()\nif child == 0:\n    sys.exit(7)\n"
                "print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))\n"),
            0);
  EXPECT_EQ(output(), "before7\n");
}

TEST_F(PythonRuntime, TenThousandBlocksLeaveNothing) {
  EXPECT_EQ(run("import linecache\ntotal = 0\n"), 0);
  EXPECT_EQ(run("before = len(linecache.cache)\n"), 0);
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(run("total += 1\nf = lambda: total\n"), 0);
  EXPECT_EQ(run("del f\n"), 0);
  EXPECT_EQ(valueOf("total, len(linecache.cache) - before"), "10000 0\n");
}

TEST_F(PythonRuntime, AHundredStopsAndStartsWithNumpy) {
  for (int i = 0; i < 100; ++i) {
    ASSERT_EQ(valueOf("'numpy' in globals()"), "False\n");
    ASSERT_EQ(run("import numpy\nprint(numpy.linalg.det(numpy.eye(3)))\n"), 0);
    ASSERT_EQ(output(), "1.0\n");
    ASSERT_EQ(library().stop(), 0);
    ASSERT_EQ(library().init(0, nullptr), 0);
  }
}

// In a process of its own, which has no Python before.
KOVA_KIT_CHILD(python_without_its_library) {
  library();
  if (run("pass") != 99115 || library().preAction() != 1 || library().stop() != 0) return 1;
  if (library().init(0, nullptr) != 0 || library().preAction() != 1) return 2;
  if (run("pass") != 99115 || library().stop() != 0) return 3;
  return 0;
}

// The environment is asked at each start; an empty value counts as none.
KOVA_KIT_CHILD(python_at_the_second_try) {
  library().init(0, nullptr);
  if (library().preAction() != 1 || library().stop() != 0) return 1;
  if (os::SetEnvironment("PYTHONHOME", "") != 0) return 2;
  if (library().init(0, nullptr) != 0 || library().preAction() != 0) return 3;
  if (run("import json\nraise SystemExit(7)") != 7) return 4;
  return library().stop();
}

KOVA_KIT_CHILD(python_with_a_script) {
  library().init(0, nullptr);
  return run(
      "import sys\nraise SystemExit(7 if (__file__, sys.path[0], sys.argv) == "
      "('/a/b/script.py', '/a/b', ['/a/b/script.py']) else 1)\n");
}

TEST(PythonSetUp, KnowsTheScriptThatTheEngineNames) {
  EXPECT_EQ(kit::runChild("python_with_a_script", {}, {{"KOVA_SCRIPT", "/a/b/script.py"}}), 7);
}

TEST(PythonSetUp, FailsWhenPythonsLibraryIsNotThere) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(kit::runChild("python_without_its_library", {}, {{"PYTHONHOME", "/nowhere"}}), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kovapython: Python could not be started: PYTHONHOME is wrong; there is no "
            "/nowhere/lib/python" KOVA_PYTHON_VERSION "/os.py\n");
}

TEST(PythonSetUp, SucceedsOnceTheCauseIsGone) {
  EXPECT_EQ(kit::runChild("python_at_the_second_try", {}, {{"PYTHONHOME", "/nowhere"}}), 0);
}

}  // namespace
}  // namespace kova::python
