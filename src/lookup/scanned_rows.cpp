#include "lookup/scanned_rows.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "lookup/row_collector.h"
#include "table/row_blocks.h"
#include "table/tuple_index.h"

namespace quillmere::lookup {
namespace {

/// Rows are tested so many at a time: few enough for their texts to stay in the processor's cache from key to key.
constexpr std::int32_t kChunkRows = 1024;
/// Of a sheet no more are read at first: most keys that are there are found early.
constexpr std::int32_t kRowsReadFirst = 1024;

/// For so many keys it pays to make the pairs of the texts.
constexpr std::size_t kKeysForPairs = 4;

/// What patterns are tried on in some cells of a column.
class ColumnTexts {
 public:
  void Read(const CellLine& cells, PatternScope scope, bool withPairs) {
    constexpr std::int32_t kCellsAhead = 16;
    for (std::int32_t i = 0; i < cells.count; ++i) {
      if (i + kCellsAhead < cells.count) PrefetchCell(&cells.At(i + kCellsAhead));
      const XLOPER12& cell = cells.At(i);
      PrefetchText(cell);
      if (IsTextCell(cell)) [[likely]] {
        texts_[i] = TextOf(cell);
        continue;
      }
      if (!numbers_) numbers_ = std::make_unique_for_overwrite<NumberTextBuffer[]>(kChunkRows);
      texts_[i] = PatternText(cell, scope, numbers_[static_cast<std::size_t>(i)]);
    }
    hasPairs_ = withPairs;
    for (std::int32_t i = 0; withPairs && i < cells.count; ++i) pairs_[i] = text::UnitPairsOf(texts_[i]);
  }

  bool HasPairs() const noexcept { return hasPairs_; }
  bool HasPairs(std::int32_t row, text::UnitPairs pairs) const noexcept { return (pairs_[row] & pairs) == pairs; }

  bool Match(std::int32_t row, const text::TextMatcher& pattern) const {
    const XStringView text = texts_[row];
    return text.data() != nullptr && pattern.Matches(text);
  }

 private:
  XStringView texts_[kChunkRows];
  text::UnitPairs pairs_[kChunkRows];
  bool hasPairs_ = false;
  std::unique_ptr<NumberTextBuffer[]> numbers_;  ///< room for their texts, once one was met
};

/// Some rows on which all keys are tried.
struct RowChunk {
  const RowBlocks& block;
  std::int32_t offset;  ///< in the block
  std::int32_t rows;
  std::int32_t firstRow;  ///< of the table

  const XLOPER12& At(std::int32_t row, std::size_t part) const noexcept { return block.At(offset + row, part); }
  CellLine Column(std::size_t part) const noexcept { return {&At(0, part), rows, block.Column(part).stride}; }
};

/// One walk over the rows for several keys, until none of them wants more.
class KeyScan {
 public:
  /// Keys are counted as they stand in the list; so is the collector's group of each.
  KeyScan(const LookupPlan& plan, const TableView& data, std::span<const Key> keys, PatternScope scope,
          RowCollector& collector)
      : columns_(plan.lookupColumns),
        data_(data),
        keys_(keys),
        scope_(scope),
        isBackward_(plan.position == wanted_match::kLast),
        collector_(collector),
        live_(keys.size()) {
    for (std::size_t i = 0; i < live_.size(); ++i) live_[i] = static_cast<std::int32_t>(i);
  }

  void Run() {
    const std::int32_t most = data_.IsReference() ? RowBlocks::kBlockCells / static_cast<std::int32_t>(columns_.size())
                                                  : std::max(1, data_.Rows());
    std::int32_t next = data_.IsReference() ? std::min(kRowsReadFirst, most) : most;
    for (std::int32_t done = 0; done < data_.Rows() && !live_.empty(); next = std::min(4 * next, most)) {
      const std::int32_t count = std::min(next, data_.Rows() - done);
      const std::int32_t first = isBackward_ ? data_.Rows() - done - count : done;
      RowBlocks block(data_.SomeRows(first, count), columns_);
      block.Next();
      ScanBlock(block, first);
      done += count;
    }
  }

 private:
  void ScanBlock(const RowBlocks& block, std::int32_t firstRow) {
    for (std::int32_t done = 0; done < block.Rows() && !live_.empty(); done += kChunkRows) {
      const std::int32_t rows = std::min(kChunkRows, block.Rows() - done);
      const std::int32_t offset = isBackward_ ? block.Rows() - done - rows : done;
      ScanChunk({block, offset, rows, firstRow + offset});
    }
  }

  void ScanChunk(const RowChunk& chunk) {
    textsAreRead_ = false;
    std::erase_if(live_, [&](std::int32_t key) { return !TryKey(chunk, key); });
    if (collector_.Taken() > kXlMaxRows) throw CXlArrayTooLargeException();
  }

