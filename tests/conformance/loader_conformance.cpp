// Shared libraries that are loaded and searched.
#include "platform/os/loader.h"

#include <filesystem>
#include <fstream>
#include <memory>

#include "tests/conformance/seam_fixture.h"

#ifdef KOVA_KIT_FAKE
#include "tests/os_fake/os_fake.h"
#endif

namespace kova::conformance {
namespace {

constexpr int kNumbers[] = {1, 2};

std::string samplePath(int number) { return std::string(KOVA_SAMPLE_DIR) + "/sample_" + std::to_string(number); }

#ifdef KOVA_KIT_FAKE
template <int number>
int sampleNumber() {
  return number;
}

void provideSamples() {
  fake::registerLibrary(samplePath(1), {{{"sample_number", reinterpret_cast<void*>(&sampleNumber<1>)}}, {}});
  fake::registerLibrary(samplePath(2), {{{"sample_number", reinterpret_cast<void*>(&sampleNumber<2>)}}, {}});
}
#else
void provideSamples() {}
#endif

// A library for the time of a test.
class Library {
 public:
  explicit Library(const std::string& path) { error = os::LoadSharedLibrary(path, &handle, &message); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (error == os::kSuccess) {
      EXPECT_EQ(os::UnloadLibrary(handle), os::kSuccess);
    }
  }

  void* find(const char* name) {
    void* address = nullptr;
    const Error found = os::FindSymbol(handle, name, &address, &message);
    EXPECT_EQ(found, address ? os::kSuccess : 127u);
    return address;
  }
  int number() { return reinterpret_cast<int (*)()>(find("sample_number"))(); }

  os::LibraryHandle handle = nullptr;
  std::string message;
  Error error;
};

class Loader : public SeamTest {
 protected:
  Loader() { provideSamples(); }
};

TEST_F(Loader, AnAbsentLibraryGives126AndItsText) {
  Library library(kit::scratchPath("no_such_library"));
  EXPECT_EQ(library.error, 126u);
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_NE(library.message, "");
}

TEST_F(Loader, AFileThatIsNoLibraryIsRefused) {
  const std::string path = kit::scratchPath("no_library.dll");
  std::ofstream(path) << "This is a text.\n";
  Library library(path);
  EXPECT_EQ(library.error, kit::kBackend.loadTextFile);
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_NE(library.message, "");
  std::filesystem::remove(path);
}

// Without its ending: the platform adds that.
TEST_F(Loader, ALibraryIsLoadedAndSearched) {
  Library library(samplePath(1));
  ASSERT_EQ(library.error, os::kSuccess) << library.message;
  EXPECT_EQ(library.message, "");
  EXPECT_EQ(library.number(), 1);
  EXPECT_EQ(library.message, "");
  EXPECT_EQ(library.find("no_such_symbol"), nullptr);
  EXPECT_NE(library.message, "");
}

TEST_F(Loader, ThePathIsTakenWithBothSeparators) {
  std::string path = samplePath(2);
  path[path.rfind('/')] = '\\';
  Library library(path);
  ASSERT_EQ(library.error, os::kSuccess) << library.message;
  EXPECT_EQ(library.number(), 2);
}

TEST_F(Loader, ALibraryIsThereAsLongAsAHandleIs) {
  auto first = std::make_unique<Library>(samplePath(1));
  Library second(samplePath(1));
  ASSERT_EQ(second.error, os::kSuccess);
  EXPECT_EQ(first->find("sample_number"), second.find("sample_number"));
  first.reset();
  EXPECT_EQ(second.number(), 1);
}

TEST_F(Loader, NamesOfTwoLibrariesStayApart) {
  Library first(samplePath(kNumbers[0]));
  Library second(samplePath(kNumbers[1]));
  ASSERT_EQ(first.error, os::kSuccess);
  ASSERT_EQ(second.error, os::kSuccess);
  EXPECT_EQ(first.number(), kNumbers[0]);
  EXPECT_EQ(second.number(), kNumbers[1]);
}

}  // namespace
}  // namespace kova::conformance
