#include "functions/generator/argument_reader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "functions/generator/text_rules.h"

namespace quillmere::generator {
namespace {

constexpr int kMaxArgumentFlags = 0xFFFF;

/// The kind of that word; nothing when there is none.
std::optional<ArgumentKind> KindOf(std::string_view word) {
  const auto* const found = std::ranges::find_if(kArgumentKinds, [word](const ArgumentKindWord& each) {
    return std::ranges::equal(each.word, word, {}, {}, [](char c) { return static_cast<XCHAR>(c); });
  });
  return found == std::end(kArgumentKinds) ? std::nullopt : std::optional(found->kind);
}

std::string WithoutNumber(const std::string& name) {
  const std::size_t at = name.find("{}");
  return at == std::string::npos ? name : name.substr(0, at) + name.substr(at + 2);
}

}  // namespace

void ArgumentReader::ReadShared(const std::string& id, const toml::table& table) {
  shared_.emplace(id, ReadGroup(id, table));
}

const ArgumentGroup* ArgumentReader::Find(const std::string& id) {
  used_.insert(id);
  const auto found = shared_.find(id);
  return found == shared_.end() ? nullptr : &found->second;
}

std::vector<const ArgumentGroup*> ArgumentReader::Unused() const {
  std::vector<const ArgumentGroup*> unused;
  for (const auto& [id, group] : shared_) {
    if (!used_.contains(id)) unused.push_back(&group);
  }
  return unused;
}

ArgumentGroup ArgumentReader::ReadInPlace(const toml::table& table) { return ReadGroup("", table); }

ArgumentGroup ArgumentReader::ReadGroup(const std::string& id, const toml::table& table) {
  if (table.contains("repeat")) return ReadRun(id, table);
  ArgumentGroup group;
  group.place = {file_, static_cast<int>(table.source().begin.line)};
  group.each.push_back(ReadArgument(id, table, false));
  group.id = group.each.front().name;
  return group;
}

ArgumentGroup ArgumentReader::ReadRun(const std::string& id, const toml::table& table) {
  const StrictTable fields(table, "a run of arguments", file_, *diagnostics_, {"repeat", "helped", "required", "each"});
  ArgumentGroup group;
  group.place = fields.OwnPlace();
  group.rounds = static_cast<int>(fields.Integer("repeat", 1, kXlMaxArguments));
  group.helped = static_cast<int>(fields.OptionalInteger("helped", 0, group.rounds, group.rounds));
  group.required = static_cast<int>(fields.OptionalInteger("required", 0, group.rounds, 0));
  fields.Array("each");
  for (const toml::table* each : fields.OptionalTables("each")) group.each.push_back(ReadArgument("", *each, true));
  for (const Argument& argument : group.each)
    if (group.required > 0 && argument.defaultText)
      fields.ComplainAt("required", "'" + argument.name + "' has a default and need not be given");
  if (group.each.empty()) {
    fields.ComplainAt("each", "a run repeats at least one argument");
    group.each.emplace_back();
    group.each.back().name = "Argument{}";
  }
  group.id = id.empty() ? WithoutNumber(group.each.front().name) : id;
  return group;
}

Argument ArgumentReader::ReadArgument(const std::string& id, const toml::table& table, bool inRun) {
  const StrictTable fields(
      table, "an argument", file_, *diagnostics_,
      {"name", "kind", "help", "default", "by_value", "required", "flags", "choices", "only", "codes", "like"});
  Argument argument;
  const auto like = fields.OptionalText("like");
  if (like) {
    const ArgumentGroup* model = Find(*like);
    if (model && !model->IsRun()) {
      argument = model->each.front();
    } else {
      fields.ComplainAt("like", "no single argument '" + *like + "' stands above");
    }
  }
  argument.name = fields.Has("name") || id.empty() ? fields.Text("name") : id;
  if (fields.Has("kind") || !like) {
    const std::string kind = fields.Text("kind");
    const std::optional<ArgumentKind> found = KindOf(kind);
    argument.kind = found.value_or(argument.kind);
    if (!found && !kind.empty()) fields.ComplainAt("kind", "'" + kind + "' is no kind of argument");
  }
  if (fields.Has("help") || !like) argument.help = fields.Text("help");
  if (fields.Has("default")) argument.defaultText = fields.OptionalText("default");
  if (fields.Has("by_value")) argument.byValue = fields.OptionalBoolean("by_value");
  if (fields.Has("required")) argument.required = fields.OptionalBoolean("required");
  if (fields.Has("only")) argument.only = fields.OptionalBoolean("only");
  if (fields.Has("codes")) {
    argument.codes.clear();
    for (const std::int64_t code : fields.Integers("codes")) argument.codes.push_back(static_cast<int>(code));
  }
  argument.flags = static_cast<int>(fields.OptionalInteger("flags", 0, kMaxArgumentFlags, argument.flags));
  if (fields.Has("choices")) ReadChoices(argument, fields);
  CheckArgument(argument, fields, inRun);
  return argument;
}

void ArgumentReader::ReadChoices(Argument& argument, const StrictTable& fields) {
  argument.choices.clear();
  for (const toml::table* each : fields.OptionalTables("choices")) {
    const StrictTable choice(*each, "a choice", file_, *diagnostics_, {"code", "text"});
    const int code = static_cast<int>(choice.Integer("code", INT32_MIN, INT32_MAX));
    const std::string text = choice.Text("text");
    if (const auto fault = TextFault(text, false)) choice.ComplainAt("text", "the choice's text " + *fault);
    const bool twice = std::any_of(argument.choices.begin(), argument.choices.end(),
                                   [&](const Choice& other) { return other.code == code; });
    if (twice) choice.ComplainAt("code", "choice " + std::to_string(code) + " stands twice");
    argument.choices.push_back({code, text});
  }
}

void ArgumentReader::CheckArgument(const Argument& argument, const StrictTable& fields, bool inRun) {
  const std::string& name = argument.name;
  const bool numbered = name.find("{}") != std::string::npos;
  if (numbered != inRun) {
    fields.ComplainAt("name", inRun ? "'" + name + "' is repeated and has no {} for its number"
                                    : "'" + name + "' is a single argument and has a {} for a number");
  } else if (!IsIdentifier(WithoutNumber(name))) {
    fields.ComplainAt("name", "'" + name + "' cannot name an argument: letters, digits and _ can");
  }
  if (Utf16Length(argument.help) > kXlMaxRegisteredText) {
    fields.ComplainAt("help", "the help text of '" + name + "' has " + std::to_string(Utf16Length(argument.help)) +
                                  " characters; Excel takes 255");
  }
  if (const auto fault = TextFault(argument.help, false)) {
    fields.ComplainAt("help", "the help text of '" + name + "' " + *fault);
  }
  if (argument.defaultText && !DefaultOf(argument.kind, *argument.defaultText)) {
    fields.ComplainAt("default",
                      "the default '" + *argument.defaultText + "' of '" + name + "' does not read as its kind");
  }
  if (argument.byValue && (argument.kind != ArgumentKind::kInt || !argument.defaultText)) {
    fields.ComplainAt("by_value", "by_value is for an Int with a default: '" + name + "' is none");
  }
  CheckPresence(argument, fields, inRun);
  CheckCodes(argument, fields);
}

/// What is said of an argument that a call may leave out.
void ArgumentReader::CheckPresence(const Argument& argument, const StrictTable& fields, bool inRun) {
  const TypeLetter letter = LetterOf(argument.kind, argument.defaultText.has_value(), argument.byValue);
  if (argument.required && argument.defaultText) {
    fields.ComplainAt("required", "'" + argument.name + "' is required and has a default");
  } else if (argument.required && letter != TypeLetter::kValue && letter != TypeLetter::kReference) {
    fields.ComplainAt("required", "'" + argument.name + "' comes as a plain value, which is never left out");
  }
  if (inRun && argument.required) {
    fields.ComplainAt("required", "in a run, required says how many rounds are: '" + argument.name + "'");
  }
}

void ArgumentReader::CheckCodes(const Argument& argument, const StrictTable& fields) {
  const bool takesCodes = argument.kind == ArgumentKind::kInt || argument.kind == ArgumentKind::kShort ||
                          argument.kind == ArgumentKind::kValue;
  if (argument.only && (argument.choices.empty() || !takesCodes)) {
    fields.ComplainAt("only", "only is for an Int, Short or Value with choices: '" + argument.name + "' is none");
    return;
  }
  if (!argument.codes.empty() && (!argument.choices.empty() || !takesCodes)) {
    fields.ComplainAt("codes", "codes are for an Int, Short or Value without choices: '" + argument.name + "' is none");
    return;
  }
  const std::vector<int> allowed = argument.AllowedCodes();
  const bool allowsDefault = std::any_of(allowed.begin(), allowed.end(),
                                         [&](int code) { return std::to_string(code) == argument.defaultText; });
  if (argument.defaultText && !allowed.empty() && !allowsDefault) {
    fields.ComplainAt("default",
                      "the default '" + *argument.defaultText + "' of '" + argument.name + "' is none of its codes");
  }
}

}  // namespace quillmere::generator
