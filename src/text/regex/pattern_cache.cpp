#include "text/regex/pattern_cache.h"

#include <cstddef>

#include "frame/convert/cell_text.h"
#include "frame/errors/attempt.h"
#include "frame/values/cell_copy.h"

namespace quillmere::text {
namespace {

constexpr std::size_t kMostPatterns = 1'024;

}  // namespace

const RegexPattern* PatternCache::Find(const XLOPER12& cell) {
  if (&cell == latestCell_) return latest_;  // one expression for many texts
  NumberTextBuffer number;
  AssignText(expression_, TextForm(cell, number));
  auto found = patterns_.find(expression_);
  if (found == patterns_.end()) {
    if (patterns_.size() == kMostPatterns) patterns_.clear();
    std::unique_ptr<const RegexPattern> pattern;
    RunsWithout<CXlBadRegexException>(
        [&] { pattern = std::make_unique<RegexPattern>(expression_, budget_, letterCase_, extent_); });
    found = patterns_.emplace(expression_, std::move(pattern)).first;
  }
  latestCell_ = &cell;
  return latest_ = found->second.get();
}

}  // namespace quillmere::text
