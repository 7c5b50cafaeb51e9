#include "frame/registration/descriptor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>

#include "frame/text/integer_text.h"

namespace quillmere {
namespace {

constexpr XStringView kReturnLetter = XTEXT("U");
constexpr std::size_t kFunctionFields = 19;
constexpr std::size_t kArgumentEntryFields = 2;
constexpr std::size_t kArgumentFields = 9;
constexpr int kMaxDepth = 8;

// ---- Writing

void AppendField(XString& to, XStringView text) {
  if (text.find_first_of(XTEXT(",\"{}")) == XStringView::npos) {
    to += text;
    return;
  }
  to += XTEXT('"');
  for (const XCHAR unit : text) {
    if (unit == XTEXT('"')) to += unit;
    to += unit;
  }
  to += XTEXT('"');
}

/// A field that is empty when there is no category.
void AppendCategory(XString& to, int category) {
  if (category != 0) to += IntegerText(category).View();
}

void AppendArgument(XString& to, const ArgumentDeclaration& argument) {
  to += XTEXT("{0,{");
  AppendField(to, argument.name);
  to += XTEXT(',');
  to += KindName(argument.kind);
  to += XTEXT(',');
  to += IntegerText(argument.flags).View();
  to += XTEXT(',');
  AppendField(to, argument.defaultText);
  to += XTEXT(',');
  AppendField(to, argument.help);
  to += XTEXT(",,,,}}");
}

// ---- Reading: the text is split into a tree of fields and lists, whose fields are then read by their places.

struct Node {
  std::size_t position = 0;
  bool isList = false;
  XString text;
  std::vector<Node> elements;
};

/// Raised within this file alone; ParseDescriptor turns it into its answer.
struct FaultFound {
  DescriptorFault fault;
};

[[noreturn]] void Fail(std::size_t position, std::string_view reason) { throw FaultFound{{position, reason}}; }

class Splitter {
 public:
  explicit Splitter(XStringView text) : text_(text) {}

  Node SplitWhole() {
    if (!At(XTEXT('{'))) Fail(place_, "expected {");
    Node node = SplitList(1);
    if (place_ != text_.size()) Fail(place_, "text after the closing brace");
    return node;
  }

 private:
  bool At(XCHAR unit) const { return place_ < text_.size() && text_[place_] == unit; }

  Node SplitList(int depth) {
    if (depth > kMaxDepth) Fail(place_, "lists nested too deep");
    Node list{.position = place_++, .isList = true, .text = {}, .elements = {}};
    if (At(XTEXT('}'))) {
      ++place_;
      return list;
    }
    for (;;) {
      list.elements.push_back(At(XTEXT('{')) ? SplitList(depth + 1) : SplitField());
      if (place_ == text_.size()) Fail(place_, "expected , or }");
      const XCHAR end = text_[place_++];
      if (end == XTEXT('}')) return list;
      if (end != XTEXT(',')) Fail(place_ - 1, "expected , or }");
    }
  }

  Node SplitField() {
    Node field{.position = place_, .isList = false, .text = {}, .elements = {}};
    if (At(XTEXT('"'))) {
      ++place_;
      for (;;) {
        if (place_ == text_.size()) Fail(field.position, "quotation mark without its partner");
        const XCHAR unit = text_[place_++];
        if (unit == XTEXT('"')) {
          if (!At(XTEXT('"'))) return field;
          ++place_;
        }
        field.text += unit;
      }
    }
    const std::size_t end = std::min(text_.find_first_of(XTEXT(",\"{}"), place_), text_.size());
    field.text = text_.substr(place_, end - place_);
    place_ = end;
    return field;
  }

