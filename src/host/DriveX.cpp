#include "host/DriveX.h"

#include "config/XCmdArgument.h"
#include "config/XConfigOptions.h"
#include "trace/DxTracer.h"

using namespace kova;

namespace {

constexpr int kPythonsNo = 1;

std::string usualArguments(const std::string& language) {
  if (language == "R") return "--silent --no-save";
  if (language == "JAVAEXTENSION") return "JavaExtension";
  return "";
}

}  // namespace

DriveX::DriveXThread::DriveXThread(DriveX* runner) : runner_(runner) {}

DriveX::DriveXThread::~DriveXThread() { joinThread(); }

unsigned int DriveX::DriveXThread::Run() {
  // Whatever ends the run, an exception too, whoever waits for its end must see it.
  struct Ending {
    DriveX* runner;
    ~Ending() { runner->running_ = false; }
  };
  const Ending ending{runner_};
  return static_cast<unsigned int>(runner_->runX());
}

DriveX::DriveX(const std::string& name, StatisticsX* host, XConfigOptions* options)
    : host_(host), options_(options), name_(name) {}

DriveX::~DriveX() { endThread(); }

int DriveX::initializeX() {
  if (host_->isIntialized()) return 0;
  const std::string& configured = options_->GetXArgs();
  XCmdArgument arguments(configured.empty() ? usualArguments(name_) : configured);
  const int count = arguments.argc();
  return host_->init_embedded_x(count, arguments.argv());
}

int DriveX::invokeX() {
  const int code = host_->isIntialized() ? 0 : initializeX();
  return code != 0 ? code : runX();
}

int DriveX::runX() {
  int code = host_->pre_action();
  DxTrace("DriveX PRE ACTION ");
  if (name_ == "PYTHON" && code == kPythonsNo) return kPythonSetUpFailed;
  if (code != 0) return code;
  std::vector<std::string> none;
  code = ExecuteXLines(syntax_ != nullptr ? *syntax_ : none);
  DxTraceError("DriveX ExecuteXLines ", code);
  host_->post_action();
  DxTrace("DriveX POST ACTION ");
  return code;
}

int DriveX::ExecuteXLines(std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append(1, '\n');
  DxTrace(text);
  return host_->execute_x(text.data());
}

int DriveX::startX() {
  if (running_) return kRunnerNotStarted;
  thread_ = std::make_unique<DriveXThread>(this);
  running_ = true;
  if (thread_->Start()) return 0;
  running_ = false;
  return kRunnerNotStarted;
}

void DriveX::releaseThread() {}

void DriveX::awaitEnd() {
  if (thread_ != nullptr) thread_->awaitEnd();
}

void DriveX::release() {
  if (thread_ != nullptr && running_) releaseThread();
}

void DriveX::endThread() {
  release();
  thread_.reset();
}

unsigned int DriveX::getReturnValue() const { return thread_ ? thread_->GetReturnValue() : 0; }
