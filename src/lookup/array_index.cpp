#include "lookup/array_index.h"

#include <algorithm>
#include <numeric>

#include "table/tuple_index.h"

namespace quillmere {
namespace {

/// The rows of a table as tuples of cells, in their order or from the last to the first.
struct RowTuples {
  const ArrayColumns& table;
  bool backwards;

  std::int32_t Count() const noexcept { return table.cells.rows; }
  std::size_t Parts() const noexcept { return table.columns.size(); }
  std::int32_t Row(std::int32_t place) const noexcept { return backwards ? table.cells.rows - 1 - place : place; }
  /// From the cell of a part to that of the next tuple.
  std::ptrdiff_t Stride() const noexcept { return backwards ? -table.cells.columns : table.cells.columns; }
  const XLOPER12* CellAt(std::int32_t place, std::size_t part) const noexcept { return &table.At(Row(place), part); }
  /// What a cell stands for.
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return cell; }
};

/// The keys as tuples of cells.
struct KeyTuples {
  const LookupKeys& keys;

  std::int32_t Count() const noexcept { return keys.Count(); }
  std::size_t Parts() const noexcept { return keys.Parts(); }
  std::ptrdiff_t Stride() const noexcept { return static_cast<std::ptrdiff_t>(keys.Parts()); }
  const XLOPER12* CellAt(std::int32_t place, std::size_t part) const noexcept { return keys.CellAt(place, part); }
  const XLOPER12& Meaning(const XLOPER12& cell) const noexcept { return keys.Meaning(cell); }
};

/// Takes in which rows are in which group, in the order in which they are wanted.
class RowCollector {
 public:
  /// `groups` groups, whose names are below `names`.
  RowCollector(std::int32_t names, std::int32_t groups, std::int32_t position)
      : nth_(std::max(position, 1)),
        wantsAll_(position == wanted_match::kAll),
        unfinished_(groups),
        rows_(static_cast<std::size_t>(names), kNoRow) {
    if (nth_ > 1 || wantsAll_) counts_.resize(rows_.size());
  }

  void Add(std::int32_t group, std::int32_t row) {
    const auto place = static_cast<std::size_t>(group);
    if (wantsAll_) {
      ++counts_[place];
      pairs_.push_back({group, row});
    } else if (rows_[place] == kNoRow && (nth_ == 1 || ++counts_[place] == nth_)) {
      rows_[place] = row;
      --unfinished_;
    }
  }

  /// Whether further rows make no difference.
  bool IsDone() const noexcept { return unfinished_ == 0; }

  std::vector<std::int32_t> TakeRows() && { return std::move(rows_); }

  /// All rows, group by group, and the place where each group starts, and the last one ends.
  void TakeAll(std::vector<std::int32_t>& starts, std::vector<std::int32_t>& rows) && {
    starts.assign(counts_.size() + 1, 0);
    std::inclusive_scan(counts_.begin(), counts_.end(), starts.begin() + 1);
    rows.resize(pairs_.size());
    std::vector<std::int32_t> next(starts);
    for (const auto& [group, row] : pairs_)
      rows[static_cast<std::size_t>(next[static_cast<std::size_t>(group)]++)] = row;
  }

 private:
  struct Pair {
    std::int32_t group;
    std::int32_t row;
  };

