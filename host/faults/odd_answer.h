// Answers of a kind that the add-in did not ask for, as only a broken or a future Excel would give.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/api/api_value.h"

namespace qcalc {

enum class AnswerKind {
  kNumber,
  kText,
  kBoolean,
  kError,
  kArray,
  kReference,
  kSheet,  ///< a reference that names a sheet and no cells
  kMissing,
  kEmpty,
  kInteger,
  kHandle,  ///< xltypeBigData
};

/// The kind of that name: number, text, boolean, error, array, reference, sheet, missing, empty, integer, handle.
std::optional<AnswerKind> FindAnswerKind(std::string_view name);
/// All names, with commas between, for messages.
std::string AnswerKindNames();

/// A value of that kind; a reference is to A1:B2 of the sheet with that id.
ApiValue AnswerOf(AnswerKind kind, IDSHEET sheet);

}  // namespace qcalc
