#include "host/InpStatisticsX.h"

#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "platform/os/environment.h"
#include "tests/host/fake_runtime.h"
#include "tests/transport/traced_test.h"

namespace {

using kova::fakeRuntime;
using kova::provideFakeRuntime;
using kova::fake::loadedLibraries;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLibrary = "/kova/home/fakert";

int post(const char*, int) { return 0; }

class InpStatisticsXTest : public kova::TracedTest {
 protected:
  InpStatisticsXTest() {
    SetKOVAHOME("/kova/home");
    options_.PutOption("LIB_NAME", "fakert");
    provideFakeRuntime(kLibrary);
  }
  ~InpStatisticsXTest() override { EXPECT_EQ(loadedLibraries(), 0u); }

  // Every operation gives the code, and nothing of the library is called.
  void ExpectRefused(InpStatisticsX& host, int code) {
    EXPECT_EQ(host.init_embedded_x(0, nullptr), code);
    EXPECT_FALSE(host.isIntialized());
    host.setIntialized(true);
    EXPECT_EQ(host.pre_action(), code);
    EXPECT_EQ(host.execute_x(syntax_), code);
    EXPECT_EQ(host.post_action(), code);
    host.setup_dxcallback(this);
    host.set_post_kova_output(post);
    EXPECT_EQ(host.stop_embedded_x(), code);
    EXPECT_THAT(fakeRuntime().asked, IsEmpty());
  }

  char syntax_[4] = "run";
  XConfigOptions options_{"ECHO"};
};

TEST_F(InpStatisticsXTest, EveryOperationReachesItsEntryPoint) {
  InpStatisticsX host(&options_, true);
  EXPECT_THAT(Traced(), IsEmpty());
  char word[] = "word";
  char* arguments[] = {word, nullptr};
  host.setup_dxcallback(this);
  EXPECT_EQ(host.init_embedded_x(1, arguments), 0);
  host.set_post_kova_output(post);
  fakeRuntime().answers = {{"pre", 1}, {"execute", 2}, {"post", 3}, {"stop", 4}};
  EXPECT_EQ(host.pre_action(), 1);
  EXPECT_EQ(host.execute_x(syntax_), 2);
  EXPECT_EQ(host.post_action(), 3);
  EXPECT_EQ(host.get_library_lock(), 0);
  EXPECT_FALSE(host.hasLock());
  EXPECT_EQ(host.release_library_lock(), 0);
  EXPECT_EQ(host.stop_embedded_x(), 4);
  EXPECT_FALSE(host.isIntialized()) << "whatever the stop gave";
  EXPECT_THAT(fakeRuntime().asked,
              ElementsAre("callback", "init word", "output", "pre", "execute run", "post", "stop"));
  EXPECT_EQ(fakeRuntime().callback, this);
  EXPECT_EQ(fakeRuntime().output, post);
}

TEST_F(InpStatisticsXTest, WithoutDrivingNothingIsStartedOrStopped) {
  {
    InpStatisticsX host(&options_, false);
    EXPECT_EQ(host.init_embedded_x(0, nullptr), 0);
    EXPECT_EQ(host.execute_x(syntax_), 0);
  }
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("execute run"));
}

TEST_F(InpStatisticsXTest, DestructionStopsTheRuntimeAndUnloads) {
  {
    InpStatisticsX host(&options_, true);
    host.init_embedded_x(0, nullptr);
    EXPECT_EQ(loadedLibraries(), 1u);
  }
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("init", "stop"));
  EXPECT_EQ(loadedLibraries(), 0u);
}

TEST_F(InpStatisticsXTest, DestructionOfAnIdleHostOnlyUnloads) {
  { InpStatisticsX host(&options_, true); }
  EXPECT_THAT(fakeRuntime().asked, IsEmpty());
}

TEST_F(InpStatisticsXTest, WithoutALibraryNameNothingIsLoaded) {
  XConfigOptions none("ECHO");
  none.PutOption("KOVA_TEST_VARIABLE", "value");
  InpStatisticsX host(&none, true);
  EXPECT_THAT(Traced(), ElementsAre("Configration file kovadxcfg.ini is invalid because the LIB_NAME is NULL."));
  EXPECT_EQ(kova::fake::callCount("LoadSharedLibrary"), 0u);
  EXPECT_EQ(kova::os::GetEnvironment("KOVA_TEST_VARIABLE"), std::nullopt);
  ExpectRefused(host, 99118);
}

