// Sorting rows by keys of which no more is looked at than tells the rows apart.
//
// Rows are numbers of 32 bits and never move their values. Of each key the bits by which its values differ are put side
// by side, those of the next key behind them where there is room, and the row below; such words are sorted by their
// digits. Rows whose words are equal are looked at once more, further on: later bits, later units, later keys. So the
// cost does not hang on how the rows come, and long equal beginnings cost little.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

#include "frame/values/scratch_array.h"
#include "sort/code_layout.h"
#include "sort/raw_values.h"
#include "table/word_sort.h"

namespace quillmere::sort {

/// Fewer rows are sorted by comparing them with each other.
constexpr std::int32_t kFewRows = 16;

/// What is sorted, and where its values come from. A source reads the values of some rows at one key.
template <class T>
concept RowSource = requires(T& source, const EqualRun& run, std::span<const std::int32_t> rows,
                             std::span<std::int32_t> few, const RawValues& to, bool* isFirst) {
  { source.Count() } -> std::same_as<std::int32_t>;
  { source.Keys() } -> std::same_as<std::uint32_t>;
  { source.IsDescending(run.key) } -> std::same_as<bool>;
  /// Comes first, before anything takes memory.
  { source.Begin() } -> std::same_as<void>;
  /// Reads the values of a run's rows at its key.
  { source.Read(run, rows, to) } -> std::same_as<ValueSurvey>;
  /// Whether a few rows are sorted by SortFew, and not by what Read gives.
  { source.ComparesFew(run, rows) } -> std::same_as<bool>;
  /// Sorts a few rows by the run's key and all behind it; rows equal to those before keep their order. Marks those that
  /// are unequal to the one before them.
  { source.SortFew(run, few, isFirst) } -> std::same_as<void>;
};

template <RowSource Source>
class RunSorter {
 public:
  explicit RunSorter(Source& source)
      : source_(source),
        count_(static_cast<std::size_t>(source.Count())),
        rowBits_(std::max(1, static_cast<int>(std::bit_width(std::max(count_, std::size_t{1}) - 1)))) {}

  /// The rows, counted from 0, in order; equal ones in the order of their numbers.
  ScratchArray<std::int32_t> Sort() {
    source_.Begin();
    rows_ = ScratchArray<std::int32_t>(count_);
    std::iota(rows_.begin(), rows_.end(), 0);
    if (count_ < 2) return std::move(rows_);
    words_ = ScratchArray<std::uint64_t>(count_);
    spare_ = ScratchArray<std::uint64_t>(count_);
    kinds_ = ScratchArray<std::uint8_t>(count_);
    pending_.push_back({0, source_.Count(), 0, 0});
    while (!pending_.empty()) {
      const EqualRun run = pending_.back();
      pending_.pop_back();
      SortRun(run);
    }
    return std::move(rows_);
  }

  /// The same, and in `isFirst`, which has a place for each row, whether a row of the order is unequal to the one
  /// before.
  ScratchArray<std::int32_t> Sort(std::span<bool> isFirst) {
    std::ranges::fill(isFirst, false);
    if (!isFirst.empty()) isFirst[0] = true;
    isFirst_ = isFirst.data();
    return Sort();
  }

 private:
  /// Codes of further keys are put behind those before until they have so many bits more than rows need.
  static constexpr int kBitsBeyondRows = 6;
  /// A key needs so many bits to tell the kinds of its values at least.
  static constexpr int kLeastBits = 3;
  /// Of so many bits, the codes of all kinds together can be counted.
  static constexpr int kMostBits = 60;

  std::span<std::int32_t> RowsOf(const EqualRun& run) noexcept {
    return std::span(rows_).subspan(static_cast<std::size_t>(run.begin), static_cast<std::size_t>(run.Count()));
  }

