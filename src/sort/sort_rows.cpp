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
#include "table/tuple_compare.h"
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

  /// Ranks the texts of the first key, which takes as much memory as the sort itself.
  void Begin() {
    std::vector<std::int32_t> sample;
    for (std::int32_t row = 0; row < Count(); row += Count() / (2 * kSampledRows) + 1) sample.push_back(row);
    const EqualRun all{0, Count(), 0, 0};
    if (SampleHasText(all, sample)) RankLines(all);
  }

  ValueSurvey Read(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) {
    const bool isOrdinal = mode_ == SortMode::kOrdinal;
    if (!isOrdinal && !SampleHasText(run, rows)) {
      // A column without texts is not ranked.
      bool hasText = false;
      const ValueSurvey survey = ReadRanked(run, rows, to, [&](std::size_t) { return hasText = true; });
      if (!hasText) return survey;
    }
    RankLines(run);
    const LineRanks& ranks = ranks_[run.key];
    if (ranks.AreKnown() && ranks.Texts() == Count()) return ReadRanks(ranks, rows, to);
    if (ranks.AreKnown())
      return ReadRanked(run, rows, to, [&](std::size_t i) { return ranks.At(static_cast<std::size_t>(rows[i])); });
    return isOrdinal ? ReadUnits(run, rows, to) : ReadFewRanked(run, rows, to);
  }

  /// What is known of the texts of the keys' lines.
  std::vector<LineRanks> TakeRanks() && { return std::move(ranks_); }

  /// Texts without ranks are not compared with each other: each comparison would make two keys.
  bool ComparesFew(const EqualRun& run, std::span<const std::int32_t> few) const {
    if (mode_ == SortMode::kOrdinal) return true;
    for (std::uint32_t key = run.key; key < Keys(); ++key)
      for (const std::int32_t row : few)
        if (!ranks_[key].AreKnown() && IsTextCell(CellOf(key, row))) return false;
    return true;
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

  /// The cells of all rows at a key, in their order; `gathered` is for those that stand anywhere.
  CellLine LineOf(std::uint32_t key, std::vector<XLOPER12>& gathered) const {
    if (places_.empty()) return keys_[key].cells;
    gathered.reserve(places_.size());
    for (std::int32_t row = 0; row < Count(); ++row) gathered.push_back(CellOf(key, row));
    return {gathered.data(), Count(), 1};
  }

  template <class Use>
  void Sample(const EqualRun& run, std::span<const std::int32_t> rows, const Use& use) const {
    const std::size_t step = rows.size() / kSampledRows + 1;
    for (std::size_t i = 0; i < rows.size(); i += step)
      if (const XLOPER12& cell = CellOf(run.key, rows[i]); IsTextCell(cell)) use(TextOf(cell));
  }

  bool SampleHasText(const EqualRun& run, std::span<const std::int32_t> rows) const {
    bool hasText = false;
    Sample(run, rows, [&](XStringView) { hasText = true; });
    return hasText;
  }

  void RankLines(const EqualRun& run) {
    LineRanks& ranks = ranks_[run.key];
    std::int32_t& tied = tiedRows_[run.key];
    const std::int32_t enough = Count() / kPartOfLine;
    if (tied > enough) return;
    tied += run.Count();
    if (tied <= enough) return;
    std::vector<XLOPER12> gathered;
    const CellLine line = LineOf(run.key, gathered);
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

  /// The same where all cells are texts: none is looked at.
  static ValueSurvey ReadRanks(const LineRanks& ranks, std::span<const std::int32_t> rows, const RawValues& to) {
    ValueSurvey survey;
    survey.isWholeTexts = true;
    for (std::size_t i = 0; i < rows.size(); ++i)
      survey.Put(to, i, kTextWithin, {ranks.At(static_cast<std::size_t>(rows[i])), 0});
    return survey;
  }

  /// Ranks the texts of these rows alone.
  ValueSurvey ReadFewRanked(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) const {
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

  ValueSurvey ReadUnits(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) const {
    TextWindow<XCHAR> window(run.depth);
    Sample(run, rows, [&](XStringView text) { window.Sample(text); });
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
        if (!ranks_[key].AreKnown()) return CompareExact(TextOf(cellA), TextOf(cellB));
        return order(ranks_[key].At(static_cast<std::size_t>(a)), ranks_[key].At(static_cast<std::size_t>(b)));
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
  std::vector<LineRanks> ranks_;        ///< of the keys' texts, by rows
  std::vector<std::int32_t> tiedRows_;  ///< rows whose values at a key were looked at
};

/// The keys that may tell rows apart, of which the first is always one. Neighbouring columns lie in the same lines of
/// the cache: to find all those that hold one value in one go spares a walk down the table for each.
std::vector<std::uint32_t> TellingKeys(std::span<const SortKey> keys) {
  constexpr std::int32_t kSample = 8;
  std::vector<std::uint32_t> telling;
  std::vector<std::uint32_t> candidates;
  const auto isLikeFirst = [&](std::uint32_t key, std::int32_t row) {
    return CellsEqual<TextCase::kCounts>(keys[key].cells.At(0), keys[key].cells.At(row));
  };
  const std::int32_t rows = keys.front().cells.count;
  for (std::uint32_t key = 1; key < keys.size(); ++key) {
    std::int32_t alike = 0;
    while (alike < kSample && isLikeFirst(key, static_cast<std::int32_t>(std::int64_t{alike} * rows / kSample)))
      ++alike;
    if (alike == kSample) candidates.push_back(key);
  }
  for (std::int32_t row = 1; row < rows && !candidates.empty(); ++row)
    std::erase_if(candidates, [&](std::uint32_t key) { return !isLikeFirst(key, row); });
  for (std::uint32_t key = 0; key < keys.size(); ++key)
    if (!std::ranges::binary_search(candidates, key)) telling.push_back(key);
  return telling;
}

}  // namespace

SortedRows SortRanked(std::span<const SortKey> keys, SortMode mode) {
  SortedRows sorted;
  for (const std::uint32_t key : TellingKeys(keys)) sorted.keys.push_back(keys[key]);
  CellRows rows(sorted.keys, {}, mode);
  sorted.order = RunSorter<CellRows>(rows).Sort();
  sorted.ranks = std::move(rows).TakeRanks();
  return sorted;
}

RowOrder SortRows(std::span<const SortKey> keys, std::span<const std::int32_t> places, SortMode mode) {
  CellRows rows(keys, places, mode);
  return RunSorter<CellRows>(rows).Sort();
}

}  // namespace quillmere::sort
