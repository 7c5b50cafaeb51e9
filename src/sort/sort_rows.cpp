#include "sort/sort_rows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "frame/text/fold_case.h"
#include "sort/run_sorter.h"
#include "sort/text_ranks.h"
#include "sort/text_window.h"
#include "table/cell_type.h"
#include "table/tuple_hash.h"

namespace quillmere::sort {
namespace {

/// A number's bits, changed so that they stand in the order of the numbers.
std::uint64_t OrderedBits(double number) noexcept {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  if (std::isnan(number)) return std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t bits = std::bit_cast<std::uint64_t>(number + 0.0);  // the two zeros are equal
  return (bits & kSign) != 0 ? ~bits : bits | kSign;
}

std::uint64_t OrderedBits(std::int32_t code) noexcept { return static_cast<std::uint32_t>(code) ^ 0x8000'0000U; }

/// Rows of cells, as the sorter reads them.
class CellRows {
 public:
  CellRows(std::span<const SortKey> keys, std::span<const std::int32_t> places, SortMode mode)
      : keys_(keys), places_(places), mode_(mode), ranks_(keys.size()), tiedRows_(keys.size(), 0) {}

  std::int32_t Count() const noexcept {
    return places_.empty() ? keys_.front().cells.count : static_cast<std::int32_t>(places_.size());
  }
  std::uint32_t Keys() const noexcept { return static_cast<std::uint32_t>(keys_.size()); }
  bool IsDescending(std::uint32_t key) const noexcept { return keys_[key].isDescending; }

  ValueSurvey Read(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) {
    RankLines(run);
    if (!ranks_[run.key].empty())
      return ReadRanked(run, rows, to, [&](std::size_t i) { return ranks_[run.key][Place(rows[i])]; });
    if (mode_ == SortMode::kOrdinal) return ReadUnits(run, rows, to);
    // Only texts have ranks.
    std::vector<std::int32_t> places;
    std::vector<std::uint32_t> numbers(rows.size(), 0);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (!IsTextCell(CellOf(run.key, rows[i]))) continue;
      numbers[i] = static_cast<std::uint32_t>(places.size());
      places.push_back(static_cast<std::int32_t>(Place(rows[i])));
    }
    const TextRanks ranks = RankByLanguage(keys_[run.key].cells, places, Case());
    return ReadRanked(run, rows, to, [&](std::size_t i) { return ranks[numbers[i]]; });
  }

  bool ComparesFew(const EqualRun& run) const noexcept {
    if (mode_ == SortMode::kOrdinal) return true;
    return std::ranges::none_of(ranks_.begin() + run.key, ranks_.end(), &TextRanks::empty);
  }

  void SortFew(const EqualRun& run, std::span<std::int32_t> few, bool*) const {
    for (auto next = few.begin(); next != few.end(); ++next) {
      const auto comesBefore = [&](std::int32_t a, std::int32_t b) { return Compare(run.key, a, b) < 0; };
      std::rotate(std::upper_bound(few.begin(), next, *next, comesBefore), next, next + 1);
    }
  }

 private:
  /// The ranks of a whole line are found when so large a part of its rows, all runs together, is looked at.
  static constexpr std::int32_t kPartOfLine = 8;

  std::size_t Place(std::int32_t row) const noexcept {
    const auto position = static_cast<std::size_t>(row);
    return places_.empty() ? position : static_cast<std::size_t>(places_[position]);
  }
  const XLOPER12& CellOf(std::uint32_t key, std::int32_t row) const noexcept {
    return keys_[key].cells.At(static_cast<std::int32_t>(Place(row)));
  }
  LetterCase Case() const noexcept { return mode_ == SortMode::kCollated ? LetterCase::kIgnored : LetterCase::kCounts; }

  void RankLines(const EqualRun& run) {
    TextRanks& ranks = ranks_[run.key];
    std::int32_t& tied = tiedRows_[run.key];
    const CellLine& line = keys_[run.key].cells;
    const std::int32_t enough = Count() / kPartOfLine;
    const bool wasEnough = tied > enough;
    tied += run.Count();
    if (!ranks.empty() || wasEnough || tied <= enough) return;
    if (mode_ != SortMode::kOrdinal)
      ranks = RankLineByLanguage(line, Case());
    else if (HasFewTexts(line))
      ranks = RankLineByUnits(line);
  }

  /// Reads the values of rows; `readText` tells what is to be known of the text of a cell, the i-th.
  template <class ReadText>
  void ReadCells(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to, ValueSurvey& survey,
                 const ReadText& readText) const {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i + kCellsAhead < rows.size()) PrefetchFarCell(&CellOf(run.key, rows[i + kCellsAhead]));
      const XLOPER12& cell = CellOf(run.key, rows[i]);
      switch (CellTypeOf(cell)) {
        case cell_type::kNumber:
          survey.Put(to, i, kNumberValue, {OrderedBits(CellNumber(cell)), 0});
          break;
        case cell_type::kText:
          readText(cell, i);
          break;
        case cell_type::kBoolean:
          survey.Put(to, i, kBooleanValue, {OrderedBits(cell.val.xbool), 0});
          break;
        case cell_type::kError:
          survey.Put(to, i, kErrorValue, {OrderedBits(cell.val.err), 0});
          break;
        default:
          survey.Put(to, i, kEmptyValue, {});
      }
    }
  }

