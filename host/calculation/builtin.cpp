#include "host/calculation/builtin.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/text/utf8.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

// Their rules are many and exact: nothing stands in for them until they are there.
constexpr std::array<std::string_view, 3> kNotOffered = {"COUNTA", "TEXT", "VALUE"};

bool IsNamed(XStringView name, std::string_view capitals) {
  return std::equal(name.begin(), name.end(), capitals.begin(), capitals.end(), [](XCHAR unit, char capital) {
    return unit == static_cast<XCHAR>(capital) || FoldUnit(unit) == FoldUnit(static_cast<XCHAR>(capital));
  });
}

}  // namespace

const Builtin* FindBuiltin(XStringView name) {
  for (const auto family : {ReferenceBuiltins(), NumberBuiltins(), TextBuiltins(), LookupBuiltins()})
    for (const Builtin& builtin : family)
      if (IsNamed(name, builtin.name)) return &builtin;
  return nullptr;
}

bool IsBuiltinNotOffered(XStringView name) {
  return std::any_of(kNotOffered.begin(), kNotOffered.end(),
                     [name](std::string_view entry) { return IsNamed(name, entry); });
}

Value ScalarOperand(const BuiltinCall& call, std::size_t index) {
  return index < call.operands.size() ? Dereference(call.operands[index], *call.context.workbooks) : Value::Missing();
}

std::vector<Value> ScalarOperands(const BuiltinCall& call) {
  std::vector<Value> values;
  for (const Value& operand : call.operands) values.push_back(Dereference(operand, *call.context.workbooks));
  return values;
}

Value ToWholeNumber(const CellView& cell, std::int32_t& whole) {
  const Value number = ToNumber(cell);
  if (number.IsError()) return number;
  const double cut = std::trunc(number.AsNumber());
  constexpr double kLimit = 2147483647;
  if (!(std::fabs(cut) <= kLimit)) return Value::Error(xlerrValue);
  whole = static_cast<std::int32_t>(cut);
  return {};
}

}  // namespace qcalc
