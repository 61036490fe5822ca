// What the tests of this folder share: a conversation between this process, which creates the two pipes, and a child,
// which opens them.
#ifndef KOVADX_TESTS_MULTIPROCESS_EXCHANGE_CHILDREN_H
#define KOVADX_TESTS_MULTIPROCESS_EXCHANGE_CHILDREN_H

#include <string>
#include <vector>

#include "message/CleXDSmb.h"
#include "tests/kit/kit.h"
#include "transport/KovaPipe.h"

namespace kova {

// This process's ends: requests come from the child, replies go to it. Made before the child starts, so that the child
// finds both. 535 counts as connected: the child may be faster.
class Conversation {
 public:
  Conversation() : requests_(kit::scratchName()), replies_(kit::scratchName()) {
    created_ = requests_.CreatePipe() == 0 && replies_.CreatePipe() == 0;
  }

  bool created() const { return created_; }
  KovaPipe& requests() { return requests_; }
  KovaPipe& replies() { return replies_; }
  std::vector<std::string> names() const { return {requests_.GetPipeName(), replies_.GetPipeName()}; }

  bool connect() { return isConnected(requests_.ConnectPipe()) && isConnected(replies_.ConnectPipe()); }

  bool disconnect() { return requests_.DisconnectPipe() == 0 && replies_.DisconnectPipe() == 0; }

 private:
  static bool isConnected(int result) { return result == 0 || result == 535; }

  KovaPipe requests_;
  KovaPipe replies_;
  bool created_ = false;
};

// The bytes of a block that both sides know.
inline std::vector<char> knownBlock(std::size_t size) {
  std::vector<char> block(size);
  for (std::size_t i = 0; i < size; ++i) block[i] = static_cast<char>(i * 31 + i / 251);
  return block;
}

}  // namespace kova

#endif
