#include <algorithm>
#include <cmath>
#include <optional>

#include "tests/models/lookup/model_matching.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {
namespace {

Value Told(XStringView text) { return Value::Text(XString(text)); }

Row CellsOf(const Value& value) { return value.IsArray() ? RowsOf(*value.AsArray())[0] : Row{value.AsCell()}; }

/// One table of a join.
struct Side {
  Row header;  ///< the first row, whether it counts as one or not
  Rows rows;
  std::vector<XString> keys;  ///< of the rows; empty, and equal to none, where a part is missing
};

/// Nothing when the selector names no column.
std::optional<Side> ReadSide(const Array& table, const Value& selector, bool hasHeader, bool caseSensitive) {
  Side side{RowsOf(table)[0], RowsOf(table), {}};
  if (hasHeader) side.rows.erase(side.rows.begin());
  std::vector<Row> parts(side.rows.size());
  for (const CellView& name : CellsOf(selector)) {
    const auto label = std::find_if(side.header.begin(), side.header.end(), [&](const CellView& cell) {
      return name.IsText() && cell.IsText() && lookup::EqualLabels(cell.AsText(), name.AsText());
    });
    const double column = name.IsText() ? static_cast<double>(label - side.header.begin()) + 1
                                        : std::trunc(name.IsNumber() ? name.AsNumber() : 0);
    if (column < 1 || column > static_cast<double>(side.header.size())) return std::nullopt;
    for (std::size_t row = 0; row < parts.size(); ++row)
      parts[row].push_back(side.rows[row][static_cast<std::size_t>(column) - 1]);
  }
  for (const Row& key : parts) {
    const bool isWhole = std::none_of(key.begin(), key.end(), [](const CellView& part) { return part.IsEmpty(); });
    side.keys.push_back(isWhole ? KeyOf(key, caseSensitive) : XString());
  }
  return side;
}

Row Joined(Row left, const Row& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

/// `keepsAll`: rows without a partner too, beside fills.
Rows Matched(const Side& leading, const Side& other, bool keepsAll, const CellView& fill) {
  Rows result;
  for (std::size_t row = 0; row < leading.rows.size(); ++row) {
    const std::size_t before = result.size();
    for (std::size_t partner = 0; partner < other.rows.size(); ++partner)
      if (!leading.keys[row].empty() && leading.keys[row] == other.keys[partner])
        result.push_back(Joined(leading.rows[row], other.rows[partner]));
    if (result.size() == before && keepsAll)
      result.push_back(Joined(leading.rows[row], Row(other.header.size(), fill)));
  }
  return result;
}

void AddUnmatched(const Side& leading, const Side& other, Rows& result) {
  for (std::size_t row = 0; row < leading.rows.size(); ++row)
    if (leading.keys[row].empty() || !std::count(other.keys.begin(), other.keys.end(), leading.keys[row]))
      result.push_back(leading.rows[row]);
}

Value ExpectedMatches(const Call& call, bool wantsMatches) {
  const auto given = [&](JoinSetting setting, const Value& leftOut) {
    return call.settings[setting].IsMissing() ? leftOut : call.settings[setting];
  };
  const auto type = static_cast<int>(SettingOr(wantsMatches ? 5 : 3, call.settings[kMatchType]));
  const Value leftColumns = given(kLeftColumns, Value::Number(1)), rightColumns = given(kRightColumns, leftColumns);
  const Value fill = given(kFill, Value::Error(xlerrNA));
  const bool caseSensitive = SettingOr(0, call.settings[kJoinCase]) != 0;
  const Row names = Joined(CellsOf(leftColumns), CellsOf(rightColumns)), fills = CellsOf(fill);
  const bool hasHeader = std::any_of(names.begin(), names.end(), [](const CellView& name) { return name.IsText(); });
  if (wantsMatches && (type < 4 || type > 7)) return Told(XTEXT("#ERROR: Expected one of 4, 5, 6, 7 for Match_Type"));
  if (!wantsMatches && (type < 1 || type > 3)) return Told(XTEXT("#ERROR: Expected one of 1, 2, 3 for Match_Type"));
  if (fills.size() > 1) return Told(XTEXT("#Error: Fill has multiple Values"));
  const auto left = ReadSide(*call.tables[0], leftColumns, hasHeader, caseSensitive);
  const auto right = ReadSide(*call.tables[1], rightColumns, hasHeader, caseSensitive);
  if (!left || !right || CellsOf(leftColumns).size() != CellsOf(rightColumns).size()) return Value::Error(xlerrValue);

  const bool isRightFirst = type == 2 || type >= 6 || (type == 3 && left->header.size() < right->header.size());
  const Side &first = isRightFirst ? *right : *left, &second = isRightFirst ? *left : *right;
  const Row header = wantsMatches ? Joined(first.header, second.header) : first.header;
  Rows result;
  if (wantsMatches) result = Matched(first, second, type == 4 || type == 6, fills[0]);
  if (type == 1 || type == 3) AddUnmatched(*left, *right, result);
  if (type == 2 || type == 3) AddUnmatched(*right, *left, result);
  if (result.empty()) return Value::Error(xlerrNA);
  for (Row& row : result) row.resize(header.size(), fills[0]);
  if (hasHeader) result.insert(result.begin(), header);
  return ResultOf(result);
}

Value ExpectedListComparison(const Call& call) {
  std::vector<XString> keys;
  Rows rows;
  for (const std::size_t list : {0, 1})
    for (const Row& item : ItemsOf(*call.tables[list], false)) {
      if (IsIgnored(item, SettingOr(3, call.settings[0]))) continue;
      const XString key = KeyOf(item, SettingOr(0, call.settings[1]) != 0);
      const auto at = static_cast<std::size_t>(std::find(keys.begin(), keys.end(), key) - keys.begin());
      if (at == keys.size()) {
        keys.push_back(key);
        rows.push_back({item[0], CellView::Number(0), CellView::Number(0)});
      }
      rows[at][list + 1] = CellView::Number(rows[at][list + 1].AsNumber() + 1);
    }
  if (rows.empty()) return Value::Error(xlerrNA);
  // 1 and 2, of either sign, are the columns of the item and of its count in the first list.
  const auto sort = static_cast<std::int32_t>(SettingOr(0, call.settings[2]));
  return ResultOf(sort == 0 ? rows : SortedRows(rows, {sort}, TextOrder::kLanguage));
}

Value ExpectedComparison(const Call& call) {
  const auto output = static_cast<int>(SettingOr(0, call.settings[0]));
  if (output < 0 || output > 2) return Told(XTEXT("#ERROR: Expected one of 0, 1, 2 for Output"));
  const double tolerance = std::max(0.0, SettingOr(0, call.settings[1]));
  const bool caseSensitive = SettingOr(0, call.settings[2]) != 0;
  const Array &a = *call.tables[0], &b = *call.tables[1];
  Rows truths, differences;
  for (std::int32_t row = 0; row < std::max(a.Rows(), b.Rows()); ++row) {
    truths.emplace_back();
    for (std::int32_t column = 0; column < std::max(a.Columns(), b.Columns()); ++column) {
      const bool isInA = row < a.Rows() && column < a.Columns(), isInB = row < b.Rows() && column < b.Columns();
      const CellView left = isInA ? a.At(row, column) : CellView::Error(xlerrNA);
      const CellView right = isInB ? b.At(row, column) : CellView::Error(xlerrNA);
      const bool areNumbers = left.IsNumber() && right.IsNumber();
      const bool isEqual = isInA && isInB &&
                           (areNumbers ? std::fabs(left.AsNumber() - right.AsNumber()) <= tolerance
                                       : KeyOf({left}, caseSensitive) == KeyOf({right}, caseSensitive));
      truths.back().push_back(CellView::Boolean(isEqual));
      if ((isInA || isInB) && !isEqual)
        differences.push_back({CellView::Number(row + 1), CellView::Number(column + 1), left, right});
    }
  }
  if (output == 0) return ResultOf(truths);
  if (output == 1 || differences.empty()) return Value::Number(static_cast<double>(differences.size()));
  return ResultOf(differences);
}

}  // namespace

Value ExpectedJoin(const Call& call) {
  if (call.function == kJoinFunctions[2]) return ExpectedListComparison(call);
  if (call.function == kJoinFunctions[3]) return ExpectedComparison(call);
  return ExpectedMatches(call, call.function == kJoinFunctions[0]);
}

}  // namespace qcalc::sort
