#include <pthread.h>

#include "frame/entry/thread_stack.h"

namespace quillmere {

std::size_t StackLeft() noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return 0;
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return static_cast<std::size_t>(static_cast<char*>(__builtin_frame_address(0)) - static_cast<char*>(lowest));
}

}  // namespace quillmere
