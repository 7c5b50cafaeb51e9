#include "functions/generator/table_reader.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include "functions/generator/argument_reader.h"
#include "functions/generator/strict_table.h"
#include "functions/generator/text_rules.h"

namespace quillmere::generator {
namespace {

constexpr std::array kCategories = {3, 4, 5, 7, 8, 9, 14};
constexpr std::array<std::pair<std::string_view, FunctionFlag>, 5> kMarks = {{{"thread-safe", kThreadSafe},
                                                                              {"volatile", kVolatile},
                                                                              {"macro-sheet", kMacroSheet},
                                                                              {"framework-2", kFrameworkMark2},
                                                                              {"framework-32", kFrameworkMark32}}};

class FamilyReader {
 public:
  FamilyReader(const std::string& path, Diagnostics& diagnostics)
      : diagnostics_(&diagnostics), arguments_(path, diagnostics) {
    family_.file = path;
    family_.name = std::filesystem::path(path).stem().string();
  }

  Family Read(const toml::table& root) {
    if (!IsIdentifier(family_.name)) diagnostics_->Add({family_.file, 1}, "the file's name cannot name a family");
    const StrictTable fields(root, "the table", family_.file, *diagnostics_,
                             {"family", "setting", "implementation", "argument", "function"});
    if (const toml::table* head = fields.Table("family")) ReadHead(*head);
    for (const toml::table* each : fields.OptionalTables("setting")) ReadSetting(*each);
    for (const toml::table* each : fields.OptionalTables("implementation")) ReadImplementation(*each);
    if (fields.Has("argument")) ReadArguments(fields.Table("argument"));
    if (!fields.Has("function")) fields.ComplainAt("function", "the table declares no [[function]]");
    for (const toml::table* each : fields.OptionalTables("function")) ReadFunction(*each);
    for (const ArgumentGroup* group : arguments_.Unused()) {
      diagnostics_->Add(group->place, "no function takes the argument '" + group->id + "'");
    }
    return std::move(family_);
  }

 private:
  StrictTable Fields(const toml::table& table, std::string what, std::initializer_list<std::string_view> known) const {
    return StrictTable(table, std::move(what), family_.file, *diagnostics_, known);
  }

  void ReadHead(const toml::table& table) {
    const StrictTable fields = Fields(table, "[family]", {"title", "introduction", "help_ids"});
    family_.place = fields.OwnPlace();
    family_.title = ReadText(fields, "title", false);
    family_.introduction = ReadText(fields, "introduction", true);
    const std::vector<std::int64_t> ids = fields.Integers("help_ids");
    if (ids.size() != 2 || ids[0] < 1 || ids[1] < ids[0] || ids[1] > INT32_MAX) {
      fields.ComplainAt("help_ids", "help_ids are the first and the last help id of the family");
      return;
    }
    family_.firstHelpId = static_cast<int>(ids[0]);
    family_.lastHelpId = static_cast<int>(ids[1]);
  }

  void ReadSetting(const toml::table& table) {
    const StrictTable fields = Fields(table, "[[setting]]", {"name", "type", "values"});
    Setting setting{fields.Text("name"), fields.Text("type"), fields.OptionalTexts("values"), fields.OwnPlace()};
    if (!IsIdentifier(setting.name)) fields.ComplainAt("name", "'" + setting.name + "' cannot name a parameter");
    const bool plain = setting.type == "bool" || setting.type == "int" || setting.IsOwnName();
    if (!plain && !IsIdentifier(setting.type)) {
      fields.ComplainAt("type", "'" + setting.type + "' cannot name an enumeration");
    }
    if (plain != setting.values.empty()) {
      fields.ComplainAt("values", plain ? "a setting of type " + setting.type + " lists no values"
                                        : "an enumeration lists its values");
    }
    for (const std::string& value : setting.values) {
      if (!IsIdentifier(value)) fields.ComplainAt("values", "'" + value + "' cannot name an enumerator");
      if (std::count(setting.values.begin(), setting.values.end(), value) > 1) {
        fields.ComplainAt("values", "'" + value + "' stands twice");
      }
    }
    family_.settings.push_back(std::move(setting));
  }

