#include "host/scripts/report.h"

#include <algorithm>
#include <ostream>

#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

// Results of a million cells are nothing to read in a log.
constexpr std::size_t kMaxShown = 2000;

std::string Shortened(const std::string& text) {
  if (text.size() <= kMaxShown) return ShownMessage(text);
  std::size_t end = kMaxShown;
  while (end > 0 && IsInsideCharacter(text[end])) --end;
  return ShownMessage(text.substr(0, end)) + " ... (" + std::to_string(text.size()) + " bytes)";
}

}  // namespace

void Report::Fail(const ScriptPlace& place, const std::string& sentence,
                  const std::vector<std::pair<std::string, std::string>>& details) {
  ++tally_.failed;
  output_ << place.script << ":" << place.line << ": FAILED";
  if (!place.caseName.empty()) output_ << " [" << ShownMessage(place.caseName) << "]";
  output_ << ": " << ShownMessage(sentence) << "\n";
  std::size_t widest = 0;
  for (const auto& [title, text] : details) widest = std::max(widest, title.size());
  for (const auto& [title, text] : details)
    output_ << "  " << title << ":" << std::string(widest - title.size() + 1, ' ') << Shortened(text) << "\n";
  output_.flush();
}

void Report::Note(const std::string& script, const std::string& sentence) {
  output_ << script << ": " << sentence << std::endl;
}

void Report::Close() const { output_ << tally_.passed << " passed, " << tally_.failed << " failed\n" << std::flush; }

}  // namespace qcalc
