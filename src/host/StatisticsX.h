// One hosted runtime of an external language, as the engine drives it. The public operations are the same for every
// runtime: they keep the state, refuse what an uninitialised host can not do, leave one trace record each and hand the
// work to the virtual operations of the concrete host.
//
// The registry (XManager) owns hosts and deletes them through this class. No lock: callers serialise the calls on one
// host.
#ifndef KOVADX_HOST_STATISTICSX_H
#define KOVADX_HOST_STATISTICSX_H

#include "export.h"

namespace kova {

constexpr int kHostNotInitialised = 99115;

}  // namespace kova

class KOVADX_API StatisticsX {
 public:
  // Takes the post_kova_output function: a text and its length.
  using PostOutput = int (*)(const char*, int);

  // Deliberate: kovaDrive also decides whether this host really starts and stops a runtime. When it is false,
  // init_embedded_x and stop_embedded_x succeed without doing either.
  explicit StatisticsX(bool kovaDrive);
  StatisticsX(const StatisticsX&) = delete;
  StatisticsX& operator=(const StatisticsX&) = delete;
  virtual ~StatisticsX();

  // Starts the runtime. 0 at once, without a trace record, when it is initialised already, save for R, which is
  // initialised again. Otherwise the runtime's code; the host is initialised when that is 0.
  int init_embedded_x(int argc, char** argv);

  // Runs a block of syntax, with isRunning() true meanwhile. The runtime's code; 99115 when not initialised.
  int execute_x(char* syntax);

  // Stops the runtime. The runtime's code, 0 when there was nothing to stop; the host is uninitialised afterwards,
  // whatever the code.
  int stop_embedded_x();

  // What a runtime does before and after a run. The runtime's code; 99115 when not initialised.
  int pre_action();
  int post_action();

  // Hand the runtime its callback table and its output function. In every state.
  void setup_dxcallback(void* callback);
  void set_post_kova_output(PostOutput post);

  // Take and give back the runtime's own lock. The concrete host's code; hasLock() does not change by it.
  int get_library_lock();
  int release_library_lock();

  bool isKovaDrive() const { return kovaDrive_; }
  bool isIntialized() const { return initialized_; }  // sic
  bool isRunning() const { return running_; }
  bool hasLock() const { return locked_; }
  bool isR() const { return isR_; }

  void setIntialized(bool initialized) { initialized_ = initialized; }  // sic
  void setLock(bool locked) { locked_ = locked; }
  void setR(bool isR) { isR_ = isR; }

 protected:
  // The order of these is the order of their slots, behind the destructor's.
  virtual int x_init_embedded_x(int argc, char** argv) = 0;
  virtual int x_execute_x(char* syntax) = 0;
  virtual int x_stop_embedded_x() = 0;
  virtual int x_pre_action() = 0;
  virtual int x_post_action() = 0;
  virtual void x_setup_dxcallback(void* callback);
  virtual void x_set_post_kova_output(PostOutput post);
  virtual int x_get_library_lock();
  virtual int x_release_library_lock();

 private:
  bool kovaDrive_;
  bool initialized_ = false;
  bool running_ = false;
  bool locked_ = false;
  bool isR_ = false;
};

#endif
