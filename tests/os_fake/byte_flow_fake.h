// The inside of a byte pipe of the fake backend.
#ifndef KOVADX_TESTS_OS_FAKE_BYTE_FLOW_FAKE_H
#define KOVADX_TESTS_OS_FAKE_BYTE_FLOW_FAKE_H

#include <deque>
#include <memory>

#include "tests/os_fake/fake_kernel.h"

namespace kova::fake {

// Who holds an end is counted: objects, and programs whose standard stream it is. Guarded by the kernel's lock.
struct ByteFlow {
  std::deque<char> bytes;
  unsigned readers = 0;
  unsigned writers = 0;
  bool writerGone = false;  // Declared so.

  bool hasEnded() const { return writers == 0 || writerGone; }
};

// What a handle of BytePipeEnd stands for; null for none.
std::shared_ptr<ByteFlow> flowOf(const void* handle);

// Makes them a program's standard streams (null: none), in place of those that it has.
void giveStreams(ProcessState& process, std::shared_ptr<ByteFlow> input, std::shared_ptr<ByteFlow> output);

}  // namespace kova::fake

#endif
