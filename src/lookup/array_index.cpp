#include "lookup/array_index.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <numeric>

#include "table/cell_hash.h"
#include "table/fold_case.h"

namespace quillmere {
namespace {

constexpr std::int32_t kNoGroup = -1;
constexpr std::int32_t kBatch = 256;

// How many cells ahead memory is asked for: the cells themselves, and the texts of those that are then there.
constexpr std::int32_t kCellsAhead = 128;
constexpr std::int32_t kTextsAhead = 24;

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

template <class Tuples>
const XLOPER12& ValueAt(const Tuples& tuples, std::int32_t place, std::size_t part) {
  return tuples.Meaning(*tuples.CellAt(place, part));
}

template <TextCase textCase>
inline bool CellsEqual(const XLOPER12& a, const XLOPER12& b) {
  if (IsNumberCell(a)) return IsNumberCell(b) && a.val.num == b.val.num;
  if (IsTextCell(a)) {
    constexpr auto kEqual = textCase == TextCase::kIgnored ? EqualFolded : EqualExact;
    return IsTextCell(b) && kEqual(TextOf(a), TextOf(b));
  }
  return CompareOpers(&a, &b) == 0;
}

/// Asks for the text of a cell, which lies elsewhere.
inline void PrefetchText(const XLOPER12& cell) {
  if (IsTextCell(cell)) __builtin_prefetch(cell.val.str);
}

/// The hashes of one batch of tuples.
template <TextCase textCase, class Tuples>
class HashBatch {
 public:
  explicit HashBatch(const Tuples& tuples) noexcept : tuples_(tuples) {}

  /// Hashes the batch that starts at `first`; false when a number that is none is among its cells.
  bool Fill(std::int32_t first) {
    count_ = std::min(kBatch, tuples_.Count() - first);
    bool ordinary = true;
    for (std::size_t part = 0; part < tuples_.Parts(); ++part) {
      const XLOPER12* at = tuples_.CellAt(first, part);
      const std::ptrdiff_t stride = tuples_.Stride();
      const std::int32_t left = tuples_.Count() - first;
      for (std::int32_t i = 0; i < count_; ++i, at += stride) {
        if (i + kCellsAhead < left) __builtin_prefetch(at + kCellsAhead * stride);
        if (i + kTextsAhead < left) PrefetchText(at[kTextsAhead * stride]);
        const XLOPER12& cell = tuples_.Meaning(*at);
        ordinary &= !IsNumberCell(cell) || cell.val.num == cell.val.num;
        const std::uint64_t hash = HashCell<textCase>(cell);
        hashes_[i] = part == 0 ? hash : MixHash(hashes_[i], hash);
      }
    }
    return ordinary;
  }

  std::int32_t Count() const noexcept { return count_; }
  std::uint64_t operator[](std::int32_t i) const noexcept { return hashes_[i]; }

 private:
  const Tuples& tuples_;
  std::int32_t count_ = 0;
  std::uint64_t hashes_[kBatch];
};

/// Distinct tuples. Equal tuples are one group, named by the place of its first.
template <TextCase textCase, class Tuples>
class TupleIndex {
 public:
  explicit TupleIndex(const Tuples& tuples)
      : tuples_(tuples), placeBits_(std::bit_width(static_cast<std::uint32_t>(tuples.Count()))) {
    const std::uint32_t slots = std::bit_ceil(static_cast<std::uint32_t>(tuples.Count()) * 2 + 2);
    slotMask_ = slots - 1;
    slots_ = std::make_unique<std::uint32_t[]>(slots);
    filterMask_ = slots * 8 - 1;
    filter_ = std::make_unique<std::uint64_t[]>(slots / 8 + std::size_t{1});
  }

  /// The group of the tuple at `place`, a new one if no tuple added before equals it.
  std::int32_t Add(std::int32_t place, std::uint64_t hash) {
    std::uint32_t slot = 0;
    if (const std::int32_t group = Find(tuples_, place, hash, slot); group != kNoGroup) return group;
    slots_[slot] = Tag(hash) | (static_cast<std::uint32_t>(place) + 1);
    const std::uint32_t bit = FilterBit(hash);
    filter_[bit / 64] |= std::uint64_t{1} << bit % 64;
    ++groups_;
    return place;
  }

