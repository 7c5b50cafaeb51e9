// Memory that holds rubbish before its first use and after its last.
#pragma once

#include <cstddef>

namespace qcalc {

/// What memory of the host's is filled with at birth.
inline constexpr int kJunk = 0xA7;

/// Memory of the host's that the add-in may look at. It is filled with junk at birth and poisoned at its end.
class JunkBlock {
 public:
  explicit JunkBlock(std::size_t bytes);
  ~JunkBlock();
  JunkBlock(JunkBlock&& other) noexcept;
  JunkBlock& operator=(JunkBlock&&) = delete;

  std::byte* data() const { return data_; }
  std::size_t size() const { return size_; }
  /// Overwrites all of it, so that whoever still reads it reads rubbish.
  void Poison();
  /// Whether nobody has written there since all of it was poisoned.
  bool IsPoisoned() const;

 private:
  std::byte* data_;
  std::size_t size_;
};

}  // namespace qcalc
