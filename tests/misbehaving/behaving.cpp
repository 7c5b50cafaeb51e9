// What keeps all the rules, so that a test can tell a strict host from one that always complains.
#include <cstdlib>
#include <cstring>

#include "tests/misbehaving/misbehaving.h"

namespace {

using namespace misbehaving;

/// What a callback answered, as a result that the host frees; after a failure its code, made negative.
XLOPER12* Lent(int code, const XLOPER12& answer) {
  if (code != xlretSuccess) return Owned(Number(-CodeOf(code, answer)));
  static XLOPER12 slot;
  slot = answer;
  slot.xltype |= xlbitXLFree;
  return &slot;
}

}  // namespace

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

QCALC_EXPORT XLOPER12* PlusOne(XLOPER12* argument) { return Owned(Number(argument->val.num + 1)); }

QCALC_EXPORT XLOPER12* SheetName() {
  XLOPER12 name = LentText();
  name.xltype |= xlbitXLFree;
  static XLOPER12 result;
  result = name;
  return &result;
}

QCALC_EXPORT XLOPER12* ByValue(std::int32_t whole, std::uint16_t truth, std::int16_t small, const XCHAR* wide,
                               const char* narrow, const XCHAR* counted, const FP12* matrix) {
  double sum = whole + truth * 10 + small * 100;
  sum += 1000 * static_cast<double>(XStringView(wide).size()) + 10'000 * static_cast<double>(std::strlen(narrow));
  sum += 100'000 * static_cast<double>(counted[0]);
  for (int i = 0; i < matrix->rows * matrix->columns; ++i) sum += 1'000'000 * matrix->array[i];
  return Owned(Number(sum));
}

QCALC_EXPORT XLOPER* Echo4(XLOPER* argument) { return argument; }

QCALC_EXPORT XLOPER12* Coerced(XLOPER12* argument, XLOPER12* mask) {
  XLOPER12 result = OfType(xltypeNil);
  XLOPER12 type = Integer(static_cast<std::int32_t>(mask->val.num));
  return Lent(CallExcel(xlCoerce, &result, {argument, &type}), result);
}

/// What Excel's own function of that number gives for the arguments behind it, up to the last that is not left out; the
/// code, made negative, when it fails.
QCALC_EXPORT XLOPER12* Called(XLOPER12* number, XLOPER12* first, XLOPER12* second, XLOPER12* third, XLOPER12* fourth) {
  XLOPER12* arguments[] = {first, second, third, fourth};
  int count = 4;
  while (count > 0 && arguments[count - 1]->xltype == xltypeMissing) --count;
  XLOPER12 answer = OfType(xltypeNil);
  return Lent(callback(static_cast<int>(number->val.num), count, arguments, &answer), answer);
}

/// Allocates `count` blocks, by each function of the allocator in turn and with a callback in between, and frees all
/// but the first `kept` again. How many it was given.
QCALC_EXPORT std::int32_t Allocate(std::int32_t count, std::int32_t kept) {
  std::int32_t given = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    XLOPER12 caller = OfType(xltypeNil);
    XLOPER12* lent = &caller;
    callback(xlfCaller, 0, nullptr, &caller);
    callback(xlFree, 1, &lent, nullptr);
    void* block = i % 3 == 0 ? std::malloc(100) : i % 3 == 1 ? std::calloc(10, 10) : std::realloc(nullptr, 100);
    if (!block) continue;
    ++given;
    if (i < kept)
      keptBlocks[static_cast<std::size_t>(i)] = block;
    else
      std::free(block);
  }
  return given;
}

/// Tries to make a block larger, and frees it. 1 when that went well, 0 when it stayed as it was, -1 when it was lost.
QCALC_EXPORT std::int32_t Enlarge() {
  auto* block = static_cast<char*>(std::malloc(10));
  std::strcpy(block, "contents");
  void* const larger = std::realloc(block, 10'000);
  auto* const now = larger ? static_cast<char*>(larger) : block;
  const std::int32_t result = std::strcmp(now, "contents") != 0 ? -1 : larger ? 1 : 0;
  std::free(now);
  return result;
}

/// How often its result has been freed before.
QCALC_EXPORT XLOPER12* FreeCount() {
  freeCount.xltype = xltypeNum | xlbitDLLFree;
  return &freeCount;
}

/// The same, and nobody is to free it.
QCALC_EXPORT XLOPER12* FreeCountUnmarked() {
  freeCount.xltype = xltypeNum;
  return &freeCount;
}

/// What has arrived: -1 for a null pointer, else the type's bits; for an array its size and the type of its first
/// element, for a text its length.
QCALC_EXPORT XLOPER12* Describe(XLOPER12* argument) {
  static XLOPER12 numbers[4];
  static XLOPER12 result;
  for (XLOPER12& number : numbers) number = Number(0);
  numbers[0].val.num = argument ? static_cast<double>(argument->xltype) : -1;
  if (argument && (argument->xltype & 0x0FFF) == xltypeStr) numbers[1].val.num = argument->val.str[0];
  if (argument && (argument->xltype & 0x0FFF) == xltypeMulti) {
    numbers[1].val.num = argument->val.array.rows;
    numbers[2].val.num = argument->val.array.columns;
    numbers[3].val.num = static_cast<double>(argument->val.array.lparray[0].xltype);
  }
  result = OfType(xltypeMulti);
  result.val.array.lparray = numbers;
  result.val.array.rows = 1;
  result.val.array.columns = 4;
  return &result;
}
