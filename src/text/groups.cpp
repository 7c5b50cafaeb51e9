// Groups of characters of one kind in texts.
//
// Serves GROUPS.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "frame/callbacks/excel_settings.h"
#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "frame/values/array_builder.h"
#include "frame/values/cell_copy.h"
#include "implementations/text.h"
#include "text/bounded_text.h"
#include "text/prefetch_ahead.h"
#include "text/text_ends.h"
#include "text/unit_class.h"

namespace quillmere::text {
namespace {

/// What is wanted of a text, as the arguments say it: places count from 1.
struct WantedGroup {
  std::int64_t number;
  std::int64_t maxChars;
  std::int64_t startPos;
  std::int64_t endPos;
};

/// The decimal separator as one of the characters in brackets of an expression.
XString SeparatorInBrackets() {
  const XCHAR separator = DecimalSeparator();
  const bool isSpecial = XStringView(XTEXT("\\]^-[")).find(separator) != XStringView::npos;
  return isSpecial ? XString{XTEXT('\\'), separator} : XString{separator};
}

/// The expression for one character of a group.
XString ClassExpression(const XLOPER12& groupType) {
  if (IsErrorCell(groupType)) throw CXlErrorException(KnownErrorCode(groupType.val.err));
  if (IsTextCell(groupType)) {
    XString expression;
    AssignText(expression, TextOf(groupType));
    return expression;
  }
  const double type = IsEmptyCell(groupType)     ? 0
                      : IsBooleanCell(groupType) ? static_cast<double>(CellBoolean(groupType))
                                                 : CellNumber(groupType);
  if (type == 1) return XTEXT("[A-Za-z]");
  if (type == 2) return XTEXT("[^0-9]");
  if (type == 3) return XTEXT("[0-9") + SeparatorInBrackets() + XTEXT("]");
  if (type == 4) return XTEXT("[^0-9") + SeparatorInBrackets() + XTEXT("]");
  return XTEXT("[0-9]");
}

/// The part of a text that is searched; none when it would begin behind its end.
std::optional<XStringView> SearchedPart(XStringView text, std::int64_t startPos, std::int64_t endPos) {
  if (text.empty()) return text;
  const auto size = static_cast<std::int64_t>(text.size());
  const std::int64_t first = std::clamp<std::int64_t>(startPos, 1, size);
  const std::int64_t last = endPos < 1 || endPos > size ? size : endPos;
  if (first > last) return std::nullopt;
  return text.substr(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(last - first + 1));
}

/// The group of that number, from 1 on, or from the end for one below 0; an empty text where there are not so many.
XStringView FindGroup(XStringView text, std::int64_t number, UnitClass& members) {
  const bool forward = number > 0;
  const std::size_t size = text.size();
  const auto isMember = [&](std::size_t at) { return members.Has(text[forward ? at : size - 1 - at]); };
  std::int64_t left = std::abs(number);
  for (std::size_t at = 0; at < size;) {
    while (at < size && !isMember(at)) ++at;
    const std::size_t begin = at;
    while (at < size && isMember(at)) ++at;
    if (--left == 0) return text.substr(forward ? begin : size - at, at - begin);
  }
  return {};
}

/// The groups of texts, one text after the other.
class GroupFinder {
 public:
  GroupFinder(const WantedGroup& wanted, XStringView expression) : wanted_(wanted), members_(expression, budget_) {}

  /// What is wanted of a text, viewed until the next one is asked for; none where its positions exclude each other.
  std::optional<XStringView> Find(XStringView text) {
    const std::optional<XStringView> part = SearchedPart(text, wanted_.startPos, wanted_.endPos);
    if (!part) return std::nullopt;
    const XStringView found = wanted_.number == 0 ? AllGroups(*part) : FindGroup(*part, wanted_.number, members_);
    return EndOf(found, wanted_.maxChars);
  }

 private:
  XStringView AllGroups(XStringView text) {
    all_.Clear();
    for (const XCHAR unit : text)
      if (members_.Has(unit)) all_.Append(unit);
    return all_.View();
  }

  WantedGroup wanted_;
  RegexBudget budget_;
  UnitClass members_;
  BoundedText all_;
};

}  // namespace

void Functions::Groups(CXlOper& result, const CXlArgument& text,
                       const CXlScalarArgument<ElementKind::kInteger>& groupNumber,
                       const CXlScalarArgument<ElementKind::kInteger>& maxChars, const CXlArgument& groupType,
                       const CXlScalarArgument<ElementKind::kInteger>& startPos,
                       const CXlScalarArgument<ElementKind::kInteger>& endPos) {
  result.SetError(xlerrValue);
  const CXlCells cells = text.Value().Cells();
  const XLOPER12* const typeCell = OnlyCell(groupType.Value());
  if (!typeCell) return;
  const WantedGroup wanted{groupNumber.Read(), maxChars.Read(), startPos.Read(), endPos.Read()};
  GroupFinder finder(wanted, ClassExpression(*typeCell));

  CXlArrayBuilder groups(cells.rows, cells.columns);
  XLOPER12* to = groups.Row(0);
  for (std::int64_t at = 0; at < cells.Count(); ++at, ++to) {
    PrefetchAhead(cells, at);
    const XLOPER12& cell = cells.first[at];
    if (IsErrorCell(cell)) {
      groups.CopyCells(to, &cell, 1);
      continue;
    }
    NumberTextBuffer number;
    if (const auto group = finder.Find(TextForm(cell, number)))
      CopyUnits(groups.NewText(to, group->size()), group->data(), group->size());
    else
      *to = ErrorCell(xlerrValue);
  }
  result = groups.FinishCollapsed();
}

}  // namespace quillmere::text
