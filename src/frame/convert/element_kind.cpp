#include "frame/convert/element_kind.h"

#include "frame/errors/messages.h"
#include "frame/values/cell.h"

namespace quillmere {

XStringView TypeName(ElementKind kind) noexcept {
  switch (kind) {
    case ElementKind::kBoolean:
      return MessageText(MessageId::kBoolean);
    case ElementKind::kNumber:
      return MessageText(MessageId::kNumber);
    case ElementKind::kInteger:
      return MessageText(MessageId::kInteger);
    case ElementKind::kLongInteger:
      return MessageText(MessageId::kLongInteger);
    case ElementKind::kShortInteger:
      return MessageText(MessageId::kShortInteger);
    case ElementKind::kUnsignedShortInteger:
      return MessageText(MessageId::kUnsignedShortInteger);
    case ElementKind::kError:
      return MessageText(MessageId::kError);
    case ElementKind::kString:
      return MessageText(MessageId::kString);
  }
  return MessageText(MessageId::kUnknownType);
}

XStringView TypeNameOf(const XLOPER12& value) {
  switch (TypeOf(value)) {
    case xltypeNum:
      return TypeName(ElementKind::kNumber);
    case xltypeStr:
      return TypeName(ElementKind::kString);
    case xltypeBool:
      return TypeName(ElementKind::kBoolean);
    case xltypeErr:
      return TypeName(ElementKind::kError);
    case xltypeInt:
      return TypeName(ElementKind::kInteger);
    default:
      return MessageText(MessageId::kUnknownType);
  }
}

}  // namespace quillmere
