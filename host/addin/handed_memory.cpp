#include "host/addin/handed_memory.h"

#include <algorithm>
#include <optional>
#include <span>

#include "host/api/oper_types.h"
#include "host/library/allocation.h"

namespace qcalc {
namespace {

constexpr std::size_t kMostElements = 4096;
constexpr const char* kCameBack = "that it had given back through xlFree";

std::string TooShort(const std::string& what, std::size_t bytes) {
  return what + " in a block of " + std::to_string(bytes) + " bytes";
}

/// A text in memory of which that many bytes from its start on are the add-in's.
template <typename Unit>
std::string DefectOfText(const Unit* text, std::size_t bytes) {
  if (bytes < sizeof(Unit)) return TooShort("a text", bytes);
  if (const std::size_t length = LengthOf(text); bytes / sizeof(Unit) <= length)
    return TooShort("a text of " + std::to_string(length) + " units", bytes);
  return {};
}

/// How many elements an array has; 0 when it has none, or a size that no array has.
template <typename Width>
std::size_t ElementsOf(const typename Width::Oper& oper) {
  const std::int64_t rows = oper.val.array.rows, columns = oper.val.array.columns;
  const bool hasSize = rows >= 1 && columns >= 1 && rows <= Width::kMaxArrayRows && columns <= Width::kMaxColumns;
  return hasSize && oper.val.array.lparray ? static_cast<std::size_t>(rows * columns) : 0;
}

/// The elements that are looked at: of a long array the first ones.
template <typename Width>
std::span<const typename Width::Oper> FirstElements(const typename Width::Oper& oper) {
  return {oper.val.array.lparray, std::min(ElementsOf<Width>(oper), kMostElements)};
}

/// A text by itself, or one of an array's, which may lie behind the elements in their block.
template <typename Unit>
std::string DefectOfText(const Unit* text, std::span<const std::byte> elements, const Loans& loans) {
  if (!text) return {};
  if (loans.CameBack(text)) return std::string("a text ") + kCameBack;
  const auto* const start = reinterpret_cast<const std::byte*>(text);
  if (start >= elements.data() && start < elements.data() + elements.size())
    return DefectOfText(text, static_cast<std::size_t>(elements.data() + elements.size() - start));
  const std::optional<std::size_t> bytes = RecentBlockBytes(text);
  return bytes ? DefectOfText(text, *bytes) : std::string();
}

template <typename Width>
std::string DefectOfArray(const typename Width::Oper& oper, const Loans& loans) {
  const auto& array = oper.val.array;
  if (loans.CameBack(array.lparray)) return std::string("an array ") + kCameBack;
  const std::optional<std::size_t> bytes = RecentBlockBytes(array.lparray);
  if (bytes && *bytes / sizeof(typename Width::Oper) < ElementsOf<Width>(oper))
    return TooShort("an array of " + std::to_string(array.rows) + " x " + std::to_string(array.columns), *bytes);
  const std::span block(reinterpret_cast<const std::byte*>(array.lparray), bytes.value_or(0));
  for (const auto& element : FirstElements<Width>(oper))
    if (TypeOf(element) == xltypeStr)
      if (std::string defect = DefectOfText(element.val.str, block, loans); !defect.empty())
        return "an array with " + defect;
  return {};
}

}  // namespace

template <typename Width>
std::string DefectOfMemory(const typename Width::Oper& oper, const Loans& loans) {
  switch (TypeOf(oper)) {
    case xltypeStr:
      return DefectOfText(oper.val.str, {}, loans);
    case xltypeMulti:
      return DefectOfArray<Width>(oper, loans);
    case xltypeRef: {
      const auto* const areas = oper.val.mref.lpmref;
      if (!areas) return {};
      if (loans.CameBack(areas)) return std::string("a reference ") + kCameBack;
      const std::optional<std::size_t> bytes = RecentBlockBytes(areas);
      const std::size_t start = offsetof(typename Width::ReferenceList, reftbl);
      if (bytes && (*bytes < start || (*bytes - start) / sizeof(typename Width::Rectangle) < areas->count))
        return TooShort("a reference to " + std::to_string(areas->count) + " areas", *bytes);
      return {};
    }
    default:
      return {};
  }
}

template <typename Width>
bool HoldsLentText(const typename Width::Oper& oper, const Loans& loans) {
  if (TypeOf(oper) != xltypeMulti || loans.IsLent(oper.val.array.lparray)) return false;
  const auto elements = FirstElements<Width>(oper);
  return std::any_of(elements.begin(), elements.end(), [&](const auto& element) {
    return TypeOf(element) == xltypeStr && element.val.str && loans.IsInLoan(element.val.str);
  });
}

template std::string DefectOfMemory<Wide>(const XLOPER12&, const Loans&);
template std::string DefectOfMemory<Narrow>(const XLOPER&, const Loans&);
template bool HoldsLentText<Wide>(const XLOPER12&, const Loans&);
template bool HoldsLentText<Narrow>(const XLOPER&, const Loans&);

}  // namespace qcalc
