// The outcome of scripts: expectations met and failed, printed as they come.
#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "host/process/journal.h"

namespace qcalc {

/// Where in a script something happened.
struct ScriptPlace {
  std::string script;
  int line = 0;
  std::string caseName;  ///< may be empty
};

class Report {
 public:
  /// Both outlive this.
  Report(std::ostream& output, Tally& tally) : output_(output), tally_(tally) {}

  void Pass() { ++tally_.passed; }

  /// Counts a failure and prints it: its place, a sentence, and lines of a title and a text each.
  void Fail(const ScriptPlace& place, const std::string& sentence,
            const std::vector<std::pair<std::string, std::string>>& details = {});

  /// Prints a sentence about a script that counts nothing.
  void Note(const std::string& script, const std::string& sentence);

  /// Prints the closing line: "N passed, N failed".
  void Close() const;

 private:
  std::ostream& output_;
  Tally& tally_;
};

}  // namespace qcalc