TEST_F(InpStatisticsXTest, ALibraryThatCanNotBeLoaded) {
  kova::fake::reset();
  InpStatisticsX host(&options_, true);
  EXPECT_THAT(Traced(), ElementsAre("Load library from \\kova\\home\\fakert failed."));
  ExpectRefused(host, 99114);
}

struct NameRow {
  const char* label;
  const char* home;
  const char* name;
  const char* asked;
};

TEST_F(InpStatisticsXTest, ThePathIsHomeAndName) {
  const NameRow rows[] = {
      {"no ending", "/kova/home", "fakert", "\\kova\\home\\fakert"},
      {"another ending", "D:\\home\\", "x.so", "D:\\home\\x.so"},
      {"the ending twice", "/kova/home", "fakert.dll", "\\kova\\home\\fakert.dll.dll"},
      {"upper case is another ending", "/kova/home", "x.DLL", "\\kova\\home\\x.DLL"},
  };
  for (const NameRow& row : rows) {
    SCOPED_TRACE(row.label);
    kova::fake::reset();
    SetKOVAHOME(row.home);
    options_.PutOption("LIB_NAME", row.name);
    const InpStatisticsX host(&options_, true);
    EXPECT_THAT(kova::fake::calls(), Contains("LoadSharedLibrary " + std::string(row.asked)));
  }
}

TEST_F(InpStatisticsXTest, ANameWithItsEndingIsTold) {
  options_.PutOption("LIB_NAME", "fakert.dll");
  const InpStatisticsX host(&options_, true);
  EXPECT_THAT(Traced(), ElementsAre("Load library from \\kova\\home\\fakert.dll failed."));
}

TEST_F(InpStatisticsXTest, TheEnvironmentIsSetBeforeTheLibraryIsLoaded) {
  options_.PutOption("KOVA_TEST_A", "a");
  options_.PutOption("KOVA_TEST_B", "%KOVA_TEST_A%b");
  std::string seen;
  fakeRuntime().onLoad = [&seen] {
    seen = kova::os::GetEnvironment("KOVA_TEST_A").value_or("") + kova::os::GetEnvironment("KOVA_TEST_B").value_or("");
  };
  const InpStatisticsX host(&options_, true);
  EXPECT_EQ(seen, "aab");
}

TEST_F(InpStatisticsXTest, OptionalEntryPointsMayBeMissing) {
  provideFakeRuntime(kLibrary, {"setup_dxcallback", "set_post_kova_output"});
  InpStatisticsX host(&options_, true);
  host.setup_dxcallback(this);
  host.set_post_kova_output(post);
  EXPECT_EQ(host.init_embedded_x(0, nullptr), 0);
  EXPECT_EQ(host.execute_x(syntax_), 0);
  EXPECT_THAT(fakeRuntime().asked, ElementsAre("init", "execute run"));
}

TEST_F(InpStatisticsXTest, RequiredEntryPointsMayNot) {
  for (const char* name : {"init_embedded_x", "execute_x", "stop_embedded_x", "pre_action", "post_action"}) {
    SCOPED_TRACE(name);
    provideFakeRuntime(kLibrary, {name});
    Traced();
    InpStatisticsX host(&options_, true);
    EXPECT_THAT(Traced(), ElementsAre("fake: loader error 127"));
    ExpectRefused(host, 99114);
  }
}

TEST_F(InpStatisticsXTest, EntryPointsAreLookedForInTheirOrder) {
  const InpStatisticsX host(&options_, true);
  std::vector<std::string> found;
  for (const std::string& call : kova::fake::calls()) {
    if (call.starts_with("FindSymbol ")) found.push_back(call.substr(11));
  }
  EXPECT_THAT(found, ElementsAre("setup_dxcallback", "init_embedded_x", "execute_x", "stop_embedded_x", "pre_action",
                                 "post_action", "set_post_kova_output"));
}

TEST_F(InpStatisticsXTest, TwoRuntimesStayApart) {
  XConfigOptions other("OTHER");
  other.PutOption("LIB_NAME", "other");
  kova::fake::Library library;
  for (const char* name : {"init_embedded_x", "execute_x", "stop_embedded_x", "pre_action", "post_action"}) {
    library.symbols[name] = reinterpret_cast<void*>(+[] { return 77; });
  }
  kova::fake::registerLibrary("/kova/home/other", library);
  InpStatisticsX first(&options_, true);
  InpStatisticsX second(&other, true);
  first.setIntialized(true);
  second.setIntialized(true);
  EXPECT_EQ(first.pre_action(), 0);
  EXPECT_EQ(second.pre_action(), 77);
}

}  // namespace
