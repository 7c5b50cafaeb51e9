#include "functions/generator/generated_code.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "functions/generator/source_text.h"
#include "functions/generator/text_rules.h"

namespace quillmere::generator {
namespace {

constexpr std::string_view kNotice = "Generated from the tables of functions; changes made here are lost.";

/// The table's name in messages of the compiler: as a developer sees it from the root of the project.
std::string TableName(const Place& place) {
  return "src/functions/" + std::filesystem::path(place.file).filename().string();
}

/// A generated file under construction: a notice, what it includes, and a namespace around the rest.
class CodeFile {
 public:
  CodeFile(const std::string& name, const std::vector<std::string>& includes, const std::string& space = "quillmere")
      : name_(name), space_(space), source_(name) {
    source_.Line("// " + std::string(kNotice));
    if (name.ends_with(".h")) source_.Line("#pragma once");
    source_.Line();
    for (const std::string& include : includes) source_.Line("#include \"" + include + "\"");
    source_.Line();
    source_.Line("namespace " + space_ + " {");
    source_.Line();
  }

  void Line(std::string_view text = "") { source_.Line(text); }
  /// A line that the compiler reports as the place of a table.
  void LineOf(const Place& place, std::string_view text) { source_.LineOf(TableName(place), place.line, text); }

  GeneratedFile Finish() && {
    source_.Line();
    source_.Line("}  // namespace " + space_);
    return {name_, source_.Text()};
  }

