// Memory that holds rubbish before its first use and after its last.
#pragma once

#include <cstddef>
#include <span>

namespace qcalc {

/// What memory of the host's is filled with at birth.
inline constexpr int kJunk = 0xA7;

/// Memory of the host's that the add-in may look at. It is filled with junk at birth and poisoned at its end. Behind it
/// lie a few bytes by which a write past its end shows; the address sanitizer sees that itself.
class JunkBlock {
 public:
  explicit JunkBlock(std::size_t bytes);
  ~JunkBlock();
  JunkBlock(JunkBlock&& other) noexcept;
  JunkBlock& operator=(JunkBlock&&) = delete;

  std::byte* data() const { return data_; }
  std::size_t size() const { return size_; }
  /// All of it, those bytes too.
  std::span<const std::byte> Guarded() const { return {data_, size_ + kGuardBytes}; }
  /// Whether nobody has written past its end.
  bool IsGuardIntact() const;
  /// Overwrites all of it, so that whoever still reads it reads rubbish.
  void Poison();
  /// Whether nobody has written there since all of it was poisoned.
  bool IsPoisoned() const;

 private:
#if defined(__SANITIZE_ADDRESS__)
  static constexpr std::size_t kGuardBytes = 0;
#else
  static constexpr std::size_t kGuardBytes = 16;
#endif

  std::byte* data_;
  std::size_t size_;
};

}  // namespace qcalc
