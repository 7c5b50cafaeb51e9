// Cases written down as a text, for tests of what makes one text of another.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qcalc {

/// The cases of a table, each `INPUT -> EXPECTED` without the blanks around either; " | " and line ends stand between.
inline std::vector<std::pair<std::string, std::string>> CasesOf(std::string_view table) {
  constexpr std::string_view kArrow = " -> ";
  const auto trimmed = [](std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
  };
  std::vector<std::pair<std::string, std::string>> cases;
  while (!table.empty()) {
    const std::size_t end = std::min({table.find('\n'), table.find(" | "), table.size()});
    const std::string_view written = table.substr(0, end);
    table.remove_prefix(std::min(end + (table.substr(end).starts_with(" | ") ? 3 : 1), table.size()));
    if (trimmed(written).empty()) continue;
    const std::size_t arrow = written.find(kArrow);
    if (arrow == written.npos) throw std::invalid_argument("no case: " + std::string(written));
    cases.emplace_back(trimmed(written.substr(0, arrow)), trimmed(written.substr(arrow + kArrow.size())));
  }
  return cases;
}

}  // namespace qcalc
