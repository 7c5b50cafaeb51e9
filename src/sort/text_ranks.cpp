#include "sort/text_ranks.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "sort/run_sorter.h"
#include "sort/text_window.h"
#include "table/cell_tuples.h"
#include "table/distinct_tuples.h"

namespace quillmere::sort {
namespace {

/// Texts as they are.
class PlainTexts {
 public:
  using Unit = XCHAR;
  using Kept = XStringView;

  static XStringView Of(const XLOPER12& cell) { return TextOf(cell); }
};

/// Texts by the keys that the user's language gives them.
class LanguageKeys {
 public:
  using Unit = char;
  using Kept = std::string;

  explicit LanguageKeys(LetterCase letterCase) noexcept : letterCase_(letterCase) {}

  /// The key of a text, which lasts until the next is asked for. The text's length stands behind it, after a zero,
  /// which comes before all that a longer key goes on with.
  const std::string& Of(const XLOPER12& cell) {
    const XStringView text = TextOf(cell);
    MakeCollationKey(text, letterCase_, key_);
    const char ends[] = {'\0', static_cast<char>(text.size() >> 8), static_cast<char>(text.size())};
    return key_.append(ends, sizeof ends);
  }

 private:
  LetterCase letterCase_;
  std::string key_;
};

/// The texts at some places of a line as rows to be sorted.
template <class Texts>
class TextRows {
 public:
  TextRows(const CellLine& line, std::span<const std::int32_t> places, Texts texts)
      : line_(line), places_(places), texts_(std::move(texts)) {}

  std::int32_t Count() const noexcept { return static_cast<std::int32_t>(places_.size()); }
  static std::uint32_t Keys() noexcept { return 1; }
  static bool IsDescending(std::uint32_t) noexcept { return false; }
  static void Begin() noexcept {}

  ValueSurvey Read(const EqualRun& run, std::span<const std::int32_t> rows, const RawValues& to) {
    TextWindow<typename Texts::Unit> window(run.depth);
    const std::size_t step = rows.size() / kSampledRows + 1;
    for (std::size_t i = 0; i < rows.size(); i += step) window.Sample(texts_.Of(CellOf(rows[i])));
    ValueSurvey survey;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (i + kCellsAhead < rows.size()) PrefetchFarCell(&CellOf(rows[i + kCellsAhead]));
      if (i + kTextsAhead < rows.size()) PrefetchText(CellOf(rows[i + kTextsAhead]));
      WideBits bits;
      const ValueKind kind = window.Place(texts_.Of(CellOf(rows[i])), bits);
      survey.Put(to, i, kind, bits);
    }
    window.Tell(survey);
    return survey;
  }

  static bool ComparesFew(const EqualRun&, std::span<const std::int32_t>) noexcept { return true; }

  void SortFew(const EqualRun&, std::span<std::int32_t> few, bool* isFirst) {
    using Keyed = std::pair<typename Texts::Kept, std::int32_t>;
    std::array<Keyed, kFewRows> keyed;
    const std::span<Keyed> used = std::span(keyed).first(few.size());
    for (std::size_t i = 0; i < few.size(); ++i) used[i] = {texts_.Of(CellOf(few[i])), few[i]};
    std::ranges::sort(used, [](const Keyed& a, const Keyed& b) {
      const int order = OrderOf(a.first, b.first);
      return order != 0 ? order < 0 : a.second < b.second;
    });
    for (std::size_t i = 0; i < few.size(); ++i) {
      few[i] = used[i].second;
      if (i != 0 && OrderOf(used[i - 1].first, used[i].first) != 0) isFirst[i] = true;
    }
  }

 private:
  const XLOPER12& CellOf(std::int32_t row) const noexcept { return line_.At(places_[static_cast<std::size_t>(row)]); }

  const CellLine& line_;
  std::span<const std::int32_t> places_;
  Texts texts_;
};

template <class Texts>
TextRanks RankPlaces(const CellLine& line, std::span<const std::int32_t> places, Texts texts) {
  TextRows<Texts> rows(line, places, std::move(texts));
  ScratchArray<bool> isFirst(places.size());
  const ScratchArray<std::int32_t> order = RunSorter<TextRows<Texts>>(rows).Sort(isFirst);
  TextRanks ranks(places.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i != 0 && isFirst[i]) ++rank;
    ranks[static_cast<std::size_t>(order[i])] = rank;
  }
  return ranks;
}

constexpr std::int32_t kOnlyColumn[] = {0};

/// The ranks of a line by those of its distinct texts, which `rankDistinct` is asked for.
template <class RankDistinct>
LineRanks RankLine(const CellLine& line, const RankDistinct& rankDistinct) {
  const RowTuples tuples({line.first, line.count, static_cast<std::int32_t>(line.stride)}, kOnlyColumn);
  ScratchArray<std::uint32_t> numbers(static_cast<std::size_t>(line.count));
  std::vector<std::int32_t> firstPlaces;
  std::int32_t texts = 0;
  {
    DistinctTuples<TextCase::kCounts, RowTuples> distinct(tuples);
    const auto isText = [&](std::int32_t place) {
      numbers[static_cast<std::size_t>(place)] = LineRanks::kNoText;
      return IsTextCell(line.At(place));
    };
    const auto take = [&](std::int32_t place, std::int32_t number) {
      numbers[static_cast<std::size_t>(place)] = static_cast<std::uint32_t>(number);
      ++texts;
    };
    distinct.AddAll(isText, take);
    firstPlaces.assign(distinct.FirstPlaces().begin(), distinct.FirstPlaces().end());
  }
  TextRanks ranks = rankDistinct(firstPlaces);
  return {texts, std::move(numbers), std::move(firstPlaces), std::move(ranks)};
}

}  // namespace

TextRanks RankByLanguage(const CellLine& line, std::span<const std::int32_t> places, LetterCase letterCase) {
  return RankPlaces(line, places, LanguageKeys(letterCase));
}

LineRanks RankLineByLanguage(const CellLine& line, LetterCase letterCase) {
  return RankLine(line, [&](std::span<const std::int32_t> places) { return RankByLanguage(line, places, letterCase); });
}

LineRanks RankLineByUnits(const CellLine& line) {
  return RankLine(line, [&](std::span<const std::int32_t> places) { return RankPlaces(line, places, PlainTexts()); });
}

bool HasFewTexts(const CellLine& line) {
  constexpr std::int32_t kSample = 1024;
  // A table of ranks pays when each text stands in so many cells.
  constexpr std::int64_t kCellsOfText = 32;
  if (line.count < kSample * kCellsOfText) return false;
  std::array<std::uint64_t, kSample> hashes;
  std::size_t count = 0;
  for (std::int32_t i = 0; i < kSample; ++i) {
    const XLOPER12& cell = line.At(static_cast<std::int32_t>(std::int64_t{i} * line.count / kSample));
    if (IsTextCell(cell)) hashes[count++] = HashText<TextCase::kCounts>(TextOf(cell), HashKey::OfProcess());
  }
  const auto used = std::span(hashes).first(count);
  std::ranges::sort(used);
  const auto equal = static_cast<std::int64_t>(used.end() - std::unique(used.begin(), used.end()));
  // Of so many texts drawn at random, that many pairs are equal when there are `line.count / kCellsOfText` different
  // ones.
  const auto drawn = static_cast<std::int64_t>(count);
  return equal * 2 * line.count >= drawn * drawn * kCellsOfText && equal != 0;
}

}  // namespace quillmere::sort