  std::int32_t nth_;
  bool wantsAll_;
  std::int32_t unfinished_;
  std::vector<std::int32_t> rows_;
  std::vector<std::int32_t> counts_;
  std::vector<Pair> pairs_;
};

/// The groups of all tuples, by their places; false when one cannot be indexed.
template <TextCase textCase, class Tuples>
bool AddAll(const Tuples& tuples, TupleIndex<textCase, Tuples>& index, std::vector<std::int32_t>& groups) {
  groups.reserve(static_cast<std::size_t>(tuples.Count()));
  HashBatch<textCase, Tuples> hashes(tuples);
  for (std::int32_t first = 0; first < tuples.Count(); first += kTupleBatch) {
    if (!hashes.Fill(first)) return false;
    for (std::int32_t i = 0; i < hashes.Count(); ++i) index.PrefetchSlot(hashes[i]);
    for (std::int32_t i = 0; i < hashes.Count(); ++i) groups.push_back(index.Add(first + i, hashes[i]));
  }
  return true;
}

/// Calls `take(place, group)` for the tuples that are in the index, until it returns false; false when one cannot be
/// looked up.
template <TextCase textCase, class Tuples, class Others, class Take>
bool FindAll(const Others& others, const TupleIndex<textCase, Tuples>& index, Take take) {
  HashBatch<textCase, Others> hashes(others);
  std::int32_t candidates[kTupleBatch];
  for (std::int32_t first = 0; first < others.Count(); first += kTupleBatch) {
    if (!hashes.Fill(first)) return false;
    std::int32_t count = 0;
    for (std::int32_t i = 0; i < hashes.Count(); ++i) {
      candidates[count] = i;
      count += index.MayHold(hashes[i]) ? 1 : 0;
    }
    const std::span chosen(candidates, static_cast<std::size_t>(count));
    for (const std::int32_t i : chosen) index.PrefetchSlot(hashes[i]);
    for (const std::int32_t i : chosen) index.PrefetchTuple(hashes[i]);
    for (const std::int32_t i : chosen) index.PrefetchTexts(hashes[i]);
    for (const std::int32_t i : chosen) {
      const std::int32_t group = index.Find(others, first + i, hashes[i]);
      if (group != kNoGroup && !take(first + i, group)) return true;
    }
  }
  return true;
}

}  // namespace

struct ArrayIndex::Search {
  ArrayIndex& result;
  const RowTuples rows;
  const KeyTuples keys;
  const std::int32_t position;

  template <TextCase textCase>
  bool Run() {
    return rows.Count() < keys.Count() ? PassKeysByRows<textCase>() : PassRowsByKeys<textCase>();
  }

  template <TextCase textCase>
  bool PassRowsByKeys() {
    TupleIndex<textCase, KeyTuples> index(keys);
    if (!AddAll(keys, index, result.groupOfKey_)) return false;
    RowCollector collector(keys.Count(), index.Groups(), position);
    const bool ordinary = FindAll(rows, index, [&](std::int32_t place, std::int32_t group) {
      collector.Add(group, rows.Row(place));
      return !collector.IsDone();
    });
    Take(std::move(collector));
    return ordinary;
  }

  template <TextCase textCase>
  bool PassKeysByRows() {
    TupleIndex<textCase, RowTuples> index(rows);
    std::vector<std::int32_t> groups;
    if (!AddAll(rows, index, groups)) return false;
    RowCollector collector(rows.Count(), index.Groups(), position);
    for (std::int32_t place = 0; place < rows.Count(); ++place)
      collector.Add(groups[static_cast<std::size_t>(place)], rows.Row(place));
    Take(std::move(collector));
    result.groupOfKey_.assign(static_cast<std::size_t>(keys.Count()), kNoGroup);
    return FindAll(keys, index, [&](std::int32_t place, std::int32_t group) {
      result.groupOfKey_[static_cast<std::size_t>(place)] = group;
      return true;
    });
  }

  void Take(RowCollector&& collector) {
    if (result.wantsAll_)
      std::move(collector).TakeAll(result.rowOfGroup_, result.allRows_);
    else
      result.rowOfGroup_ = std::move(collector).TakeRows();
  }
};

ArrayIndex::ArrayIndex(const ArrayColumns& table, const LookupKeys& keys, std::int32_t position)
    : wantsAll_(position == wanted_match::kAll) {
  Search search{*this, {table, position == wanted_match::kLast}, {keys}, position};
  usable_ = keys.CaseSensitive() ? search.Run<TextCase::kCounts>() : search.Run<TextCase::kIgnored>();
}

void ArrayIndex::Record(std::int32_t key, FoundRows& found) const {
  const std::int32_t group = groupOfKey_[static_cast<std::size_t>(key)];
  if (group == kNoGroup) {
    AddFoundRow(found, kNoRow);
    return;
  }
  const auto place = static_cast<std::size_t>(group);
  if (!wantsAll_) {
    AddFoundRow(found, rowOfGroup_[place]);
    return;
  }
  if (rowOfGroup_[place] == rowOfGroup_[place + 1]) AddFoundRow(found, kNoRow);
  for (std::int32_t i = rowOfGroup_[place]; i < rowOfGroup_[place + 1]; ++i)
    AddFoundRow(found, allRows_[static_cast<std::size_t>(i)]);
}

}  // namespace quillmere
