// The types of XLOPER12 and XLOPER: what stands in xltype, and what hangs on a value of which type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "xlcall/xlcall.h"

namespace qcalc {

/// The bits of xltype that say the type, and those that say who frees what hangs on the value.
inline constexpr std::uint32_t kTypeBits = 0x0FFF;
inline constexpr std::uint32_t kFreeBits = xlbitXLFree | xlbitDLLFree;

template <typename Oper>
std::uint32_t TypeOf(const Oper& oper) {
  return oper.xltype & kTypeBits;
}

template <typename Oper>
void SetType(Oper& oper, std::uint32_t type) {
  oper.xltype = static_cast<decltype(oper.xltype)>(type);
}

/// Whether a value of that type points at memory that somebody frees: a text, elements, a list of areas.
constexpr bool HasMemory(std::uint32_t type) { return type == xltypeStr || type == xltypeMulti || type == xltypeRef; }

/// Takes the pointer to that memory off the value, and leaves null; null when there is none.
template <typename Oper>
void* TakeMemory(Oper& oper) {
  switch (TypeOf(oper)) {
    case xltypeStr:
      return std::exchange(oper.val.str, nullptr);
    case xltypeMulti:
      return std::exchange(oper.val.array.lparray, nullptr);
    case xltypeRef:
      return std::exchange(oper.val.mref.lpmref, nullptr);
    default:
      return nullptr;
  }
}

/// The units, or bytes, of a counted text.
template <typename Unit>
std::size_t LengthOf(const Unit* text) {
  return static_cast<std::make_unsigned_t<Unit>>(text[0]);
}

}  // namespace qcalc
