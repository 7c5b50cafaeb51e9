// The pieces of a text between delimiters.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "text/delimiter_set.h"

namespace quillmere::text {

/// Whether the pieces of length zero count: between two delimiters side by side, and beside one at an end of a text.
enum class EmptyTokens { kDropped, kKept };

/// The walk from token to token of a text. The text and the delimiters must outlive it.
class Tokens {
 public:
  Tokens(XStringView text, const DelimiterSet& delimiters, EmptyTokens empty)
      : text_(text), delimiters_(delimiters), keepsEmpty_(empty == EmptyTokens::kKept) {}

  /// Goes on to the next one, at first to the first; false when there is none.
  bool Next() {
    do {
      if (next_ > text_.size()) return false;
      begin_ = next_;
      end_ = NextDelimiter();
      next_ = end_ + 1;
    } while (begin_ == end_ && !keepsEmpty_);
    return true;
  }
  /// The one reached, a view of the text.
  XStringView Token() const noexcept { return {text_.data() + begin_, end_ - begin_}; }

 private:
  /// The place of the next delimiter; the end of the text behind the last.
  std::size_t NextDelimiter() {
    while (places_ == 0) {
      if (seen_ == text_.size()) return seen_;
      firstPlace_ = seen_;
      seen_ += std::min(text_.size() - seen_, DelimiterSet::kUnitsAtOnce);
      places_ = delimiters_.PlacesIn(text_.data() + firstPlace_, seen_ - firstPlace_);
    }
    const std::size_t place = firstPlace_ + static_cast<std::size_t>(std::countr_zero(places_));
    places_ &= places_ - 1;
    return place;
  }

  XStringView text_;
  const DelimiterSet& delimiters_;
  bool keepsEmpty_;
  std::size_t next_ = 0;  ///< where the next piece begins
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t seen_ = 0;        ///< how many units of the text have been searched for delimiters
  std::size_t firstPlace_ = 0;  ///< the unit of the lowest bit of the places
  std::uint64_t places_ = 0;    ///< of the delimiters that are still to come
};

/// How many tokens a text has: what the walk would count, without going from one to the next.
inline std::size_t CountTokens(XStringView text, const DelimiterSet& delimiters, EmptyTokens empty) {
  std::size_t count = 0;
  std::uint64_t parted = 1;  // whether a delimiter, or the beginning, stands before the units looked at
  for (std::size_t at = 0; at < text.size(); at += DelimiterSet::kUnitsAtOnce) {
    const std::size_t units = std::min(text.size() - at, DelimiterSet::kUnitsAtOnce);
    const std::uint64_t places = delimiters.PlacesIn(text.data() + at, units);
    const std::uint64_t all = ~std::uint64_t{0} >> (DelimiterSet::kUnitsAtOnce - units);
    const std::uint64_t begins = ~places & (places << 1 | parted) & all;
    count += static_cast<std::size_t>(std::popcount(empty == EmptyTokens::kKept ? places : begins));
    parted = places >> (DelimiterSet::kUnitsAtOnce - 1);
  }
  return empty == EmptyTokens::kKept ? count + 1 : count;
}

}  // namespace quillmere::text