  void ReadImplementation(const toml::table& table) {
    const StrictTable fields = Fields(table, "[[implementation]]", {"name", "settings"});
    Implementation implementation{fields.Text("name"), fields.OptionalTexts("settings"), fields.OwnPlace()};
    if (!IsIdentifier(implementation.name)) {
      fields.ComplainAt("name", "'" + implementation.name + "' cannot name an implementation");
    }
    for (const std::string& setting : implementation.settings) {
      if (!FindSetting(setting)) fields.ComplainAt("settings", "no [[setting]] '" + setting + "' stands in this table");
    }
    family_.implementations.push_back(std::move(implementation));
  }

  void ReadArguments(const toml::table* table) {
    if (!table) return;
    std::vector<std::pair<toml::source_index, const toml::key*>> inOrder;
    for (const auto& [key, node] : *table) inOrder.emplace_back(key.source().begin.line, &key);
    std::sort(inOrder.begin(), inOrder.end());
    for (const auto& [line, key] : inOrder) {
      const toml::node* node = table->get(key->str());
      if (node->is_table()) {
        arguments_.ReadShared(std::string(key->str()), *node->as_table());
      } else {
        diagnostics_->Add({family_.file, static_cast<int>(line)}, "an argument is a table: [argument.ID]");
      }
    }
  }

  void ReadFunction(const toml::table& table) {
    const StrictTable fields =
        Fields(table, "[[function]]",
               {"name", "like", "implementation", "settings", "arguments", "type", "marks", "category", "help_id",
                "interfaces", "description", "long_text", "example", "remarks", "related"});
    Function function;
    const bool isLike = fields.Has("like");
    if (isLike) TakeOver(function, fields);
    function.place = fields.OwnPlace();
    function.name = fields.Text("name");
    if (!IsFunctionName(function.name))
      fields.ComplainAt("name", "Excel takes no function of the name '" + function.name + "'");
    if (fields.Has("type") || !isLike) ReadType(function, fields);
    if (fields.Has("implementation") || !isLike) function.implementation = fields.Text("implementation");
    ReadSettings(function, table, fields);
    if (fields.Has("arguments") || !isLike) ReadArgumentList(function, fields);
    if (fields.Has("marks") || !isLike) ReadMarks(function, fields);
    ReadNumbers(function, fields);
    if (fields.Has("description") || !isLike) function.description = ReadText(fields, "description", false);
    function.longText = ReadText(fields, "long_text", true);
    ReadExample(function, fields);
    function.remarks = ReadRemarks(fields);
    const bool hasPage = function.type == MacroType::kFunction;
    function.related = hasPage ? fields.Texts("related") : fields.OptionalTexts("related");
    if (hasPage && fields.Has("related") && function.related.empty())
      fields.ComplainAt("related", "no function is related to " + function.name);
    family_.functions.push_back(std::move(function));
  }

  std::vector<std::string> ReadRemarks(const StrictTable& fields) {
    std::vector<std::string> remarks = fields.OptionalTexts("remarks");
    for (const std::string& remark : remarks)
      if (const auto fault = remark.empty() ? std::optional<std::string>("is empty") : TextFault(remark, false))
        fields.ComplainAt("remarks", "a remark " + *fault);
    return remarks;
  }

  /// Begins with what another function above declares; a help id, a page and an example are each function's own.
  void TakeOver(Function& function, const StrictTable& fields) {
    const std::string like = fields.Text("like");
    const auto model = std::find_if(family_.functions.begin(), family_.functions.end(),
                                    [&](const Function& each) { return each.name == like; });
    if (model == family_.functions.end()) {
      fields.ComplainAt("like", "no function '" + like + "' stands above");
      return;
    }
    function = *model;
    function.helpId = 0;
  }