 private:
  std::string name_;
  std::string space_;
  SourceText source_;
};

/// Calls `use(family, function)` for every function, in the tables' order.
template <class Use>
void ForEachFunction(const std::vector<Family>& families, Use use) {
  for (const Family& family : families)
    for (const Function& function : family.functions) use(family, function);
}

std::string Literal(std::string_view utf8) {
  std::string literal = "\"";
  for (char32_t code : CodePoints(utf8)) {
    if (code == U'"' || code == U'\\') {
      literal += '\\';
      literal += static_cast<char>(code);
    } else if (code == U'\n') {
      literal += "\\n";
    } else if (code < 0x7F) {
      literal += static_cast<char>(code);
    } else {
      char text[16];
      std::snprintf(text, sizeof text, code > 0xFFFF ? "\\U%08X" : "\\u%04X", static_cast<unsigned>(code));
      literal += text;
    }
  }
  return literal + "\"";
}

std::string WideLiteral(std::string_view utf8) { return "XTEXT(" + Literal(utf8) + ")"; }

/// "Lookup_Values": lookupValues; "MA_Method": maMethod (two leading capitals are one word). A trailing "_" keeps clear
/// of C++ words.
std::string ParameterName(const std::string& id) {
  std::string name;
  bool startsWord = true;
  for (std::size_t at = 0; at < id.size(); ++at) {
    const unsigned char c = static_cast<unsigned char>(id[at]);
    if (c == '_') {
      startsWord = true;
      continue;
    }
    const bool inLeadingCapitals = name.empty() || (std::isupper(c) && !startsWord && at < 2 && std::isupper(id[0]));
    name += static_cast<char>(inLeadingCapitals ? std::tolower(c) : startsWord ? std::toupper(c) : c);
    startsWord = false;
  }
  if (IsCppWord(name) || name == "result") name += '_';
  return name;
}

/// The class of a parameter: a run, a scalar, or any value.
std::string ParameterClass(const ArgumentGroup& group) {
  if (group.IsRun()) return "CXlArgumentRun<" + std::to_string(group.Count()) + ">";
  switch (group.each.front().kind) {
    case ArgumentKind::kInt:
      return "CXlScalarArgument<ElementKind::kInteger>";
    case ArgumentKind::kShort:
      return "CXlScalarArgument<ElementKind::kShortInteger>";
    case ArgumentKind::kDouble:
      return "CXlScalarArgument<ElementKind::kNumber>";
    case ArgumentKind::kString:
      return "CXlScalarArgument<ElementKind::kString>";
    case ArgumentKind::kBoolean:
      return "CXlScalarArgument<ElementKind::kBoolean>";
    case ArgumentKind::kValue:
    case ArgumentKind::kReference:
      break;
  }
  return "CXlArgument";
}

std::string SettingType(const Family& family, const std::string& name) {
  const Setting& setting = *std::find_if(family.settings.begin(), family.settings.end(),
                                         [&](const Setting& each) { return each.name == name; });
  return setting.IsOwnName() ? "XStringView" : setting.type;
}

GeneratedFile ImplementationsHeader(const Family& family) {
  CodeFile file("implementations/" + family.name + ".h", {"frame/convert/argument.h"}, "quillmere::" + family.name);
  for (const Setting& setting : family.settings) {
    if (setting.values.empty()) continue;
    std::string values;
    for (const std::string& value : setting.values) values += (values.empty() ? "k" : ", k") + value;
    file.LineOf(setting.place, "enum class " + setting.type + " { " + values + " };");
  }
  file.Line();
  file.Line(
      "/// What the functions of this family do. The settings come from the function's entry, the arguments from "
      "Excel.");
  file.Line("struct Functions {");
  for (const Implementation& implementation : family.implementations) {
    const Function& entry = *std::find_if(family.functions.begin(), family.functions.end(), [&](const Function& each) {
      return each.implementation == implementation.name;
    });
    std::string parameters = "CXlOper& result";
    for (const std::string& setting : implementation.settings) {
      parameters += ", " + SettingType(family, setting) + " " + setting;
    }
    for (const ArgumentGroup& group : entry.arguments) {
      parameters += ", const " + ParameterClass(group) + "& " + ParameterName(group.id);
    }
    file.LineOf(entry.place, "  static void " + implementation.name + "(" + parameters + ");");
  }
  file.Line("};");
  return std::move(file).Finish();
}

std::string KindName(ArgumentKind kind) {
  switch (kind) {
    case ArgumentKind::kValue:
      return "ArgumentKind::kValue";
    case ArgumentKind::kReference:
      return "ArgumentKind::kReference";
    case ArgumentKind::kInt:
      return "ArgumentKind::kInt";
    case ArgumentKind::kShort:
      return "ArgumentKind::kShort";
    case ArgumentKind::kDouble:
      return "ArgumentKind::kDouble";
    case ArgumentKind::kString:
      return "ArgumentKind::kString";
    case ArgumentKind::kBoolean:
      return "ArgumentKind::kBoolean";
  }
  return "";
}

std::string DefaultInitializer(const Argument& argument) {
  const auto value = argument.defaultText ? DefaultOf(argument.kind, *argument.defaultText) : std::nullopt;
  if (!value) return "{}";
  return "{.type = " + value->type +
         (value->number.empty() ? ", .text = " + WideLiteral(value->text) : ", .number = " + value->number) + "}";
}

std::string ArgumentInitializer(const Argument& argument, const std::string& choices, const std::string& codes) {
  std::string text = "{.name = " + WideLiteral(argument.name) + ", .kind = " + KindName(argument.kind);
  text += ", .flags = " + std::to_string(argument.flags);
  text += ", .defaultText = " + WideLiteral(argument.defaultText.value_or(""));
  text += ", .defaultValue = " + DefaultInitializer(argument);
  text += std::string(", .byValue = ") + (argument.byValue ? "true" : "false");
  text += std::string(", .required = ") + (argument.required ? "true" : "false");
  return text + ", .help = " + WideLiteral(argument.help) + ", .choices = " + choices + ", .allowedCodes = " + codes +
         "}";
}

std::string ArgumentList(const Function& function) { return function.Procedure() + "Arguments"; }

void WriteDeclaration(CodeFile& file, const Function& function) {
  const std::string procedure = function.Procedure();
  const std::vector<Argument> arguments = function.AllArguments();
  std::string list;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string choicesName = "{}";
    std::string codesName = "{}";
    if (!arguments[i].choices.empty()) {
      choicesName = procedure + "Choices" + std::to_string(i);
      std::string choices;
      for (const Choice& choice : arguments[i].choices)
        choices += "{" + std::to_string(choice.code) + ", " + WideLiteral(choice.text) + "}, ";
      file.LineOf(function.place, "inline constexpr ArgumentChoice " + choicesName + "[] = {" + choices + "};");
    }
    if (const std::vector<int> allowed = arguments[i].AllowedCodes(); !allowed.empty()) {
      codesName = procedure + "Codes" + std::to_string(i);
      std::string codes;
      for (const int code : allowed) codes += std::to_string(code) + ", ";
      file.LineOf(function.place, "inline constexpr std::int32_t " + codesName + "[] = {" + codes + "};");
    }
    list += ArgumentInitializer(arguments[i], choicesName, codesName) + ", ";
  }
  if (!arguments.empty()) {
    file.LineOf(function.place,
                "inline constexpr ArgumentDeclaration " + ArgumentList(function) + "[] = {" + list + "};");
  }
  const char* const types[] = {"kHidden", "kFunction", "kCommand"};
  file.LineOf(function.place,
              "inline constexpr FunctionDeclaration " + procedure +
                  "Declaration = {.procedure = " + Literal(procedure) + ", .name = " + WideLiteral(function.name) +
                  ", .macroType = MacroType::" + types[static_cast<int>(function.type)] + ", .category = " +
                  std::to_string(function.category) + ", .flags = " + std::to_string(function.flags) +
                  ", .interfaces = " + std::to_string(function.excel4 ? 3 : 2) +
                  ", .helpId = " + std::to_string(function.helpId) + ", .help = " + WideLiteral(function.description) +
                  ", .arguments = " + (arguments.empty() ? "{}" : ArgumentList(function)) + "};");
}

/// What is declared of every function.
GeneratedFile Declarations(const std::vector<Family>& families) {
  CodeFile file("declarations.h", {"frame/registration/function_declaration.h"});
  ForEachFunction(families, [&](const Family&, const Function& function) { WriteDeclaration(file, function); });
  return std::move(file).Finish();
}

/// All records in one translation unit: their order of initialisation is that of the tables.
GeneratedFile Records(const std::vector<Family>& families) {
  CodeFile file("records.cpp", {"declarations.h", "frame/registration/function_record.h"});
  ForEachFunction(families, [&](const Family&, const Function& function) {
    file.Line("static CXllFunctionRecord " + function.Procedure() + "Record(" + function.Procedure() + "Declaration);");
  });
  return std::move(file).Finish();
}

/// The body that hands the arguments of one entry to its implementation.
std::string Body(const Family& family, const Function& function) {
  std::string values = "result";
  for (const auto& [name, value] : function.settings)
    values += ", " + (value.find("::") == std::string::npos ? value : family.name + "::" + value);
  int at = 0;
  for (const ArgumentGroup& group : function.arguments) {
    const std::string first = std::to_string(at);
    values += ", " + ParameterClass(group) +
              (group.IsRun() ? "(arguments + " + first + ", " + ArgumentList(function) + " + " + first + ")"
                             : "(arguments[" + first + "], " + ArgumentList(function) + "[" + first + "])");
    at += group.Count();
  }
  return "static void " + function.Procedure() + "Body(CXlOper& result, const CXlOper*" + (at > 0 ? " arguments" : "") +
         ") { " + family.name + "::Functions::" + function.implementation + "(" + values + "); }";
}

std::string ExportSuffix(bool excel4) { return excel4 ? "4" : "12"; }

/// The export's head: what it returns, its name and its parameters a0, a1, ...
std::string ExportHead(const Function& function, bool excel4) {
  const std::string suffix = ExportSuffix(excel4);
  std::string parameters;
  int at = 0;
  for (const Argument& argument : function.AllArguments()) {
    parameters += (parameters.empty() ? "Parameter" : ", Parameter") + suffix + "<" + KindName(argument.kind) + ", " +
                  (argument.defaultText ? "true" : "false") + ", " + (argument.byValue ? "true" : "false") + "> a" +
                  std::to_string(at++);
  }
  return "XLL_EXPORT " + std::string(excel4 ? "XLOPER* " : "XLOPER12* ") + function.Procedure() + "_" + suffix + "(" +
         parameters + ")";
}

std::string Export(const Function& function, bool excel4) {
  std::string values = function.Procedure() + "Body";
  for (std::size_t at = 0; at < function.AllArguments().size(); ++at) values += ", a" + std::to_string(at);
  return ExportHead(function, excel4) + " { return CallFunction" + ExportSuffix(excel4) + "(" + values + "); }";
}

/// Calls `use(function, excel4)` for every export.
template <class Use>
void ForEachExport(const std::vector<Family>& families, Use use) {
  ForEachFunction(families, [&](const Family&, const Function& function) {
    use(function, false);
    if (function.excel4) use(function, true);
  });
}

/// The exports for programs that call them from inside.
GeneratedFile ExportsHeader(const std::vector<Family>& families) {
  CodeFile file("exports.h", {"frame/entry/export.h", "frame/registration/function_declaration.h"});
  for (const std::string suffix : {"12", "4"}) {
    file.Line("template <ArgumentKind kind, bool hasDefault, bool byValue>");
    file.Line("using Parameter" + suffix + " = typename XlParameter" + suffix +
              "<LetterOf(kind, hasDefault, byValue)>::Type;");
  }
  file.Line();
  ForEachExport(families, [&](const Function& function, bool excel4) {
    file.LineOf(function.place, ExportHead(function, excel4) + ";");
  });
  return std::move(file).Finish();
}

GeneratedFile Exports(const std::vector<Family>& families) {
  std::vector<std::string> includes = {"exports.h", "declarations.h", "frame/call/wrapper.h"};
  for (const Family& family : families) includes.push_back("implementations/" + family.name + ".h");
  CodeFile file("exports.cpp", includes);
  ForEachFunction(families, [&](const Family& family, const Function& function) {
    file.LineOf(function.place, Body(family, function));
  });
  file.Line();
  ForEachExport(families,
                [&](const Function& function, bool excel4) { file.LineOf(function.place, Export(function, excel4)); });
  return std::move(file).Finish();
}

/// The example of every entry as a script of the headless calculator. What the functions of one family remember is gone
/// before those of the next.
GeneratedFile Examples(const std::vector<Family>& families) {
  std::string text = "# " + std::string(kNotice) + "\n";
  for (const Family& family : families) {
    text += "\nreload 1\n";
    for (const Function& function : family.functions) {
      if (function.exampleFormula.empty()) continue;
      text += "\ncase " + function.name + ", the example of " + TableName(function.place) + ":" +
              std::to_string(function.place.line) + "\n";
      for (const std::string& command : function.exampleBefore) text += command + "\n";
      text += "eval " + function.exampleFormula + "\nexpect " + function.exampleResult + "\n";
    }
  }
  return {"examples.calc", text};
}

}  // namespace

std::vector<GeneratedFile> GenerateCode(const std::vector<Family>& families) {
  std::vector<GeneratedFile> files;
  for (const Family& family : families) files.push_back(ImplementationsHeader(family));
  files.push_back(Declarations(families));
  files.push_back(Records(families));
  files.push_back(ExportsHeader(families));
  files.push_back(Exports(families));
  files.push_back(Examples(families));
  return files;
}

}  // namespace quillmere::generator