  std::int32_t Groups() const noexcept { return groups_; }

  /// False only when no tuple added has that hash. Most tuples of a table are told apart by this, without a jump.
  bool MayHold(std::uint64_t hash) const noexcept {
    const std::uint32_t bit = FilterBit(hash);
    return (filter_[bit / 64] >> bit % 64 & 1) != 0;
  }

  /// Asks for the memory that Find will read first.
  void PrefetchSlot(std::uint64_t hash) const noexcept {
    __builtin_prefetch(&slots_[static_cast<std::uint32_t>(hash) & slotMask_]);
  }
  /// And for the tuple that it will read then, where that is the likely one.
  void PrefetchTuple(std::uint64_t hash) const noexcept {
    const std::int32_t place = LikelyPlace(hash);
    for (std::size_t part = 0; place != kNoGroup && part < tuples_.Parts(); ++part)
      PrefetchCell(tuples_.CellAt(place, part));
  }
  /// And for the tuple's texts.
  void PrefetchTexts(std::uint64_t hash) const {
    const std::int32_t place = LikelyPlace(hash);
    for (std::size_t part = 0; place != kNoGroup && part < tuples_.Parts(); ++part)
      PrefetchText(*tuples_.CellAt(place, part));
  }

  /// The group whose tuples equal the one at `place` of others, or kNoGroup.
  template <class Others>
  std::int32_t Find(const Others& others, std::int32_t place, std::uint64_t hash) const {
    std::uint32_t slot = 0;
    return Find(others, place, hash, slot);
  }

 private:
  std::int32_t LikelyPlace(std::uint64_t hash) const noexcept {
    const std::uint32_t place = PlaceIn(slots_[static_cast<std::uint32_t>(hash) & slotMask_], Tag(hash));
    return place < static_cast<std::uint32_t>(tuples_.Count()) ? static_cast<std::int32_t>(place) : kNoGroup;
  }

  /// The upper bits of a slot: those of the hash that its place does not show. The lower bits are the group's name,
  /// from 1.
  std::uint32_t Tag(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 32) >> placeBits_ << placeBits_;
  }
  /// The place that a slot holds; some number beyond all places when it is empty or has another tag.
  static std::uint32_t PlaceIn(std::uint32_t slot, std::uint32_t tag) noexcept { return slot - tag - 1; }
  std::uint32_t FilterBit(std::uint64_t hash) const noexcept {
    return static_cast<std::uint32_t>(hash >> 20) & filterMask_;
  }

  template <class Others>
  std::int32_t Find(const Others& others, std::int32_t place, std::uint64_t hash, std::uint32_t& slot) const {
    const std::uint32_t tag = Tag(hash);
    for (slot = static_cast<std::uint32_t>(hash) & slotMask_; slots_[slot] != 0; slot = (slot + 1) & slotMask_) {
      const std::uint32_t first = PlaceIn(slots_[slot], tag);
      if (first < static_cast<std::uint32_t>(tuples_.Count()) && Equal(static_cast<std::int32_t>(first), others, place))
        return static_cast<std::int32_t>(first);
    }
    return kNoGroup;
  }

  template <class Others>
  bool Equal(std::int32_t first, const Others& others, std::int32_t place) const {
    for (std::size_t part = 0; part < tuples_.Parts(); ++part)
      if (!CellsEqual<textCase>(ValueAt(tuples_, first, part), ValueAt(others, place, part))) return false;
    return true;
  }

  const Tuples& tuples_;
  int placeBits_;
  std::int32_t groups_ = 0;
  std::uint32_t slotMask_;
  std::uint32_t filterMask_;
  std::unique_ptr<std::uint32_t[]> slots_;
  std::unique_ptr<std::uint64_t[]> filter_;
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
  for (std::int32_t first = 0; first < tuples.Count(); first += kBatch) {
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
  std::int32_t candidates[kBatch];
  for (std::int32_t first = 0; first < others.Count(); first += kBatch) {
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
