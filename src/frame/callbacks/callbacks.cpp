#include "frame/callbacks/callbacks.h"

#include "frame/errors/exceptions.h"
#include "frame/errors/messages.h"
#include "frame/text/integer_text.h"

namespace quillmere {

int CallExcelWith(CXlOper& result, int xlfn, int count, XLOPER12* arguments[]) noexcept {
  result.Reset();
  XLOPER12 answer = EmptyCell();
  const int code = Excel12v(xlfn, &answer, count, arguments);
  if (code != xlretSuccess) return code;
  try {
    result = CXlOper::TakeFromExcel(answer);
  } catch (const std::exception&) {
    return xlretFailed;
  }
  return xlretSuccess;
}

void ThrowFailedCall(int xlfn, int code) {
  const XlCallback* const callback = FindXlCallback(xlfn);
  const XString name =
      callback ? XString(callback->name.begin(), callback->name.end()) : XString(IntegerText(xlfn).View());
  throw CXlRuntimeException(FormatCatalogue(MessageId::kExcelCallFailedWithCode, name, code));
}

}  // namespace quillmere
