#include <dlfcn.h>

#include "frame/entry/host_entry.h"

namespace quillmere {
namespace {

// Found when the library is loaded: asked for with each large block.
const auto watchesMemory = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "QcalcWatchesMemory"));

}  // namespace

XlMdCallBack12 FindMdCallBack12() noexcept {
  return reinterpret_cast<XlMdCallBack12>(dlsym(RTLD_DEFAULT, "MdCallBack12"));
}

XlExcel4v FindExcel4v() noexcept { return reinterpret_cast<XlExcel4v>(dlsym(RTLD_DEFAULT, "Excel4v")); }

bool HostWatchesMemory() noexcept { return watchesMemory && watchesMemory() != 0; }

}  // namespace quillmere
