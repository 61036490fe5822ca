// The real Python and threads: which one runs a block, what others may do meanwhile, nested blocks, the end of threads.
#include <atomic>
#include <functional>
#include <future>

#include "runtimes/python/runtime_fixture.h"
#include "tests/kit/kit.h"

namespace kova::python {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr char kThreads[] = "import ctypes, threading\ncall = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_int)\n";

TEST_F(PythonRuntime, BlocksRunOnPythonsMainThread) {
  EXPECT_EQ(run(kThreads), 0);
  EXPECT_EQ(run("first = threading.get_ident()\n"), 0);
  std::thread other([] {
    EXPECT_EQ(valueOf("threading.current_thread() is threading.main_thread(), threading.get_ident() == first"),
              "True True\n");
  });
  other.join();
}

std::thread::id postingThread;

TEST_F(PythonRuntime, OnlyTheThreadOfTheBlockPosts) {
  library().setPostOutput([](const char* text, int length) {
    EXPECT_EQ(postingThread, std::this_thread::get_id());
    return keep(text, length);
  });
  const auto note = [](int) {
    postingThread = std::this_thread::get_id();
    return 0;
  };
  EXPECT_EQ(run(kThreads), 0);
  EXPECT_EQ(run("call(" + addressOf(note) +
                ")(0)\n"
                "threads = [threading.Thread(target=print, args=(i,)) for i in range(4)]\n"
                "for thread in threads:\n    thread.start()\n    thread.join()\n"
                "print('last')\n"),
            0);
  EXPECT_THAT(posted(), ElementsAre("0\n1\n2\n3\nlast\n"));
}

TEST_F(PythonRuntime, AnExceptionInAThread) {
  EXPECT_EQ(run("import threading\n"
                "def fail():\n    raise ValueError('in a thread')\n"
                "thread = threading.Thread(target=fail, name='worker')\nthread.start()\nthread.join()\n"),
            0);
  const std::string shown = output();
  EXPECT_THAT(shown, HasSubstr("Exception in thread worker:\nTraceback (most recent call last):\n"));
  EXPECT_THAT(shown, HasSubstr("  File \"<syntax 1>\", line 3, in fail\n    raise ValueError('in a thread')\n"
                               "ValueError: in a thread\n"));
}

std::promise<void>* signalled = nullptr;

int signalIt(int) {
  signalled->set_value();
  return 0;
}

int awaitIt(int) {
  signalled->get_future().wait();
  return 0;
}

TEST_F(PythonRuntime, OtherThreadsRunWhileACallWaits) {
  std::promise<void> promise;
  signalled = &promise;
  EXPECT_EQ(run(kThreads), 0);
  EXPECT_EQ(run("thread = threading.Thread(target=call(" + addressOf(&signalIt) +
                "), args=(0,))\n"
                "thread.start()\ncall(" +
                addressOf(&awaitIt) + ")(0)\nthread.join()\n"),
            0);
}

TEST_F(PythonRuntime, OtherThreadsRunWhileOutputIsPosted) {
  std::promise<void> promise;
  signalled = &promise;
  library().setPostOutput([](const char* text, int length) {
    awaitIt(0);
    return keep(text, length);
  });
  EXPECT_EQ(run(kThreads), 0);
  EXPECT_EQ(run("thread = threading.Thread(target=call(" + addressOf(&signalIt) +
                "), args=(0,))\n"
                "thread.start()\nprint('waits')\nthread.join()\n"),
            0);
  EXPECT_EQ(output(), "waits\n");
}

std::promise<void>* written = nullptr;

int tellWritten(int) {
  written->set_value();
  return 0;
}

TEST_F(PythonRuntime, WhatIsWrittenBehindTheLastPostIsNotLost) {
  std::promise<void> go;
  std::promise<void> done;
  signalled = &go;
  written = &done;
  library().setPostOutput([](const char* text, int length) {
    signalIt(0);
    written->get_future().wait();
    return keep(text, length);
  });
  EXPECT_EQ(run(kThreads), 0);
  testing::internal::CaptureStdout();
  EXPECT_EQ(run("def work():\n    call(" + addressOf(&awaitIt) + ")(0)\n    print('late')\n    call(" +
                addressOf(&tellWritten) + ")(0)\nthreading.Thread(target=work).start()\nprint('last', end='')\n"),
            0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "late\n");
  EXPECT_EQ(output(), "last");
}

TEST_F(PythonRuntime, AThreadThatOutlivesItsBlockIsAwaitedByTheStop) {
  std::promise<void> promise;
  signalled = &promise;
  EXPECT_EQ(run(kThreads), 0);
  EXPECT_EQ(run("def work():\n    call(" + addressOf(&awaitIt) +
                ")(0)\n    print('from the thread')\n"
                "threading.Thread(target=work).start()\n"),
            0);
  testing::internal::CaptureStdout();
  std::thread release([] { signalIt(0); });
  EXPECT_EQ(library().stop(), 0);
  release.join();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "from the thread\n") << "no block runs: the process shows it";
  EXPECT_EQ(output(), "");
  EXPECT_EQ(library().init(0, nullptr), 0);
  EXPECT_EQ(valueOf("__import__('threading').active_count()"), "1\n");
}

TEST_F(PythonRuntime, ThreadPoolsEndWithTheSession) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(run("from concurrent.futures import ThreadPoolExecutor\nimport threading\n"
                  "pool = threading.pool = ThreadPoolExecutor(2)\nprint(*pool.map(abs, (-1, -2)))\n"),
              0);
    EXPECT_EQ(output(), "1 2\n");
    EXPECT_EQ(library().stop(), 0);
    EXPECT_EQ(library().init(0, nullptr), 0);
    EXPECT_EQ(valueOf("__import__('threading').active_count()"), "1\n");
  }
}

