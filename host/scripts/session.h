// One calculating session: a workbook, the add-in on top of it, and where formulas stand.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/addin/addin.h"
#include "host/calculation/function_profile.h"
#include "host/calculation/recalculation.h"
#include "host/calculation/unknown_names.h"
#include "host/dialogs/function_dialog.h"
#include "host/objects/object_model.h"

namespace qcalc {

/// The add-in did not load, or xlAutoOpen failed.
class AddinFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct BookCalculation {
  int threads = 1;
  std::size_t mostBytes = std::numeric_limits<std::size_t>::max();  ///< CalculationSettings'
  bool uses1904 = false;
  FunctionProfile* profile = nullptr;
};

/// Starts with the empty book `Book1` and its sheet `Sheet1`. The add-in is loaded when it is first needed.
class Session {
 public:
  explicit Session(std::filesystem::path addinPath);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Loads and opens the add-in unless that has been done. Throws AddinFailure.
  void Open();
  /// Loads the library unless that has been done, and calls xlAutoOpen with callbacks counted and failing as told; what
  /// that returns.
  int CallOpen();
  /// Calls another entry point of the loaded add-in, such as xlAutoRemove, with callbacks counted and failing as told;
  /// what it returns, nothing when the add-in is not loaded or has no such export.
  std::optional<int> CallEntryPoint(const char* name);
  std::optional<int> CallClose() { return CallEntryPoint("xlAutoClose"); }
  /// Closes and unloads the add-in, if it is loaded, then loads and opens it, `count` times. Throws AddinFailure.
  void Reload(int count);
  /// Closes the dialog, closes and unloads the add-in, if it is loaded, and closes the account of the loans.
  void Finish();

  /// Calculates what is due, then evaluates on the main thread with callbacks counted and failing as told. The result
  /// may be a reference. Throws FormulaError and AddinFailure.
  Value Evaluate(const Formula& formula);
  /// Evaluates on the main thread as Excel runs a macro: commands of the add-in are found beside its functions.
  Value Run(const Formula& formula);
  /// Makes everything ready for evaluations, on several threads at once too: the add-in, the cells that are due, the
  /// caller's sheet.
  EvaluationContext Prepare();
  /// The same, beside the counts and failures of callbacks.
  Value EvaluateQuietly(const Formula& formula);
  /// Calculates what is due in the open books, as books from files: functions that nobody knows are failures.
  CalculationOutcome CalculateBooks(const BookCalculation& settings);
  /// Evaluates `count` times in a row and writes each result into the calling cells before the next.
  Value Recalculate(int count, const Formula& formula);
  /// Evaluates `count` times on each of `threads` threads at once. All results, the first one first of all; the others
  /// only as far as they differ from it.
  std::vector<Value> EvaluateInParallel(int threads, int count, const Formula& formula);
  /// Makes the formula's outermost add-in call `count` times. Throws FormulaError when it makes none.
  Timing Time(int count, const Formula& formula, std::string& functionName);

  /// Shows a function of the add-in in the Function Arguments dialog, which is opened unless one is open. Throws
  /// FormulaError when there is no such function, and AddinFailure.
  void ShowDialog(XStringView function, XString title, bool isLabelled);
  /// The dialog that was opened last, perhaps closed by now; throws std::runtime_error when none was.
  IFunctionDialog& Dialog();
  void CloseDialog() { dialog_.reset(); }

  /// Sentences about names in the formulas evaluated so far that nobody knows, with near ones. Each name once.
  std::vector<std::string> TakeHints();

  /// Why formulas in cells could not be calculated the last time; what reads them cannot be evaluated either.
  const std::vector<std::string>& FailuresInCells() const { return failures_; }

  /// Why a formula that met such a cell has no value.
  std::string Describe(const UncalculatedCell& cell) const;

  /// What the value stands for where no reference is wanted.
  Value Contents(const Value& value) const { return Dereference(value, host_.workbooks); }

  HostState& Host() { return host_; }
  Workbooks& ItsWorkbooks() { return host_.workbooks; }
  Addin& ItsAddin() { return addin_; }
  ObjectModel& Objects() { return objects_; }
  Sheet& CurrentSheet() { return *sheet_; }
  NamedValues& Names() { return names_; }

  /// Unqualified references mean this sheet from now on. The add-in hears of it when it is another one.
  void SelectSheet(Sheet& sheet);
  /// Formulas that follow are called from there; an empty reference means A1 of the sheet Calc.
  void SetCaller(Reference caller) { caller_ = std::move(caller); }

 private:
  EvaluationContext Context();
  int LoadAndOpen();
  /// Runs the macro that stands in a property of that name, if any.
  void RaiseEvent(XStringView name);
  Value EvaluateIn(const EvaluationContext& context, const Formula& formula);
  std::vector<std::string> KnownNames(UnknownNames::Kind kind) const;

  std::filesystem::path addinPath_;
  HostState host_;
  ObjectModel objects_;
  Addin addin_;
  NamedValues names_;
  UnknownNames unknown_;
  std::vector<std::string> failures_;
  Sheet* sheet_;
  Reference caller_;
  bool isOpen_ = false;
  bool isClosed_ = false;   ///< since it was opened
  bool isRemoved_ = false;  ///< likewise, and before it was closed
  std::unique_ptr<IFunctionDialog> dialog_;
};

}  // namespace qcalc
