// Any text as a script; nothing of it is run.
#include <cstdint>
#include <cstdlib>

#include "host/scripts/parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto commands = qcalc::ParseScript({reinterpret_cast<const char*>(data), size});
  if (!commands && (commands.Error().line < 1 || commands.Error().message.empty())) std::abort();
  return 0;
}
