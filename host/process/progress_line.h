// One line on the terminal about work that takes long.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "host/process/journal.h"

namespace qcalc {

/// What the supervisor shows while a worker works, on standard error, and only when that is a terminal.
class ProgressLine {
 public:
  /// `items` are the names of what is in work, by the journal's number.
  explicit ProgressLine(const std::vector<std::string>& items);

  /// To be called some times a second. Nothing shows in the first second.
  void Show(Journal& journal);

 private:
  const std::vector<std::string>& items_;
  const bool isTerminal_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::string shown_;
};

/// The line's text: "book.calc:12, 3,200,000 rows loaded, 40,000 formulas calculated, 12 s".
std::string DescribeProgress(const std::string& item, const Journal& journal, std::chrono::seconds elapsed);

/// Takes the line away, if one shows, before something else is written to the terminal.
void EraseProgress(Journal& journal);

}  // namespace qcalc