  void ReadType(Function& function, const StrictTable& fields) {
    const std::string word = fields.OptionalText("type").value_or("function");
    const auto type =
        std::find_if(kMacroTypes.begin(), kMacroTypes.end(), [&](const auto& each) { return each.first == word; });
    function.type = type == kMacroTypes.end() ? MacroType::kFunction : type->second;
    if (type == kMacroTypes.end())
      fields.ComplainAt("type", "'" + word + "' is no type: function, hidden and command are");
  }

  /// Every setting of the implementation, and no other; those that the entry does not give stay as they are in the
  /// function that it is like.
  void ReadSettings(Function& function, const toml::table& table, const StrictTable& fields) {
    const toml::node* node = table.get("settings");
    const toml::table* given = node ? fields.Table("settings") : nullptr;
    const auto implementation =
        std::find_if(family_.implementations.begin(), family_.implementations.end(),
                     [&](const Implementation& each) { return each.name == function.implementation; });
    if (implementation == family_.implementations.end()) {
      if (!function.implementation.empty()) {
        fields.ComplainAt("implementation",
                          "no [[implementation]] '" + function.implementation + "' stands in this table");
      }
      return;
    }
    const auto takenOver = std::exchange(function.settings, {});
    for (const std::string& name : implementation->settings) {
      const toml::node* value = given ? given->get(name) : nullptr;
      const auto kept =
          std::find_if(takenOver.begin(), takenOver.end(), [&](const auto& setting) { return setting.first == name; });
      const Setting* setting = FindSetting(name);
      if (setting && setting->IsOwnName()) {
        if (value) fields.Complain(*value, "the setting '" + name + "' is the name of '" + function.name + "'");
        function.settings.emplace_back(name, function.Procedure() + "Declaration.name");
      } else if (!value && kept != takenOver.end()) {
        function.settings.push_back(*kept);
      } else if (!value) {
        fields.ComplainAt("settings", "'" + function.name + "' gives no setting '" + name + "'");
      } else if (setting) {
        function.settings.emplace_back(name, SettingValue(*setting, *value, fields));
      }
    }
    if (!given) return;
    for (const auto& [key, value] : *given) {
      const auto& known = implementation->settings;
      if (std::find(known.begin(), known.end(), key.str()) != known.end()) continue;
      fields.Complain(value, "'" + implementation->name + "' takes no setting '" + std::string(key.str()) + "'");
    }
  }

  std::string SettingValue(const Setting& setting, const toml::node& value, const StrictTable& fields) {
    if (setting.type == "bool") {
      if (const auto flag = value.value_exact<bool>()) return *flag ? "true" : "false";
    } else if (setting.type == "int") {
      if (const auto number = value.value_exact<std::int64_t>(); number && std::in_range<std::int32_t>(*number)) {
        return std::to_string(*number);
      }
    } else if (const auto word = value.value_exact<std::string>();
               word && std::find(setting.values.begin(), setting.values.end(), *word) != setting.values.end()) {
      return setting.type + "::k" + *word;
    }
    fields.Complain(value, "the setting '" + setting.name + "' is no " + setting.type);
    return "";
  }

  void ReadArgumentList(Function& function, const StrictTable& fields) {
    function.arguments.clear();
    const toml::array* list = fields.Array("arguments");
    if (!list) return;
    for (const toml::node& element : *list) {
      if (const auto id = element.value_exact<std::string>()) {
        if (const ArgumentGroup* group = arguments_.Find(*id)) {
          function.arguments.push_back(*group);
        } else {
          fields.Complain(element, "no [argument." + *id + "] stands in this table");
        }
      } else if (element.is_table()) {
        function.arguments.push_back(arguments_.ReadInPlace(*element.as_table()));
      } else {
        fields.Complain(element, "an argument is an ID or a table");
      }
    }
  }

