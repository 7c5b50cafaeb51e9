// What is declared once about a registered function. Export, type text, argument text, descriptor, argument help and
// help pages all derive from it.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "xlcall/xlcall.h"

namespace quillmere {

/// The kind of an argument, as the descriptor names it.
enum class ArgumentKind { kValue, kReference, kInt, kShort, kDouble, kString, kBoolean };

/// A kind, and its word in descriptors and tables.
struct ArgumentKindWord {
  ArgumentKind kind;
  XStringView word;
};

inline constexpr ArgumentKindWord kArgumentKinds[] = {
    {ArgumentKind::kValue, XTEXT("Value")},     {ArgumentKind::kReference, XTEXT("Reference")},
    {ArgumentKind::kInt, XTEXT("Int")},         {ArgumentKind::kShort, XTEXT("Short")},
    {ArgumentKind::kDouble, XTEXT("Double")},   {ArgumentKind::kString, XTEXT("String")},
    {ArgumentKind::kBoolean, XTEXT("Boolean")},
};

/// One of the coded values an argument takes, with its meaning; offered as a drop-down in the function wizard.
struct ArgumentChoice {
  int code;
  XStringView text;
};

/// The value that an argument left out stands for.
struct ArgumentDefault {
  std::uint32_t type = 0;  ///< xltypeNum, xltypeStr, xltypeBool or xltypeErr; 0: there is none
  double number = 0;       ///< the number; 1 or 0 of a boolean; the code of an error
  XStringView text = {};
};

/// One registered argument.
struct ArgumentDeclaration {
  XStringView name = {};
  ArgumentKind kind = ArgumentKind::kValue;
  int flags = 0;                 ///< field 3 of the descriptor's argument entry, passed on as declared
  XStringView defaultText = {};  ///< the default as the descriptor writes it
  ArgumentDefault defaultValue = {};
  bool byValue = false;   ///< arrives as a plain C value in spite of its default
  bool required = false;  ///< a call that leaves it out gives #VALUE!
  XStringView help = {};
  std::span<const ArgumentChoice> choices = {};
  std::span<const std::int32_t> allowedCodes = {};  ///< the codes of the choices, where no others are allowed

  constexpr bool HasDefault() const { return defaultValue.type != 0; }
};

/// xlfRegister's macro type: what the registered name is and whether the function wizard shows it.
enum class MacroType : int { kHidden = 0, kFunction = 1, kCommand = 2 };

/// Marks of a function, a bit set. The marks of the framework reach the descriptor alone.
enum FunctionFlag : int {
  kThreadSafe = 1,
  kFrameworkMark2 = 2,
  kVolatile = 8,
  kMacroSheet = 16,
  kFrameworkMark32 = 32
};

/// One registered function or command. The texts and arrays it refers to outlive it (they are literals).
struct FunctionDeclaration {
  std::string_view procedure = {};  ///< export name without its suffix: "VSTACK" for VSTACK_12
  XStringView name = {};            ///< the name Excel shows
  MacroType macroType = MacroType::kFunction;
  int category = 0;       ///< Excel's built-in category number; 0: none
  int flags = 0;          ///< FunctionFlag
  int interfaces = 2;     ///< 2: NAME_12 alone is exported; 3: NAME_4 as well
  int helpId = 0;         ///< topic in the help file; 0: none
  XStringView help = {};  ///< shown by the function wizard
  std::span<const ArgumentDeclaration> arguments = {};
};

/// How an argument is passed from Excel to the export.
enum class TypeLetter {
  kReference,  ///< U (8-bit R): references are kept
  kValue,      ///< Q (8-bit P): references arrive as their values
  kInt,        ///< J: 32-bit integer
  kText,       ///< C% (8-bit C): zero-terminated text
  kBoolean     ///< A: 16-bit 0 or 1
};

/// The letter of an argument. Plain C values carry no mark of being missing, so an argument with a default arrives as a
/// value unless it is declared to come by value.
constexpr TypeLetter LetterOf(ArgumentKind kind, bool hasDefault, bool byValue) {
  const bool plain = byValue || !hasDefault;
  switch (kind) {
    case ArgumentKind::kReference:
      return TypeLetter::kReference;
    case ArgumentKind::kInt:
      return plain ? TypeLetter::kInt : TypeLetter::kValue;
    case ArgumentKind::kString:
      return plain ? TypeLetter::kText : TypeLetter::kValue;
    case ArgumentKind::kBoolean:
      return plain ? TypeLetter::kBoolean : TypeLetter::kValue;
    case ArgumentKind::kValue:
    case ArgumentKind::kShort:
    case ArgumentKind::kDouble:
      break;
  }
  return TypeLetter::kValue;
}

constexpr TypeLetter LetterOf(const ArgumentDeclaration& argument) {
  return LetterOf(argument.kind, argument.HasDefault(), argument.byValue);
}

/// The C type of a parameter of a `_12` export.
template <TypeLetter letter>
struct XlParameter12 {
  using Type = XLOPER12*;
};
template <>
struct XlParameter12<TypeLetter::kInt> {
  using Type = std::int32_t;
};
template <>
struct XlParameter12<TypeLetter::kText> {
  using Type = const XCHAR*;
};
template <>
struct XlParameter12<TypeLetter::kBoolean> {
  using Type = std::int16_t;
};

/// The C type of a parameter of a `_4` export.
template <TypeLetter letter>
struct XlParameter4 {
  using Type = XLOPER*;
};
template <>
struct XlParameter4<TypeLetter::kInt> {
  using Type = std::int32_t;
};
template <>
struct XlParameter4<TypeLetter::kText> {
  using Type = const char*;
};
template <>
struct XlParameter4<TypeLetter::kBoolean> {
  using Type = std::int16_t;
};

}  // namespace quillmere
