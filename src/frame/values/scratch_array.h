// Room to work in, for as long as a call lasts.
#pragma once

#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>

#include "frame/values/kept_blocks.h"

namespace quillmere {

/// `size` values, undefined until they are written, in a kept block where there is one: a large array costs no fresh
/// pages then.
template <class T>
class ScratchArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  ScratchArray() noexcept = default;
  /// std::bad_alloc.
  explicit ScratchArray(std::size_t size)
      : block_(size == 0 ? MemoryBlock() : TakeBlock(size * sizeof(T))), size_(size) {}
  ScratchArray(ScratchArray&& other) noexcept
      : block_(std::exchange(other.block_, {})), size_(std::exchange(other.size_, 0)) {}
  ScratchArray& operator=(ScratchArray&& other) noexcept {
    std::swap(block_, other.block_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~ScratchArray() {
    if (block_.memory) GiveBlock(block_);
  }

  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  T* data() noexcept { return static_cast<T*>(block_.memory); }
  const T* data() const noexcept { return static_cast<const T*>(block_.memory); }
  T& operator[](std::size_t place) noexcept { return data()[place]; }
  const T& operator[](std::size_t place) const noexcept { return data()[place]; }
  T* begin() noexcept { return data(); }
  T* end() noexcept { return data() + size_; }
  const T* begin() const noexcept { return data(); }
  const T* end() const noexcept { return data() + size_; }

 private:
  MemoryBlock block_;
  std::size_t size_ = 0;
};

}  // namespace quillmere
