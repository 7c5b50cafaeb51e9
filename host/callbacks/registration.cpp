// xlfRegister, xlfUnregister and xlfSetName.
#include <algorithm>

#include "host/callbacks/handlers.h"
#include "host/callbacks/registered_texts.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr std::size_t kMaxRegisteredText = 255;
// Types of macros; 0 is a function that is hidden.
constexpr int kFunction = 1;
constexpr int kCommand = 2;

/// The arguments of xlfRegister, 0-based.
enum : std::size_t {
  kModule,
  kProcedure,
  kTypeText,
  kFunctionText,
  kArgumentText,
  kMacroType,
  kCategory,
  kShortcut,
  kHelpTopic,
  kFunctionHelp,
  kFirstArgumentHelp,
};

OperandKind OperandOf(TypeLetter letter) {
  if (letter.MayBeReference()) return OperandKind::kReference;
  const Passing passing = PassingOf(letter);
  return passing == Passing::kText || passing == Passing::kInteger ? OperandKind::kByValue : OperandKind::kValue;
}

/// Why Excel would refuse these arguments, or the host; empty when neither does.
std::string FindDefect(const CallbackRequest& request) {
  for (std::size_t i = 0; i < request.arguments.size(); ++i) {
    const XString* text = request.TextAt(i);
    if (text && i != kModule && text->size() > kMaxRegisteredText)
      return "was given a text of " + std::to_string(text->size()) + " units as argument " + std::to_string(i + 1) +
             ": " + std::to_string(kMaxRegisteredText) + " is the most";
    const bool takesNumber = i == kMacroType || i == kCategory;
    if (!text && !request.IsOmitted(i) && !(takesNumber && request.NumberAt(i)))
      return "was given an argument " + std::to_string(i + 1) + " of the wrong type";
  }
  if (!request.TextAt(kModule)) return "was given no module";
  if (!request.TextAt(kProcedure)) return "was given no procedure";
  if (!request.TextAt(kTypeText)) return "was given no type text";
  if (!EqualsIgnoringCase(*request.TextAt(kModule), request.Host().library->PathText()))
    return "names another module than xlGetName gives: " + ToUtf8(*request.TextAt(kModule));
  if (const auto macroType = request.NumberAt(kMacroType);
      !request.IsOmitted(kMacroType) &&
      (!macroType || (*macroType != 0 && *macroType != kFunction && *macroType != kCommand)))
    return "was given a macro type that is not 0, 1 or 2";
  const XString* name = request.TextAt(kFunctionText);
  if (!name && request.NumberAt(kMacroType).value_or(kFunction) == kCommand) return "was given no name for a command";
  const std::string defect = name ? DefectOfName(*name) : std::string();
  return defect.empty() ? defect : "was given " + defect;
}

/// What Excel registers all the same and makes nothing of.
void ComplainOfTexts(const CallbackRequest& request, const TypeText& type) {
  if (const XString* names = request.TextAt(kArgumentText); names && !names->empty())
    if (const auto count = std::count(names->begin(), names->end(), XTEXT(',')) + 1; count > std::ssize(type.arguments))
      request.Complain("was given more argument names (" + std::to_string(count) + ") than arguments (" +
                       std::to_string(type.arguments.size()) + ")");
  if (const XString* shortcut = request.TextAt(kShortcut); shortcut && !shortcut->empty()) {
    if (shortcut->size() != 1) request.Complain("was given a shortcut that is not one character");
    if (request.NumberAt(kMacroType).value_or(kFunction) != kCommand)
      request.Complain("was given a shortcut for what is no command");
  }
  if (const XString* topic = request.TextAt(kHelpTopic))
    if (const std::string defect = DefectOfHelpTopic(*topic); !defect.empty()) request.Complain("was given " + defect);
}

XString TextOrEmpty(const CallbackRequest& request, std::size_t index) {
  if (const XString* text = request.TextAt(index)) return *text;
  const auto number = request.NumberAt(index);
  return number ? *FromUtf8(std::to_string(static_cast<long long>(*number))) : XString();
}

