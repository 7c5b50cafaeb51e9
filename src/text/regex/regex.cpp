#include "text/regex/regex.h"

#include "frame/entry/thread_stack.h"
#include "frame/values/cell_copy.h"
#include "text/regex/compiled_regex.h"
#include "text/regex/lookbehind.h"

namespace quillmere::text {
namespace {

/// What the library takes of the stack for groups nested as deeply as it allows, and a throw from there.
constexpr std::size_t kStackToCompile = 256 * 1024;

/// Whether the expression may call one of its groups, or itself.
bool MayCall(XStringView expression) {
  for (std::size_t at = 0; (at = expression.find(XTEXT("(?"), at)) != XStringView::npos; ++at) {
    const XStringView what = expression.substr(at + 2, 1);
    if (what.find_first_of(XTEXT("R&P+-0123456789")) != XStringView::npos) return true;
  }
  return false;
}

}  // namespace

Regex::Regex(XStringView expression, LetterCase letterCase) : compiled_(std::make_unique<Compiled>()) {
  // A copy: the host's memory is read here alone, and the library looks at the unit behind the last.
  XString own;
  AssignText(own, expression);
  if (!HasMeasurableLookbehinds(own))
    throw CXlBadRegexException(XTEXT("Invalid lookbehind assertion encountered in the regular expression."));
  if (StackLeft() < kStackToCompile) throw CXlBadRegexException(LibraryMessage(boost::regex_constants::error_stack));
  compiled_->stepLength = MayCall(own) ? StepLength::kAny : StepLength::kShort;
  const auto anyCase = letterCase == LetterCase::kIgnored ? boost::regex_constants::icase : 0;
  CompileByLibrary([&] { compiled_->expression.assign(own, boost::regex_constants::perl | anyCase); });
  compiled_->linear = LinearMatcher::Make(own, compiled_->expression);
}

Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;
Regex::~Regex() = default;

bool Regex::IsFoundIn(XStringView text, RegexBudget& budget) const {
  if (LinearMatcher* const linear = compiled_->Linear()) return linear->Search().Answer(text);
  RegexSteps steps(text.size(), compiled_->stepLength, budget);
  // Asked for any match alone, the library passes over some: behind a repeat with a bound it begins too far on.
  return MatchByLibrary([&] {
    return boost::regex_search(RegexPlace(text.data(), steps), RegexPlace(text.data() + text.size(), steps),
                               compiled_->match, compiled_->expression);
  });
}

bool Regex::IsWholeOf(XStringView text, RegexBudget& budget) const {
  if (LinearMatcher* const linear = compiled_->Linear()) return linear->Whole().Answer(text);
  RegexSteps steps(text.size(), compiled_->stepLength, budget);
  return MatchByLibrary([&] {
    return boost::regex_match(RegexPlace(text.data(), steps), RegexPlace(text.data() + text.size(), steps),
                              compiled_->match, compiled_->expression);
  });
}

void Regex::AreMatched(RegexExtent extent, const XStringView* texts, std::size_t count, bool* answers,
                       RegexBudget& budget) const {
  const bool isWhole = extent == RegexExtent::kWhole;
  if (LinearMatcher* const linear = compiled_->Linear())
    return (isWhole ? linear->Whole() : linear->Search()).Answer(texts, count, answers);
  for (std::size_t text = 0; text < count; ++text)
    answers[text] = isWhole ? IsWholeOf(texts[text], budget) : IsFoundIn(texts[text], budget);
}

}  // namespace quillmere::text
