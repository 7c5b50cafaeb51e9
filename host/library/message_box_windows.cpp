#include <windows.h>

#include <string>

#include "host/library/import_table_windows.h"
#include "host/library/message_box.h"

namespace qcalc {
namespace {

std::wstring FromSystemText(const char* text) {
  if (!text) return {};
  const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), units);
  wide.resize(units > 0 ? wide.size() - 1 : 0);
  return wide;
}

int WINAPI AnsweredMessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT flags) {
  return AnswerMessageBox(text ? XStringView(text) : XStringView(), caption ? XStringView(caption) : XStringView(),
                          flags);
}

int WINAPI AnsweredMessageBoxA(HWND, LPCSTR text, LPCSTR caption, UINT flags) {
  return AnswerMessageBox(FromSystemText(text), FromSystemText(caption), flags);
}

}  // namespace

void RedirectMessageBoxes(const Library& library) {
  const ImportPatch patches[] = {
      {"MessageBoxW", reinterpret_cast<void*>(&AnsweredMessageBoxW)},
      {"MessageBoxA", reinterpret_cast<void*>(&AnsweredMessageBoxA)},
  };
  PatchImports(library, patches);
}

}  // namespace qcalc
