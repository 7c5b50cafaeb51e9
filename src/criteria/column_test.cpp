#include "criteria/column_test.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "criteria/number_set.h"
#include "criteria/test_cell.h"
#include "criteria/text_set.h"
#include "text/folded_text.h"

namespace quillmere::criteria {
namespace {

// What is asked of a row, against a comparison of numbers.
constexpr double kNumberCost = 1;
constexpr double kNumberOrTextCost = 1.25;
constexpr double kTextCost = 3;
constexpr double kTestCost = 8;
constexpr double kListCost = 16;
constexpr double kExpressionCost = 100;

/// How far ahead in a list of rows cells and their texts are asked for.
constexpr std::int32_t kCellsAhead = 64;
constexpr std::int32_t kTextsAhead = 16;

/// Runs `holds` down the rows, without a jump on its answer.
template <bool readsTexts, class Holds>
inline std::int32_t KeepWhere(const CellLine& cells, BatchPlace* places, std::int32_t count, const Holds& holds) {
  std::int32_t kept = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    if (i + kCellsAhead < count) PrefetchFarCell(&cells.At(places[i + kCellsAhead]));
    if constexpr (readsTexts)
      if (i + kTextsAhead < count) PrefetchText(cells.At(places[i + kTextsAhead]));
    const BatchPlace place = places[i];
    places[kept] = place;
    kept += holds(cells.At(place)) ? 1 : 0;
  }
  return kept;
}

/// What criteria make of cells that are neither numbers nor texts, errors excepted: whether they meet any of them.
class OtherTypes {
 public:
  void Add(const Criterion& criterion) {
    for (const bool value : {false, true}) holdsBoolean_[value] |= TestCell(criterion, BooleanCell(value));
    holdsEmpty_ |= TestCell(criterion, EmptyCell());
  }

  bool HoldsBoolean(const XLOPER12& cell) const noexcept { return holdsBoolean_[cell.val.xbool != 0]; }
  bool HoldsEmpty() const noexcept { return holdsEmpty_; }

 private:
  bool holdsBoolean_[2] = {};
  bool holdsEmpty_ = false;
};

bool ComparesTexts(const Criterion& criterion) {
  return !IsTypeTest(criterion.kind) && (criterion.Mask() & cell_type::kText) != 0;
}

/// Whether the type alone decides that a cell with a text meets it.
bool KnowsTexts(const Criterion& criterion) {
  if (IsPattern(criterion.kind)) return criterion.isUnusable;
  if (!IsTypeTest(criterion.kind)) return !ComparesTexts(criterion);
  return criterion.kind != CriterionKind::kIsBlank && criterion.kind != CriterionKind::kIsZeroLength;
}

/// A cell with a text of no units.
XLOPER12 ZeroLengthCell() {
  static constexpr XCHAR kNone[] = {0};
  XLOPER12 cell{};
  cell.val.str = const_cast<XCHAR*>(kNone);
  cell.xltype = xltypeStr;
  return cell;
}

/// Where the type of a cell, or its number, decides.
class NumberTest : public ColumnTest {
 public:
  NumberTest(Criterion&& criterion, double cost)
      : ColumnTest(cost),
        criterion_(std::move(criterion)),
        numbers_(IsPattern(criterion_.kind) ? NumberRange{} : NumbersThatMeet(criterion_)),
        holdsText_(KnowsTexts(criterion_) && TestCell(criterion_, ZeroLengthCell())) {
    others_.Add(criterion_);
  }

  std::int32_t Keep(const CellLine& cells, BatchPlace* places, std::int32_t count) const override {
    return KeepWhere<false>(cells, places, count, [this](const XLOPER12& cell) {
      if (IsNumberCell(cell)) return numbers_.Holds(cell.val.num);
      return IsTextCell(cell) ? holdsText_ : HoldsOther(cell);
    });
  }

 protected:
  const Criterion& ItsCriterion() const noexcept { return criterion_; }
  bool HoldsNumber(const XLOPER12& cell) const noexcept { return numbers_.Holds(cell.val.num); }
  bool HoldsOther(const XLOPER12& cell) const {
    return IsBooleanCell(cell) ? others_.HoldsBoolean(cell)
           : IsEmptyCell(cell) ? others_.HoldsEmpty()
                               : TestCell(criterion_, cell);
  }

 private:
  Criterion criterion_;
  OtherTypes others_;
  NumberRange numbers_;
  bool holdsText_;
};

/// Where texts are held against a matcher: equal ones, and wildcards.
class TextTest : public NumberTest {
 public:
  explicit TextTest(Criterion&& criterion)
      : NumberTest(std::move(criterion), kTextCost),
        equal_(ItsCriterion().text),
        matcher_(IsPattern(ItsCriterion().kind) ? *ItsCriterion().pattern : equal_),
        testsNumbers_(IsPattern(ItsCriterion().kind)),
        wanted_((ItsCriterion().kind != CriterionKind::kNotEqual) != ItsCriterion().negated) {}

