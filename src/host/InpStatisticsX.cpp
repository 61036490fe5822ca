#include "host/InpStatisticsX.h"

#include "config/XConfigOptions.h"
#include "config/process_values.h"
#include "config/text_utilities.h"
#include "platform/PlugInDynamicLoadedLibrary.h"
#include "platform/os/environment.h"
#include "trace/DxTracer.h"

using namespace kova;

namespace {

void setEnvironment(XConfigOptions& options) {
  for (const auto& [name, value] : options.GetXEnvVars()) os::SetEnvironment(name, value);
}

// The path as the configuration means it, before its ending is seen to.
std::string libraryPath(const std::string& name) {
  std::string folder = std::string(GetKOVAHOME()) + "\\";
  DecoratePathEnd(folder);
  return folder + name;
}

// A trace record is one line.
std::string withoutLineBreak(std::string text) {
  const std::size_t end = text.find_last_not_of("\r\n");
  text.resize(end == std::string::npos ? 0 : end + 1);
  return text;
}

template <class Function>
bool find(PlugInDynamicLoadedLibrary& library, const char* name, Function& entry) {
  entry = reinterpret_cast<Function>(library.GetSymbolAddress(name));
  return entry != nullptr;
}

// What the entry point gives becomes the status; without one the status stays.
template <class Function, class... Arguments>
int call(int& status, Function entry, Arguments... arguments) {
  if (entry != nullptr) status = entry(arguments...);
  return status;
}

}  // namespace

InpStatisticsX::InpStatisticsX(XConfigOptions* options, bool kovaDrive) : StatisticsX(kovaDrive), options_(options) {
  loadXlib();
}

InpStatisticsX::~InpStatisticsX() { stop_embedded_x(); }

int InpStatisticsX::loadXlib() {
  if (!library_) status_ = openLibrary();
  if (status_ == 0) status_ = findEntryPoints();
  return status_;
}

int InpStatisticsX::openLibrary() {
  const std::string& name = options_->GetXLibName();
  if (name.empty()) {
    DxTrace("Configration file kovadxcfg.ini is invalid because the LIB_NAME is NULL.");  // sic
    return kNoLibraryName;
  }
  setEnvironment(*options_);
  const std::string path = libraryPath(name);
  library_ = std::make_unique<PlugInDynamicLoadedLibrary>(PlugInDecorateDynamicPathName(path), 0);
  if (library_->LoadLibraryNow() == 0) return 0;
  DxTrace("Load library from " + path + " failed.");
  library_.reset();
  return kRuntimeNotLoaded;
}

int InpStatisticsX::findEntryPoints() {
  PlugInDynamicLoadedLibrary& library = *library_;
  find(library, "setup_dxcallback", entries_.setupCallback);
  const bool isComplete =
      find(library, "init_embedded_x", entries_.init) && find(library, "execute_x", entries_.execute) &&
      find(library, "stop_embedded_x", entries_.stop) && find(library, "pre_action", entries_.preAction) &&
      find(library, "post_action", entries_.postAction);
  if (!isComplete) {
    DxTrace(withoutLineBreak(library.GetErrorString()));
    entries_ = {};
    return kRuntimeNotLoaded;
  }
  find(library, "set_post_kova_output", entries_.setPostOutput);
  return 0;
}

int InpStatisticsX::x_init_embedded_x(int argc, char** argv) { return call(status_, entries_.init, argc, argv); }

int InpStatisticsX::x_execute_x(char* syntax) { return call(status_, entries_.execute, syntax); }

int InpStatisticsX::x_stop_embedded_x() { return call(status_, entries_.stop); }

int InpStatisticsX::x_pre_action() { return call(status_, entries_.preAction); }

int InpStatisticsX::x_post_action() { return call(status_, entries_.postAction); }

void InpStatisticsX::x_setup_dxcallback(void* callback) {
  if (entries_.setupCallback != nullptr) entries_.setupCallback(callback);
}

void InpStatisticsX::x_set_post_kova_output(PostOutput post) {
  if (entries_.setPostOutput != nullptr) entries_.setPostOutput(post);
}

int InpStatisticsX::x_get_library_lock() { return 0; }

int InpStatisticsX::x_release_library_lock() { return 0; }
