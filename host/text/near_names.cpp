#include "host/text/near_names.h"

#include <algorithm>
#include <utility>

#include "host/text/letter_case.h"

namespace qcalc {
namespace {

constexpr std::size_t kMostNames = 3;
// One mistake for so many letters.
constexpr std::size_t kLettersPerMistake = 3;

std::size_t Distance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> before, last(right.size() + 1), next(right.size() + 1);
  for (std::size_t j = 0; j <= right.size(); ++j) last[j] = j;
  const auto same = [&](std::size_t i, std::size_t j) { return SmallLetter(left[i]) == SmallLetter(right[j]); };
  for (std::size_t i = 0; i < left.size(); ++i) {
    next[0] = i + 1;
    for (std::size_t j = 0; j < right.size(); ++j) {
      next[j + 1] = std::min({last[j + 1] + 1, next[j] + 1, last[j] + !same(i, j)});
      if (i > 0 && j > 0 && same(i, j - 1) && same(i - 1, j)) next[j + 1] = std::min(next[j + 1], before[j - 1] + 1);
    }
    before = std::exchange(last, next);
  }
  return last[right.size()];
}

}  // namespace

std::vector<std::string> NearNames(std::string_view written, const std::vector<std::string>& known) {
  const std::size_t most = std::max<std::size_t>(1, written.size() / kLettersPerMistake);
  std::vector<std::pair<std::size_t, std::string>> found;
  for (const std::string& name : known) {
    const std::size_t longer = std::max(name.size(), written.size()), shorter = std::min(name.size(), written.size());
    if (longer - shorter > most) continue;
    if (const std::size_t distance = Distance(written, name); distance <= most) found.emplace_back(distance, name);
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  std::vector<std::string> names;
  for (const auto& [distance, name] : found)
    if (names.size() < kMostNames) names.push_back(name);
  return names;
}

std::string NearNamesHint(std::string_view written, const std::vector<std::string>& known) {
  std::string hint;
  for (const std::string& name : NearNames(written, known)) hint += (hint.empty() ? "; near names: " : ", ") + name;
  return hint;
}

}  // namespace qcalc
