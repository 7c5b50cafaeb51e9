// Runs the commands of one script and keeps what they work on.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/scripts/parser.h"
#include "host/scripts/report.h"
#include "host/scripts/session.h"

namespace qcalc {

/// A command that cannot be carried out for a reason that the script's author must know: an unreadable file, a setting
/// that comes too late.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class ScriptRunner {
 public:
  /// `name` stands in messages; `folder` is where relative paths of files start.
  ScriptRunner(std::string name, std::filesystem::path folder, const std::filesystem::path& addin, Report& report)
      : name_(std::move(name)), folder_(std::move(folder)), session_(addin), report_(report) {}

  /// Runs all commands and closes the add-in. Throws AddinFailure, and ScriptError with the place in its text.
  void Run(const std::vector<ScriptCommand>& commands);

  Session& ItsSession() { return session_; }
  const std::filesystem::path& Folder() const { return folder_; }
  void BeginCase(std::string name);
  /// The name of the case the first time it is asked for, empty afterwards.
  std::string TakeHeading() { return std::exchange(heading_, {}); }

  /// Evaluates by `work` and keeps its result, or reports why there is none. `formula` is its text.
  void Evaluate(const std::string& formula, const std::function<Value()>& work);

  /// The last result as it was returned; null when there is none.
  const Value* Result() const { return result_ ? &*result_ : nullptr; }
  /// The last result with references read.
  Value Contents() { return session_.Contents(*result_); }
  const std::string& LastFormula() const { return formula_; }

  /// Counts an expectation on the last result, and prints it when it failed. Without a result it has failed; but when
  /// the formula could not be evaluated, which is a failure already, what is expected of it is passed over.
  void Expect(bool isMet, const std::string& expected, const std::string& got);
  /// The same, with what it was about in place of the formula.
  void ExpectAbout(const std::string& subject, bool isMet, const std::string& expected, const std::string& got);
  /// A failure of a command that needs a result; passed over likewise.
  void Fail(const std::string& sentence);

  /// A written reference as cells, its sheet made if need be.
  Reference Resolve(const ReferenceText& text);

 private:
  /// A complaint is one failure the first time that it comes, and counted afterwards.
  void ReportComplaints();
  ScriptPlace Place() const { return {name_, line_, case_}; }

  std::string name_;
  std::filesystem::path folder_;
  Session session_;
  Report& report_;
  int line_ = 0;
  std::string case_;
  std::string heading_;
  std::string formula_;
  std::optional<Value> result_;
  std::map<std::string, int> told_;  // complaints, and how often each came
  bool isPassedOver_ = false;
  std::set<std::string> failuresInCells_;  // each is told once
};

}  // namespace qcalc
