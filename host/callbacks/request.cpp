#include "host/callbacks/request.h"

#include "host/formulas/reference_text.h"
#include "host/text/counted.h"

namespace qcalc {

bool CallbackRequest::IsOmitted(std::size_t index) const {
  if (index >= arguments.size()) return true;
  const auto* value = std::get_if<Value>(&arguments[index]);
  return value && (value->IsMissing() || value->IsEmpty());
}

std::optional<double> CallbackRequest::NumberAt(std::size_t index) const {
  if (index >= arguments.size()) return std::nullopt;
  if (const auto* integer = std::get_if<ApiInteger>(&arguments[index])) return integer->number;
  const auto* value = std::get_if<Value>(&arguments[index]);
  return value && value->IsNumber() ? std::optional(value->AsNumber()) : std::nullopt;
}

std::optional<bool> CallbackRequest::BooleanAt(std::size_t index) const {
  if (index >= arguments.size()) return std::nullopt;
  const auto* value = std::get_if<Value>(&arguments[index]);
  if (value && value->IsBoolean()) return value->AsBoolean();
  if (const auto number = NumberAt(index)) return *number != 0;
  return std::nullopt;
}

const XString* CallbackRequest::TextAt(std::size_t index) const {
  if (index >= arguments.size()) return nullptr;
  const auto* value = std::get_if<Value>(&arguments[index]);
  return value && value->IsText() ? &value->AsText() : nullptr;
}

const Reference* CallbackRequest::ReferenceAt(std::size_t index) const {
  if (index >= arguments.size()) return nullptr;
  const auto* value = std::get_if<Value>(&arguments[index]);
  return value && value->IsReference() ? &value->AsReference() : nullptr;
}

Value CallbackRequest::ValueAt(std::size_t index) const {
  if (index >= arguments.size()) return Value::Missing();
  if (const auto* value = std::get_if<Value>(&arguments[index])) return *value;
  if (const auto* integer = std::get_if<ApiInteger>(&arguments[index])) return Value::Number(integer->number);
  return Value::Error(xlerrValue);
}

const Sheet* CallbackRequest::SheetAt(std::size_t index) const {
  const Workbooks& workbooks = *Evaluation().workbooks;
  if (IsOmitted(index)) return Evaluation().sheet;
  if (const XString* name = TextAt(index)) {
    const auto [book, sheet] = SplitSheetName(*name);
    return workbooks.FindSheet(book, sheet, Evaluation().sheet);
  }
  if (const auto* sheet = std::get_if<ApiSheet>(&arguments[index]))
    return sheet->sheet ? workbooks.FindSheet(sheet->sheet) : Evaluation().sheet;
  const Reference* reference = ReferenceAt(index);
  return reference ? workbooks.FindSheet(reference->sheet) : nullptr;
}

void CallbackRequest::CheckCalculated(const Reference& reference) const {
  if (!MayReadOldValues()) qcalc::CheckCalculated(reference, *Evaluation().workbooks);
}

void CallbackRequest::Complain(const std::string& text) const {
  Host().complaints.Add(context.function + ": " + std::string(callback.name) + " " + text);
}

CallbackAnswer CallbackRequest::WrongArgument(std::size_t number, std::string_view expected) const {
  Complain("was given an argument " + std::to_string(number) + " that is not " + std::string(expected));
  return CallbackAnswer::Failure(xlretInvXloper);
}

CallbackAnswer CallbackRequest::WrongCount(std::size_t count) const {
  Complain("was given " + std::to_string(count) + " " + NounFor(static_cast<std::int64_t>(count), "argument"));
  return CallbackAnswer::Failure(xlretInvCount);
}

CallbackAnswer CallbackRequest::NotOffered(const std::string& what) const {
  Complain(what + " is not offered by this host");
  return CallbackAnswer::Failure(xlretFailed);
}

}  // namespace qcalc
