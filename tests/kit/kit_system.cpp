#include "tests/kit/kit_system.h"

#include "tests/kit/kit.h"

#ifdef KOVA_KIT_FAKE
#include "tests/os_fake/os_fake.h"
#endif

#ifdef _WIN32
#include <windows.h>

namespace kova::kit {
namespace {

constexpr ULONG_PTR kHandleStep = 4;
constexpr ULONG_PTR kMostHandles = 1000;

}  // namespace

unsigned long realProcessId() { return GetCurrentProcessId(); }
void makePipeFolder() {}
void removePipeFolder() {}
std::string leftPipeFiles() { return {}; }
void takeInterrupts() {}
bool hasChildLeft() { return false; }

bool killProcess(std::uint32_t id) {
  const HANDLE process = OpenProcess(PROCESS_TERMINATE, FALSE, id);
  const bool isKilled = process != nullptr && TerminateProcess(process, 128 + 9);
  if (process != nullptr) CloseHandle(process);
  return isKilled;
}

// The emulator answers 0 when it is asked for the number; each value that may be a handle is asked about instead.
int systemHandleCount() {
  int count = 0;
  for (ULONG_PTR value = kHandleStep; value <= kMostHandles * kHandleStep; value += kHandleStep) {
    DWORD flags = 0;
    if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
  }
  return count;
}

std::uint64_t processorMs() {
  FILETIME created, ended, system, user;
  if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &system, &user)) return 0;
  const auto in100ns = [](const FILETIME& time) {
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
  };
  return (in100ns(system) + in100ns(user)) / 10000;
}

}  // namespace kova::kit

#else
#include <dirent.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace kova::kit {
namespace {

std::string pipeFolder;

}  // namespace

unsigned long realProcessId() { return static_cast<unsigned long>(getpid()); }

void makePipeFolder() {
  char path[] = "/tmp/kova-kit-XXXXXX";
  if (mkdtemp(path) == nullptr) return;
  pipeFolder = path;
  setenv("KOVA_PIPE_DIR", path, 1);
}

void removePipeFolder() {
  std::error_code ignored;
  if (!pipeFolder.empty()) std::filesystem::remove_all(pipeFolder, ignored);
}

std::string leftPipeFiles() {
  std::string names;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(pipeFolder, ignored)) {
    names += entry.path().filename().string() + " ";
  }
  return names;
}

void takeInterrupts() { signal(SIGINT, SIG_DFL); }

bool killProcess(std::uint32_t id) { return kill(static_cast<pid_t>(id), SIGKILL) == 0; }

bool hasChildLeft() {
  siginfo_t info = {};
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

int systemHandleCount() {
  DIR* folder = opendir("/proc/self/fd");
  if (folder == nullptr) return -1;
  int count = 0;
  while (readdir(folder) != nullptr) ++count;
  closedir(folder);
  return count - 3;  // ".", ".." and the folder's own descriptor.
}

std::uint64_t processorMs() { return static_cast<std::uint64_t>(std::clock()) * 1000 / CLOCKS_PER_SEC; }

}  // namespace kova::kit
#endif

namespace kova::kit {

#ifdef KOVA_KIT_FAKE
int openHandleCount() { return static_cast<int>(fake::openPipeEnds() + fake::openSockets()); }
#else
int openHandleCount() { return systemHandleCount(); }
#endif

}  // namespace kova::kit
