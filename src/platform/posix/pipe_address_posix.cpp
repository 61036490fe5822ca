#include "platform/posix/pipe_address_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

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

std::string namedFolder() {
  const std::string chosen = GetEnvironment("KOVA_PIPE_DIR").value_or("");
  if (!chosen.empty()) return chosen;
  const std::string runtime = GetEnvironment("XDG_RUNTIME_DIR").value_or("");
  if (!runtime.empty()) return runtime + "/kova";
  return "/tmp/kova-" + std::to_string(geteuid());
}

// The full path: what a relative one means would change with the working folder.
std::string fullPath(const std::string& folder) {
  std::error_code unknown;
  const std::string full = std::filesystem::absolute(folder, unknown).string();
  std::string path = unknown ? folder : full;
  // With one of these at its end a path leads through a link, and the folder's checks would see only what is behind it.
  while (path.size() > 1 && (path.ends_with('/') || path.ends_with("/."))) path.pop_back();
  return path;
}

// The folder that this process has come to; empty before the first use.
struct KeptFolder {
  std::mutex mutex;
  std::string folder;
};

// Never destroyed: a thread may still open a pipe while the program ends.
KeptFolder& keptFolder() {
  static KeptFolder* const theFolder = new KeptFolder;
  return *theFolder;
}

Error makePipeFolder(const std::string& folder) {
  if (mkdir(folder.c_str(), kUserOnly) != 0) return errno == EEXIST ? kSuccess : lastError();
  // The user's mask may have taken from the mode. Where it can not be given back, the check refuses the folder.
  fchmodat(AT_FDCWD, folder.c_str(), kUserOnly, AT_SYMLINK_NOFOLLOW);
  return kSuccess;
}

}  // namespace

std::string pipeFolder() {
  KeptFolder& kept = keptFolder();
  const std::lock_guard<std::mutex> hold(kept.mutex);
  if (kept.folder.empty()) kept.folder = fullPath(namedFolder());
  return kept.folder;
}

void forgetPipeFolder() {
  KeptFolder& kept = keptFolder();
  const std::lock_guard<std::mutex> hold(kept.mutex);
  kept.folder.clear();
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

FolderLock::~FolderLock() {
  if (folder_) flock(folder_.get(), LOCK_UN);
}

Error FolderLock::take(Descriptor folder) {
  while (flock(folder.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return lastError();
  }
  folder_ = std::move(folder);
  return kSuccess;
}

Error lockPipeFolder(const std::string& folder, uid_t user, FolderLock* out) {
  const Error notMade = makePipeFolder(folder);
  if (notMade != kSuccess) return notMade;
  // The look is at the folder that was opened, so that nobody can exchange it in between.
  Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!opened) return errno == ELOOP || errno == ENOTDIR ? kAccessDenied : lastError();
  struct stat status = {};
  if (fstat(opened.get(), &status) != 0) return lastError();
  const Error error = checkFolderStatus(status, user);
  return error == kSuccess ? out->take(std::move(opened)) : error;
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

void removeStaleFiles(const std::string& folder, uid_t user, std::string_view namePart) {
  std::error_code ignored;
  std::vector<std::string> paths;
  for (std::filesystem::directory_iterator entry(folder, ignored), end; entry != end; entry.increment(ignored)) {
    if (entry->path().filename().string().find(namePart) != std::string::npos) paths.push_back(entry->path().string());
  }
  for (const std::string& path : paths) {
    sockaddr_un address;
    if (store(path, &address)) removeStaleFile(address, user);
  }
}

Error checkPeer(int connection, uid_t user) {
  ucred peer = {};
  socklen_t size = sizeof peer;
  if (getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0) return lastError();
  return peer.uid == user ? kSuccess : kAccessDenied;
}

}  // namespace kova::os