  void SortRun(EqualRun run) {
    if (SortedFew(run)) return;
    const auto first = static_cast<std::size_t>(run.begin);
    const auto count = static_cast<std::size_t>(run.Count());
    const int room = std::min(kMostBits, 64 - rowBits_);
    int bits = 0;  // of the codes so far
    for (;;) {
      const RawValues raw{words_.data() + first, spare_.data() + first, kinds_.data() + first};
      const ValueSurvey survey = source_.Read(run, RowsOf(run), raw);
      const CodeLayout layout(survey, source_.IsDescending(run.key), room - bits);
      const bool hasNext = run.key + 1 < source_.Keys();
      const int bitsNow = bits + layout.Bits();
      const bool goesOn = layout.IsWhole() && hasNext && bitsNow + kLeastBits <= room &&
                          bitsNow < static_cast<int>(std::bit_width(count)) + kBitsBeyondRows;
      if (goesOn) {
        if (layout.Bits() != 0) KeepCodes(run, raw, layout, bits);
        bits = bitsNow;
        ++run.key;
        run.depth = 0;
      } else if (bitsNow == 0) {
        // All rows are equal in what was looked at.
        layout.GoOn(0, run);
        if (run.key == source_.Keys()) return;
      } else {
        MakeWords(run, raw, layout, bits);
        SortWords({raw.high, count}, {raw.low, count}, rowBits_, bitsNow);
        return TakeOrder(run, layout);
      }
    }
  }

  /// Puts the codes of a key behind those of the keys before it, which have so many bits.
  void KeepCodes(const EqualRun& run, const RawValues& raw, const CodeLayout& layout, int bits) {
    if (codes_.empty()) codes_ = ScratchArray<std::uint64_t>(count_);
    std::uint64_t* const codes = codes_.data() + run.begin;
    const auto count = static_cast<std::size_t>(run.Count());
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t code = layout.Code(raw.kinds[i], {raw.high[i], raw.low[i]});
      codes[i] = bits == 0 ? code : codes[i] << layout.Bits() | code;
    }
  }

  /// The same for the last key, with the rows below, in the place of the values.
  void MakeWords(const EqualRun& run, const RawValues& raw, const CodeLayout& layout, int bits) {
    const std::uint64_t* const codes = codes_.data() + run.begin;
    const std::int32_t* const rows = rows_.data() + run.begin;
    const auto count = static_cast<std::size_t>(run.Count());
    for (std::size_t i = 0; i < count; ++i) {
      std::uint64_t code = layout.Code(raw.kinds[i], {raw.high[i], raw.low[i]});
      if (bits != 0) code |= codes[i] << layout.Bits();
      raw.high[i] = code << rowBits_ | static_cast<std::uint32_t>(rows[i]);
    }
  }

  /// Takes the rows of a run in the order of their words, and notes those that are to be looked at once more.
  void TakeOrder(const EqualRun& run, const CodeLayout& layout) {
    const std::uint64_t rowMask = (std::uint64_t{1} << rowBits_) - 1;
    const std::uint64_t codeMask = (std::uint64_t{1} << layout.Bits()) - 1;
    const std::int32_t end = run.end;
    for (std::int32_t first = run.begin; first < end;) {
      const std::uint64_t code = words_[static_cast<std::size_t>(first)] >> rowBits_;
      std::int32_t next = first;
      do {
        rows_[static_cast<std::size_t>(next)] =
            static_cast<std::int32_t>(words_[static_cast<std::size_t>(next)] & rowMask);
        ++next;
      } while (next < end && words_[static_cast<std::size_t>(next)] >> rowBits_ == code);
      if (isFirst_ && first != run.begin) isFirst_[first] = true;
      if (next - first > 1) {
        EqualRun equal{first, next, run.key, run.depth};
        layout.GoOn(code & codeMask, equal);
        // Few rows are sorted at once, so that what is noted takes little room.
        if (equal.key < source_.Keys() && !SortedFew(equal)) pending_.push_back(equal);
      }
      first = next;
    }
  }

  /// Whether these are few rows, which then are sorted.
  bool SortedFew(const EqualRun& run) {
    if (run.Count() >= kFewRows || !source_.ComparesFew(run, RowsOf(run))) return false;
    source_.SortFew(run, RowsOf(run), isFirst_ ? isFirst_ + run.begin : nullptr);
    return true;
  }

  Source& source_;
  std::size_t count_;
  int rowBits_;
  ScratchArray<std::int32_t> rows_;
  std::vector<EqualRun> pending_;
  ScratchArray<std::uint64_t> words_;  ///< or the higher bits of values
  ScratchArray<std::uint64_t> spare_;  ///< or the lower ones
  ScratchArray<std::uint8_t> kinds_;
  ScratchArray<std::uint64_t> codes_;
  bool* isFirst_ = nullptr;
};

}  // namespace quillmere::sort
