// Kills a process at a chosen one of its steps: preloaded into programs, it counts the system calls that move a
// conversation on, and at the KILL_AT-th of them (from 1) in a program named KILL_PROGRAM it notes the time in the file
// KILL_STAMP and ends the process as kill -9 does, before the call is made. Without KILL_AT it leaves the number of
// calls in KILL_STAMP when the process ends. For tests alone.
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<int> calls;
int killAt = 0;
const char* stamp = nullptr;

void note(const char* text) {
  const int file = open(stamp, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (file < 0) return;
  if (write(file, text, std::strlen(text)) < 0) std::perror("kill_shim");
  close(file);
}

void leaveCount() {
  char text[32];
  std::snprintf(text, sizeof text, "%d\n", calls.load());
  note(text);
}

__attribute__((constructor)) void begin() {
  const char* const program = std::getenv("KILL_PROGRAM");
  const char* const at = std::getenv("KILL_AT");
  const char* const file = std::getenv("KILL_STAMP");
  if (program == nullptr || file == nullptr || std::strcmp(program, program_invocation_short_name) != 0) return;
  stamp = file;
  killAt = at != nullptr ? std::atoi(at) : 0;
  if (killAt == 0) std::atexit(leaveCount);
}

void step() {
  if (stamp == nullptr || calls.fetch_add(1) + 1 != killAt) return;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  char text[64];
  std::snprintf(text, sizeof text, "%lld.%09ld\n", static_cast<long long>(now.tv_sec), now.tv_nsec);
  note(text);
  kill(getpid(), SIGKILL);
}

// The function that this library stands before.
template <class Function>
Function next(Function, const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// The standard streams of a child are such pipes. Looks at files are no steps.
bool isBytePipe(int number) {
  struct stat status {};
  return number > STDERR_FILENO && fstat(number, &status) == 0 && S_ISFIFO(status.st_mode);
}

}  // namespace

extern "C" {

int bind(int socket, const sockaddr* address, socklen_t length) noexcept {
  step();
  return next(&bind, "bind")(socket, address, length);
}

int connect(int socket, const sockaddr* address, socklen_t length) {
  step();
  return next(&connect, "connect")(socket, address, length);
}

int accept4(int socket, sockaddr* address, socklen_t* length, int flags) {
  step();
  return next(&accept4, "accept4")(socket, address, length, flags);
}

ssize_t send(int socket, const void* bytes, size_t length, int flags) {
  step();
  return next(&send, "send")(socket, bytes, length, flags);
}

// A look that finds nothing is no step: how many there are is chance.
ssize_t recvmsg(int socket, msghdr* message, int flags) {
  const ssize_t received = next(&recvmsg, "recvmsg")(socket, message, flags);
  if (received >= 0) step();
  return received;
}

ssize_t write(int number, const void* bytes, size_t length) {
  if (isBytePipe(number)) step();
  return next(&write, "write")(number, bytes, length);
}

ssize_t read(int number, void* bytes, size_t length) {
  const ssize_t count = next(&read, "read")(number, bytes, length);
  if (isBytePipe(number)) step();
  return count;
}

}  // extern "C"
