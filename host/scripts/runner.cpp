#include "host/scripts/runner.h"

#include <iostream>

#include "host/addin/evaluation_watch.h"

namespace qcalc {

void ScriptRunner::Run(const std::vector<ScriptCommand>& commands) {
  for (const ScriptCommand& command : commands) {
    line_ = command.line;
    ProcessJournal().line = line_;
    try {
      command.action(*this);
    } catch (const ScriptError& error) {
      throw ScriptError(name_ + ":" + std::to_string(line_) + ": " + error.what());
    } catch (const AddinFailure&) {
      throw;
    } catch (const std::exception& error) {
      report_.Fail(Place(), error.what());
    } catch (const UncalculatedCell& cell) {
      report_.Fail(Place(), "the formula has no value: " + session_.Describe(cell));
    }
    ReportComplaints();
  }
  {
    const EvaluationWatch last(session_.Host());  // what is still armed has nothing to meet
  }
  session_.Finish();
  BeginCase("end of the script");
  ReportComplaints();
  for (const auto& [text, count] : told_)
    if (count > 1) report_.Note(name_, "in all " + std::to_string(count) + " times: " + text);
}

void ScriptRunner::BeginCase(std::string name) {
  case_ = heading_ = std::move(name);
  ProcessJournal().caseName.Set(case_);
}

void ScriptRunner::Evaluate(const std::string& formula, const std::function<Value()>& work) {
  formula_ = formula;
  result_.reset();
  isPassedOver_ = false;
  try {
    result_ = work();
    return;
  } catch (const FormulaError& error) {
    report_.Fail(Place(), "the formula could not be evaluated", {{"formula", formula_}, {"reason", error.what()}});
  } catch (const UncalculatedCell& cell) {
    // The formula in the cell is the failure, which is told by itself.
    if (session_.FailuresInCells().empty())
      report_.Fail(Place(), "the formula could not be evaluated",
                   {{"formula", formula_}, {"reason", session_.Describe(cell)}});
  } catch (const NotThreadSafe&) {
    report_.Fail(Place(), "a thread-safe function reached one that is not", {{"formula", formula_}});
  }
  isPassedOver_ = true;
}

void ScriptRunner::Expect(bool isMet, const std::string& expected, const std::string& got) {
  if (isPassedOver_) return;
  ExpectAbout(formula_, isMet, expected, got);
}

void ScriptRunner::ExpectAbout(const std::string& subject, bool isMet, const std::string& expected,
                               const std::string& got) {
  if (isMet)
    report_.Pass();
  else
    report_.Fail(Place(), "not as expected", {{"formula", subject}, {"expected", expected}, {"got", got}});
}

void ScriptRunner::Fail(const std::string& sentence) {
  if (!isPassedOver_) report_.Fail(Place(), sentence, {{"formula", formula_}});
}

Reference ScriptRunner::Resolve(const ReferenceText& text) {
  return ResolveReference(text, session_.ItsWorkbooks(), session_.CurrentSheet());
}

void ScriptRunner::ReportComplaints() {
  for (const std::string& reason : session_.FailuresInCells())
    if (failuresInCells_.insert(reason).second)
      report_.Fail(Place(), "a formula in a cell could not be evaluated", {{"reason", reason}});
  for (const std::string& hint : session_.TakeHints()) std::cerr << name_ << ":" << line_ << ": " << hint << std::endl;
  for (const std::string& text : TakeUnmet(session_.Host())) report_.Fail(Place(), text);
  for (const auto& [text, count] : session_.Host().complaints.TakeCounted()) {
    int& told = told_[text];
    if (told == 0) report_.Fail(Place(), text);
    told += count;
  }
}

}  // namespace qcalc
