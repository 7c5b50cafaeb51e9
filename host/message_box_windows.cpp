#include <windows.h>

#include <cstring>
#include <string>
#include <string_view>

#include "host/message_box.h"

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

/// Overwrites one entry of an import table, which lies in memory that is read-only after loading.
void Patch(ULONGLONG* entry, ULONGLONG address) {
  DWORD protection = 0;
  VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
  *entry = address;
  VirtualProtect(entry, sizeof *entry, protection, &protection);
}

void PatchImports(std::byte* base, const IMAGE_IMPORT_DESCRIPTOR& imports) {
  if (!imports.OriginalFirstThunk) return;
  const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + imports.OriginalFirstThunk);
  auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + imports.FirstThunk);
  for (; names->u1.AddressOfData; ++names, ++addresses) {
    if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
    const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
    const std::string_view name = reinterpret_cast<const char*>(import->Name);
    if (name == "MessageBoxW") Patch(&addresses->u1.Function, reinterpret_cast<ULONGLONG>(&AnsweredMessageBoxW));
    if (name == "MessageBoxA") Patch(&addresses->u1.Function, reinterpret_cast<ULONGLONG>(&AnsweredMessageBoxA));
  }
}

}  // namespace

void RedirectMessageBoxes(const Library& library) {
  auto* base = static_cast<std::byte*>(library.Handle());
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* image = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory = image->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (!directory.VirtualAddress) return;
  const auto* imports = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; imports->Name; ++imports)
    if (_stricmp(reinterpret_cast<const char*>(base + imports->Name), "USER32.dll") == 0) PatchImports(base, *imports);
}

}  // namespace qcalc
