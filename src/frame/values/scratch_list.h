// A list that grows while a call lasts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "frame/values/scratch_array.h"

namespace quillmere {

/// Values one behind another, in kept blocks once they are many.
template <class T>
class ScratchList {
 public:
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  T& operator[](std::size_t place) noexcept { return values_[place]; }
  const T& operator[](std::size_t place) const noexcept { return values_[place]; }
  T* begin() noexcept { return values_.data(); }
  T* end() noexcept { return values_.data() + size_; }
  const T* begin() const noexcept { return values_.data(); }
  const T* end() const noexcept { return values_.data() + size_; }
  std::span<const T> Values() const noexcept { return {values_.data(), size_}; }

  // std::bad_alloc:

  void Append(const T& value) {
    if (size_ == values_.size()) [[unlikely]]
      Grow(1);
    values_[size_++] = value;
  }
  /// Room for so many more, which may then be written by their places in Room() and counted in by SetSize.
  void MakeRoomFor(std::size_t more) {
    if (more > values_.size() - size_) Grow(more);
  }

  T* Room() noexcept { return values_.data(); }
  void SetSize(std::size_t size) noexcept { size_ = size; }

 private:
  static constexpr std::size_t kFirstRoom = 64;

  void Grow(std::size_t more) {
    ScratchArray<T> larger(std::max({kFirstRoom, size_ * 2, size_ + more}));
    std::copy_n(values_.data(), size_, larger.data());
    values_ = std::move(larger);
  }

  ScratchArray<T> values_;
  std::size_t size_ = 0;
};

}  // namespace quillmere
