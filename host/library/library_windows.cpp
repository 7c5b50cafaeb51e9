#include <windows.h>

#include <iterator>

#include "host/library/library.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

// Windows' own words; "%1" in them stands for the file.
std::string DescribeError(DWORD code, const std::wstring& file) {
  wchar_t text[512] = L"";
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                      text, static_cast<DWORD>(std::size(text)), nullptr);
  std::wstring words(text, length);
  while (!words.empty() && words.back() <= L' ') words.pop_back();
  if (const std::size_t mark = words.find(L"%1"); mark != std::wstring::npos) words.replace(mark, 2, file);
  const std::string named = words.find(file) == std::wstring::npos ? ToUtf8(file) + ": " : "";
  return named + "Windows error " + std::to_string(code) + (words.empty() ? "" : ": " + ToUtf8(words));
}

}  // namespace

std::filesystem::path ProgramFolder() {
  std::wstring program(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    if (length < program.size()) {
      program.resize(length);
      return std::filesystem::path(program).parent_path();
    }
    program.resize(program.size() * 2);
  }
}

void* ProgramHandle() { return GetModuleHandleW(nullptr); }

Library::Library(std::filesystem::path path, void* handle) : path_(std::move(path)), handle_(handle) {}

std::unique_ptr<Library> Library::Load(const std::filesystem::path& path, std::string& error) {
  std::filesystem::path absolute = std::filesystem::absolute(path).lexically_normal().make_preferred();
  HMODULE module = LoadLibraryW(absolute.c_str());
  if (!module) {
    error = DescribeError(GetLastError(), absolute.wstring());
    return nullptr;
  }
  return std::unique_ptr<Library>(new Library(std::move(absolute), module));
}

Library::~Library() { FreeLibrary(static_cast<HMODULE>(handle_)); }

bool Library::IsMapped(const std::filesystem::path& path) { return GetModuleHandleW(path.c_str()) != nullptr; }

void Library::Pin() const {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<const wchar_t*>(handle_), &module);
}

void* Library::Find(const std::string& name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name.c_str()));
}

bool Library::Contains(const void* address) const {
  HMODULE module = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const wchar_t*>(address), &module) &&
         module == handle_;
}

std::unique_ptr<Library> LoadCallLibrary() {
  std::string error;
  return Library::Load(ProgramFolder() / L"XLCALL32.DLL", error);
}

}  // namespace qcalc
