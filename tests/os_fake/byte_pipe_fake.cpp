// Byte pipes between the threads of this process, and the standard streams of scripted programs.
#include "platform/os/byte_pipe.h"

#include <algorithm>
#include <map>

#include "tests/os_fake/byte_flow_fake.h"
#include "tests/os_fake/os_fake.h"

namespace kova::os {

using fake::ByteFlow;
using fake::Call;
using fake::kernel;
using fake::Logged;

namespace {

constexpr std::size_t kRoom = std::size_t{64} << 10;  // What a pipe takes in before its reader reads.

// What a handle stands for.
struct State {
  std::shared_ptr<fake::ProcessState> owner;
  std::shared_ptr<ByteFlow> flow;
  bool reads = false;
};

// A handle is a number, so that one whose program was ended can still be closed.
struct BytePipes {
  std::map<std::uintptr_t, State> all;
  std::uintptr_t lastHandle = 0;
  std::uint32_t readLimit = 0;
};

BytePipes& bytePipes() {
  static BytePipes* const thePipes = new BytePipes;
  return *thePipes;
}

// Null for a handle that is none.
State* stateOf(const void* handle) {
  const auto found = bytePipes().all.find(reinterpret_cast<std::uintptr_t>(handle));
  return found == bytePipes().all.end() ? nullptr : &found->second;
}

void* add(const std::shared_ptr<ByteFlow>& flow, bool reads) {
  ++(reads ? flow->readers : flow->writers);
  bytePipes().all[++bytePipes().lastHandle] = {fake::currentThread()->process, flow, reads};
  return reinterpret_cast<void*>(bytePipes().lastHandle);
}

void leave(const State& state) {
  --(state.reads ? state.flow->readers : state.flow->writers);
  Call::notify();
}

std::string take(ByteFlow& flow, std::size_t most) {
  const auto last = flow.bytes.begin() + static_cast<std::ptrdiff_t>(std::min(most, flow.bytes.size()));
  std::string bytes(flow.bytes.begin(), last);
  flow.bytes.erase(flow.bytes.begin(), last);
  Call::notify();
  return bytes;
}

// Writes as the pipe has room. False when nobody reads any more.
bool put(Call& call, ByteFlow& flow, const char* data, std::size_t size) {
  while (size > 0) {
    call.wait([&] { return flow.bytes.size() < kRoom || flow.readers == 0; });
    if (flow.readers == 0) return false;
    const std::size_t count = std::min(size, kRoom - flow.bytes.size());
    flow.bytes.insert(flow.bytes.end(), data, data + count);
    data += count;
    size -= count;
    Call::notify();
  }
  return true;
}

}  // namespace

BytePipeEnd::~BytePipeEnd() {
  if (handle_ == nullptr) return;
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  const State* const state = stateOf(handle_);
  if (!state) return;
  leave(*state);
  bytePipes().all.erase(reinterpret_cast<std::uintptr_t>(handle_));
}

Error BytePipeEnd::Create(BytePipeEnd* reader, BytePipeEnd* writer) {
  BytePipeEnd newReader;
  BytePipeEnd newWriter;
  {
    const Call call("BytePipeEnd::Create");
    if (call.failure()) return *call.failure();
    const auto flow = std::make_shared<ByteFlow>();
    newReader.handle_ = add(flow, true);
    newWriter.handle_ = add(flow, false);
  }
  *reader = std::move(newReader);
  *writer = std::move(newWriter);
  return kSuccess;
}

Error BytePipeEnd::Read(void* buffer, std::uint32_t size, std::uint32_t* read) {
  *read = 0;
  Call call("BytePipeEnd::Read");
  if (call.failure()) return *call.failure();
  const State* const state = stateOf(handle_);
  if (!state || !state->reads) return kInvalidHandle;
  const std::shared_ptr<ByteFlow> flow = state->flow;
  call.wait([&] { return !flow->bytes.empty() || flow->hasEnded(); });
  if (flow->bytes.empty()) return kBrokenPipe;
  const std::uint32_t limit = bytePipes().readLimit;
  const std::string bytes = take(*flow, limit > 0 ? std::min(size, limit) : size);
  std::copy(bytes.begin(), bytes.end(), static_cast<char*>(buffer));
  *read = static_cast<std::uint32_t>(bytes.size());
  return kSuccess;
}

Error BytePipeEnd::Write(const void* data, std::uint32_t size) {
  Call call("BytePipeEnd::Write");
  if (call.failure()) return *call.failure();
  const State* const state = stateOf(handle_);
  if (!state || state->reads) return kInvalidHandle;
  const std::shared_ptr<ByteFlow> flow = state->flow;
  return put(call, *flow, static_cast<const char*>(data), size) ? kSuccess : kNoData;
}

void BytePipeEnd::DeclarePeerGone() {
  const Call call("BytePipeEnd::DeclarePeerGone");
  const State* const state = stateOf(handle_);
  if (call.failure() || !state || !state->reads) return;
  state->flow->writerGone = true;
  Call::notify();
}

}  // namespace kova::os