// The thread that leads the processes waits for work too, and the namespace keeps its pool until the stop. In a process
// of its own, since what multiprocessing has opened for its pools stays open as long as the process lives.
KOVA_KIT_CHILD(python_with_process_pools) {
  for (int i = 0; i < 2; ++i) {
    if (library().init(0, nullptr) != 0) return 1;
    if (run("import sys\nfrom concurrent.futures import ProcessPoolExecutor\n"
            "pool = ProcessPoolExecutor(1)\nsys.exit(3 * sum(pool.map(abs, (-1, -2))))\n") != 9) {
      return 2;
    }
    if (library().stop() != 0) return 3;
  }
  library().init(0, nullptr);
  return run("import sys, threading\nsys.exit(6 + threading.active_count())\n");
}

TEST(PythonPools, ProcessPoolsEndWithTheSession) { EXPECT_EQ(kit::runChild("python_with_process_pools"), 7); }

TEST_F(PythonRuntime, AStopInsideABlockIsRefused) {
  EXPECT_EQ(run(kThreads), 0);
  const auto stop = [](int) { return library().stop(); };
  EXPECT_EQ(run("x = 1\nprint(call(" + addressOf(stop) + ")(0))\n"), 0);
  EXPECT_EQ(output(), "170\n");
  EXPECT_EQ(valueOf("x"), "1\n");
}

// Runs a block on a further thread and waits for it, as the engine does when a call of a block leads to another block.
int runOnAnotherThread(const std::string& block) {
  int result = -1;
  std::thread thread([&] {
    EXPECT_EQ(library().preAction(), 0);
    result = run(block);
    EXPECT_EQ(library().postAction(), 0);
  });
  thread.join();
  return result;
}

// Calls the function of the depth below; the innermost block fails.
std::string nestedBlock(int depth, int (*nest)(int)) {
  if (depth == 8) return "levels.append(8)\nprint('deepest')\nraise ValueError('8')\n";
  const std::string level = std::to_string(depth);
  return "levels.append(" + level + ")\nprint('into " + level + "')\nresult = call(" + addressOf(nest) + ")(" +
         std::to_string(depth + 1) + ")\nprint('out of " + level + "', result)\n" + "raise SystemExit(result + 1)\n";
}

int nestOnAnotherThread(int depth) { return runOnAnotherThread(nestedBlock(depth, &nestOnAnotherThread)); }

int nestOnTheSameThread(int depth) { return run(nestedBlock(depth, &nestOnTheSameThread)); }

int nestOnEither(int depth) {
  const std::string block = nestedBlock(depth, &nestOnEither);
  return depth % 2 == 0 ? run(block) : runOnAnotherThread(block);
}

TEST_F(PythonRuntime, NestedBlocksToDepthEight) {
  for (const auto nest : {&nestOnAnotherThread, &nestOnTheSameThread, &nestOnEither}) {
    EXPECT_EQ(run(std::string(kThreads) + "levels = []\n"), 0);
    EXPECT_EQ(nest(1), 8);
    EXPECT_EQ(valueOf("levels"),
              "into 1\ninto 2\ninto 3\ninto 4\ninto 5\ninto 6\ninto 7\ndeepest\n"
              "Traceback (most recent call last):\n  File \"<syntax 9>\", line 3, in <module>\n"
              "    raise ValueError('8')\nValueError: 8\n"
              "out of 7 1\nout of 6 2\nout of 5 3\nout of 4 4\nout of 3 5\nout of 2 6\nout of 1 7\n"
              "[1, 2, 3, 4, 5, 6, 7, 8]\n");
    EXPECT_EQ(library().stop(), 0);
    EXPECT_EQ(library().init(0, nullptr), 0);
  }
}

// The output function leads to a nested block, whose output stands behind what led to it.
TEST_F(PythonRuntime, NestedBlocksFromTheOutputFunction) {
  library().setPostOutput([](const char* text, int length) {
    keep(text, length);
    const std::string shown(text, static_cast<std::size_t>(length));
    const int depth = static_cast<int>(shown.size()) - 1;
    const std::string block = "print('" + std::string(static_cast<std::size_t>(depth) + 1, 'n') + "')\n";
    if (depth > 8) return 0;
    return depth % 2 == 0 ? run(block) : runOnAnotherThread(block);
  });
  EXPECT_EQ(run("print('n')\nprint('a line that leads nowhere')\n"), 0);
  EXPECT_EQ(output(), "n\nnn\nnnn\nnnnn\nnnnnn\nnnnnnn\nnnnnnnn\nnnnnnnnn\nnnnnnnnnn\na line that leads nowhere\n");
}

TEST_F(PythonRuntime, NestedBlocksOfAThousandRuns) {
  EXPECT_EQ(run(std::string(kThreads) + "count = 0\n"), 0);
  const auto nest = [](int) { return runOnAnotherThread("count += 1\n"); };
  EXPECT_EQ(run("for _ in range(1000):\n    call(" + addressOf(nest) + ")(0)\n"), 0);
  EXPECT_EQ(valueOf("count, threading.active_count()"), "1000 1\n");
}

// A block on a thread that has the interpreter's lock: a library that was loaded with ctypes.PyDLL keeps it.
TEST_F(PythonRuntime, ABlockFromACallerThatHoldsTheLock) {
  const auto nest = [](int depth) { return run("print(" + std::to_string(depth) + ")\n"); };
  EXPECT_EQ(run("import ctypes, threading\nheld = ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.c_int)(" + addressOf(nest) +
                ")\nheld(1)\nthread = threading.Thread(target=held, args=(2,))\nthread.start()\nthread.join()\n"),
            0);
  EXPECT_EQ(output(), "1\n2\n");
}

}  // namespace
}  // namespace kova::python
