#include "frame/values/xl_oper4.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "frame/errors/messages.h"
#include "frame/text/ansi_text.h"
#include "frame/values/array_builder.h"
#include "frame/values/cell_copy.h"

namespace quillmere {
namespace {

// The row count of an 8-bit array is a 16-bit number, so a full column of 65,536 cells cannot be told.
constexpr std::int32_t kMaxArrayRows4 = 65'535;
constexpr std::int32_t kMaxArrayColumns4 = 256;
constexpr std::int32_t kLastRow4 = 65'535;
constexpr std::int32_t kLastColumn4 = 255;
constexpr std::size_t kMaxText4 = kXlMaxText4;

std::uint16_t TypeOf4(const XLOPER& value) { return static_cast<std::uint16_t>(value.xltype & ~kOwnershipBits); }

XString TextOf4(const XLOPER& value) {
  if (!value.val.str) ThrowBadOperType();
  std::array<char, kMaxText4> bytes;
  const std::size_t length = static_cast<unsigned char>(value.val.str[0]);
  CopyBytes(bytes.data(), value.val.str + 1, length);
  return WidenAnsi({bytes.data(), length});
}

XLREF12 WideArea(const XLREF& area) { return {area.rwFirst, area.rwLast, area.colFirst, area.colLast}; }

/// A reference on the current sheet, checked as a 16-bit one is.
CXlOper WideShortReference(const XLOPER& value) {
  XLOPER12 wide{};
  wide.val.sref = {value.val.sref.count, WideArea(value.val.sref.ref)};
  wide.xltype = xltypeSRef;
  return CXlOper::Borrow(&wide).Clone();
}

CXlOper WideReference(const XLOPER& value) {
  const XLMREF* const areas = value.val.mref.lpmref;
  if (!areas) ThrowBadOperType();
  std::vector<XLREF12> wide;
  for (std::uint16_t i = 0; i < areas->count; ++i) wide.push_back(WideArea(areas->reftbl[i]));
  CXlOper reference = CXlOper::Reference(value.val.mref.idSheet, wide);
  CXlOper::Borrow(&reference.Raw());  // checked alike
  return reference;
}

CXlOper WideScalar(const XLOPER& value) {
  switch (TypeOf4(value)) {
    case xltypeNum:
      return CXlOper::Number(value.val.num);
    case xltypeStr:
      return CXlOper::Text(TextOf4(value));
    case xltypeBool:
      return CXlOper::Boolean(value.val.xbool != 0);
    case xltypeErr:
      return CXlOper::Error(value.val.err);
    case xltypeInt:
      return CXlOper::Integer(value.val.w);
    case xltypeMissing:
      return CXlOper::Missing();
    case xltypeNil:
      return CXlOper::Empty();
    default:
      ThrowBadOperType();
  }
}

CXlOper WideArray(const XLOPER& value) {
  const int rows = value.val.array.rows;
  const int columns = value.val.array.columns;
  if (!value.val.array.lparray || rows == 0 || columns == 0) ThrowBadOperType();
  CXlArrayBuilder builder(rows, columns);
  const XLOPER* cell = value.val.array.lparray;
  for (int row = 0; row < rows; ++row)
    for (int column = 0; column < columns; ++column) builder.Put(row, column, WideScalar(*cell++));
  return builder.Finish();
}

struct BlockFree {
  void operator()(void* block) const noexcept { ::operator delete(block); }
};
/// The memory behind one 8-bit value: a text, a list of areas, or an array's cells with their texts behind them.
using Block = std::unique_ptr<void, BlockFree>;

/// What a returned value becomes when the 8-bit form cannot hold it.
XLOPER Error4(std::int32_t code) {
  XLOPER value{};
  value.val.err = static_cast<std::uint16_t>(code);
  value.xltype = xltypeErr;
  return value;
}

/// The 8-bit form of a cell without memory of its own. A text is not one.
XLOPER NarrowPlain(const XLOPER12& cell) {
  XLOPER value{};
  value.xltype = static_cast<std::uint16_t>(TypeOf(cell));
  switch (TypeOf(cell)) {
    case xltypeNum:
      if (!std::isfinite(cell.val.num)) return Error4(xlerrNum);
      value.val.num = cell.val.num;
      break;
    case xltypeBool:
      value.val.xbool = cell.val.xbool ? 1 : 0;
      break;
    case xltypeErr:
      return Error4(cell.val.err);
    case xltypeInt:
      if (cell.val.w >= std::numeric_limits<std::int16_t>::min() &&
          cell.val.w <= std::numeric_limits<std::int16_t>::max()) {
        value.val.w = static_cast<std::int16_t>(cell.val.w);
      } else {
        value.xltype = xltypeNum;
        value.val.num = cell.val.w;
      }
      break;
    case xltypeMissing:
    case xltypeNil:
      break;
    default:
      return Error4(xlerrValue);
  }
  return value;
}

/// The bytes of a text, more than a value can hold when it is too long. A failure's text is cut: better a part of it
/// than an error value that tells nothing.
std::string BytesOf(const XLOPER12& cell) {
  const XStringView text = TextOf(cell);
  const XStringView failure = MessageText(MessageId::kErrorPrefix);
  if (text.starts_with(failure.substr(0, failure.find(XTEXT('{'))))) return NarrowToAnsi(text, kMaxText4);
  return NarrowToAnsi(text);
}

/// Writes a counted text; the caller has made room and checked the length.
char* PutText4(char* to, const std::string& text) {
  *to = static_cast<char>(static_cast<unsigned char>(text.size()));
  std::memcpy(to + 1, text.data(), text.size());
  return to + 1 + text.size();
}

XLOPER NarrowText(const XLOPER12& cell, Block& block) {
  const std::string text = BytesOf(cell);
  if (text.size() > kMaxText4) return Error4(xlerrValue);
  block.reset(::operator new(text.size() + 1));
  XLOPER value{};
  value.xltype = xltypeStr;
  value.val.str = static_cast<char*>(block.get());
  PutText4(value.val.str, text);
  return value;
}

XLOPER NarrowArray(const CXlCells& cells, Block& block) {
  if (cells.rows > kMaxArrayRows4 || cells.columns > kMaxArrayColumns4) return Error4(xlerrValue);
  const auto count = static_cast<std::size_t>(cells.Count());
  std::vector<std::string> texts;
  std::size_t bytes = count * sizeof(XLOPER);
  for (std::size_t i = 0; i < count; ++i) {
    if (!IsTextCell(cells.first[i])) continue;
    texts.push_back(BytesOf(cells.first[i]));
    bytes += texts.back().size() + 1;
  }
  block.reset(::operator new(bytes));
  auto* const narrow = static_cast<XLOPER*>(block.get());
  auto* room = reinterpret_cast<char*>(narrow + count);
  auto text = texts.begin();
  for (std::size_t i = 0; i < count; ++i) {
    if (!IsTextCell(cells.first[i])) {
      narrow[i] = NarrowPlain(cells.first[i]);
    } else if (const std::string& ansi = *text++; ansi.size() > kMaxText4) {
      narrow[i] = Error4(xlerrValue);
    } else {
      narrow[i] = XLOPER{};
      narrow[i].xltype = xltypeStr;
      narrow[i].val.str = room;
      room = PutText4(room, ansi);
    }
  }
  XLOPER value{};
  value.xltype = xltypeMulti;
  value.val.array.lparray = narrow;
  value.val.array.rows = static_cast<std::uint16_t>(cells.rows);
  value.val.array.columns = static_cast<std::uint16_t>(cells.columns);
  return value;
}

bool FitsArea4(const XLREF12& area) {
  return area.rwFirst >= 0 && area.rwLast <= kLastRow4 && area.colFirst >= 0 && area.colLast <= kLastColumn4;
}

XLREF NarrowArea(const XLREF12& area) {
  return {static_cast<std::uint16_t>(area.rwFirst), static_cast<std::uint16_t>(area.rwLast),
          static_cast<std::uint8_t>(area.colFirst), static_cast<std::uint8_t>(area.colLast)};
}

XLOPER NarrowReference(const CXlOper& reference, Block& block) {
  const std::span<const XLREF12> areas = reference.Areas();
  for (const XLREF12& area : areas)
    if (!FitsArea4(area)) return Error4(xlerrValue);
  XLOPER value{};
  value.xltype = static_cast<std::uint16_t>(reference.Type());
  if (reference.Type() == xltypeSRef) {
    value.val.sref.count = 1;
    value.val.sref.ref = NarrowArea(areas.front());
    return value;
  }
  block.reset(::operator new(sizeof(XLMREF) + areas.size() * sizeof(XLREF)));
  auto* const list = static_cast<XLMREF*>(block.get());
  list->count = static_cast<std::uint16_t>(areas.size());
  for (std::size_t i = 0; i < areas.size(); ++i) list->reftbl[i] = NarrowArea(areas[i]);
  value.val.mref.lpmref = list;
  value.val.mref.idSheet = reference.Sheet();
  return value;
}

XLOPER Narrow(const CXlOper& value, Block& block) {
  if (!value.IsSet()) return Error4(xlerrValue);
  if (value.IsReference()) return NarrowReference(value, block);
  const CXlCells cells = value.Cells();
  if (value.IsArray()) return NarrowArray(cells, block);
  return value.IsText() ? NarrowText(*cells.first, block) : NarrowPlain(*cells.first);
}

}  // namespace

CXlOper FromValue4(const XLOPER* value) {
  if (!value) return {};
  switch (TypeOf4(*value)) {
    case xltypeMulti:
      return WideArray(*value);
    case xltypeSRef:
      return WideShortReference(*value);
    case xltypeRef:
      return WideReference(*value);
    default:
      return WideScalar(*value);
  }
}

bool ReturnInto4(CXlOper& value, XLOPER& slot) noexcept {
  bool hasMemory = true;
  Block block;
  try {
    slot = Narrow(value, block);
    if (block) slot.xltype |= xlbitDLLFree;
    static_cast<void>(block.release());
  } catch (const std::bad_alloc&) {
    hasMemory = false;
    slot = Error4(xlerrValue);
  } catch (const std::exception&) {
    slot = Error4(xlerrValue);
  }
  value.Reset();
  return hasMemory;
}

void ReleaseOwned4(XLOPER& value) noexcept {
  if (!(value.xltype & xlbitDLLFree)) return;
  switch (TypeOf4(value)) {
    case xltypeStr:
      ::operator delete(value.val.str);
      break;
    case xltypeMulti:
      ::operator delete(value.val.array.lparray);
      break;
    case xltypeRef:
      ::operator delete(value.val.mref.lpmref);
      break;
    default:
      break;
  }
  value = XLOPER{};
  value.xltype = xltypeNil;
}

}  // namespace quillmere
