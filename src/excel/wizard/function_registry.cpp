#include "excel/wizard/function_registry.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <variant>

#include "frame/registration/function_record.h"
#include "frame/text/integer_text.h"

namespace quillmere {
namespace {

/// Commands and hidden functions are never shown in the wizard.
bool HasLists(const FunctionDeclaration& declaration) {
  return declaration.macroType == MacroType::kFunction &&
         std::ranges::any_of(declaration.arguments,
                             [](const ArgumentDeclaration& each) { return !each.choices.empty(); });
}

XString Complaint(XStringView name, const DescriptorFault& fault) {
  XString text = XTEXT("No lists in the function wizard for ");
  text += name;
  text += XTEXT(": at ");
  text += IntegerText(fault.position).View();
  text += XTEXT(" of its descriptor: ");
  text.append(fault.reason.begin(), fault.reason.end());
  return text;
}

}  // namespace

CXlWizExUIFunctionDescriptor::CXlWizExUIFunctionDescriptor(DescribedFunction described,
                                                           std::span<const ArgumentDeclaration> declared)
    : name_(std::move(described.name)) {
  for (std::size_t i = 0; i < described.arguments.size(); ++i) {
    DescribedArgument& each = described.arguments[i];
    Argument& added = arguments_.emplace_back(Argument{std::move(each.name), std::nullopt});
    if (i < declared.size() && !declared[i].choices.empty())
      added.list = CXlWizExUIArgumentListCreator::Create(declared[i].choices, std::move(each.defaultText));
  }
}

std::optional<std::size_t> CXlWizExUIFunctionDescriptor::PositionOf(XStringView argumentName) const noexcept {
  const auto found = std::ranges::find(arguments_, argumentName, &Argument::name);
  if (found == arguments_.end()) return std::nullopt;
  return static_cast<std::size_t>(std::distance(arguments_.begin(), found));
}

const CXlWizExUIListProvider* CXlWizExUIFunctionDescriptor::List(std::size_t position) const noexcept {
  return position < arguments_.size() && arguments_[position].list ? &*arguments_[position].list : nullptr;
}

void CXlWizExUIFunctionRegistry::AddDeclared() {
  for (const CXllFunctionRecord* record = CXllFunctionRecord::Head(); record; record = record->Next())
    if (HasLists(record->Declaration())) Add(record->Declaration(), WriteDescriptor(record->Declaration()));
}

void CXlWizExUIFunctionRegistry::Add(const FunctionDeclaration& declaration, XStringView descriptor) {
  if (!HasLists(declaration)) return;
  auto read = ParseDescriptor(descriptor);
  if (auto* const function = std::get_if<DescribedFunction>(&read))
    functions_.emplace_back(std::move(*function), declaration.arguments);
  else
    report_(Complaint(declaration.name, std::get<DescriptorFault>(read)));
}

const CXlWizExUIFunctionDescriptor* CXlWizExUIFunctionRegistry::Find(XStringView name) const noexcept {
  const auto found = std::ranges::find(functions_, name, &CXlWizExUIFunctionDescriptor::Name);
  return found == functions_.end() ? nullptr : &*found;
}

}  // namespace quillmere
