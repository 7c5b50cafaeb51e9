#include <pthread.h>

#include <new>

#include "frame/entry/thread_stack.h"

namespace quillmere {

std::size_t StackLeft() {
  pthread_attr_t attributes;
  // It reads a file, and where it has no memory for that it may fail by any code.
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) throw std::bad_alloc();
  void* lowest = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &lowest, &size);
  pthread_attr_destroy(&attributes);
  return static_cast<std::size_t>(static_cast<char*>(__builtin_frame_address(0)) - static_cast<char*>(lowest));
}

}  // namespace quillmere
