#include <windows.h>

#include <string>

#include "frame/entry/host_entry.h"

namespace quillmere {
namespace {

/// The full path of XLCALL32.DLL beside the host program. A bare name would also find a copy planted in the current
/// directory.
std::wstring XlCall32BesideHost() {
  std::wstring path(32'768, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  path.resize(length < path.size() ? length : 0);
  path.resize(path.find_last_of(L'\\') + 1);
  return path.empty() ? path : path + L"XLCALL32.DLL";
}

template <class Function>
Function FindExport(HMODULE module, const char* name) noexcept {
  return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

// Found when the library is loaded: asked for with each large block.
const auto watchesMemory = FindExport<int (*)()>(GetModuleHandleW(nullptr), "QcalcWatchesMemory");

}  // namespace

XlMdCallBack12 FindMdCallBack12() noexcept {
  return FindExport<XlMdCallBack12>(GetModuleHandleW(nullptr), "MdCallBack12");
}

XlExcel4v FindExcel4v() noexcept {
  HMODULE module = GetModuleHandleW(L"XLCALL32.DLL");
  if (!module) {
    try {
      if (const std::wstring path = XlCall32BesideHost(); !path.empty())
        module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    } catch (const std::exception&) {
      return nullptr;
    }
  }
  return FindExport<XlExcel4v>(module, "Excel4v");
}

bool HostWatchesMemory() noexcept { return watchesMemory && watchesMemory() != 0; }

}  // namespace quillmere
