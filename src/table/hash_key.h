// What the hashes of this process are keyed by.
//
// Whoever makes a table may be somebody else than its reader. With constants that anyone can look up, texts could be
// made that all have one hash, and an index of them would be as slow as a scan for each; so they differ in every
// process. What is found by a hash never depends on them, how quickly alone does.
#pragma once

#include <bit>
#include <cstdint>

namespace quillmere {

class HashKey {
 public:
  /// That of this process. On any thread; the first call draws it.
  static HashKey OfProcess() noexcept;

  /// What the hash of a text of so many units begins with.
  std::uint64_t StartOf(std::uint64_t units) const noexcept { return first_ * (2 * units + 1); }
  /// And what it is after two more words of the text. What was there before is in both factors, so that no words take
  /// it away.
  std::uint64_t Continued(std::uint64_t hash, std::uint64_t low, std::uint64_t high) const noexcept {
    return FoldedProduct(low ^ hash, high ^ hash ^ second_);
  }

  /// What two words, at one of four places from 0, give to a hash that is put together by exclusive or.
  template <int place>
  std::uint64_t Share(std::uint64_t low, std::uint64_t high) const noexcept {
    return FoldedProduct(low ^ std::rotl(first_, place * 16), high ^ std::rotl(second_, place * 16));
  }

  /// The hash of one word. It is in both factors, turned: with a fixed one, words that differ in a few places of their
  /// bits could share the part of the product that is looked at.
  std::uint64_t Of(std::uint64_t word) const noexcept {
    return FoldedProduct(word ^ first_, std::rotl(word, 32) ^ second_);
  }
  /// One hash of two, which may be equal to each other.
  std::uint64_t Joined(std::uint64_t a, std::uint64_t b) const noexcept {
    return FoldedProduct(a ^ first_, b ^ second_);
  }

 private:
  explicit HashKey(std::uint64_t drawn) noexcept;

  static std::uint64_t FoldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  std::uint64_t first_;  ///< odd
  std::uint64_t second_;
};

}  // namespace quillmere
