#include "frame/callbacks/callbacks.h"

#include <string>

#include "frame/errors/exceptions.h"
#include "frame/errors/messages.h"

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
  const std::string name = callback ? std::string(callback->name) : std::to_string(xlfn);
  throw CXlRuntimeException(
      FormatCatalogue(MessageId::kExcelCallFailedWithCode, XString(name.begin(), name.end()), code));
}

}  // namespace quillmere
