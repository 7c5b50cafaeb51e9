#include "criteria/filter_arguments.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>
#include <variant>

#include "criteria/parse_criterion.h"
#include "criteria/prepare_criterion.h"
#include "frame/convert/single_value.h"
#include "frame/text/fold_case.h"
#include "table/column_selector.h"
#include "table/compare.h"

namespace quillmere::criteria {
namespace {

constexpr XStringView kNoReturnColumn = XTEXT("#Return_ColName_Num not a DataRange Column Name or Number");
constexpr XStringView kReturnColumnNotFound = XTEXT("#Return_ColName_Num not Found in DataRange");
constexpr XStringView kColumnNotFound = XTEXT("#Criteria Column Name not Found");
constexpr XStringView kSortedCalculated = XTEXT("Sorted Calculated Column not currently allowed here!!!");

/// How many criteria are about sorted columns, with the sign of the order.
struct SortedCount {
  std::size_t count = 0;
  int direction = 0;
};

/// Only a number counts: nothing for any other value.
std::optional<SortedCount> ReadSortedCount(const CXlOper& value) {
  const XLOPER12* const cell = OnlyCell(value);
  std::int32_t count = 0;
  if (!cell || CellTypeOf(*cell) != cell_type::kNumber || !TruncateToInteger(CellNumber(*cell), count))
    return std::nullopt;
  const int direction = count > 0 ? 1 : count < 0 ? -1 : 0;
  return SortedCount{static_cast<std::size_t>(std::llabs(count)), direction};
}

/// A ColN, as far as it can be read before it is known whether the data has a header.
struct PairColumn {
  enum class Kind { kOfTable, kSeparate, kOrMarker };
  Kind kind;
  std::int32_t column;       ///< of the table, 0-based
  const CXlOper* cells;      ///< of a separate column
  const CXlOper* criterion;  ///< what is asked of it
};

bool IsOrMarker(const XLOPER12& cell) {
  return IsTextCell(cell) && (EqualFolded(TextOf(cell), XTEXT("#OR#")) || EqualFolded(TextOf(cell), XTEXT("#OR")));
}

/// Whether two separate columns are the same cells.
bool AreSameCells(const CXlOper& a, const CXlOper& b) {
  if (a.IsReference() && b.IsReference()) return CompareOpers(&a.Raw(), &b.Raw()) == 0;
  return a.IsArray() && b.IsArray() && a.Cells().first == b.Cells().first;
}

/// Reads the arguments of one call, in the order in which their faults count.
class FilterReader {
 public:
  FilterReader(const FilterArguments& arguments, text::RegexBudget& budget)
      : arguments_(arguments), budget_(budget), table_(TableView::OfUsedRows(arguments.range.Value())) {}

  // Each returns what is wrong, or nothing.

  std::optional<XStringView> CheckReturnColumn() const {
    const auto isSelector = [](const XLOPER12& cell) {
      const std::uint32_t type = CellTypeOf(cell);
      return type == cell_type::kNumber || type == cell_type::kText;
    };
    if (arguments_.returnColumn.IsGiven() && !arguments_.returnColumn.Value().IsReference()) {
      const CXlCells cells = arguments_.returnColumn.Value().Cells();
      if (std::all_of(cells.first, cells.first + cells.Count(), isSelector)) return std::nullopt;
    }
    return kNoReturnColumn;
  }

  std::optional<XStringView> ReadPairColumns() {
    for (std::size_t place = 0; place < CriteriaPairs::Count(); place += 2) {
      if (!arguments_.pairs[place].IsGiven()) continue;
      std::optional<PairColumn> pair = ReadPairColumn(arguments_.pairs[place].Value());
      if (!pair) return kColumnNotFound;
      pair->criterion = &arguments_.pairs[place + 1].Value();
      pairs_.push_back(*pair);
    }
    return std::nullopt;
  }

  std::optional<XStringView> ReadReturnColumns() {
    const CXlCells cells = arguments_.returnColumn.Value().Cells();
    std::int32_t column = 0;
    if (cells.Count() == 1 && !IsTextCell(*cells.first) && TruncateToInteger(CellNumber(*cells.first), column) &&
        column == 0) {
      returnColumns_.resize(static_cast<std::size_t>(table_.Columns()));
      std::iota(returnColumns_.begin(), returnColumns_.end(), 0);
      return std::nullopt;
    }
    SelectedColumns selected = SelectColumns({cells.first, 1, static_cast<std::int32_t>(cells.Count())}, table_);
    if (selected.failed) return kReturnColumnNotFound;
    hasHeader_ |= selected.headerUsed;
    returnColumns_ = std::move(selected.columns);
    for (std::int32_t& returned : returnColumns_) --returned;
    return std::nullopt;
  }

  /// Splits the pairs into groups, of which the first has that many sorted columns.
  std::optional<XStringView> ReadGroups(const SortedCount& first) {
    groups_.push_back({first, {}});
    for (const PairColumn& pair : pairs_) {
      if (pair.kind == PairColumn::Kind::kOrMarker) {
        const std::optional<SortedCount> sorted = ReadSortedCount(*pair.criterion);
        if (!sorted) throw CXlErrorException(xlerrValue);
        groups_.push_back({*sorted, {}});
        continue;
      }
      GroupPairs& group = groups_.back();
      const bool isCalculated = pair.kind == PairColumn::Kind::kSeparate && !pair.cells->IsReference();
      if (group.pairs.size() < group.sorted.count && isCalculated) return kSortedCalculated;
      group.pairs.push_back(&pair);
    }
    // A marker without criteria behind it, or in front, stands for nothing; without markers every row is selected.
    if (groups_.size() > 1) std::erase_if(groups_, [](const GroupPairs& group) { return group.pairs.empty(); });
    return std::nullopt;
  }

