// A fixture for tests that need a configuration. The reader keeps its one file for the life of the process, so all
// tests of a program share this one: the languages PYTHON, R, ECHO, whose libraries lie in the home folder as "fakert",
// and BARE, which has none.
#ifndef KOVADX_TESTS_HOST_CONFIGURED_TEST_H
#define KOVADX_TESTS_HOST_CONFIGURED_TEST_H

#include <string>

#include "api/InitDxGlobal.h"
#include "config/process_values.h"
#include "tests/host/fake_runtime.h"
#include "tests/kit/scratch_folder.h"
#include "tests/transport/traced_test.h"

namespace kova {

class ConfiguredTest : public TracedTest {
 protected:
  ConfiguredTest() {
    SetKOVAHOME(home().c_str());
    provideFakeRuntime(home() + "/fakert");
  }
  ~ConfiguredTest() override { FinalizeDXGlobal(); }

  static const std::string& home() {
    static const kit::ScratchFolder folder;
    static const std::string path = [] {
      folder.write("kovadxcfg.ini",
                   "[SUPPORTED_LANG]\nX=PYTHON;R;ECHO;BARE\n"
                   "[PYTHON]\nLIB_NAME=fakert\n[R]\nLIB_NAME=fakert\n"
                   "[ECHO]\nLIB_NAME=fakert\nARGS=one two\n[BARE]\nARGS=x\n");
      return folder.path();
    }();
    return path;
  }

  // What InitDxGlobal gives a process of the id 1234; what it traces is not the tests' concern.
  void Initialise() {
    InitDxGlobal("t\\", "1234", "TEST", "");
    Traced();
  }
};

}  // namespace kova

#endif
