#include "table/word_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace quillmere {
namespace {

/// Fewer words are compared with each other: to count their digits would cost more.
constexpr std::size_t kLeastCounted = 192;
/// From so many words on, digits of more bits spare passes.
constexpr std::size_t kManyWords = 1 << 14;

constexpr int kMostDigitBits = 11;
constexpr int kFewerDigitBits = 8;
constexpr int kMostDigits = 8;

/// How a word is cut into digits.
struct Digits {
  int first;  ///< the lowest bit of the lowest one
  int bits;   ///< of each
  int count;

  std::size_t Of(std::uint64_t word, int digit) const noexcept {
    return word >> (first + digit * bits) & ((std::uint64_t{1} << bits) - 1);
  }
};

using Counts = std::array<std::array<std::uint32_t, 1 << kMostDigitBits>, kMostDigits>;

void CountDigits(std::span<const std::uint64_t> words, const Digits& digits, Counts& counts) {
  for (int digit = 0; digit < digits.count; ++digit)
    std::fill_n(counts[static_cast<std::size_t>(digit)].begin(), std::size_t{1} << digits.bits, 0);
  for (const std::uint64_t word : words)
    for (int digit = 0; digit < digits.count; ++digit)
      ++counts[static_cast<std::size_t>(digit)][digits.Of(word, digit)];
}

/// Sorts by one digit, from `from` to `to`, keeping the order among equal ones. `counts` becomes where they end.
void Distribute(std::span<const std::uint64_t> from, std::uint64_t* to, const Digits& digits, int digit,
                std::span<std::uint32_t> counts) {
  std::uint32_t place = 0;
  for (std::uint32_t& count : counts.first(std::size_t{1} << digits.bits)) {
    const std::uint32_t first = place;
    place += count;
    count = first;
  }
  for (const std::uint64_t word : from) to[counts[digits.Of(word, digit)]++] = word;
}

}  // namespace

void SortWords(std::span<std::uint64_t> words, std::span<std::uint64_t> spare, int steady, int bits) {
  if (std::ranges::is_sorted(words)) return;
  if (words.size() < kLeastCounted) {
    std::ranges::sort(words);
    return;
  }
  const int most = words.size() < kManyWords ? kFewerDigitBits : kMostDigitBits;
  const int count = (bits + most - 1) / most;
  const Digits digits{steady, (bits + count - 1) / count, count};
  Counts counts;
  CountDigits(words, digits, counts);
  std::uint64_t* from = words.data();
  std::uint64_t* to = spare.data();
  for (int digit = 0; digit < digits.count; ++digit) {
    std::span<std::uint32_t> places = counts[static_cast<std::size_t>(digit)];
    // A digit that all words share orders nothing.
    if (places[digits.Of(from[0], digit)] == words.size()) continue;
    Distribute({from, words.size()}, to, digits, digit, places);
    std::swap(from, to);
  }
  if (from != words.data()) std::copy_n(from, words.size(), words.data());
}

}  // namespace quillmere