  XStringView text_;
  std::size_t place_ = 0;
};

const Node& List(const Node& node, std::size_t count, std::string_view reason) {
  if (!node.isList || node.elements.size() != count) Fail(node.position, reason);
  return node;
}

const Node& AnyList(const Node& node) {
  if (!node.isList) Fail(node.position, "expected a list");
  return node;
}

const XString& Text(const Node& node) {
  if (node.isList) Fail(node.position, "expected a text");
  return node.text;
}

int Number(const Node& node) {
  std::string ascii;
  for (const XCHAR unit : Text(node)) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
  int number = 0;
  const char* const end = ascii.data() + ascii.size();
  const auto [stop, error] = std::from_chars(ascii.data(), end, number);
  if (error != std::errc{} || stop != end) Fail(node.position, "expected a whole number");
  return number;
}

ArgumentKind Kind(const Node& node) {
  const XStringView word = Text(node);
  const auto* const found = std::ranges::find(kArgumentKinds, word, &ArgumentKindWord::word);
  if (found == std::end(kArgumentKinds)) Fail(node.position, "unknown kind of argument");
  return found->kind;
}

DescribedArgument ReadArgument(const Node& entry) {
  const Node& pair = List(entry, kArgumentEntryFields, "expected an argument entry of 2 fields");
  const Node& fields = List(pair.elements[1], kArgumentFields, "expected an argument of 9 fields");
  return {.name = Text(fields.elements[0]),
          .kind = Kind(fields.elements[1]),
          .flags = Number(fields.elements[2]),
          .defaultText = Text(fields.elements[3]),
          .help = Text(fields.elements[4])};
}

MacroType ReadMacroType(const Node& node) {
  const int number = Number(node);
  if (number < static_cast<int>(MacroType::kHidden) || number > static_cast<int>(MacroType::kCommand))
    Fail(node.position, "unknown macro type");
  return static_cast<MacroType>(number);
}

int ReadCategory(const Node& node) { return Text(node).empty() ? 0 : Number(node); }

DescribedFunction ReadFunction(const Node& root) {
  const std::vector<Node>& fields = List(root, kFunctionFields, "expected 19 fields").elements;
  DescribedFunction function{.name = Text(fields[0]),
                             .help = Text(fields[3]),
                             .category = ReadCategory(fields[4]),
                             .macroType = ReadMacroType(fields[5]),
                             .flags = Number(fields[6]),
                             .returnLetter = Text(fields[7]),
                             .arguments = {},
                             .interfaces = Number(fields[10]),
                             .helpId = Number(fields[12])};
  for (const Node& entry : AnyList(fields[8]).elements) function.arguments.push_back(ReadArgument(entry));
  AnyList(fields[9]);
  return function;
}

}  // namespace

XStringView KindName(ArgumentKind kind) {
  return std::ranges::find(kArgumentKinds, kind, &ArgumentKindWord::kind)->word;
}

XString WriteDescriptor(const FunctionDeclaration& declaration) {
  XString text = XTEXT("{");
  AppendField(text, declaration.name);
  text += XTEXT(",,,");
  AppendField(text, declaration.help);
  text += XTEXT(',');
  AppendCategory(text, declaration.category);
  for (const int number : {static_cast<int>(declaration.macroType), declaration.flags}) {
    text += XTEXT(',');
    text += IntegerText(number).View();
  }
  text += XTEXT(',');
  text += kReturnLetter;
  text += XTEXT(",{");
  for (std::size_t i = 0; i < declaration.arguments.size(); ++i) {
    if (i > 0) text += XTEXT(',');
    AppendArgument(text, declaration.arguments[i]);
  }
  text += XTEXT("},{},");
  text += IntegerText(declaration.interfaces).View();
  text += XTEXT(",,");
  text += IntegerText(declaration.helpId).View();
  text += XTEXT(",0,,,,0,0}");
  return text;
}

std::variant<DescribedFunction, DescriptorFault> ParseDescriptor(XStringView text) {
  try {
    return ReadFunction(Splitter(text).SplitWhole());
  } catch (const FaultFound& found) {
    return found.fault;
  }
}

}  // namespace quillmere
