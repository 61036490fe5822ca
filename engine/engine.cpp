#include "engine/engine.h"

#include <utility>
#include <variant>

#include "engine/data_package_writer.h"
#include "engine/data_set_rules.h"
#include "engine/dispatcher.h"
#include "engine/report_html.h"
#include "engine/report_text.h"

namespace kova::engine {
namespace {

bool isLoosePost(const OutputSection& section) {
  return !section.isProcedure() && std::holds_alternative<PostedText>(section.items.front().content);
}

// Sections as they are shown one behind the other. What is posted outside of procedures stands line below line, as what
// a script prints does; an empty line parts it from another section behind it.
class SectionsAsText {
 public:
  std::string next(const OutputSection& section, std::size_t width) {
    std::string text = sectionText(section, width);
    const bool isPost = isLoosePost(section);
    if (isPost) text.pop_back();
    if (!isPost && isAfterPost_) text.insert(0, 1, '\n');
    isAfterPost_ = isPost;
    return text;
  }

 private:
  bool isAfterPost_ = false;
};

// Gives a mutex up that this thread has locked, for as long as it lives.
class Unlocked {
 public:
  explicit Unlocked(std::mutex* mutex) : mutex_(mutex) { mutex_->unlock(); }
  Unlocked(const Unlocked&) = delete;
  Unlocked& operator=(const Unlocked&) = delete;
  ~Unlocked() { mutex_->lock(); }

 private:
  std::mutex* mutex_;
};

}  // namespace

void Engine::open(DataSet dataSet) {
  const std::lock_guard lock(mutex_);
  state_.active = addDataSet(&state_, std::move(dataSet));
}

void Engine::perform(const CleXDSmb& request, CleXDSmb& reply, int conversation) noexcept {
  const std::lock_guard lock(mutex_);
  state_.conversation = conversation;
  dispatch(state_, request, reply);
}

void Engine::leave(int conversation) noexcept {
  const std::lock_guard lock(mutex_);
  state_.passes.erase(conversation);
  state_.steps.erase(conversation);
}

void Engine::onOutput(std::function<void(const std::string& text)> show) {
  const std::lock_guard lock(mutex_);
  state_.output.log.setListener(
      [this, show = std::move(show), sections = SectionsAsText()](const OutputSection& section) mutable {
        show(sections.next(section, static_cast<std::size_t>(state_.session.outputWidth)));
      });
}

void Engine::onBlock(RunBlock run) {
  const std::lock_guard lock(mutex_);
  state_.runBlock = nullptr;
  if (!run) return;
  state_.runBlock = [this, run = std::move(run)](const std::string& language, const std::vector<std::string>& lines) {
    const int conversation = state_.conversation;
    int code = 0;
    {
      const Unlocked unlocked(&mutex_);
      code = run(language, lines);
    }
    state_.conversation = conversation;
    return code;
  };
}

void Engine::endOutput() {
  const std::lock_guard lock(mutex_);
  if (state_.output.log.hasProcedure()) state_.output.log.endProcedure();
}

std::string Engine::htmlOutput() const {
  const std::lock_guard lock(mutex_);
  return htmlReport(state_.output.log.sections());
}

ErrorCode Engine::saveActive(const std::string& descriptor, std::string* problem) const {
  const std::lock_guard lock(mutex_);
  FileSystem files;
  if (state_.active != nullptr) return writeDataPackage(*state_.active, {}, descriptor, files, problem);
  *problem = "no data set is active";
  return ErrorCode::kNoActiveDataSet;
}

}  // namespace kova::engine
