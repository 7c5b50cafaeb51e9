#include "functions/generator/strict_table.h"

#include <algorithm>

namespace quillmere::generator {

std::optional<toml::table> ParseToml(const std::string& path, std::string_view text, Diagnostics& diagnostics) {
  try {
    return toml::parse(text, path);
  } catch (const toml::parse_error& error) {
    diagnostics.Add({path, static_cast<int>(error.source().begin.line)}, std::string(error.description()));
    return std::nullopt;
  }
}

StrictTable::StrictTable(const toml::table& table, std::string what, const std::string& file, Diagnostics& diagnostics,
                         std::initializer_list<std::string_view> known)
    : table_(&table), what_(std::move(what)), file_(file), diagnostics_(&diagnostics) {
  for (const auto& [key, node] : table) {
    if (std::find(known.begin(), known.end(), key.str()) != known.end()) continue;
    diagnostics_->Add({file_, static_cast<int>(key.source().begin.line)},
                      "unknown key '" + std::string(key.str()) + "' in " + what_);
  }
}

Place StrictTable::PlaceOf(const toml::node& node) const { return {file_, static_cast<int>(node.source().begin.line)}; }

void StrictTable::Complain(const toml::node& where, std::string message) const {
  diagnostics_->Add(PlaceOf(where), std::move(message));
}

void StrictTable::ComplainAt(std::string_view key, std::string message) const {
  const toml::node* node = table_->get(key);
  Complain(node ? *node : *table_, std::move(message));
}

const toml::node* StrictTable::Required(std::string_view key) const {
  const toml::node* node = table_->get(key);
  if (!node) Complain(*table_, what_ + " has no '" + std::string(key) + "'");
  return node;
}

void StrictTable::WrongType(const toml::node& node, std::string_view key, std::string_view wanted) const {
  Complain(node, "'" + std::string(key) + "' in " + what_ + " is not " + std::string(wanted));
}

std::string StrictTable::Text(std::string_view key) const {
  return Required(key) ? OptionalText(key).value_or("") : "";
}

std::optional<std::string> StrictTable::OptionalText(std::string_view key) const {
  const toml::node* node = table_->get(key);
  if (!node) return std::nullopt;
  const auto text = node->value_exact<std::string>();
  if (!text) WrongType(*node, key, "a text");
  return text.value_or("");
}

std::int64_t StrictTable::Integer(std::string_view key, std::int64_t least, std::int64_t most) const {
  return Required(key) ? OptionalInteger(key, least, most, least) : least;
}

std::int64_t StrictTable::OptionalInteger(std::string_view key, std::int64_t least, std::int64_t most,
                                          std::int64_t otherwise) const {
  const toml::node* node = table_->get(key);
  if (!node) return otherwise;
  const auto value = node->value_exact<std::int64_t>();
  if (value && *value >= least && *value <= most) return *value;
  WrongType(*node, key, "a whole number from " + std::to_string(least) + " to " + std::to_string(most));
  return otherwise;
}

bool StrictTable::OptionalBoolean(std::string_view key) const {
  const toml::node* node = table_->get(key);
  if (!node) return false;
  const auto value = node->value_exact<bool>();
  if (!value) WrongType(*node, key, "true or false");
  return value.value_or(false);
}

const toml::array* StrictTable::Array(std::string_view key) const {
  const toml::node* node = Required(key);
  if (node && !node->is_array()) WrongType(*node, key, "an array");
  return node ? node->as_array() : nullptr;
}

const toml::table* StrictTable::Table(std::string_view key) const {
  const toml::node* node = Required(key);
  if (node && !node->is_table()) WrongType(*node, key, "a table");
  return node ? node->as_table() : nullptr;
}

std::vector<std::string> StrictTable::Texts(std::string_view key) const {
  std::vector<std::string> texts;
  const toml::array* array = Array(key);
  if (!array) return texts;
  for (const toml::node& element : *array) {
    const auto text = element.value_exact<std::string>();
    if (!text) WrongType(element, key, "an array of texts");
    if (text) texts.push_back(*text);
  }
  return texts;
}

std::vector<std::string> StrictTable::OptionalTexts(std::string_view key) const {
  return Has(key) ? Texts(key) : std::vector<std::string>();
}

std::vector<std::int64_t> StrictTable::Integers(std::string_view key) const {
  std::vector<std::int64_t> values;
  const toml::array* array = Array(key);
  if (!array) return values;
  for (const toml::node& element : *array) {
    const auto value = element.value_exact<std::int64_t>();
    if (!value) WrongType(element, key, "an array of whole numbers");
    if (value) values.push_back(*value);
  }
  return values;
}

std::vector<const toml::table*> StrictTable::OptionalTables(std::string_view key) const {
  std::vector<const toml::table*> tables;
  const toml::array* array = Has(key) ? Array(key) : nullptr;
  if (!array) return tables;
  for (const toml::node& element : *array) {
    if (!element.is_table()) WrongType(element, key, "an array of tables");
    if (element.is_table()) tables.push_back(element.as_table());
  }
  return tables;
}

}  // namespace quillmere::generator
