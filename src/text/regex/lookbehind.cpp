#include "text/regex/lookbehind.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace quillmere::text {
namespace {

constexpr std::ptrdiff_t kMost = 16;

bool HasLookbehind(XStringView expression) {
  return expression.find(XTEXT("?<=")) != XStringView::npos || expression.find(XTEXT("?<!")) != XStringView::npos;
}

/// Bars, and the bars that \R stands for, in whatever place.
std::ptrdiff_t AlternativesIn(XStringView expression) {
  std::ptrdiff_t count = std::count(expression.begin(), expression.end(), XTEXT('|'));
  for (std::size_t at = 0; (at = expression.find(XTEXT("\\R"), at)) != XStringView::npos; at += 2) ++count;
  return count;
}

/// Walks through an expression as the library does, group by group.
class Scan {
 public:
  explicit Scan(XStringView expression) : rest_(expression) {}

  bool FindsTooMany() {
    while (!rest_.empty() && !tooMany_) Step();
    while (!groups_.empty()) CloseGroup();
    return tooMany_;
  }

 private:
  void Step() {
    const XCHAR unit = rest_.front();
    rest_.remove_prefix(1);
    if (unit == XTEXT('\\'))
      SkipEscape();
    else if (unit == XTEXT('['))
      SkipSet();
    else if (unit == XTEXT('('))
      OpenGroup();
    else if (unit == XTEXT(')') && !groups_.empty())
      CloseGroup();
    else if (unit == XTEXT('|'))
      ++alternatives_;
  }

  /// Takes `start` from the rest, if it begins so.
  bool Skip(XStringView start) {
    if (!rest_.starts_with(start)) return false;
    rest_.remove_prefix(start.size());
    return true;
  }
  /// All up to `end` and with it, or all there is.
  void SkipBehind(XStringView end) {
    const std::size_t at = rest_.find(end);
    rest_.remove_prefix(at == XStringView::npos ? rest_.size() : at + end.size());
  }

  void SkipEscape() {
    if (Skip(XTEXT("Q"))) return SkipBehind(XTEXT("\\E"));
    if (rest_.starts_with(XTEXT('R'))) ++alternatives_;
    const bool takesName = !rest_.empty() && XStringView(XTEXT("gkNpPx")).find(rest_.front()) != XStringView::npos;
    rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
    if (takesName) SkipName();
  }

  void SkipName() {
    if (Skip(XTEXT("{"))) return SkipBehind(XTEXT("}"));
    if (Skip(XTEXT("<"))) return SkipBehind(XTEXT(">"));
    if (Skip(XTEXT("'"))) return SkipBehind(XTEXT("'"));
  }

  void SkipSet() {
    Skip(XTEXT("^"));
    Skip(XTEXT("]"));  // first in a set it is one of its members
    while (!rest_.empty() && !Skip(XTEXT("]"))) {
      if (Skip(XTEXT("[:")))
        SkipBehind(XTEXT(":]"));
      else if (Skip(XTEXT("[.")))
        SkipBehind(XTEXT(".]"));
      else if (Skip(XTEXT("[=")))
        SkipBehind(XTEXT("=]"));
      else if (Skip(XTEXT("\\")))
        SkipEscapeInSet();
      else
        rest_.remove_prefix(1);
    }
  }

  void SkipEscapeInSet() {
    if (Skip(XTEXT("N{")) || Skip(XTEXT("x{"))) return SkipBehind(XTEXT("}"));
    rest_.remove_prefix(std::min<std::size_t>(1, rest_.size()));
  }

  void OpenGroup() {
    constexpr std::ptrdiff_t kNoLookbehind = -1;
    if (Skip(XTEXT("?#"))) return SkipBehind(XTEXT(")"));
    std::ptrdiff_t before = kNoLookbehind;
    if (Skip(XTEXT("?<=")) || Skip(XTEXT("?<!")))
      before = alternatives_;
    else if (Skip(XTEXT("?&")) || Skip(XTEXT("?P>")) || Skip(XTEXT("R&")))
      return SkipBehind(XTEXT(")"));
    else if (Skip(XTEXT("?")) || groupIsCondition_)
      SkipName();
    groupIsCondition_ = rest_.starts_with(XTEXT('('));
    groups_.push_back(before);
  }

  void CloseGroup() {
    const std::ptrdiff_t before = groups_.back();
    groups_.pop_back();
    if (before >= 0 && alternatives_ - before > kMost) tooMany_ = true;
  }

  XStringView rest_;
  std::ptrdiff_t alternatives_ = 0;     ///< met so far
  std::vector<std::ptrdiff_t> groups_;  ///< of each open lookbehind what was met before it, -1 for another group
  bool groupIsCondition_ = false;       ///< whether the next group is
  bool tooMany_ = false;
};

/// Whether the expression may say that # begins a comment from there on.
bool MayHaveLineComments(XStringView expression) {
  for (std::size_t at = 0; (at = expression.find(XTEXT("(?"), at)) != XStringView::npos; ++at) {
    const XStringView options = expression.substr(at + 2);
    const XStringView letters = options.substr(0, options.find_first_not_of(XTEXT("imsx-")));
    if (letters.find(XTEXT('x')) != XStringView::npos) return true;
  }
  return false;
}

}  // namespace

bool HasMeasurableLookbehinds(XStringView expression) {
  if (!HasLookbehind(expression) || AlternativesIn(expression) <= kMost) return true;
  return !MayHaveLineComments(expression) && !Scan(expression).FindsTooMany();
}

}  // namespace quillmere::text
