#include "suite_view.h"

#include "platform/os/clock.h"
#include "transport/XPipes.h"
#include "transport/monitor_relay.h"

namespace kova::program {
namespace {

constexpr std::uint32_t kWordArea = 64;
constexpr std::uint64_t kFreshMs = 2000;  // Words come a second apart.

// "P2C" is made by the runtime, which reads it; "C2P" by the engine.
constexpr const char* kToRuntime = "P2C";
constexpr const char* kToEngine = "C2P";

// Looks without opening: a pipe that is taken is there too.
bool isThere(const std::string& name) {
  const os::Error error = os::AwaitServer(name.c_str(), 0);
  return error == os::kSuccess || error == os::kSemTimeout;
}

// Collects the pipes of one side that are there.
class Side {
 public:
  Side(std::string prefix, std::string who) : prefix_(std::move(prefix)), who_(std::move(who)) {}

  bool look(const std::string& pipe) {
    if (!isThere(prefix_ + pipe)) return false;
    found_ += (found_.empty() ? "" : " ") + pipe;
    return true;
  }
  std::string text() const { return who_ + (found_.empty() ? " not seen" : " alive (" + found_ + ")"); }

 private:
  std::string prefix_;
  std::string who_;
  std::string found_;
};

// The sets are numbered without a gap: one for each level of runs.
void lookForSets(Side* engine, Side* runtime) {
  bool isAnyThere = true;
  for (int index = 0; isAnyThere; ++index) {
    const std::string number = std::to_string(index);
    isAnyThere = runtime->look(number + XPipes::SYNTAX_PIPE);
    isAnyThere |= engine->look(number + XPipes::SYNTAX_RESULT_PIPE);
    isAnyThere |= engine->look(number + XPipes::XDAPI_PIPE);
    isAnyThere |= runtime->look(number + XPipes::XDAPI_RESULT_PIPE);
  }
}

std::string nameOf(std::int32_t word) {
  if (word == kWordAlive) return "alive";
  if (word == kWordGoodbye) return "goodbye";
  return word == kWordVanished ? "vanished" : std::to_string(word);
}

std::string wordText(const WordListener& listener) {
  const auto heard = listener.lastHeard();
  if (!heard) return "none heard";
  const std::uint64_t age = os::TickMs() - heard->atMs;
  return nameOf(heard->word) + (age < kFreshMs ? "" : " " + std::to_string(age / 1000) + " s ago");
}

}  // namespace

WordListener::~WordListener() {
  if (pipe_ == nullptr) return;
  os::CancelPipeWait(pipe_);
  thread_.join();
  os::ClosePipeHandle(pipe_);
}

os::Error WordListener::start(const std::string& monitorName) {
  const std::string name = onlookerPipeName(monitorName);
  if (isThere(name)) return os::kPipeBusy;
  const os::Error error = os::CreateMessagePipe(name.c_str(), XPipes::PIPE_BUF_SIZE, &pipe_);
  if (error == os::kSuccess) thread_ = std::thread([this] { listen(); });
  return error;
}

std::optional<WordListener::Heard> WordListener::lastHeard() const {
  const std::lock_guard<std::mutex> hold(mutex_);
  return heard_;
}

// Each word comes over a connection of its own.
void WordListener::listen() {
  for (;;) {
    const os::Error error = os::AcceptPeer(pipe_);
    if (error != os::kSuccess && error != os::kPipeConnected) return;
    takeWord();
    os::DisconnectPeer(pipe_);
  }
}

void WordListener::takeWord() {
  std::int32_t area[kWordArea / sizeof(std::int32_t)];
  std::uint32_t count = 0;
  if (os::ReadMessage(pipe_, area, kWordArea, &count) != os::kSuccess || count != sizeof area[0]) return;
  const std::lock_guard<std::mutex> hold(mutex_);
  heard_ = Heard{area[0], os::TickMs()};
}

SuiteView::SuiteView(const std::string& suiteName) : prefix_("\\\\.\\pipe\\" + suiteName) {}

os::Error SuiteView::start() {
  const os::Error error = toRuntime_.start(prefix_ + kToRuntime);
  return error == os::kSuccess ? toEngine_.start(prefix_ + kToEngine) : error;
}

std::string SuiteView::state() const {
  Side engine(prefix_, "engine");
  Side runtime(prefix_, "runtime");
  runtime.look("_s");
  engine.look("_c");
  runtime.look(kToRuntime);
  engine.look(kToEngine);
  lookForSets(&engine, &runtime);
  return engine.text() + ", " + runtime.text() + "; words to the runtime: " + wordText(toRuntime_) +
         ", to the engine: " + wordText(toEngine_);
}

}  // namespace kova::program
