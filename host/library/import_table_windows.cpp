#include "host/library/import_table_windows.h"

#include <windows.h>

namespace qcalc {
namespace {

/// Overwrites one entry of an import table, which lies in memory that is read-only after loading.
void Patch(ULONGLONG* entry, void* replacement) {
  DWORD protection = 0;
  VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &protection);
  *entry = reinterpret_cast<ULONGLONG>(replacement);
  VirtualProtect(entry, sizeof *entry, protection, &protection);
}

void PatchModule(std::byte* base, const IMAGE_IMPORT_DESCRIPTOR& imports, std::span<const ImportPatch> patches) {
  if (!imports.OriginalFirstThunk) return;
  const auto* names = reinterpret_cast<const IMAGE_THUNK_DATA64*>(base + imports.OriginalFirstThunk);
  auto* addresses = reinterpret_cast<IMAGE_THUNK_DATA64*>(base + imports.FirstThunk);
  for (; names->u1.AddressOfData; ++names, ++addresses) {
    if (IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal)) continue;
    const auto* import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
    const std::string_view name = reinterpret_cast<const char*>(import->Name);
    for (const ImportPatch& patch : patches)
      if (patch.name == name) Patch(&addresses->u1.Function, patch.replacement);
  }
}

}  // namespace

void PatchImports(const Library& library, std::span<const ImportPatch> patches) {
  auto* base = static_cast<std::byte*>(library.Handle());
  const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  const auto* image = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
  const IMAGE_DATA_DIRECTORY& directory = image->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  if (!directory.VirtualAddress) return;
  const auto* imports = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
  for (; imports->Name; ++imports) PatchModule(base, *imports, patches);
}

}  // namespace qcalc
