#include "frame/convert/argument.h"

namespace quillmere {
namespace {

/// What a declared default stands for; a value never set where there is none.
CXlOper ValueOfDefault(const ArgumentDefault& declared) {
  switch (declared.type) {
    case xltypeNum:
      return CXlOper::Number(declared.number);
    case xltypeStr:
      return CXlOper::Text(declared.text);
    case xltypeBool:
      return CXlOper::Boolean(declared.number != 0);
    case xltypeErr:
      return CXlOper::Error(static_cast<std::int32_t>(declared.number));
    default:
      return {};
  }
}

}  // namespace

CXlArgument::CXlArgument(const CXlOper& passed, const ArgumentDeclaration& declaration)
    : passed_(passed), declaration_(declaration) {
  if (passed.IsAbsent()) default_ = ValueOfDefault(declaration.defaultValue);
}

void CXlArgument::CheckRequired() const {
  if (declaration_.required && passed_.IsAbsent()) throw CXlErrorException(xlerrValue);
}

}  // namespace quillmere
