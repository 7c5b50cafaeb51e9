#include "host/api/marshal.h"

#include <cmath>
#include <cstring>
#include <optional>

#include "host/api/junk_block.h"
#include "host/api/oper_types.h"
#include "host/text/ansi_text.h"

namespace qcalc {
namespace {

constexpr std::int32_t kMaxErrorCode = 255;

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

/// Units that a text takes in its block: the length, the units, and one of junk.
constexpr std::size_t UnitsWithLength(std::size_t length) { return length + 2; }

const Reference* ReferenceOf(const ApiValue& value) {
  if (const auto* plain = std::get_if<Value>(&value); plain && plain->IsReference()) return &plain->AsReference();
  if (const auto* full = std::get_if<ApiSheetReference>(&value)) return &full->reference;
  return nullptr;
}

bool IsShort(const ApiValue& value, const ReferenceForm& form) {
  const auto* plain = std::get_if<Value>(&value);
  if (!plain || !plain->IsReference() || form.currentSheet == 0) return false;
  const Reference& reference = plain->AsReference();
  return reference.sheet == form.currentSheet && reference.areas.size() == 1;
}

template <typename Width>
typename Width::Rectangle ToRectangle(const Area& area) {
  typename Width::Rectangle rectangle;
  rectangle.rwFirst = static_cast<decltype(rectangle.rwFirst)>(area.firstRow);
  rectangle.rwLast = static_cast<decltype(rectangle.rwLast)>(area.lastRow);
  rectangle.colFirst = static_cast<decltype(rectangle.colFirst)>(area.firstColumn);
  rectangle.colLast = static_cast<decltype(rectangle.colLast)>(area.lastColumn);
  return rectangle;
}

template <typename Rectangle>
Area ToArea(const Rectangle& rectangle) {
  return {rectangle.rwFirst, rectangle.rwLast, rectangle.colFirst, rectangle.colLast};
}

/// Writes a counted text at `place` and returns the place behind it and its unit of junk.
template <typename Unit>
Unit* WriteText(XStringView text, Unit* place) {
  place[0] = static_cast<Unit>(text.size());
  if constexpr (sizeof(Unit) == 1) {
    const std::string bytes = ToAnsi(text);
    std::memcpy(place + 1, bytes.data(), bytes.size());
  } else if (!text.empty()) {
    std::memcpy(place + 1, text.data(), text.size() * sizeof(Unit));
  }
  return place + UnitsWithLength(text.size());
}

/// Writes one cell into an XLOPER full of junk; a text goes to `place`, which moves on.
template <typename Width>
void WriteCell(const CellView& cell, typename Width::Oper& oper, typename Width::Unit*& place) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      oper.xltype = xltypeNil;
      break;
    case CellKind::kNumber:
      oper.val.num = cell.AsNumber();
      oper.xltype = xltypeNum;
      break;
    case CellKind::kText:
      oper.val.str = place;
      oper.xltype = xltypeStr;
      place = WriteText(cell.AsText(), place);
      break;
    case CellKind::kBoolean:
      oper.val.xbool = cell.AsBoolean() ? 1 : 0;
      oper.xltype = xltypeBool;
      break;
    case CellKind::kError:
      oper.val.err = static_cast<decltype(oper.val.err)>(cell.AsError());
      oper.xltype = xltypeErr;
      break;
  }
}

template <typename Width>
void WriteArray(const Array& array, std::byte* block, typename Width::Oper& oper) {
  using Oper = typename Width::Oper;
  auto* elements = reinterpret_cast<Oper*>(block);
  auto* place = reinterpret_cast<typename Width::Unit*>(block + array.Size() * sizeof(Oper));
  for (std::size_t i = 0; i < array.Size(); ++i) WriteCell<Width>(array.Cells()[i], elements[i], place);
  oper.val.array.lparray = elements;
  oper.val.array.rows = static_cast<decltype(oper.val.array.rows)>(array.Rows());
  oper.val.array.columns = static_cast<decltype(oper.val.array.columns)>(array.Columns());
  oper.xltype = xltypeMulti;
}

template <typename Width>
void WriteReference(const Reference& reference, bool isShort, std::byte* block, typename Width::Oper& oper) {
  if (isShort) {
    oper.val.sref.count = 1;
    oper.val.sref.ref = ToRectangle<Width>(reference.areas[0]);
    oper.xltype = xltypeSRef;
    return;
  }
  auto* list = reinterpret_cast<typename Width::ReferenceList*>(block);
  list->count = static_cast<std::uint16_t>(reference.areas.size());
  for (std::size_t i = 0; i < reference.areas.size(); ++i) list->reftbl[i] = ToRectangle<Width>(reference.areas[i]);
  oper.val.mref.lpmref = list;
  oper.val.mref.idSheet = reference.sheet;
  oper.xltype = xltypeRef;
}