  template <class RankAt>
  ValueSurvey ReadRanked(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to,
                         const RankAt& rankAt) const {
    ValueSurvey survey;
    survey.isWholeTexts = true;
    ReadCells(run, rows, to, survey, [&](const XLOPER12&, std::size_t i) {
      survey.Put(to, i, kTextWithin, {rankAt(i), 0});
    });
    return survey;
  }

  ValueSurvey ReadUnits(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) const {
    TextWindow<XCHAR> window(run.depth);
    const std::size_t step = rows.size() / kSampledRows + 1;
    for (std::size_t i = 0; i < rows.size(); i += step)
      if (const XLOPER12& cell = CellOf(run.key, rows[i]); IsTextCell(cell)) window.Sample(TextOf(cell));
    ValueSurvey survey;
    ReadCells(run, rows, to, survey, [&](const XLOPER12& cell, std::size_t i) {
      if (i + kTextsAhead < rows.size()) PrefetchText(CellOf(run.key, rows[i + kTextsAhead]));
      WideBits bits;
      const ValueKind kind = window.Place(TextOf(cell), bits);
      survey.Put(to, i, kind, bits);
    });
    window.Tell(survey);
    return survey;
  }

  /// The order of two rows by a key and all behind it: below 0, 0 or above.
  int Compare(std::uint32_t key, std::int32_t a, std::int32_t b) const {
    for (; key < Keys(); ++key) {
      const XLOPER12& cellA = CellOf(key, a);
      const XLOPER12& cellB = CellOf(key, b);
      const std::uint32_t typeA = CellTypeOf(cellA);
      const std::uint32_t typeB = CellTypeOf(cellB);
      if (typeA != typeB && (typeA == cell_type::kEmpty || typeB == cell_type::kEmpty))
        return typeA == cell_type::kEmpty ? 1 : -1;
      const int order = typeA != typeB ? (typeA < typeB ? -1 : 1) : CompareOfType(typeA, key, a, b);
      if (order != 0) return IsDescending(key) ? -order : order;
    }
    return 0;
  }

  int CompareOfType(std::uint32_t type, std::uint32_t key, std::int32_t a, std::int32_t b) const {
    const XLOPER12& cellA = CellOf(key, a);
    const XLOPER12& cellB = CellOf(key, b);
    const auto order = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    switch (type) {
      case cell_type::kNumber:
        return order(OrderedBits(CellNumber(cellA)), OrderedBits(CellNumber(cellB)));
      case cell_type::kText:
        return ranks_[key].empty() ? CompareExact(TextOf(cellA), TextOf(cellB))
                                   : order(ranks_[key][Place(a)], ranks_[key][Place(b)]);
      case cell_type::kBoolean:
        return order(cellA.val.xbool, cellB.val.xbool);
      case cell_type::kError:
        return order(cellA.val.err, cellB.val.err);
      default:
        return 0;
    }
  }

  std::span<const SortKey> keys_;
  std::span<const std::int32_t> places_;
  SortMode mode_;
  std::vector<TextRanks> ranks_;        ///< of the keys' lines; empty where they are not known
  std::vector<std::int32_t> tiedRows_;  ///< rows whose values at a key were looked at
};

}  // namespace

std::vector<std::int32_t> SortRows(std::span<const SortKey> keys, std::span<const std::int32_t> places, SortMode mode) {
  CellRows rows(keys, places, mode);
  return RunSorter<CellRows>(rows).Sort();
}

}  // namespace quillmere::sort
