#include "frame/convert/error_result.h"

#include <array>

#include "frame/callbacks/excel_settings.h"
#include "frame/errors/messages.h"
#include "frame/text/ansi_text.h"
#include "frame/text/text_cut.h"

namespace quillmere {
namespace {

/// A counted text made at compile time: its length in front, as Excel wants it.
template <class Char, std::size_t size>
constexpr std::array<Char, size> Counted(const Char (&text)[size]) {
  std::array<Char, size> counted{};
  counted[0] = static_cast<Char>(size - 1);
  for (std::size_t i = 1; i < size; ++i) counted[i] = text[i - 1];
  return counted;
}

/// Never written, but the API has no pointer to constant text.
constinit auto memoryErrorText = Counted(XTEXT("#ERROR: Memory allocation failed"));
constinit auto memoryErrorText4 = Counted("#ERROR: Memory allocation failed");

}  // namespace

void WriteErrorText(CXlOper& result, XStringView message) {
  XString text = FormatCatalogue(MessageId::kErrorPrefix, message);
  if (!CurrentExcelSettings().excel12OrLater)
    text = WidenAnsi(NarrowToAnsi(text, static_cast<std::size_t>(kXlMaxText4)));
  result.SetText(CutText(text, static_cast<std::size_t>(kXlMaxText)));
}

void WriteError(CXlOper& result, const CXlRuntimeException& error) {
  if (const auto* excelError = dynamic_cast<const CXlErrorException*>(&error))
    result.SetError(excelError->Code());
  else
    WriteErrorText(result, error.Message());
}

void WriteMemoryError(CXlOper& result) noexcept {
  XLOPER12 text{};
  text.val.str = memoryErrorText.data();
  text.xltype = xltypeStr;
  result = CXlOper::BorrowCell(text);
}

void WriteMemoryError4(XLOPER& slot) noexcept {
  slot = XLOPER{};
  slot.val.str = memoryErrorText4.data();
  slot.xltype = xltypeStr;
}

}  // namespace quillmere
