#include "table/ignored_items.h"

namespace quillmere {
namespace {

constexpr std::int32_t kErrors = 1;
constexpr std::int32_t kBlanks = 2;
constexpr std::int32_t kZeros = 4;

}  // namespace

IgnoredItems ReadIgnored(const CXlScalarArgument<ElementKind::kInteger>& ignore) {
  const std::int32_t flags = ignore.Read();
  if (flags < 0 || flags > (kErrors | kBlanks | kZeros)) return {};
  return {(flags & kErrors) != 0, (flags & kBlanks) != 0, (flags & kZeros) != 0};
}

}  // namespace quillmere
