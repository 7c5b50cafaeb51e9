#include <windows.h>

#include "frame/app/executable_type.h"

namespace quillmere {

std::int32_t BinaryTypeOf(const char* path) {
  DWORD type = 0;
  return GetBinaryTypeA(path, &type) ? static_cast<std::int32_t>(type) : -1;
}

}  // namespace quillmere
