#include "host/StatisticsX.h"

#include "trace/DxTracer.h"

namespace {

// Every operation ends with its trace record.
int traced(const char* label, int code) {
  DxTraceError(label, code);
  return code;
}

}  // namespace

StatisticsX::StatisticsX(bool kovaDrive) : kovaDrive_(kovaDrive) {}

StatisticsX::~StatisticsX() = default;

int StatisticsX::init_embedded_x(int argc, char** argv) {
  if (initialized_ && !isR_) return 0;
  if (isR_) {
    initialized_ = true;
    DxTrace("StatisticsX::init_embedded_R");
  }
  const int code = kovaDrive_ ? x_init_embedded_x(argc, argv) : 0;
  initialized_ = code == 0;
  return traced("StatisticsX::init_embedded_x", code);
}

int StatisticsX::execute_x(char* syntax) {
  int code = kova::kHostNotInitialised;
  if (initialized_) {
    running_ = true;
    code = x_execute_x(syntax);
    running_ = false;
  }
  return traced("StatisticsX::execute_x", code);
}

int StatisticsX::stop_embedded_x() {
  const int code = initialized_ && kovaDrive_ ? x_stop_embedded_x() : 0;
  initialized_ = false;
  return traced("StatisticsX::stop_embedded_x", code);
}

int StatisticsX::pre_action() {
  return traced("StatisticsX::pre_action", initialized_ ? x_pre_action() : kova::kHostNotInitialised);
}

int StatisticsX::post_action() {
  return traced("StatisticsX::post_action", initialized_ ? x_post_action() : kova::kHostNotInitialised);
}

void StatisticsX::setup_dxcallback(void* callback) {
  x_setup_dxcallback(callback);
  DxTrace("StatisticsX::setup_dxcallback");
}

// Deliberate: the label carries the "x_", unlike its siblings.
void StatisticsX::set_post_kova_output(PostOutput post) {
  x_set_post_kova_output(post);
  DxTrace("StatisticsX::x_set_post_kova_output");
}

int StatisticsX::get_library_lock() { return x_get_library_lock(); }

int StatisticsX::release_library_lock() { return x_release_library_lock(); }

void StatisticsX::x_setup_dxcallback(void*) {}

void StatisticsX::x_set_post_kova_output(PostOutput) {}

int StatisticsX::x_get_library_lock() { return 0; }

int StatisticsX::x_release_library_lock() { return 0; }
