#include "host/process/progress_line.h"

#include <algorithm>
#include <cstdio>

#include "host/process/console.h"
#include "host/text/counted.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr std::chrono::seconds kQuiet{1};
constexpr std::size_t kWidestItem = 40;  // so that the line stays one on a terminal of 80 columns, long counts apart

/// The end of a name that is too long.
std::string Ending(const std::string& name) {
  if (name.size() <= kWidestItem) return name;
  std::size_t start = name.size() - kWidestItem;
  while (start < name.size() && IsInsideCharacter(name[start])) ++start;
  return "..." + name.substr(start);
}

/// "[#####---------------] 25,000 of 100,000 formulas": one that is calculated again counts again, up to all.
std::string Bar(const Journal& journal) {
  constexpr std::int64_t kWidth = 20;
  const std::int64_t due = journal.formulasDue;
  const std::int64_t done = std::min(journal.formulasCalculated.load(), due);
  const auto filled = static_cast<std::size_t>(done * kWidth / due);
  return "[" + std::string(filled, '#') + std::string(kWidth - filled, '-') + "] " + Grouped(done) + " of " +
         Grouped(due) + " formulas";
}

}  // namespace

ProgressLine::ProgressLine(const std::vector<std::string>& items) : items_(items), isTerminal_(ErrorsGoToTerminal()) {}

void ProgressLine::Show(Journal& journal) {
  const auto elapsed = std::chrono::steady_clock::now() - start_;
  if (!isTerminal_ || elapsed < kQuiet) return;
  const auto item = static_cast<std::size_t>(journal.item.load());
  const std::string text = DescribeProgress(item < items_.size() ? items_[item] : std::string(), journal,
                                            std::chrono::duration_cast<std::chrono::seconds>(elapsed));
  if (text == shown_ && journal.progressWidth > 0) return;
  EraseProgress(journal);
  shown_ = text;
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
  journal.progressWidth = static_cast<std::int32_t>(text.size());
}

std::string DescribeProgress(const std::string& item, const Journal& journal, std::chrono::seconds elapsed) {
  std::string text = Ending(item);
  if (journal.line > 0) text += ":" + std::to_string(journal.line);
  if (journal.rowsLoaded > 0) text += ", " + Grouped(journal.rowsLoaded) + " rows loaded";
  if (journal.formulasDue > 0) return text + " " + Bar(journal) + ", " + std::to_string(elapsed.count()) + " s";
  if (journal.formulasCalculated > 0) text += ", " + Grouped(journal.formulasCalculated) + " formulas calculated";
  return text + ", " + std::to_string(elapsed.count()) + " s";
}

void EraseProgress(Journal& journal) {
  // Blanks, which a console without escape sequences knows too.
  const std::int32_t width = journal.progressWidth.exchange(0);
  if (width == 0) return;
  std::fprintf(stderr, "\r%*s\r", static_cast<int>(width), "");
  std::fflush(stderr);
}

}  // namespace qcalc
