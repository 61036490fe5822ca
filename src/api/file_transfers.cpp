#include "api/file_transfers.h"

#include <utility>

#include "api/guard.h"

namespace kova {

int FileTransfers::start(const char* source, const char* target, bool removesSource) {
  std::erase_if(threads_, [](const auto& thread) { return !thread->HasThread(); });
  auto thread = std::make_unique<TransportDataThread>(source, target, removesSource);
  // Room first: a thread that runs must not be without an owner.
  threads_.reserve(threads_.size() + 1);
  if (!thread->Start()) return kNotEnoughMemory;
  threads_.push_back(std::move(thread));
  return 0;
}

FileTransfers& TheFileTransfers() {
  static FileTransfers transfers;
  return transfers;
}

}  // namespace kova
