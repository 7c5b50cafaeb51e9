#include "excel/com/ole_fix_windows.h"

#include <windows.h>

#include "frame/callbacks/callbacks.h"
#include "frame/errors/exceptions.h"
#include "frame/text/string_formatter.h"

namespace quillmere {
namespace {

constexpr XStringView kNoWorkbook = XTEXT("InitExcelOleFix() failed to create new workbook with error {0}");
constexpr XStringView kNoEchoOff = XTEXT("InitExcelOleFix() failed to switch off workbook echo with error {0}");
/// The kind of document that xlcNew makes.
constexpr int kWorkbook = 5;

/// The code of a command of the C API; a command that Excel did not carry out answers FALSE or an error value.
template <class Argument>
int Command(int command, const Argument& argument) noexcept {
  CXlOper answer;
  const int code = CallExcelForCode(answer, command, argument);
  const bool refused = answer.IsError() || (answer.IsBoolean() && !answer.AsBoolean());
  return code == xlretSuccess && refused ? xlretFailed : code;
}

[[noreturn]] void ThrowRefused(XStringView message, int code) {
  throw CXlRuntimeException(psl::Format(message, {HResultText(MAKE_HRESULT(SEVERITY_ERROR, FACILITY_ITF, code))}));
}

void CloseWorkbook() noexcept { Command(xlcFileClose, CXlOper::Boolean(false)); }

}  // namespace

InitExcelOleFix::InitExcelOleFix() {
  if (const int code = Command(xlcNew, CXlOper::Number(kWorkbook)); code != xlretSuccess)
    ThrowRefused(kNoWorkbook, code);
  const int code = Command(xlcEcho, CXlOper::Boolean(false));
  if (code == xlretSuccess) return;
  CloseWorkbook();
  ThrowRefused(kNoEchoOff, code);
}

InitExcelOleFix::~InitExcelOleFix() {
  CloseWorkbook();
  Command(xlcEcho, CXlOper::Boolean(true));
}

}  // namespace quillmere
