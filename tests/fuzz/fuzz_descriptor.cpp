// Any text as a function descriptor: it is read, or refused at a place that lies within it.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "frame/registration/descriptor.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  XString text(size / sizeof(XCHAR), XCHAR{0});
  std::memcpy(text.data(), data, text.size() * sizeof(XCHAR));
  const auto outcome = quillmere::ParseDescriptor(text);
  if (const auto* fault = std::get_if<quillmere::DescriptorFault>(&outcome))
    if (fault->position > text.size() || fault->reason.empty()) std::abort();
  return 0;
}
