// What the functions under test are called with: every kind of value that Excel hands over, and plain calls to start
// from.
#pragma once

#include <array>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "host/scripts/session.h"

namespace qcalc::fault {

struct NamedValue {
  std::string name;  ///< as it stands in the description of a call
  Value value;
  bool isLarge = false;  ///< two such in one call may give a result that takes long to copy
};

/// A call that does something sensible, from which others differ in one argument or a few.
enum class PlainCall {
  kMissing,  ///< all left out
  kScalars,  ///< numbers, texts and booleans as the argument's letter wants them
  kTables,   ///< the same table everywhere, as an array or as a reference
  kExample,  ///< what the function's own example calls it with; kTables when no example of it is known
  kCells,    ///< the same, with its arrays in cells wherever a reference is taken
};
inline constexpr std::array kPlainCalls = {PlainCall::kMissing, PlainCall::kScalars, PlainCall::kTables,
                                           PlainCall::kExample, PlainCall::kCells};

class CallValues {
 public:
  /// Fills Sheet1 and the sheet Data of the session's workbook. `session` outlives this.
  explicit CallValues(Session& session);

  /// Takes the operands of every example in a script: the lines `eval =FORMULA`. The add-in is open.
  void ReadExamples(const std::string& path);

  /// Every kind of value that one argument of that function may be given.
  std::span<const NamedValue> KindsFor(const RegisteredFunction& function, std::size_t argument) const;

  std::vector<NamedValue> PlainOperands(const RegisteredFunction& function, PlainCall plain) const;

  /// What is evaluated stands in the book Book1, and is called from cell A1 of the sheet Calc.
  const EvaluationContext& Context() const { return context_; }

 private:
  void FillSheets();
  void MakeKinds();
  Value InCells(const Value& array);
  NamedValue PlainOperand(const RegisteredFunction& function, std::size_t argument, PlainCall plain) const;

  Session& session_;
  Reference table_;
  std::vector<NamedValue> values_;      ///< for an argument that takes values
  std::vector<NamedValue> references_;  ///< those, and references
  std::map<std::pair<XString, PlainCall>, std::vector<NamedValue>> examples_;
  std::int32_t nextRow_ = 0;  ///< of the sheet for the examples' arrays
  EvaluationContext context_;
};

/// "VSTACK(missing, the table, 1e300)": what a failing call is known by.
std::string DescribeCall(const RegisteredFunction& function, std::span<const NamedValue> operands);

/// The values alone, in order.
std::vector<Value> ValuesOf(std::span<const NamedValue> operands);

}  // namespace qcalc::fault