std::unique_ptr<RegisteredFunction> ReadRegistration(const CallbackRequest& request, TypeText type, void* entry) {
  auto function = std::make_unique<RegisteredFunction>();
  function->name = TextOrEmpty(request, kFunctionText);
  for (const TypeLetter& letter : type.arguments) function->operands.push_back(OperandOf(letter));
  function->isVolatile = type.isVolatile || (type.isMacroEquivalent && type.TakesReferences());
  function->isThreadSafe = type.isThreadSafe;
  function->procedure = *request.TextAt(kProcedure);
  function->typeText = *request.TextAt(kTypeText);
  function->type = std::move(type);
  function->entry = entry;
  function->argumentNames = TextOrEmpty(request, kArgumentText);
  function->macroType = static_cast<int>(request.NumberAt(kMacroType).value_or(kFunction));
  function->category = TextOrEmpty(request, kCategory);
  function->shortcut = TextOrEmpty(request, kShortcut);
  function->helpTopic = TextOrEmpty(request, kHelpTopic);
  function->help = TextOrEmpty(request, kFunctionHelp);
  for (std::size_t i = kFirstArgumentHelp; i < request.arguments.size(); ++i)
    function->argumentHelp.push_back(TextOrEmpty(request, i));
  return function;
}

/// The function by the 8-bit entry point that stands beside its own: NAME_4 beside NAME_12. Null where the library has
/// none, or one with letters that the host does not offer.
std::shared_ptr<RegisteredFunction> NarrowOf(const RegisteredFunction& function, const Library& library) {
  constexpr XStringView kWideEnd = XTEXT("_12");
  constexpr XStringView kNarrowEnd = XTEXT("_4");
  if (!function.procedure.ends_with(kWideEnd)) return nullptr;
  auto narrow = std::make_shared<RegisteredFunction>(function);
  narrow->procedure.replace(narrow->procedure.size() - kWideEnd.size(), kWideEnd.size(), kNarrowEnd);
  narrow->name = narrow->procedure;
  narrow->entry = library.Find(ToUtf8(narrow->procedure));
  narrow->type.result = NarrowLetter(function.type.result);
  for (TypeLetter& letter : narrow->type.arguments) letter = NarrowLetter(letter);
  return narrow->entry && std::ranges::all_of(narrow->type.arguments, IsOfferedArgument) ? narrow : nullptr;
}

}  // namespace

CallbackAnswer HandleRegister(CallbackRequest& request) {
  const auto refuse = [&](const std::string& why) {
    request.Complain(why);
    return CallbackAnswer(Value::Error(xlerrValue));
  };
  if (std::string defect = FindDefect(request); !defect.empty()) return refuse(defect);
  const std::string name = ToUtf8(*request.TextAt(kProcedure));
  auto parsed = ParseTypeText(*request.TextAt(kTypeText));
  if (const auto* why = std::get_if<std::string>(&parsed)) return refuse("of " + name + ": " + *why);
  auto& type = std::get<TypeText>(parsed);
  void* entry = request.Host().library->Find(name);
  if (!entry) return refuse("of " + name + ": the library exports no such procedure");
  if (!IsOfferedResult(type.result)) return refuse("of " + name + ": this host does not offer its return letter");
  for (const TypeLetter& letter : type.arguments)
    if (!IsOfferedArgument(letter))
      return refuse("of " + name + ": this host does not offer the letter " + std::string(1, letter.letter) +
                    (letter.isWide ? "%" : ""));
  ComplainOfTexts(request, type);
  auto function = ReadRegistration(request, std::move(type), entry);
  function->narrow = NarrowOf(*function, *request.Host().library);
  return Value::Number(request.Host().registry.Add(std::move(function)).id);
}

CallbackAnswer HandleUnregister(CallbackRequest& request) {
  if (const auto id = request.NumberAt(0)) return Value::Boolean(request.Host().registry.Remove(*id));
  if (request.TextAt(0)) return request.NotOffered("unregistering a whole module");
  return request.WrongArgument(1, "a register id");
}

CallbackAnswer HandleSetName(CallbackRequest& request) {
  const XString* name = request.TextAt(0);
  if (!name) return request.WrongArgument(1, "a name");
  if (!request.IsOmitted(1)) return request.NotOffered("defining a name");
  return Value::Boolean(request.Host().registry.RemoveName(*name));
}

}  // namespace qcalc
