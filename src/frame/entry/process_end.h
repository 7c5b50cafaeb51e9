// What the library gives back when it is unloaded, it leaves alone when the process ends: other threads may be inside
// it then. Windows has ended them in the middle of what they did, with locks held and structures half changed, and
// elsewhere they go on until the very last. The system takes it all.
#pragma once

#include <memory>

namespace quillmere {

/// Whether it is the process that ends, not the library or a thread alone. To be asked while static objects are
/// destroyed, on Windows also while those of a thread are.
bool ProcessEnds() noexcept;

/// A static object that is destroyed when the library is unloaded, which is after the last call, and stays when the
/// process ends. Like every object with a destructor it does not stand inside a function: the C++ library's lock around
/// the making of such objects would stay behind on Windows, each time that the library is loaded.
template <class Object>
class CUntilUnloaded {
 public:
  constexpr CUntilUnloaded() : object_() {}
  CUntilUnloaded(const CUntilUnloaded&) = delete;
  CUntilUnloaded& operator=(const CUntilUnloaded&) = delete;
  ~CUntilUnloaded() {
    if (!ProcessEnds()) std::destroy_at(&object_);
  }

  Object& operator*() noexcept { return object_; }
  Object* operator->() noexcept { return &object_; }

 private:
  union {
    Object object_;
  };
};

}  // namespace quillmere
