// Wildcard patterns: * for any characters or none, ? for any one character, nothing else special and no escape.
#pragma once

#include <cstddef>
#include <vector>

#include "text/segment_search.h"
#include "text/text_matcher.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Whether a text holds a wildcard character.
bool HasWildcards(XStringView text);

/// A pattern made ready for matching whole texts against it. A text matches as the anchored regular expression does in
/// which * is .* and ? is . (any unit, line ends included). Without regard to case, units are compared by their lower
/// case, of every letter, not A to Z alone. No pattern makes matching go back over the text: each unit is met once by a
/// segment of the pattern, the units between two stars. A pattern without wildcards matches that text alone, exactly or
/// in any case. A text longer than a cell's that is not rejected at once is CXlStringTooLongException.
class WildcardPattern : public TextMatcher {
 public:
  WildcardPattern(XStringView pattern, bool caseSensitive);

 private:
  bool MatchesInFull(XStringView text) const override;
  template <bool caseSensitive>
  bool MatchesCased(XStringView text) const;
  bool MatchesMiddle(const ShortText& text, std::size_t size) const;
  template <std::size_t kRoom>
  bool MatchesMiddle(XStringView middle) const;

  bool caseSensitive_;
  bool endsAreTold_;  ///< of texts of four units and more by the reject, so that nothing but the middle is left to test
  XString prefix_;    ///< before the first star; all units here are in lower case unless case counts
  XString suffix_;    ///< behind the last star
  std::vector<SegmentSearch> middle_;  ///< between two stars, none empty
};

}  // namespace quillmere::text
