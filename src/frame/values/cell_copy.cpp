#include "frame/values/cell_copy.h"

#include <cstdint>
#include <cstring>

#include "frame/values/cell.h"

namespace quillmere {
namespace {

/// Copies one `Word` at any address.
template <class Word>
inline void MoveWord(char* to, const char* from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  std::memcpy(to, &word, sizeof word);
}

/// Copies one to two `Word`s' worth of bytes by two moves that may overlap, never touching a byte outside.
template <class Word>
inline void MoveEnds(char* to, const char* from, std::size_t bytes) {
  MoveWord<Word>(to, from);
  MoveWord<Word>(to + bytes - sizeof(Word), from + bytes - sizeof(Word));
}

using Word16 = long long __attribute__((vector_size(16)));

/// Most texts are short: few branches that depend on the length, and no call.
inline void MoveText(XCHAR* toUnits, const XCHAR* fromUnits, std::size_t units) {
  char* const to = reinterpret_cast<char*>(toUnits);
  const char* const from = reinterpret_cast<const char*>(fromUnits);
  const std::size_t bytes = units * sizeof(XCHAR);
  if (bytes > 64) {
    std::memcpy(to, from, bytes);
  } else if (bytes > 32) {
    MoveEnds<Word16>(to, from, 32);
    MoveEnds<Word16>(to + bytes - 32, from + bytes - 32, 32);
  } else if (bytes >= 16) {
    MoveEnds<Word16>(to, from, bytes);
  } else if (bytes >= 8) {
    MoveEnds<std::uint64_t>(to, from, bytes);
  } else if (bytes >= 4) {
    MoveEnds<std::uint32_t>(to, from, bytes);
  } else if (bytes != 0) {
    MoveWord<std::uint16_t>(to, from);
  }
}

/// How many cells ahead the copy asks for a text, since texts may lie anywhere.
constexpr std::size_t kAhead = 12;

constexpr std::uint64_t kExponentBits = 0x7FF0'0000'0000'0000;

/// Writes a cell word by word: one that is put together elsewhere and moved in larger pieces waits for its own stores.
inline void WriteCell(XLOPER12* to, std::uint64_t first, std::uint32_t type) {
  char* const bytes = reinterpret_cast<char*>(to);
  constexpr std::uint64_t kUnused[2] = {};
  const std::uint64_t last = type;
  std::memcpy(bytes, &first, sizeof first);
  std::memcpy(bytes + 8, kUnused, sizeof kUnused);
  std::memcpy(bytes + 24, &last, sizeof last);
}

/// Copies a cell, as CopyCells says. Inline, since cells are copied by the million.
[[gnu::always_inline]] inline void CopyCell(TextArena& texts, XLOPER12* to, const XLOPER12* from) {
  const std::uint32_t type = TypeOf(*from);
  std::uint64_t first;
  std::memcpy(&first, &from->val, sizeof first);
  if (type == xltypeNum) {
    if ((first & kExponentBits) == kExponentBits) [[unlikely]]
      WriteCell(to, xlerrNum, xltypeErr);
    else if (from->xltype == xltypeNum) [[likely]]  // without ownership bits: as it is, in two moves
      MoveEnds<Word16>(reinterpret_cast<char*>(to), reinterpret_cast<const char*>(from), sizeof *to);
    else
      WriteCell(to, first, xltypeNum);
  } else if (type == xltypeStr) {
    const XStringView text = TextOf(*from);
    XCHAR* const copy = texts.Allocate(text.size());
    MoveText(copy, text.data() - 1, text.size() + 1);
    WriteCell(to, reinterpret_cast<std::uintptr_t>(copy), xltypeStr);
  } else {
    const std::uint32_t kind = CellType(*from);
    if (kind == xltypeBool) first = from->val.xbool != 0 ? 1 : 0;
    if (kind == xltypeErr) first = static_cast<std::uint64_t>(KnownErrorCode(from->val.err));
    WriteCell(to, first, kind == xltypeMissing ? std::uint32_t{xltypeNil} : kind);
  }
}

}  // namespace

__attribute__((noipa)) void CopyText(XCHAR* to, const XCHAR* from, std::size_t units) {
  to[0] = static_cast<XCHAR>(units);
  MoveText(to + 1, from, units);
}

__attribute__((noipa)) void CopyUnits(XCHAR* to, const XCHAR* from, std::size_t units) { MoveText(to, from, units); }

void AssignText(XString& to, XStringView text) {
  to.resize(text.size());
  CopyUnits(to.data(), text.data(), text.size());
}

__attribute__((noipa)) void CopyBytes(char* to, const char* from, std::size_t count) {
  for (std::size_t at = 0; at < count; ++at) to[at] = from[at];
}

__attribute__((noipa)) void CopyCells(TextArena& texts, XLOPER12* to, const XLOPER12* from, std::size_t count,
                                      std::ptrdiff_t toStride, std::ptrdiff_t fromStride) {
  for (; count != 0; --count, to += toStride, from += fromStride) {
    if (count > kAhead) PrefetchText(from[static_cast<std::ptrdiff_t>(kAhead) * fromStride]);
    CopyCell(texts, to, from);
  }
}

__attribute__((noipa)) void CopyRows(TextArena& texts, const CellRows& rows) {
  const std::int32_t ahead = static_cast<std::int32_t>(kAhead) / rows.columns + 1;
  XLOPER12* toRow = rows.to;
  const XLOPER12* fromRow = rows.from;
  for (std::int32_t left = rows.rows; left != 0; --left, toRow += rows.toStride, fromRow += rows.fromStride) {
    XLOPER12* to = toRow;
    const XLOPER12* from = fromRow;
    for (std::int32_t column = 0; column < rows.columns; ++column, ++to, from += rows.step) {
      if (left > ahead) PrefetchText(from[ahead * rows.fromStride]);
      CopyCell(texts, to, from);
    }
  }
}

}  // namespace quillmere
