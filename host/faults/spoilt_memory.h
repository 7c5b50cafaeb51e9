// Memory for what is spoilt: where it ends, no memory follows.
#pragma once

#include <cstddef>

namespace qcalc {

/// A block that ends at a page without access. Natively, where nothing may run past its end, a plain block.
class SpoiltMemory {
 public:
  /// Filled with junk. The end is exact: its alignment is what the size leaves.
  explicit SpoiltMemory(std::size_t bytes);
  ~SpoiltMemory();
  SpoiltMemory(SpoiltMemory&& other) noexcept;
  SpoiltMemory& operator=(SpoiltMemory&&) = delete;

  std::byte* data() const { return data_; }
  std::size_t size() const { return size_; }
  /// An address behind the block that cannot be read. Null natively.
  void* Unreadable() const;

 private:
  std::byte* data_;
  std::size_t size_;
};

/// Whether that much memory can be read. Natively, where no pointer is spoilt, always.
bool CanRead(const void* address, std::size_t bytes);

}  // namespace qcalc
