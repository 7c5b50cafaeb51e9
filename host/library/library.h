// A loaded add-in library: its exports by name, and where its image lies.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "xlcall/xchar.h"

namespace qcalc {

/// The folder of the running program.
std::filesystem::path ProgramFolder();

/// The system's handle of the running program.
void* ProgramHandle();

/// One library, loaded for the lifetime of the object.
class Library {
 public:
  /// Loads the library and all it imports. Returns null on failure, with the system's reason in `error`.
  static std::unique_ptr<Library> Load(const std::filesystem::path& path, std::string& error);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// Whether the system holds a library of that file in memory.
  static bool IsMapped(const std::filesystem::path& path);

  /// Keeps the library in memory until the process ends, whatever becomes of the object.
  void Pin() const;

  /// The address of an export, null when there is none of that name.
  void* Find(const std::string& name) const;

  /// The export of that name as a pointer of type `Function`, null when there is none.
  template <typename Function>
  Function FindAs(const std::string& name) const {
    return reinterpret_cast<Function>(Find(name));
  }

  /// Whether an address lies in the library's image: its code, constants and static data.
  bool Contains(const void* address) const;

  /// The absolute path of the file, and the same as the add-in is told it.
  const std::filesystem::path& Path() const { return path_; }
  XString PathText() const {
    const std::u16string text = path_.u16string();
    return XString(text.begin(), text.end());
  }

  /// The system's handle of the module.
  void* Handle() const { return handle_; }

 private:
  Library(std::filesystem::path path, void* handle);

  std::filesystem::path path_;
  void* handle_;
};

/// The library in which an add-in finds the 8-bit entry points: XLCALL32.DLL beside the program. Null natively, where
/// the program itself exports them.
std::unique_ptr<Library> LoadCallLibrary();

}  // namespace qcalc
