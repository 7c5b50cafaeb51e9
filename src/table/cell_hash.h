// Hashing cells for the indexes of engines: cells that are equal have equal hashes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/cell.h"

namespace quillmere {

/// Whether texts that differ by the case of A to Z alone are taken as equal.
enum class TextCase { kIgnored, kCounts };

/// Mixes two words into one, every bit of which hangs on all of theirs.
inline std::uint64_t MixHash(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a ^ 0x9E37'79B9'7F4A'7C15) * (b ^ 0xD6E8'FEB8'6659'FD93);
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// The hash of a text; no unit outside it is read.
template <TextCase textCase>
std::uint64_t HashText(XStringView text);

extern template std::uint64_t HashText<TextCase::kIgnored>(XStringView);
extern template std::uint64_t HashText<TextCase::kCounts>(XStringView);

inline std::uint64_t HashNumber(double number) noexcept {
  // The two zeros are equal.
  return MixHash(std::bit_cast<std::uint64_t>(number + 0.0), xltypeNum);
}

/// The hash of a single cell: equal for cells between which CompareOpers, with the case of texts as asked, gives 0.
/// That comparison takes a number that is not one for equal to all; it has no hash, callers look for it. What is no
/// single cell is "Bad XLOPER type".
template <TextCase textCase>
inline std::uint64_t HashCell(const XLOPER12& cell) {
  if (IsNumberCell(cell)) [[likely]]
    return HashNumber(cell.val.num);
  if (IsTextCell(cell)) return HashText<textCase>(TextOf(cell));
  const std::uint32_t type = CellType(cell);
  const bool hasValue = type == xltypeBool || type == xltypeErr || type == xltypeInt;
  return MixHash(hasValue ? static_cast<std::uint32_t>(cell.val.w) : 0, type);
}

}  // namespace quillmere
