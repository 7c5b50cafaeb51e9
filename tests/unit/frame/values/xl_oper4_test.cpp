// Values of the 8-bit interface, on their way in and out.
#include "frame/values/xl_oper4.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "frame/values/array_builder.h"

namespace quillmere {
namespace {

void Show(std::ostream& out, const XLREF& area) {
  out << area.rwFirst << ':' << area.rwLast << ',' << int{area.colFirst} << ':' << int{area.colLast};
}

/// A value in words: 1.5, 'text', #36 (an error's code), the cells of an array one after the other.
void Show(std::ostream& out, const XLOPER& value) {
  switch (value.xltype & ~kOwnershipBits) {
    case xltypeNum:
      out << value.val.num;
      break;
    case xltypeStr:
      out << '\'' << std::string_view(value.val.str + 1, static_cast<unsigned char>(value.val.str[0])) << '\'';
      break;
    case xltypeErr:
      out << '#' << value.val.err;
      break;
    case xltypeMulti:
      out << value.val.array.rows << " x " << value.val.array.columns;
      for (int i = 0; i < value.val.array.rows * value.val.array.columns; ++i)
        Show(out << ' ', value.val.array.lparray[i]);
      break;
    case xltypeSRef:
      Show(out, value.val.sref.ref);
      break;
    case xltypeRef:
      Show(out << value.val.mref.idSheet << '!', value.val.mref.lpmref->reftbl[0]);
      break;
    default:
      out << "type " << value.xltype;
  }
}

/// What Excel gets for a value; it is given back twice.
std::string Returned(CXlOper value) {
  XLOPER slot{};
  ReturnInto4(value, slot);
  EXPECT_FALSE(value.IsSet());
  std::ostringstream out;
  Show(out, slot);
  for (int time = 0; time < 2; ++time) ReleaseOwned4(slot);
  return out.str();
}

/// What Excel gets back for what it passed.
std::string Echoed(const XLOPER& value) {
  try {
    return Returned(FromValue4(&value));
  } catch (const CXlBadOperTypeException&) {
    return "refused";
  }
}

XLOPER OfType(std::uint16_t type) { return {.val = {}, .xltype = type}; }
XLOPER Number(double number) { return {.val = {.num = number}, .xltype = xltypeNum}; }
/// `counted` begins with its length.
XLOPER Text(std::string& counted) { return {.val = {.str = counted.data()}, .xltype = xltypeStr}; }
XLOPER Array(XLOPER* cells, std::uint16_t rows, std::uint16_t columns) {
  return {.val = {.array = {cells, rows, columns}}, .xltype = xltypeMulti};
}
XLOPER Reference(XLREF area, std::uint16_t count = 1) { return {.val = {.sref = {count, area}}, .xltype = xltypeSRef}; }
XLOPER Reference(XLMREF& areas) { return {.val = {.mref = {&areas, 77}}, .xltype = xltypeRef}; }

CXlOper Filled(std::int64_t rows, std::int64_t columns, const XLOPER12& cell) {
  CXlArrayBuilder builder(rows, columns);
  builder.Fill(builder.Row(0), static_cast<std::size_t>(rows * columns), 1, cell);
  return builder.Finish();
}

TEST(XlOper4, ComesAndGoes) {
  std::string text = "\6\x80 caf\xE9", empty = {'\0'}, longest = '\xFF' + std::string(255, 'x');
  XLOPER cells[] = {Number(1.5), Text(text), Number(std::nan("")), Text(empty)};
  EXPECT_EQ(Echoed(Array(cells, 2, 2)), "2 x 2 1.5 '\x80 caf\xE9' #36 ''");
  EXPECT_EQ(Echoed(Text(longest)), "'" + longest.substr(1) + "'");
  XLMREF areas{1, {{1, 65'535, 2, 255}}};
  EXPECT_EQ(Echoed(Reference(areas.reftbl[0])), "1:65535,2:255");
  EXPECT_EQ(Echoed(Reference(areas)), "77!1:65535,2:255");
  EXPECT_EQ(Returned(CXlOper::Integer(40'000)), "40000") << "too large for a 16-bit integer";
}

TEST(XlOper4, RefusesWhatIsMalformed) {
  XLMREF upsideDown{1, {{2, 1, 0, 0}}}, none{0, {}};
  for (XLOPER bad :
       {OfType(xltypeStr), OfType(xltypeNum | 0x2000), OfType(xltypeMulti), OfType(xltypeRef), Reference({2, 1, 0, 0}),
        Reference({1, 1, 3, 2}), Reference({1, 1, 2, 2}, 2), Reference(upsideDown), Reference(none)}) {
    EXPECT_EQ(Echoed(bad), "refused") << bad.xltype;
    EXPECT_EQ(Echoed(Array(&bad, 1, 1)), "refused") << bad.xltype;
  }
}

TEST(XlOper4, WhatEightBitsCannotHoldIsAnError) {
  const CXlOper tooLong = CXlOper::Text(XString(256, XTEXT('x')));
  EXPECT_EQ(Returned(tooLong.Clone()), "#15");
  EXPECT_EQ(Returned(Filled(1, 2, tooLong.Raw())), "1 x 2 #15 #15");
  EXPECT_EQ(Returned(Filled(1, 257, NumberCell(1))), "#15");
  EXPECT_EQ(Returned(Filled(65'536, 1, NumberCell(1))), "#15");
  EXPECT_EQ(Returned(CXlOper::Reference(XLREF12{0, 65'536, 0, 0})), "#15");
}

TEST(XlOper4, TextsHaveWhatTheCodePageHas) {
  EXPECT_EQ(Returned(CXlOper::Text(XTEXT("\u20AC \u0100\u03B1\u221E\u0080 \U0001F600 \xD83D."))), "'\x80 ???? ? ?.'");
  const XString failure = XTEXT("#ERROR: ") + XString(100, XTEXT('\x4E2D')) + XString(300, XTEXT('m'));
  EXPECT_EQ(Returned(CXlOper::Text(failure)), "'#ERROR: " + std::string(100, '?') + std::string(147, 'm') + "'");
}

}  // namespace
}  // namespace quillmere
