// An Excel for unit tests: each callback answers as the test says, and the books over values lent are kept.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "xlcall/callback_list.h"

namespace quillmere::testing {

/// The Excel that callbacks reach while it lives; make one per test, on the stack. Unknown callbacks answer
/// xlretInvXlfn; xlFree is answered here and fails the test for a value that is not lent. Values still lent at the end
/// fail the test.
class FakeExcel {
 public:
  using Handler = std::function<int(std::span<XLOPER12* const> arguments, XLOPER12& result)>;

  FakeExcel();
  ~FakeExcel();
  FakeExcel(const FakeExcel&) = delete;
  FakeExcel& operator=(const FakeExcel&) = delete;

  void On(int xlfn, Handler handler) { handlers_[xlfn] = std::move(handler); }
  int Calls(int xlfn) const;
  /// How many callbacks were made, those of xlFree not counted.
  int AllCalls() const { return allCalls_; }
  /// The nth of these callbacks, counted from 1 from the beginning, fails with xlretFailed in place of its answer.
  void FailCall(int nth) { failingCall_ = nth; }

  /// Values to answer with; they belong to this Excel until xlFree gives them back.
  XLOPER12 LendText(XStringView text);
  /// Texts lent before may stand among the cells; from then on they belong to the array.
  XLOPER12 LendArray(int rows, int columns, std::initializer_list<XLOPER12> cells);
  XLOPER12 LendArray(int rows, int columns, std::span<const XLOPER12> cells);
  /// A reference to areas of a sheet, or to the sheet alone.
  XLOPER12 LendReference(IDSHEET sheet, std::span<const XLREF12> areas);
  std::size_t Lent() const { return lent_.size(); }

  /// What a callback is answered with: for the entry point of this fake alone.
  int Answer(int xlfn, std::span<XLOPER12* const> arguments, XLOPER12* result);

 private:
  void Free(const XLOPER12& value);

  std::map<int, Handler> handlers_;
  std::map<int, int> calls_;
  int allCalls_ = 0;
  int failingCall_ = 0;
  std::map<const void*, std::vector<std::shared_ptr<void>>> lent_;  ///< what a value points to, with all behind it
};

}  // namespace quillmere::testing
