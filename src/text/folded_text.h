// One text as a pattern: it matches itself, in any case of the letters A to Z.
#pragma once

#include <cstddef>

#include "frame/text/fold_case.h"
#include "text/text_matcher.h"

namespace quillmere::text {

/// Matches the texts that EqualFolded takes for equal to one, which must outlive it.
class FoldedText : public TextMatcher {
 public:
  explicit FoldedText(XStringView text) : text_(text) {
    QuickReject reject(text.size(), text.size());
    for (std::size_t place = 0; place < text.size(); ++place) {
      const auto at = static_cast<std::ptrdiff_t>(place);
      reject.Require(at, text[place], false);
      reject.Require(at - static_cast<std::ptrdiff_t>(text.size()), text[place], false);
    }
    RejectBy(reject);
  }

 private:
  bool MatchesInFull(XStringView text) const override { return EqualFolded(text, text_); }

  XStringView text_;
};

}  // namespace quillmere::text
