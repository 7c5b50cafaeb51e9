#include <dlfcn.h>
#include <link.h>

#include "host/library/library.h"

namespace qcalc {

std::filesystem::path ProgramFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::current_path() : program.parent_path();
}

Library::Library(std::filesystem::path path, void* handle) : path_(std::move(path)), handle_(handle) {}

std::unique_ptr<Library> Library::Load(const std::filesystem::path& path, std::string& error) {
  std::filesystem::path absolute = std::filesystem::absolute(path).lexically_normal();
  void* handle = dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* reason = dlerror();
    error = reason ? reason : "unknown reason";
    return nullptr;
  }
  return std::unique_ptr<Library>(new Library(std::move(absolute), handle));
}

Library::~Library() { dlclose(handle_); }

bool Library::IsMapped(const std::filesystem::path& path) {
  void* handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

void Library::Pin() const { dlopen(path_.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE); }

void* Library::Find(const std::string& name) const { return dlsym(handle_, name.c_str()); }

bool Library::Contains(const void* address) const {
  Dl_info info{};
  link_map* own = nullptr;
  return dladdr(address, &info) && dlinfo(handle_, RTLD_DI_LINKMAP, &own) == 0 &&
         info.dli_fbase == reinterpret_cast<void*>(own->l_addr);
}

void* ProgramHandle() { return dlopen(nullptr, RTLD_NOW); }

std::unique_ptr<Library> LoadCallLibrary() { return nullptr; }

}  // namespace qcalc
