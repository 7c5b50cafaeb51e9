// What an expression can tell of a unit, asked of the library itself, so that no class is known in two places.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "frame/locale/regex_traits.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Bits for what is true of a unit, or of an edge of a text: what assertions ask, and which atoms of the expression
/// match it.
using UnitRow = std::uint64_t;
inline constexpr UnitRow kWordUnit = 1;
inline constexpr UnitRow kLineSeparator = 2;
inline constexpr UnitRow kReturn = 4;
inline constexpr UnitRow kFeed = 8;
inline constexpr UnitRow kTextBegin = 16;
inline constexpr UnitRow kTextEnd = 32;
inline constexpr UnitRow kAskedByAssertions = kWordUnit | kLineSeparator | kReturn | kFeed | kTextBegin | kTextEnd;
inline constexpr UnitRow kAnyUnitRow = 64;  ///< the atom that matches every unit
inline constexpr int kFirstAtom = 8;        ///< the bit of the next one

/// A set of units that have the same row, in all that the expression asks.
using ClassNumber = std::uint16_t;
inline constexpr ClassNumber kUnknownClass = 0;  ///< of units that have not been met
inline constexpr ClassNumber kBeginClass = 1;    ///< of what is before a text
inline constexpr ClassNumber kEndClass = 2;      ///< of what is behind it

/// The classes of an expression; found as units turn up in texts, since most expressions meet few.
class UnitClasses {
 public:
  /// The compiled expression must outlive it.
  explicit UnitClasses(const LibraryRegex& expression);

  // Reading the expression, before any class is asked for. Of atoms the bit is returned, 0 where there are too many.

  UnitRow Literal(XCHAR unit);
  /// An atom that the library compiles alone: a set, or an escape for one unit.
  UnitRow Compiled(XStringView atom);
  /// What assertions ask.
  void Ask(UnitRow bits) noexcept { asked_ |= bits; }

  /// What assertions ask of a row.
  UnitRow AskedOf(ClassNumber unitClass) const noexcept { return rows_[unitClass] & asked_ & kAskedByAssertions; }
  UnitRow RowOf(ClassNumber unitClass) const noexcept { return rows_[unitClass]; }
  std::size_t Count() const noexcept { return rows_.size(); }

  /// The class of a unit, or kUnknownClass.
  ClassNumber Known(XCHAR unit) const noexcept {
    if (unit < kPageUnits) [[likely]]
      return first_[unit];
    const Page* const page = pages_.empty() ? nullptr : pages_[unit / kPageUnits].get();
    return page ? (*page)[unit % kPageUnits] : kUnknownClass;
  }
  /// The class of a unit, found now if need be.
  ClassNumber Of(XCHAR unit);

 private:
  static constexpr std::size_t kPageUnits = 256;
  using Page = std::array<ClassNumber, kPageUnits>;

  struct Atom {
    XString spelling;  ///< a unit, translated, where the library does not compile it
    bool isLiteral;
    LibraryRegex compiled;  ///< empty before it is first asked
  };

  UnitRow BitOf(XStringView spelling, bool isLiteral);
  UnitRow FindRow(XCHAR unit);

  const LibraryRegex& expression_;
  bool anyCase_;
  UnitRow asked_ = 0;
  std::vector<Atom> atoms_;
  std::vector<UnitRow> rows_;  ///< of the classes
  Page first_{};               ///< the classes of the first units
  std::vector<std::unique_ptr<Page>> pages_;
};

}  // namespace quillmere::text
