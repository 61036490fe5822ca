// A process-wide object that is made on first use, without memory of the heap, and never destroyed: threads and other
// objects may still use it while the process ends. Stands as a static variable of a function.
#ifndef KOVADX_CONFIG_NEVER_DESTROYED_H
#define KOVADX_CONFIG_NEVER_DESTROYED_H

#include <new>

namespace kova {

template <class Object>
class NeverDestroyed {
 public:
  NeverDestroyed() { new (place_) Object(); }
  NeverDestroyed(const NeverDestroyed&) = delete;
  NeverDestroyed& operator=(const NeverDestroyed&) = delete;
  ~NeverDestroyed() = default;

  Object& object() { return *std::launder(reinterpret_cast<Object*>(place_)); }

 private:
  alignas(Object) unsigned char place_[sizeof(Object)];
};

}  // namespace kova

#endif
