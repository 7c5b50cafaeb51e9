// The outcome of scripts: expectations met and failed, printed as they come.
#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace qcalc {

/// Where in a script something happened.
struct ScriptPlace {
  std::string script;
  int line = 0;
  std::string caseName;  ///< may be empty
};

class Report {
 public:
  explicit Report(std::ostream& output) : output_(output) {}

  void Pass() { ++passed_; }

  /// Counts a failure and prints it: its place, a sentence, and lines of a title and a text each.
  void Fail(const ScriptPlace& place, const std::string& sentence,
            const std::vector<std::pair<std::string, std::string>>& details = {});

  /// Prints the closing line: "N passed, N failed".
  void Close() const;

  int Passed() const { return passed_; }
  int Failed() const { return failed_; }

 private:
  std::ostream& output_;
  int passed_ = 0;
  int failed_ = 0;
};

}  // namespace qcalc
