#include <dlfcn.h>

#include "frame/entry/host_entry.h"

namespace quillmere {

XlMdCallBack12 FindMdCallBack12() noexcept {
  return reinterpret_cast<XlMdCallBack12>(dlsym(RTLD_DEFAULT, "MdCallBack12"));
}

XlExcel4v FindExcel4v() noexcept { return reinterpret_cast<XlExcel4v>(dlsym(RTLD_DEFAULT, "Excel4v")); }

bool HostWatchesMemory() noexcept {
  const auto watches = reinterpret_cast<int (*)()>(dlsym(RTLD_DEFAULT, "QcalcWatchesMemory"));
  return watches && watches() != 0;
}

}  // namespace quillmere
