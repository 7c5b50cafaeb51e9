#include "fake_excel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/values/cell.h"

namespace quillmere::testing {
namespace {

FakeExcel* current = nullptr;

extern "C" int AnswerFake(int xlfn, int count, XLOPER12** arguments, XLOPER12* result) {
  if (current == nullptr) return xlretFailed;
  return current->Answer(xlfn, {arguments, static_cast<std::size_t>(count)}, result);
}

}  // namespace

FakeExcel::FakeExcel() {
  InstallExcel12Entry(AnswerFake);
  current = this;
}

FakeExcel::~FakeExcel() {
  current = nullptr;
  EXPECT_EQ(lent_.size(), 0u) << "values were not given back";
}

int FakeExcel::Calls(int xlfn) const {
  const auto found = calls_.find(xlfn);
  return found == calls_.end() ? 0 : found->second;
}

XLOPER12 FakeExcel::LendText(XStringView text) {
  std::shared_ptr<XCHAR[]> units(new XCHAR[text.size() + 1]);
  units[0] = static_cast<XCHAR>(text.size());
  std::copy(text.begin(), text.end(), units.get() + 1);
  XLOPER12 value{};
  value.val.str = units.get();
  value.xltype = xltypeStr;
  lent_[units.get()] = {units};
  return value;
}

XLOPER12 FakeExcel::LendArray(int rows, int columns, std::initializer_list<XLOPER12> cells) {
  return LendArray(rows, columns, std::span(cells.begin(), cells.size()));
}

XLOPER12 FakeExcel::LendArray(int rows, int columns, std::span<const XLOPER12> cells) {
  std::shared_ptr<XLOPER12[]> copies(new XLOPER12[cells.size()]);
  std::copy(cells.begin(), cells.end(), copies.get());
  XLOPER12 value{};
  value.val.array.lparray = copies.get();
  value.val.array.rows = rows;
  value.val.array.columns = columns;
  value.xltype = xltypeMulti;
  std::vector<std::shared_ptr<void>> blocks{copies};
  for (const XLOPER12& cell : cells)
    if (IsTextCell(cell))
      if (const auto text = lent_.extract(cell.val.str)) blocks.push_back(text.mapped().front());
  lent_[copies.get()] = std::move(blocks);
  return value;
}

XLOPER12 FakeExcel::LendReference(IDSHEET sheet, std::span<const XLREF12> areas) {
  XLOPER12 value{};
  value.val.mref.idSheet = sheet;
  value.xltype = xltypeRef;
  if (areas.empty()) return value;
  const std::shared_ptr<void> block(::operator new(offsetof(XLMREF12, reftbl) + areas.size_bytes()),
                                    [](void* memory) { ::operator delete(memory); });
  value.val.mref.lpmref = static_cast<XLMREF12*>(block.get());
  value.val.mref.lpmref->count = static_cast<std::uint16_t>(areas.size());
  std::copy(areas.begin(), areas.end(), value.val.mref.lpmref->reftbl);
  lent_[block.get()] = {block};
  return value;
}

int FakeExcel::Answer(int xlfn, std::span<XLOPER12* const> arguments, XLOPER12* result) {
  ++calls_[xlfn];
  if (xlfn == xlFree) {
    for (const XLOPER12* argument : arguments) Free(*argument);
    return xlretSuccess;
  }
  XLOPER12 unused{};
  XLOPER12& answer = result ? *result : unused;
  if (++allCalls_ == failingCall_) {
    answer = ErrorCell(xlerrValue);
    return xlretFailed;
  }
  const auto handler = handlers_.find(xlfn);
  const int code = handler == handlers_.end() ? static_cast<int>(xlretInvXlfn) : handler->second(arguments, answer);
  if (code != xlretSuccess) answer = ErrorCell(xlerrValue);
  return code;
}

void FakeExcel::Free(const XLOPER12& value) {
  const std::uint32_t type = TypeOf(value);
  if (type != xltypeStr && type != xltypeMulti && type != xltypeRef) return;
  const void* const block = type == xltypeStr     ? static_cast<const void*>(value.val.str)
                            : type == xltypeMulti ? static_cast<const void*>(value.val.array.lparray)
                                                  : static_cast<const void*>(value.val.mref.lpmref);
  if (block == nullptr) return;
  EXPECT_EQ(lent_.erase(block), 1u) << "xlFree of a value that is not lent";
}

}  // namespace quillmere::testing
