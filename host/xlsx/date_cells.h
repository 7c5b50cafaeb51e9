// Which cells show their number as a date or a time.
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>

namespace qcalc {

/// What a number format shows; kDate and kTime together for both.
enum class DateKind : std::uint8_t { kNone = 0, kDate = 1, kTime = 2, kDateAndTime = 3 };

/// Two bits a cell, for 1,024 rows of a column at once where one of them shows a date or time, and nothing elsewhere.
/// Rows and columns are zero-based and within the sheet's limits.
class DateCells {
 public:
  /// Whether that took new memory: kBytesOfBlock.
  bool Mark(std::int32_t row, std::int32_t column, DateKind kind) {
    const auto [block, isNew] = blocks_.try_emplace(KeyOf(row, column));
    block->second[WordOf(row)] |= static_cast<std::uint64_t>(kind) << ShiftOf(row);
    return isNew;
  }
  DateKind At(std::int32_t row, std::int32_t column) const {
    const auto block = blocks_.find(KeyOf(row, column));
    return block == blocks_.end() ? DateKind::kNone
                                  : static_cast<DateKind>(block->second[WordOf(row)] >> ShiftOf(row) & 3);
  }
  bool IsEmpty() const { return blocks_.empty(); }

  static constexpr std::size_t kBytesOfBlock = 320;  ///< with what the table around it takes

 private:
  using Block = std::array<std::uint64_t, 32>;
  static std::uint32_t KeyOf(std::int32_t row, std::int32_t column) {
    return static_cast<std::uint32_t>(column) << 10 | static_cast<std::uint32_t>(row) >> 10;
  }
  static std::size_t WordOf(std::int32_t row) { return static_cast<std::size_t>(row) >> 5 & 31; }
  static int ShiftOf(std::int32_t row) { return (row & 31) * 2; }

  std::unordered_map<std::uint32_t, Block> blocks_;
};

}  // namespace qcalc
