// Excel's C API for 64-bit Excel: types, layouts and numbers, declared from its published facts. Nothing else.
//
// Offsets are asserted below, since both sides of the API must agree on them to the byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "xlcall/xchar.h"

using RW = std::int32_t;         ///< zero-based row
using COL = std::int32_t;        ///< zero-based column
using XLBOOL = std::int32_t;     ///< 0 or 1
using IDSHEET = std::uintptr_t;  ///< opaque sheet identifier; 0 means the current sheet where only the sheet is read

/// One rectangle of cells, zero-based and inclusive.
struct XLREF12 {
  RW rwFirst;
  RW rwLast;
  COL colFirst;
  COL colLast;
};

/// `count` rectangles; allocated with room for as many.
struct XLMREF12 {
  std::uint16_t count;
  XLREF12 reftbl[1];
};

/// Excel's 16-bit cell value. `xltype` says which member of `val` holds.
struct XLOPER12 {
  union {
    double num;
    XCHAR* str;  ///< counted: str[0] units follow; never null, no terminator to rely on
    XLBOOL xbool;
    std::int32_t err;
    std::int32_t w;
    struct {
      std::uint16_t count;  ///< always 1
      XLREF12 ref;
    } sref;
    struct {
      XLMREF12* lpmref;
      IDSHEET idSheet;
    } mref;
    struct {
      XLOPER12* lparray;  ///< element (r, c) is lparray[r * columns + c]
      RW rows;
      COL columns;
    } array;
    struct {
      union {
        std::int32_t level;
        std::int32_t tbctrl;
        IDSHEET idSheet;
      } valflow;
      RW rw;
      COL col;
      std::uint8_t xlflow;
    } flow;
    struct {
      union {
        std::uint8_t* lpbData;
        void* hdata;
      } h;
      std::int32_t cbData;
    } bigdata;
  } val;
  std::uint32_t xltype;
};

/// A matrix of doubles for type letter K%, row-major; allocated with room for rows * columns values.
struct FP12 {
  std::int32_t rows;
  std::int32_t columns;
  double array[1];
};

/// 8-bit reference rectangle: rows to 65,535, columns to 255.
struct XLREF {
  std::uint16_t rwFirst;
  std::uint16_t rwLast;
  std::uint8_t colFirst;
  std::uint8_t colLast;
};

struct XLMREF {
  std::uint16_t count;
  XLREF reftbl[1];
};

/// Excel's 8-bit cell value, as Excel 4 to 2003 knew it. Texts are counted bytes in the ANSI code page, at most 255.
struct XLOPER {
  union {
    double num;
    char* str;  ///< counted: str[0], read as unsigned, bytes follow
    std::uint16_t xbool;
    std::uint16_t err;
    std::int16_t w;
    struct {
      std::uint16_t count;
      XLREF ref;
    } sref;
    struct {
      XLMREF* lpmref;
      IDSHEET idSheet;
    } mref;
    struct {
      XLOPER* lparray;
      std::uint16_t rows;
      std::uint16_t columns;
    } array;
    struct {
      union {
        std::int16_t level;
        std::int16_t tbctrl;
        IDSHEET idSheet;
      } valflow;
      std::uint16_t rw;
      std::uint8_t col;
      std::uint8_t xlflow;
    } flow;
    struct {
      union {
        std::uint8_t* lpbData;
        void* hdata;
      } h;
      std::int32_t cbData;
    } bigdata;
  } val;
  std::uint16_t xltype;
};

using LPXLOPER12 = XLOPER12*;
using LPXLOPER = XLOPER*;

