// Values as they cross the API: into the memory of XLOPER12 and XLOPER, and out of it.
#pragma once

#include <cstddef>
#include <string>

#include "host/api/api_value.h"

namespace qcalc {

/// The 16-bit form: XLOPER12.
struct Wide {
  using Oper = XLOPER12;
  using ReferenceList = XLMREF12;
  using Rectangle = XLREF12;
  using Unit = XCHAR;
  static constexpr std::size_t kMaxText = kXlMaxText;
  static constexpr std::int32_t kMaxRows = kXlMaxRows;
  static constexpr std::int32_t kMaxArrayRows = kXlMaxRows;
  static constexpr std::int32_t kMaxColumns = kXlMaxColumns;
};

/// The 8-bit form: XLOPER.
struct Narrow {
  using Oper = XLOPER;
  using ReferenceList = XLMREF;
  using Rectangle = XLREF;
  using Unit = char;
  static constexpr std::size_t kMaxText = kXlMaxText4;
  static constexpr std::int32_t kMaxRows = 65'536;
  static constexpr std::int32_t kMaxArrayRows = 65'535;  ///< an array counts its rows in 16 bits
  static constexpr std::int32_t kMaxColumns = 256;
};

/// How references are handed over: those to one area of `currentSheet` as SRef, all others as Ref. With 0 all are Ref.
struct ReferenceForm {
  IDSHEET currentSheet = 0;
};

/// What was read of an XLOPER: a value, and what is wrong with it. A malformed one has no value to go on with; one with
/// a number that is not finite has #NUM! in its place.
struct Reading {
  ApiValue value;
  std::string defect;  ///< empty: all well. "an array of 0 rows" and the like
  bool isMalformed = false;
};

template <typename Width>
struct Marshal {
  using Oper = typename Width::Oper;

  /// Whether this form can carry the value: length of texts, size of arrays, cells of references.
  static bool Fits(const ApiValue& value);

  /// Bytes of the block that carries what hangs on the value: a text, an array with its texts, a list of references.
  /// 0 when nothing does.
  static std::size_t BlockBytes(const ApiValue& value, const ReferenceForm& form);

  /// Writes a value that fits. `block` has BlockBytes and holds junk, which stays between and behind the texts; so does
  /// the junk that `oper` is filled with first. The block's address is the pointer that `oper` holds.
  static void Write(const ApiValue& value, const ReferenceForm& form, std::byte* block, Oper& oper);

  /// Reads what the add-in handed over. `currentSheet` is the sheet of SRef, and of a Ref whose id is 0.
  static Reading Read(const Oper& oper, IDSHEET currentSheet);
};

extern template struct Marshal<Wide>;
extern template struct Marshal<Narrow>;

}  // namespace qcalc
