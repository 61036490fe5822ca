#include "platform/posix/pipe_address_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "platform/os/environment.h"
#include "platform/posix/error_posix.h"

namespace kova::os {
namespace {

constexpr std::string_view kNamePrefix = "\\\\.\\pipe\\";
constexpr mode_t kUserOnly = 0700;

Error checkFolderStatus(const struct stat& status, uid_t user) {
  const bool good = S_ISDIR(status.st_mode) && status.st_uid == user && (status.st_mode & 0777) == kUserOnly;
  return good ? kSuccess : kAccessDenied;
}

bool store(const std::string& path, sockaddr_un* out) {
  if (path.size() >= sizeof out->sun_path) return false;
  *out = {};
  out->sun_family = AF_UNIX;
  std::memcpy(out->sun_path, path.c_str(), path.size() + 1);
  return true;
}

}  // namespace

std::string pipeFolder() {
  const std::string chosen = GetEnvironment("KOVA_PIPE_DIR").value_or("");
  if (!chosen.empty()) return chosen;
  const std::string runtime = GetEnvironment("XDG_RUNTIME_DIR").value_or("");
  if (!runtime.empty()) return runtime + "/kova";
  return "/tmp/kova-" + std::to_string(geteuid());
}

std::uint64_t nameHash(std::string_view name) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char character : name) {
    hash ^= static_cast<unsigned char>(character);
    hash *= 0x100000001b3;
  }
  return hash;
}

Error pipeAddress(const std::string& folder, const char* name, sockaddr_un* out) {
  const std::string_view whole = name == nullptr ? "" : name;
  if (!whole.starts_with(kNamePrefix)) return kInvalidName;
  const std::string_view own = whole.substr(kNamePrefix.size());
  if (own.empty() || own == "." || own == "..") return kInvalidName;
  if (own.find_first_of("\\/") != std::string_view::npos) return kInvalidName;
  if (store(folder + "/" + std::string(own), out)) return kSuccess;
  char hashed[20];
  std::snprintf(hashed, sizeof hashed, "k%016llx", static_cast<unsigned long long>(nameHash(own)));
  return store(folder + "/" + hashed, out) ? kSuccess : kFileNameTooLong;
}

Error checkPipeFolder(const std::string& folder, uid_t user) {
  struct stat status = {};
  if (lstat(folder.c_str(), &status) != 0) return lastError();
  return checkFolderStatus(status, user);
}

Error lockPipeFolder(const std::string& folder, uid_t user, Descriptor* out) {
  if (mkdir(folder.c_str(), kUserOnly) != 0 && errno != EEXIST) return lastError();
  // The look is at the folder that was opened, so that nobody can exchange it in between.
  Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened) return errno == ELOOP || errno == ENOTDIR ? kAccessDenied : lastError();
  struct stat status = {};
  if (fstat(opened.get(), &status) != 0) return lastError();
  const Error error = checkFolderStatus(status, user);
  if (error != kSuccess) return error;
  while (flock(opened.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return lastError();
  }
  *out = std::move(opened);
  return kSuccess;
}

Error probeServer(const sockaddr_un& address) {
  struct stat status = {};
  if (lstat(address.sun_path, &status) != 0) return lastError();
  // A stream socket can not be connected with a packet socket, and how that fails tells whether one is there.
  const Descriptor probe(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!probe) return lastError();
  if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return kSuccess;
  return errno == EPROTOTYPE ? kSuccess : lastError();
}

Error removeStaleFile(const sockaddr_un& address, uid_t user) {
  struct stat status = {};
  if (lstat(address.sun_path, &status) != 0) return errno == ENOENT ? kSuccess : lastError();
  if (!S_ISSOCK(status.st_mode) || status.st_uid != user) return kAccessDenied;
  if (probeServer(address) != kFileNotFound) return kAccessDenied;
  return unlink(address.sun_path) == 0 ? kSuccess : lastError();
}

Error checkPeer(int connection, uid_t user) {
  ucred peer = {};
  socklen_t size = sizeof peer;
  if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return lastError();
  return peer.uid == user ? kSuccess : kAccessDenied;
}

}  // namespace kova::os
