// The import table of a loaded library: where it calls the system, and where it can be made to call the host.
#pragma once

#include <span>
#include <string_view>

#include "host/library/library.h"

namespace qcalc {

/// An imported function by name, and what is to be called in its place.
struct ImportPatch {
  std::string_view name;
  void* replacement;
};

/// Makes the library call the replacements of those functions that it imports.
void PatchImports(const Library& library, std::span<const ImportPatch> patches);

}  // namespace qcalc
