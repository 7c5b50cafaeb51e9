#include "host/faults/odd_answer.h"

#include <utility>

namespace qcalc {
namespace {

constexpr std::pair<std::string_view, AnswerKind> kNames[] = {
    {"number", AnswerKind::kNumber},   {"text", AnswerKind::kText},       {"boolean", AnswerKind::kBoolean},
    {"error", AnswerKind::kError},     {"array", AnswerKind::kArray},     {"reference", AnswerKind::kReference},
    {"sheet", AnswerKind::kSheet},     {"missing", AnswerKind::kMissing}, {"empty", AnswerKind::kEmpty},
    {"integer", AnswerKind::kInteger}, {"handle", AnswerKind::kHandle},
};

Value SmallArray() {
  ArrayBuilder builder(2, 2);
  builder.Set(0, 0, CellView::Number(2.5));
  builder.Set(0, 1, CellView::Text(XTEXT("odd")));
  builder.Set(1, 0, CellView::Error(xlerrNA));
  builder.Set(1, 1, CellView());
  return Value::OfArray(builder.Finish());
}

}  // namespace

std::optional<AnswerKind> FindAnswerKind(std::string_view name) {
  for (const auto& [known, kind] : kNames)
    if (known == name) return kind;
  return std::nullopt;
}

std::string AnswerKindNames() {
  std::string names;
  for (const auto& [name, kind] : kNames) names += (names.empty() ? "" : ", ") + std::string(name);
  return names;
}

ApiValue AnswerOf(AnswerKind kind, IDSHEET sheet) {
  switch (kind) {
    case AnswerKind::kNumber:
      return Value::Number(-2.5);
    case AnswerKind::kText:
      return Value::Text(XTEXT("odd"));
    case AnswerKind::kBoolean:
      return Value::Boolean(true);
    case AnswerKind::kError:
      return Value::Error(xlerrNA);
    case AnswerKind::kArray:
      return SmallArray();
    case AnswerKind::kReference:
      return Value::OfReference({sheet, {{0, 0, 0, 1}}});
    case AnswerKind::kSheet:
      return ApiSheet{sheet};
    case AnswerKind::kMissing:
      return Value::Missing();
    case AnswerKind::kEmpty:
      return Value::Empty();
    case AnswerKind::kInteger:
      return ApiInteger{-3};
    case AnswerKind::kHandle:
      break;
  }
  return ApiHandle{nullptr};
}

}  // namespace qcalc