  FilterPlan MakePlan() {
    FilterPlan plan{hasHeader_ ? table_.WithoutFirstRow() : table_, {}, {}, std::move(returnColumns_)};
    for (const GroupPairs& pairs : groups_) {
      CriteriaGroup& group = plan.groups.emplace_back();
      group.sortedCount = pairs.sorted.count;
      group.direction = pairs.sorted.direction;
      for (const PairColumn* pair : pairs.pairs) {
        const std::size_t column = AddColumn(*pair, plan);
        group.terms.push_back({column, ReadCriterion(*pair->criterion, column, plan)});
      }
    }
    return plan;
  }

 private:
  struct GroupPairs {
    SortedCount sorted;
    std::vector<const PairColumn*> pairs;
  };

  /// The height of the range as it was passed.
  std::int32_t FullRows() const { return TableView(arguments_.range.Value()).Rows(); }

  std::optional<PairColumn> ReadPairColumn(const CXlOper& value) {
    if (value.IsReference() && value.Areas().size() != 1) return std::nullopt;
    if (value.IsReference() || value.IsArray()) {
      const TableView cells(value);
      const bool isOneCell = cells.Rows() == 1 && cells.Columns() == 1;
      if (!isOneCell || FullRows() == 1) return PairColumn{PairColumn::Kind::kSeparate, 0, &value, nullptr};
    }
    const CXlOper selector = TopLeftValue(value);
    if (!selector.IsSet()) return std::nullopt;
    if (IsOrMarker(selector.Raw())) return PairColumn{PairColumn::Kind::kOrMarker, 0, nullptr, nullptr};
    const SelectedColumns selected = SelectColumns(selector.Cells(), table_);
    if (selected.failed) return std::nullopt;
    hasHeader_ |= selected.headerUsed;
    return PairColumn{PairColumn::Kind::kOfTable, selected.columns.front() - 1, nullptr, nullptr};
  }

  /// Adds the column that a pair is about to those that are looked at.
  std::size_t AddColumn(const PairColumn& pair, FilterPlan& plan) const {
    if (pair.kind == PairColumn::Kind::kOfTable) return plan.columns.Add(plan.table, pair.column, 0);
    const TableView whole(*pair.cells);
    const bool hasOwnHeader = hasHeader_ && whole.Rows() == FullRows();
    const std::int32_t dataRows = FullRows() - (hasHeader_ ? 1 : 0);
    if (whole.Columns() != 1 || (!hasOwnHeader && whole.Rows() != dataRows)) throw CXlErrorException(xlerrValue);
    const TableView rows = whole.SomeRows(hasOwnHeader ? 1 : 0, plan.table.Rows());
    // Two criteria about one column are about the same source: the number of the first pair that has it, from 1.
    const auto first = std::ranges::find_if(
        pairs_, [&](const PairColumn& other) { return other.cells && AreSameCells(*other.cells, *pair.cells); });
    return plan.columns.Add(rows, 0, static_cast<std::size_t>(first - pairs_.begin()) + 1);
  }

  std::variant<Criterion, CriterionList> ReadCriterion(const CXlOper& value, std::size_t column,
                                                       const FilterPlan& plan) {
    const auto prepare = [&](Criterion& criterion) {
      PrepareCriterionValue(criterion, budget_);
      if (criterion.kind == CriterionKind::kIsType && plan.table.Rows() > 0)
        criterion.referenceType = plan.columns.UseCell(column, 0, CellTypeOf);
    };
    if (const XLOPER12* const only = OnlyCell(value)) {
      Criterion criterion = ParseCriterion(*only);
      prepare(criterion);
      return criterion;
    }
    CriterionList list = ParseCriterionList(value.Cells());
    std::ranges::for_each(list.elements, prepare);
    return list;
  }

  const FilterArguments& arguments_;
  text::RegexBudget& budget_;
  TableView table_;
  bool hasHeader_ = false;
  std::vector<PairColumn> pairs_;
  std::vector<GroupPairs> groups_;
  std::vector<std::int32_t> returnColumns_;
};

}  // namespace

std::optional<FilterPlan> ReadFilter(const FilterArguments& arguments, text::RegexBudget& budget, CXlOper& result) {
  result.SetError(xlerrValue);
  const std::optional<SortedCount> sorted = ReadSortedCount(arguments.sortedCount);
  if (!sorted || !arguments.range.IsGiven()) return std::nullopt;

  FilterReader reader(arguments, budget);
  std::optional<XStringView> fault = reader.CheckReturnColumn();
  if (!fault) fault = reader.ReadPairColumns();
  if (!fault) fault = reader.ReadGroups(*sorted);
  if (!fault) fault = reader.ReadReturnColumns();
  if (!fault) return reader.MakePlan();
  result.SetText(*fault);
  return std::nullopt;
}

}  // namespace quillmere::criteria