  std::int32_t Keep(const CellLine& cells, BatchPlace* places, std::int32_t count) const override {
    const auto holdsNoText = [this](const XLOPER12& cell) {
      if (!IsNumberCell(cell)) return HoldsOther(cell);
      return testsNumbers_ ? TestCell(ItsCriterion(), cell) : HoldsNumber(cell);
    };
    if (wanted_) {
      const auto all = static_cast<std::size_t>(count);
      return static_cast<std::int32_t>(matcher_.Keep(cells.first, cells.stride, places, all, places, holdsNoText));
    }
    return KeepWhere<true>(cells, places, count, [&](const XLOPER12& cell) {
      return IsTextCell(cell) ? !matcher_.Matches(TextOf(cell)) : holdsNoText(cell);
    });
  }

 private:
  text::FoldedText equal_;
  const text::TextMatcher& matcher_;
  bool testsNumbers_;
  bool wanted_;
};

/// Where every text is looked at on its own, or every number too.
class CellTest : public NumberTest {
 public:
  explicit CellTest(Criterion&& criterion)
      : NumberTest(std::move(criterion), CostOf(criterion)), testsNumbers_(IsPattern(ItsCriterion().kind)) {}

  std::int32_t Keep(const CellLine& cells, BatchPlace* places, std::int32_t count) const override {
    return KeepWhere<true>(cells, places, count, [this](const XLOPER12& cell) {
      if (IsNumberCell(cell) && !testsNumbers_) return HoldsNumber(cell);
      if (IsNumberCell(cell) || IsTextCell(cell)) return TestCell(ItsCriterion(), cell);
      return HoldsOther(cell);
    });
  }

 private:
  /// What is compared with numbers stands in a column of numbers as a rule.
  static double CostOf(const Criterion& criterion) {
    if (IsPattern(criterion.kind)) return kExpressionCost;
    return (criterion.Mask() & cell_type::kNumber) != 0 ? kNumberOrTextCost : kTestCost;
  }

  bool testsNumbers_;
};

/// A list of any length.
class ListTest : public ColumnTest {
 public:
  ListTest(CriterionList&& list, double cost) : ColumnTest(cost), meetsAll_(list.meetsAll) {
    std::vector<NumberRange> ranges;
    std::set<std::tuple<CriterionKind, bool, XStringView>> tested;
    for (Criterion& element : list.elements) {
      // What must meet them all must not be what one of them is without its sign. Patterns keep theirs.
      element.negated ^= meetsAll_;
      if (element.valueType == cell_type::kError) {
        errors_.insert(element.code);
      } else {
        holdsErrors_ |= TestCell(element, ErrorCell(0));
      }
      others_.Add(element);
      if (!IsPattern(element.kind)) ranges.push_back(NumbersThatMeet(element));
      if (ComparesTexts(element) && !IsPattern(element.kind)) {
        texts_.Add(element);
      } else if (KnowsTexts(element)) {
        if (TestCell(element, ZeroLengthCell())) texts_.AddAll();
      } else if (tested.emplace(element.kind, element.negated, element.text).second) {
        element.negated ^= meetsAll_;
        tested_.push_back(std::move(element));
      }
    }
    numbers_ = NumberSet(ranges);
    texts_.MakeIndex();
  }

  std::int32_t Keep(const CellLine& cells, BatchPlace* places, std::int32_t count) const override {
    return KeepWhere<true>(cells, places, count, [this](const XLOPER12& cell) {
      const auto meets = [&cell](const Criterion& element) { return TestCell(element, cell); };
      return meetsAll_ ? !HoldsBySets(cell) && std::ranges::all_of(tested_, meets)
                       : HoldsBySets(cell) || std::ranges::any_of(tested_, meets);
    });
  }

 private:
  bool HoldsBySets(const XLOPER12& cell) const {
    switch (CellTypeOf(cell)) {
      case cell_type::kNumber:
        return numbers_.Holds(CellNumber(cell));
      case cell_type::kText:
        return texts_.Holds(TextOf(cell));
      case cell_type::kBoolean:
        return others_.HoldsBoolean(cell);
      case cell_type::kError:
        return holdsErrors_ || errors_.contains(cell.val.err);
      default:
        return others_.HoldsEmpty();
    }
  }

  bool meetsAll_;
  NumberSet numbers_;
  TextSet texts_;
  OtherTypes others_;
  bool holdsErrors_ = false;       ///< by an element that is no error
  std::set<std::int32_t> errors_;  ///< the codes of those that are
  std::vector<Criterion> tested_;  ///< patterns and the like, one by one
};

}  // namespace

std::unique_ptr<const ColumnTest> MakeColumnTest(Criterion&& criterion) {
  if (KnowsTexts(criterion)) return std::make_unique<NumberTest>(std::move(criterion), kNumberCost);
  const bool isEquality = AsksForEqual(criterion.kind) || criterion.kind == CriterionKind::kNotEqual;
  if (isEquality || (criterion.kind == CriterionKind::kLike && criterion.pattern))
    return std::make_unique<TextTest>(std::move(criterion));
  return std::make_unique<CellTest>(std::move(criterion));
}

std::unique_ptr<const ColumnTest> MakeColumnTest(CriterionList&& list) {
  // Nothing meets what cannot be told, not even among others.
  const auto unusable = std::ranges::find_if(list.elements, &Criterion::isUnusable);
  if (list.meetsAll && unusable != list.elements.end()) return MakeColumnTest(std::move(*unusable));
  const auto patterns = static_cast<double>(std::ranges::count_if(list.elements, IsPattern, &Criterion::kind));
  return std::make_unique<ListTest>(std::move(list), kListCost + patterns * kTestCost);
}

}  // namespace quillmere::criteria
