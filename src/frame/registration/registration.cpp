#include "frame/registration/registration.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/registration/type_text.h"
#include "frame/text/integer_text.h"
#include "frame/text/text_cut.h"

namespace quillmere {
namespace {

constexpr std::size_t kArgumentsBeforeHelp = 10;
/// All arguments of one call, less those before the help texts and the empty one at the end.
constexpr std::size_t kMaxArgumentHelp = kXlMaxArguments - kArgumentsBeforeHelp - 1;

XString Widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

CXlOper RegisterText(XStringView text) { return CXlOper::Text(CutText(text, kXlMaxRegisteredText)); }

CXlOper RegisterNumber(MacroType macroType) { return CXlOper::Number(static_cast<int>(macroType)); }

RegistrationTexts TextsOf(const FunctionDeclaration& declaration) {
  RegistrationTexts texts;
  texts.procedure = Widen(declaration.procedure) + XTEXT("_12");
  texts.typeText = Widen(TypeText12(declaration));
  texts.name = declaration.name;
  texts.argumentText = ArgumentText(declaration);
  texts.macroType = declaration.macroType;
  if (declaration.category != 0) texts.category = IntegerText(declaration.category).View();
  texts.helpId = declaration.helpId;
  texts.help = declaration.help;
  for (const ArgumentDeclaration& argument : declaration.arguments) texts.argumentHelp.emplace_back(argument.help);
  return texts;
}

/// Gives `name` to a hidden command and returns the command's id: never set when Excel refuses.
CXlOper HideName(XStringView modulePath, const CXlOper& name) {
  CXlOper id;
  CallExcelForCode(id, xlfRegister, CXlOper::Text(modulePath), CXlOper::Text(XTEXT("xlAutoRemove")),
                   CXlOper::Text(XTEXT("I")), name, CXlOper::Missing(), RegisterNumber(MacroType::kCommand));
  return id;
}

}  // namespace

XString HelpTopic(XStringView helpFile, int helpId) {
  if (helpId == 0 || helpFile.empty()) return {};
  XString topic = XString(helpFile) + XTEXT('!');
  topic += IntegerText(helpId).View();
  return topic.size() > kXlMaxRegisteredText ? XString() : topic;
}

void CXllRegistrable::Register(XStringView modulePath, XStringView helpFile) {
  state_ = State::kFailed;
  std::vector<CXlOper> arguments;
  arguments.push_back(CXlOper::Text(modulePath));
  arguments.push_back(RegisterText(texts_.procedure));
  arguments.push_back(RegisterText(texts_.typeText));
  arguments.push_back(RegisterText(texts_.name));
  arguments.push_back(RegisterText(texts_.argumentText));
  arguments.push_back(RegisterNumber(texts_.macroType));
  arguments.push_back(RegisterText(texts_.category));
  arguments.push_back(RegisterText(texts_.shortcut));
  arguments.push_back(RegisterText(HelpTopic(helpFile, texts_.helpId)));
  arguments.push_back(RegisterText(texts_.help));
  for (const XString& help :
       std::span(texts_.argumentHelp).first(std::min(texts_.argumentHelp.size(), kMaxArgumentHelp)))
    arguments.push_back(RegisterText(help));
  // Excel cuts the end off the last argument's help, so an empty one comes after it.
  arguments.push_back(CXlOper::Text({}));

  std::vector<XLOPER12*> raw;
  for (const CXlOper& argument : arguments) raw.push_back(argument.ForCallback());
  CXlOper id;
  const int code = CallExcelWith(id, xlfRegister, static_cast<int>(raw.size()), raw.data());
  if (code != xlretSuccess || !id.IsNumber()) return;
  registerId_ = id.AsNumber();
  state_ = State::kRegistered;
}

void CXllRegistrable::Unregister(XStringView modulePath, bool excel12OrLater) noexcept {
  if (!IsRegistered()) return;
  state_ = State::kNew;
  CXlOper answer;
  CallExcelForCode(answer, xlfUnregister, CXlOper::Number(registerId_));
  if (!excel12OrLater) return;
  try {
    const CXlOper name = RegisterText(texts_.name);
    const CXlOper hiddenId = HideName(modulePath, name);
    CallExcelForCode(answer, xlfSetName, name);
    if (hiddenId.IsNumber()) CallExcelForCode(answer, xlfUnregister, hiddenId);
  } catch (const std::exception&) {
    // Without memory for the texts the name stays in the wizard; the function itself is unregistered.
  }
}

CXllFunction::CXllFunction(const CXllFunctionRecord& record)
    : CXllRegistrable(TextsOf(record.Declaration())), declaration_(record.Declaration()) {}

}  // namespace quillmere