static_assert(sizeof(XLREF12) == 16 && alignof(XLREF12) == 4);
static_assert(offsetof(XLMREF12, reftbl) == 4);
static_assert(sizeof(XLOPER12) == 32 && alignof(XLOPER12) == 8 && offsetof(XLOPER12, xltype) == 24);
static_assert(offsetof(XLOPER12, val.sref.ref) == 4 && offsetof(XLOPER12, val.mref.idSheet) == 8);
static_assert(offsetof(XLOPER12, val.array.rows) == 8 && offsetof(XLOPER12, val.array.columns) == 12);
static_assert(offsetof(XLOPER12, val.flow.rw) == 8 && offsetof(XLOPER12, val.flow.xlflow) == 16);
static_assert(offsetof(XLOPER12, val.bigdata.cbData) == 8 && offsetof(FP12, array) == 8);
static_assert(sizeof(XLREF) == 6 && offsetof(XLMREF, reftbl) == 2);
static_assert(sizeof(XLOPER) == 24 && alignof(XLOPER) == 8 && offsetof(XLOPER, xltype) == 16);
static_assert(offsetof(XLOPER, val.sref.ref) == 2 && offsetof(XLOPER, val.array.columns) == 10);
static_assert(offsetof(XLOPER, val.flow.col) == 10 && offsetof(XLOPER, val.bigdata.cbData) == 8);

/// Kinds of value; compare for equality after masking with xltypeMask (BigData holds the bits of Str and Int).
enum : std::uint32_t {
  xltypeNum = 0x0001,
  xltypeStr = 0x0002,
  xltypeBool = 0x0004,
  xltypeRef = 0x0008,
  xltypeErr = 0x0010,
  xltypeFlow = 0x0020,
  xltypeMulti = 0x0040,
  xltypeMissing = 0x0080,
  xltypeNil = 0x0100,
  xltypeSRef = 0x0400,
  xltypeInt = 0x0800,
  xltypeBigData = xltypeStr | xltypeInt,
  xlbitXLFree = 0x1000,   ///< Excel frees the value once it has copied it
  xlbitDLLFree = 0x4000,  ///< Excel hands the value to xlAutoFree(12) once it has copied it
};

enum : std::int32_t {
  xlerrNull = 0,
  xlerrDiv0 = 7,
  xlerrValue = 15,
  xlerrRef = 23,
  xlerrName = 29,
  xlerrNum = 36,
  xlerrNA = 42,
  xlerrGettingData = 43,
};

/// What a callback returns. On every code but xlretSuccess the result is #VALUE!.
enum : int {
  xlretSuccess = 0,
  xlretAbort = 1,
  xlretInvXlfn = 2,
  xlretInvCount = 4,
  xlretInvXloper = 8,
  xlretStackOvfl = 16,
  xlretFailed = 32,
  xlretUncalced = 64,
  xlretNotThreadSafe = 128,
  xlretInvAsynchronousContext = 256,
  xlretNotClusterSafe = 512,
};

/// Bits of a function number.
enum : int {
  xlCommand = 0x8000,  ///< a command (xlc...)
  xlSpecial = 0x4000,  ///< an API-only function (xl...)
  xlIntl = 0x2000,     ///< as if on a US macro sheet: English names and separators
  xlPrompt = 0x1000,   ///< show the command's dialog
};

constexpr int kXlMaxRows = 1'048'576;
constexpr int kXlMaxColumns = 16'384;
constexpr int kXlMaxText = 32'767;                 ///< units of a 16-bit text
constexpr int kXlMaxText4 = 255;                   ///< bytes of an 8-bit text
constexpr int kXlMaxArguments = 255;               ///< arguments of one callback
constexpr std::size_t kXlMaxRegisteredText = 255;  ///< units of a text that xlfRegister takes
constexpr std::size_t kXlMaxSearchedText = 255;    ///< units of a text that MATCH and VLOOKUP search for

extern "C" {
/// The callback the host program exports as "MdCallBack12". Mind the order: it differs from Excel12v's.
using XlMdCallBack12 = int (*)(int xlfn, int count, XLOPER12** arguments, XLOPER12* result);
/// Excel4v, exported by XLCALL32.DLL.
using XlExcel4v = int (*)(int xlfn, XLOPER* result, int count, XLOPER* arguments[]);
}
