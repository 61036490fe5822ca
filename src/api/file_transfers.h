// The transfers of TransportData that are under way.
//
// One for the process; the end of the process waits for them. Its calls take turns as all calls of the client interface
// do.
#ifndef KOVADX_API_FILE_TRANSFERS_H
#define KOVADX_API_FILE_TRANSFERS_H

#include <cstddef>
#include <memory>
#include <vector>

#include "api/TransportDataThread.h"

namespace kova {

class FileTransfers {
 public:
  // Starts a transfer and returns at once: 0, or 8 when there is no thread to be had. Throws std::bad_alloc. Transfers
  // that have ended are forgotten on the way.
  int start(const char* source, const char* target, bool removesSource);

  // Waits until all of them have ended.
  void finish() { threads_.clear(); }

  std::size_t size() const { return threads_.size(); }

 private:
  std::vector<std::unique_ptr<TransportDataThread>> threads_;
};

FileTransfers& TheFileTransfers();

}  // namespace kova

#endif
