// What kind of program a file is.
#pragma once

#include <cstdint>

namespace quillmere {

/// The binary type that Windows reports for an executable file (0: 32-bit Windows, 6: 64-bit Windows, ...), or -1 when
/// it is none. `path` is in the ANSI code page.
std::int32_t BinaryTypeOf(const char* path);

}  // namespace quillmere