/// Reads a text, or tells why none can be read.
template <typename Width>
std::optional<XString> ReadText(const typename Width::Oper& oper, std::string& defect) {
  if (!oper.val.str) {
    defect = "a text with a null pointer";
    return std::nullopt;
  }
  if constexpr (sizeof(typename Width::Unit) == 1) {
    return FromAnsi({oper.val.str + 1, LengthOf(oper.val.str)});
  } else {
    const std::size_t length = LengthOf(oper.val.str);
    if (length > Width::kMaxText) {
      defect = "a text of " + std::to_string(length) + " units";
      return std::nullopt;
    }
    return XString(oper.val.str + 1, length);
  }
}

/// Reads what a cell can hold. Sets `isMalformed` when there is nothing to go on with.
template <typename Width>
Value ReadScalar(const typename Width::Oper& oper, std::string& defect, bool& isMalformed) {
  switch (TypeOf(oper)) {
    case xltypeNum:
      if (std::isfinite(oper.val.num)) return Value::Number(oper.val.num);
      defect = "a number that is not finite";
      return Value::Error(xlerrNum);
    case xltypeStr:
      if (std::optional<XString> text = ReadText<Width>(oper, defect)) return Value::Text(std::move(*text));
      isMalformed = true;
      return Value::Error(xlerrValue);
    case xltypeBool:
      if (oper.val.xbool == 0 || oper.val.xbool == 1) return Value::Boolean(oper.val.xbool == 1);
      defect = "a boolean of " + std::to_string(oper.val.xbool);
      return Value::Boolean(true);
    case xltypeErr:
      if (oper.val.err >= 0 && oper.val.err <= kMaxErrorCode) return Value::Error(oper.val.err);
      defect = "an error of code " + std::to_string(oper.val.err);
      return Value::Error(xlerrValue);
    case xltypeInt:
      return Value::Number(oper.val.w);
    case xltypeNil:
      return Value::Empty();
    default:
      defect = "type " + std::to_string(TypeOf(oper));
      isMalformed = true;
      return Value::Error(xlerrValue);
  }
}

Reading Malformed(std::string defect) { return {Value::Error(xlerrValue), std::move(defect), true}; }

template <typename Width>
Reading ReadArray(const typename Width::Oper& oper) {
  const std::int64_t rows = oper.val.array.rows;
  const std::int64_t columns = oper.val.array.columns;
  if (rows < 1 || columns < 1 || rows > Width::kMaxArrayRows || columns > Width::kMaxColumns)
    return Malformed("an array of " + std::to_string(rows) + " x " + std::to_string(columns));
  if (!oper.val.array.lparray) return Malformed("an array with a null pointer");
  ArrayBuilder builder(static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns));
  Reading reading;
  for (std::int32_t r = 0; r < builder.Rows(); ++r) {
    for (std::int32_t c = 0; c < builder.Columns(); ++c) {
      const auto& element = oper.val.array.lparray[static_cast<std::ptrdiff_t>(r) * builder.Columns() + c];
      std::string defect;
      if ((element.xltype & ~kTypeBits) != 0) {
        defect = "free bits";
        reading.isMalformed = true;
      } else {
        const Value value = ReadScalar<Width>(element, defect, reading.isMalformed);
        builder.Set(r, c, value.AsCell());
      }
      if (!defect.empty() && reading.defect.empty())
        reading.defect =
            "an array element (" + std::to_string(r + 1) + ", " + std::to_string(c + 1) + ") with " + defect;
      if (reading.isMalformed) {
        reading.value = Value::Error(xlerrValue);
        return reading;
      }
    }
  }
  reading.value = Value::OfArray(builder.Finish());
  return reading;
}

template <typename Width>
Reading ReadReference(const typename Width::Oper& oper, IDSHEET currentSheet) {
  const bool isShort = TypeOf(oper) == xltypeSRef;
  Reference reference;
  if (isShort) {
    if (oper.val.sref.count != 1)
      return Malformed("a reference to the current sheet with a count of " + std::to_string(oper.val.sref.count));
    reference.sheet = currentSheet;
    reference.areas.push_back(ToArea(oper.val.sref.ref));
  } else {
    reference.sheet = oper.val.mref.idSheet ? oper.val.mref.idSheet : currentSheet;
    if (!oper.val.mref.lpmref) return {ApiSheet{reference.sheet}, {}, false};
    if (oper.val.mref.lpmref->count == 0) return Malformed("a reference to no area");
    for (int i = 0; i < oper.val.mref.lpmref->count; ++i)
      reference.areas.push_back(ToArea(oper.val.mref.lpmref->reftbl[i]));
  }
  for (const Area& area : reference.areas)
    if (!area.IsOnSheet())
      return Malformed("a reference that leaves the sheet (rows " + std::to_string(area.firstRow) + " to " +
                       std::to_string(area.lastRow) + ", columns " + std::to_string(area.firstColumn) + " to " +
                       std::to_string(area.lastColumn) + ", from 0)");
  return {Value::OfReference(std::move(reference)), {}, false};
}

}  // namespace