  void ReadMarks(Function& function, const StrictTable& fields) {
    function.flags = 0;
    for (const std::string& word : fields.Texts("marks")) {
      const auto mark =
          std::find_if(kMarks.begin(), kMarks.end(), [&](const auto& each) { return each.first == word; });
      if (mark == kMarks.end()) {
        fields.ComplainAt("marks", "'" + word + "' is no mark");
      } else if (function.flags & mark->second) {
        fields.ComplainAt("marks", "the mark '" + word + "' stands twice");
      } else {
        function.flags |= mark->second;
      }
    }
    if ((function.flags & kThreadSafe) && (function.flags & kMacroSheet)) {
      fields.ComplainAt("marks", "Excel takes no function that is both thread-safe and macro-sheet");
    }
    if (function.type == MacroType::kCommand && (function.flags & (kThreadSafe | kVolatile | kMacroSheet))) {
      fields.ComplainAt("marks", "thread-safe, volatile and macro-sheet are marks of functions: '" + function.name +
                                     "' is a command");
    }
  }

  void ReadNumbers(Function& function, const StrictTable& fields) {
    const bool mayDoWithout = fields.Has("like") || function.type == MacroType::kHidden;
    if (fields.Has("category") || !mayDoWithout) {
      function.category = static_cast<int>(fields.Integer("category", kCategories.front(), kCategories.back()));
      if (std::find(kCategories.begin(), kCategories.end(), function.category) == kCategories.end()) {
        fields.ComplainAt("category", std::to_string(function.category) + " is no category of this add-in");
      }
    }
    if (fields.Has("help_id") || function.type == MacroType::kFunction) {
      function.helpId = static_cast<int>(fields.Integer("help_id", 1, INT32_MAX));
    }
    if (!fields.Has("interfaces")) return;
    const std::vector<std::int64_t> interfaces = fields.Integers("interfaces");
    function.excel4 = interfaces == std::vector<std::int64_t>{12, 4};
    if (!function.excel4 && interfaces != std::vector<std::int64_t>{12}) {
      fields.ComplainAt("interfaces", "interfaces are [12] or [12, 4]");
    }
  }

  std::string ReadText(const StrictTable& fields, std::string_view key, bool lineBreaks) {
    std::string text = fields.Text(key);
    if (const auto fault = TextFault(text, lineBreaks)) fields.ComplainAt(key, std::string(key) + " " + *fault);
    if (fields.Has(key) && text.empty()) fields.ComplainAt(key, std::string(key) + " is empty");
    return text;
  }

  void ReadExample(Function& function, const StrictTable& fields) {
    if (function.type == MacroType::kCommand) {
      if (fields.Has("example")) fields.ComplainAt("example", "a command has no example");
      return;
    }
    const toml::table* table = fields.Table("example");
    if (!table) return;
    const StrictTable example = Fields(*table, "an example", {"formula", "result", "given", "before"});
    function.exampleFormula = ReadText(example, "formula", false);
    function.exampleResult = ReadText(example, "result", false);
    if (example.Has("given")) function.exampleGiven = ReadText(example, "given", false);
    function.exampleBefore = example.OptionalTexts("before");
    if (function.exampleGiven.empty() != function.exampleBefore.empty())
      example.ComplainAt("formula", "an example has both 'given' and 'before', or neither");
    if (!function.exampleFormula.starts_with("=") ||
        function.exampleFormula.find(function.name + "(") == std::string::npos) {
      example.ComplainAt("formula", "the example is no formula that calls " + function.name);
    }
  }

  const Setting* FindSetting(const std::string& name) const {
    const auto found = std::find_if(family_.settings.begin(), family_.settings.end(),
                                    [&](const Setting& each) { return each.name == name; });
    return found == family_.settings.end() ? nullptr : &*found;
  }

  Family family_;
  Diagnostics* diagnostics_;
  ArgumentReader arguments_;
};

}  // namespace

Family ReadFamily(const std::string& path, std::string_view text, Diagnostics& diagnostics) {
  const std::optional<toml::table> root = ParseToml(path, text, diagnostics);
  return root ? FamilyReader(path, diagnostics).Read(*root) : Family();
}

}  // namespace quillmere::generator
