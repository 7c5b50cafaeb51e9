#include "frame/registration/type_text.h"

namespace quillmere {
namespace {

struct LetterPair {
  const char* letter12;
  const char* letter4;
};

LetterPair TextOfLetter(TypeLetter letter) {
  switch (letter) {
    case TypeLetter::kReference:
      return {"U", "R"};
    case TypeLetter::kInt:
      return {"J", "J"};
    case TypeLetter::kText:
      return {"C%", "C"};
    case TypeLetter::kBoolean:
      return {"A", "A"};
    case TypeLetter::kValue:
      break;
  }
  return {"Q", "P"};
}

std::string TypeText(const FunctionDeclaration& declaration, const char* LetterPair::*letter) {
  std::string text = TextOfLetter(TypeLetter::kReference).*letter;
  for (const ArgumentDeclaration& argument : declaration.arguments) text += TextOfLetter(LetterOf(argument)).*letter;
  if (declaration.flags & kVolatile) text += '!';
  if (declaration.flags & kMacroSheet) text += '#';
  return text;
}

}  // namespace

std::string TypeText12(const FunctionDeclaration& declaration) {
  return TypeText(declaration, &LetterPair::letter12) + (declaration.flags & kThreadSafe ? "$" : "");
}

std::string TypeText4(const FunctionDeclaration& declaration) { return TypeText(declaration, &LetterPair::letter4); }

XString ArgumentText(const FunctionDeclaration& declaration) {
  XString text;
  for (const ArgumentDeclaration& argument : declaration.arguments) {
    if (!text.empty()) text += XTEXT(',');
    text += argument.name;
  }
  return text;
}

}  // namespace quillmere