  /// Tries a key on the rows of a chunk; false when it wants no more.
  bool TryKey(const RowChunk& chunk, std::int32_t place) {
    const Key key = keys_[static_cast<std::size_t>(place)];
    // A part that is compared comes first: that is cheap, and few cells are equal to it.
    const auto compared = std::ranges::find_if(key, [](const KeyPart& part) { return !part.pattern; });
    if (compared != key.end()) {
      const auto part = static_cast<std::size_t>(compared - key.begin());
      const CellLine cells = chunk.Column(part);
      return Walk(chunk, place, part, [&cells, &value = compared->value](std::int32_t row) {
        return EqualsLookupValue(cells.At(row), value);
      });
    }
    if (!std::exchange(textsAreRead_, true)) texts_->Read(chunk.Column(0), scope_, live_.size() >= kKeysForPairs);
    const ColumnTexts& texts = *texts_;
    const text::TextMatcher& pattern = *key[0].pattern;
    const text::UnitPairs pairs = pattern.RequiredPairs();
    if (!texts.HasPairs() || pairs == 0)
      return Walk(chunk, place, 0, [&](std::int32_t row) { return texts.Match(row, pattern); });
    return Walk(chunk, place, 0,
                [&](std::int32_t row) { return texts.HasPairs(row, pairs) && texts.Match(row, pattern); });
  }

  /// Takes the rows whose cell in one part passes `isMet(row)` and whose others match the key.
  template <class Test>
  bool Walk(const RowChunk& chunk, std::int32_t place, std::size_t part, const Test& isMet) {
    const Key key = keys_[static_cast<std::size_t>(place)];
    const std::int32_t step = isBackward_ ? -1 : 1;
    const std::int32_t end = isBackward_ ? -1 : chunk.rows;
    for (std::int32_t row = isBackward_ ? chunk.rows - 1 : 0; row != end; row += step)
      if (isMet(row) && MatchesOthers(chunk, row, key, part) && !collector_.Add(place, chunk.firstRow + row))
        return false;
    return true;
  }

  static bool MatchesOthers(const RowChunk& chunk, std::int32_t row, Key key, std::size_t but) {
    for (std::size_t part = 0; part < key.size(); ++part)
      if (part != but && !key[part].Matches(chunk.At(row, part))) return false;
    return true;
  }

  std::span<const std::int32_t> columns_;
  const TableView& data_;
  std::span<const Key> keys_;
  PatternScope scope_;
  bool isBackward_;
  RowCollector& collector_;
  std::vector<std::int32_t> live_;  ///< the keys that want more rows
  std::unique_ptr<ColumnTexts> texts_ = std::make_unique<ColumnTexts>();
  bool textsAreRead_ = false;  ///< of the chunk
};

TableView RowsInUse(const TableView& data) {
  if (!data.IsReference() || data.Rows() == 0) return data;
  const CXlOper cells = data.Part(0, 0, data.Rows(), data.Columns());
  return TableView::OfUsedRows(cells);
}

}  // namespace

ScannedRows::ScannedRows(const LookupPlan& plan, const LookupKeys& keys, std::size_t patternParts)
    : plan_(plan), keys_(keys), patternParts_(patternParts), ranges_(static_cast<std::size_t>(keys.Count())) {
  if (keys.Count() == 1) return;
  groups_.resize(ranges_.size());
  // Expressions that differ in case differ.
  TupleIndex<TextCase::kCounts, LookupKeys>(keys).AddAll(groups_);
}

std::size_t ScannedRows::GroupOf(std::int32_t key) const noexcept {
  const auto place = static_cast<std::size_t>(key);
  return groups_.empty() || groups_[place] == kOddTuple ? place : static_cast<std::size_t>(groups_[place]);
}

Key ScannedRows::Prepare(std::int32_t key) {
  const std::size_t group = GroupOf(key);
  if (const auto prepared = prepared_.find(group); prepared != prepared_.end()) return prepared->second;
  if (std::exchange(preparedAreOver_, false)) {
    prepared_.clear();
    rooms_.clear();
  }
  return prepared_[group] = rooms_.emplace_back().Prepare(keys_, key, patternParts_);
}

void ScannedRows::Scan(std::span<const std::int32_t> keys) {
  std::vector<RowRange*> ranges;
  std::vector<Key> prepared;
  for (const std::int32_t key : keys) {
    RowRange& range = ranges_[GroupOf(key)];
    if (range.first != kNotScanned) continue;
    prepared.push_back(Prepare(key));
    ranges.push_back(&range);
    range.first = 0;
  }
  const auto count = static_cast<std::int32_t>(prepared.size());
  RowCollector collector(count, count, plan_.position);
  if (!data_) data_ = RowsInUse(plan_.data);
  KeyScan(plan_, *data_, prepared, keys_.Scope(), collector).Run();
  preparedAreOver_ = true;

  const std::size_t before = rows_.size();
  if (plan_.position == wanted_match::kAll) {
    std::vector<std::int32_t> starts;
    std::vector<std::int32_t> rows;
    std::move(collector).TakeAll(starts, rows);
    for (std::size_t i = 0; i < ranges.size(); ++i)
      *ranges[i] = {before + static_cast<std::size_t>(starts[i]), static_cast<std::size_t>(starts[i + 1] - starts[i])};
    rows_.insert(rows_.end(), rows.begin(), rows.end());
  } else {
    const std::vector<std::int32_t> rows = std::move(collector).TakeRows();
    for (std::size_t i = 0; i < ranges.size(); ++i) *ranges[i] = {before + i, 1};
    rows_.insert(rows_.end(), rows.begin(), rows.end());
  }
}

void ScannedRows::Record(std::int32_t key, FoundRows& found) const {
  const RowRange& range = Rows(key);
  if (range.count == 0) AddFoundRow(found, kNoRow);
  for (std::size_t i = 0; i < range.count; ++i) AddFoundRow(found, rows_[range.first + i]);
}

}  // namespace quillmere::lookup
