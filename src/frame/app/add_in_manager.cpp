// The answers to Excel's Add-in Manager, through both interfaces.
#include <optional>

#include "frame/app/xll_app.h"
#include "frame/callbacks/callbacks.h"
#include "frame/entry/process_end.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"

namespace quillmere {
namespace {

/// The action that asks for the long name.
constexpr int kAskLongName = 1;

std::optional<int> ActionNumber(const XLOPER12* action) noexcept {
  CXlOper number;
  if (!action || CallExcelForCode(number, xlCoerce, *action, CXlOper::Integer(xltypeInt)) != xlretSuccess ||
      !number.IsInteger())
    return std::nullopt;
  return number.AsInteger();
}

std::optional<int> ActionNumber(XLOPER* action) noexcept {
  if (!action) return std::nullopt;
  XLOPER type{};
  type.val.w = xltypeInt;
  type.xltype = xltypeInt;
  XLOPER number{};
  number.xltype = xltypeNil;
  XLOPER* arguments[] = {action, &type};
  if (Excel4v(xlCoerce, &number, 2, arguments) != xlretSuccess) return std::nullopt;
  if (number.xltype == xltypeInt) return number.val.w;
  XLOPER* unwanted[] = {&number};
  Excel4v(xlFree, nullptr, 1, unwanted);
  return std::nullopt;
}

CXlOper LongNameFor(std::optional<int> action) noexcept {
  try {
    if (action == kAskLongName && CXllApp::Instance()) return CXlOper::Text(CXllApp::Instance()->GetAddinLongName());
  } catch (...) {
    // No memory for the name: the answer is the error value.
  }
  return CXlOper::Error(xlerrValue);
}

/// The answers stand until the next call, or until the library is unloaded.
struct Answers {
  XLOPER12 answer12{};
  XLOPER answer4{};

  Answers() = default;
  Answers(const Answers&) = delete;
  Answers& operator=(const Answers&) = delete;
  ~Answers() { Release(); }

  void Release() noexcept {
    ReleaseOwned(answer12);
    ReleaseOwned4(answer4);
  }
};

constinit CUntilUnloaded<Answers> keptAnswers;

}  // namespace

XLOPER12* CXllApp::AddInManagerInfo12(XLOPER12* action) noexcept {
  Answers& answers = *keptAnswers;
  answers.Release();
  LongNameFor(ActionNumber(action)).ReturnInto(answers.answer12);
  return &answers.answer12;
}

XLOPER* CXllApp::AddInManagerInfo4(XLOPER* action) noexcept {
  Answers& answers = *keptAnswers;
  answers.Release();
  CXlOper name = LongNameFor(ActionNumber(action));
  ReturnInto4(name, answers.answer4);
  return &answers.answer4;
}

}  // namespace quillmere
