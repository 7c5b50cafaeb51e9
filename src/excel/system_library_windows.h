// Libraries of Windows that are loaded when they are needed.
#pragma once

#include <windows.h>

namespace quillmere {

/// A library of the system's own folder, loaded while this lives: a copy planted beside Excel is never taken.
class SystemLibrary {
 public:
  explicit SystemLibrary(const wchar_t* name) noexcept
      : module_(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}
  SystemLibrary(const SystemLibrary&) = delete;
  SystemLibrary& operator=(const SystemLibrary&) = delete;
  ~SystemLibrary() {
    if (module_) FreeLibrary(module_);
  }

  /// A function of the library by its name; null where there is none.
  template <class Function>
  Function* Find(const char* name) const noexcept {
    return module_ ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name))) : nullptr;
  }

 private:
  HMODULE module_;
};

}  // namespace quillmere
