// The host of a runtime inside this process: a shared library of the home folder, named in the configuration, that
// exports seven plain functions. Each operation of the base reaches the one of its name.
//
// It owns the loaded library; the options are the configuration reader's and must outlive it. No lock: callers
// serialise the calls on one host, save that a nested run may call while execute_x waits in a call of the engine.
#ifndef KOVADX_HOST_INPSTATISTICSX_H
#define KOVADX_HOST_INPSTATISTICSX_H

#include <memory>
#include <string>

#include "export.h"
#include "host/StatisticsX.h"

class PlugInDynamicLoadedLibrary;
class XConfigOptions;

namespace kova {

constexpr int kRuntimeNotLoaded = 99114;  // The library can not be loaded, or lacks an entry point.
constexpr int kNoLibraryName = 99118;     // The configuration names no library for the language.

}  // namespace kova

class KOVADX_API InpStatisticsX : public StatisticsX {
 public:
  // Loads the library at once, after setting the environment that the options give the runtime. What can not be loaded
  // shows in the result of every operation that needs it: 99118 or 99114.
  InpStatisticsX(XConfigOptions* options, bool kovaDrive);

  // Stops the runtime, then unloads the library.
  ~InpStatisticsX() override;

 protected:
  // The entry point's result, which is kept; without the entry point the last kept result, or why there is none.
  int x_init_embedded_x(int argc, char** argv) override;
  int x_execute_x(char* syntax) override;
  int x_stop_embedded_x() override;
  int x_pre_action() override;
  int x_post_action() override;
  // Nothing when the library has no such entry point.
  void x_setup_dxcallback(void* callback) override;
  void x_set_post_kova_output(PostOutput post) override;
  // Always 0: nothing is locked here.
  int x_get_library_lock() override;
  int x_release_library_lock() override;

 private:
  // Null until they are found; all of them null when the library is refused.
  struct EntryPoints {
    void (*setupCallback)(void*) = nullptr;
    int (*init)(int, char**) = nullptr;
    int (*execute)(char*) = nullptr;
    int (*stop)() = nullptr;
    void (*setPostOutput)(PostOutput) = nullptr;
    int (*preAction)() = nullptr;
    int (*postAction)() = nullptr;
  };

  int loadXlib();
  int openLibrary();
  int findEntryPoints();

  EntryPoints entries_;
  XConfigOptions* options_;
  std::unique_ptr<PlugInDynamicLoadedLibrary> library_;
  int status_ = 0;  // Why the library is not loaded, or what an entry point gave last.
};

#endif