template <typename Width>
bool Marshal<Width>::Fits(const ApiValue& value) {
  if (const Reference* reference = ReferenceOf(value)) {
    for (const Area& area : reference->areas)
      if (area.lastRow >= Width::kMaxRows || area.lastColumn >= Width::kMaxColumns) return false;
    return reference->areas.size() <= 0xFFFF;
  }
  if (const auto* integer = std::get_if<ApiInteger>(&value))
    return sizeof(Oper::val.w) > 2 || integer->number == static_cast<std::int16_t>(integer->number);
  const auto* plain = std::get_if<Value>(&value);
  if (!plain) return true;
  if (plain->IsText()) return plain->AsText().size() <= Width::kMaxText;
  if (!plain->IsArray()) return true;
  const Array& array = *plain->AsArray();
  if (array.Rows() > Width::kMaxArrayRows || array.Columns() > Width::kMaxColumns) return false;
  for (const CellView& cell : array.Cells())
    if (cell.IsText() && cell.AsText().size() > Width::kMaxText) return false;
  return true;
}

template <typename Width>
std::size_t Marshal<Width>::BlockBytes(const ApiValue& value, const ReferenceForm& form) {
  using Unit = typename Width::Unit;
  if (const Reference* reference = ReferenceOf(value)) {
    if (IsShort(value, form)) return 0;
    return sizeof(typename Width::ReferenceList) + (reference->areas.size() - 1) * sizeof(typename Width::Rectangle);
  }
  const auto* plain = std::get_if<Value>(&value);
  if (!plain) return 0;
  if (plain->IsText()) return UnitsWithLength(plain->AsText().size()) * sizeof(Unit);
  if (!plain->IsArray()) return 0;
  std::size_t units = 0;
  for (const CellView& cell : plain->AsArray()->Cells())
    if (cell.IsText()) units += UnitsWithLength(cell.AsText().size());
  return plain->AsArray()->Size() * sizeof(Oper) + units * sizeof(Unit);
}

template <typename Width>
void Marshal<Width>::Write(const ApiValue& value, const ReferenceForm& form, std::byte* block, Oper& oper) {
  std::memset(&oper, kJunk, sizeof oper);
  if (const Reference* reference = ReferenceOf(value)) {
    WriteReference<Width>(*reference, IsShort(value, form), block, oper);
    return;
  }
  std::visit(Overloaded{[&](const Value& plain) {
                          if (plain.IsArray()) {
                            WriteArray<Width>(*plain.AsArray(), block, oper);
                          } else if (plain.IsMissing()) {
                            oper.xltype = xltypeMissing;
                          } else {
                            auto* place = reinterpret_cast<typename Width::Unit*>(block);
                            WriteCell<Width>(plain.AsCell(), oper, place);
                          }
                        },
                        [&](const ApiInteger& integer) {
                          oper.val.w = static_cast<decltype(oper.val.w)>(integer.number);
                          oper.xltype = xltypeInt;
                        },
                        [&](const ApiHandle& handle) {
                          oper.val.bigdata.h.hdata = handle.pointer;
                          oper.val.bigdata.cbData = 0;
                          SetType(oper, xltypeBigData);
                        },
                        [&](const ApiSheet& sheet) {
                          oper.val.mref.lpmref = nullptr;
                          oper.val.mref.idSheet = sheet.sheet;
                          oper.xltype = xltypeRef;
                        },
                        [](const ApiSheetReference&) {}},
             value);
}

template <typename Width>
Reading Marshal<Width>::Read(const Oper& oper, IDSHEET currentSheet) {
  switch (TypeOf(oper)) {
    case xltypeMissing:
      return {Value::Missing(), {}, false};
    case xltypeInt:
      return {ApiInteger{oper.val.w}, {}, false};
    case xltypeBigData:
      return {ApiHandle{oper.val.bigdata.h.hdata}, {}, false};
    case xltypeMulti:
      return ReadArray<Width>(oper);
    case xltypeSRef:
    case xltypeRef:
      return ReadReference<Width>(oper, currentSheet);
    default: {
      Reading reading;
      reading.value = ReadScalar<Width>(oper, reading.defect, reading.isMalformed);
      return reading;
    }
  }
}

template struct Marshal<Wide>;
template struct Marshal<Narrow>;

}  // namespace qcalc
