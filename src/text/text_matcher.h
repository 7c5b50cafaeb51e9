// The one interface of all that texts are matched against.
#pragma once

#include "text/quick_reject.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// A pattern made ready, once for a pattern and a call. It does not change after that, and matching allocates nothing.
/// In a loop over many texts those that the quick reject tells cost no call.
class TextMatcher {
 public:
  TextMatcher(const TextMatcher&) = delete;
  TextMatcher& operator=(const TextMatcher&) = delete;
  virtual ~TextMatcher() = default;

  /// Whether a text matches. Texts are a cell's, 32,767 units at most.
  bool Matches(XStringView text) const { return reject_.Passes(text) && MatchesInFull(text); }

 protected:
  TextMatcher() = default;

  /// For the constructors of patterns of whose texts something is known beforehand.
  void RejectBy(const QuickReject& reject) noexcept { reject_ = reject; }

 private:
  /// Whether a text that was not rejected matches.
  virtual bool MatchesInFull(XStringView text) const = 0;

  QuickReject reject_;
};

}  // namespace quillmere::text