namespace kova::fake {

std::shared_ptr<ByteFlow> flowOf(const void* handle) {
  const os::State* const state = os::stateOf(handle);
  return state ? state->flow : nullptr;
}

void giveStreams(ProcessState& process, std::shared_ptr<ByteFlow> input, std::shared_ptr<ByteFlow> output) {
  if (input) ++input->readers;
  if (output) ++output->writers;
  if (process.input) --process.input->readers;
  if (process.output) --process.output->writers;
  process.input = std::move(input);
  process.output = std::move(output);
  Call::notify();
}

void closeBytePipesOf(ProcessState& process) {
  giveStreams(process, nullptr, nullptr);
  auto& all = os::bytePipes().all;
  for (auto entry = all.begin(); entry != all.end();) {
    if (entry->second.owner.get() != &process) {
      ++entry;
      continue;
    }
    os::leave(entry->second);
    entry = all.erase(entry);
  }
}

unsigned openBytePipeEnds() { return static_cast<unsigned>(os::bytePipes().all.size()); }

void resetBytePipes() { os::bytePipes().readLimit = 0; }

void limitByteReads(std::uint32_t bytes) {
  const std::lock_guard<std::mutex> lock(kernel().mutex);
  os::bytePipes().readLimit = bytes;
}

std::string readInput(std::size_t most) {
  Call call("readInput", Logged::CountOnly);
  const std::shared_ptr<ByteFlow> flow = currentThread()->process->input;
  if (!flow) return {};
  call.wait([&] { return !flow->bytes.empty() || flow->hasEnded(); });
  return os::take(*flow, most);
}

std::optional<std::string> readInputLine() {
  Call call("readInput", Logged::CountOnly);
  const std::shared_ptr<ByteFlow> flow = currentThread()->process->input;
  if (!flow) return std::nullopt;
  std::string line;
  while (line.empty() || line.back() != '\n') {
    call.wait([&] { return !flow->bytes.empty() || flow->hasEnded(); });
    if (flow->bytes.empty()) break;
    const auto lineBreak = std::find(flow->bytes.begin(), flow->bytes.end(), '\n');
    const bool isWhole = lineBreak != flow->bytes.end();
    line += os::take(*flow, static_cast<std::size_t>(lineBreak - flow->bytes.begin()) + (isWhole ? 1 : 0));
  }
  if (line.empty()) return std::nullopt;
  if (line.back() == '\n') line.pop_back();
  return line;
}

bool writeOutput(const std::string& bytes) {
  Call call("writeOutput", Logged::CountOnly);
  const std::shared_ptr<ByteFlow> flow = currentThread()->process->output;
  return !flow || os::put(call, *flow, bytes.data(), bytes.size());
}

}  // namespace kova::fake
