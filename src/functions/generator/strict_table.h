// A TOML table read strictly: every key has to be known, every field has to have its type, and every mistake is
// reported with its line. A reader that fails gives an empty value, so that reading goes on.
#pragma once

#include <toml++/toml.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "functions/generator/diagnostics.h"

namespace quillmere::generator {

/// A whole TOML text; nothing, with the mistake reported, for one that is none.
std::optional<toml::table> ParseToml(const std::string& path, std::string_view text, Diagnostics& diagnostics);

class StrictTable {
 public:
  /// `what` names the table in messages: "[[function]]". Keys other than `known` are reported at once.
  StrictTable(const toml::table& table, std::string what, const std::string& file, Diagnostics& diagnostics,
              std::initializer_list<std::string_view> known);

  bool Has(std::string_view key) const { return table_->contains(key); }

  // Required fields: a field that is missing or of another type is reported.
  std::string Text(std::string_view key) const;
  std::int64_t Integer(std::string_view key, std::int64_t least, std::int64_t most) const;
  std::vector<std::string> Texts(std::string_view key) const;
  std::vector<std::int64_t> Integers(std::string_view key) const;
  const toml::table* Table(std::string_view key) const;
  const toml::array* Array(std::string_view key) const;

  // The same for fields that may be left out; then they are the value given here, or empty.
  std::optional<std::string> OptionalText(std::string_view key) const;
  std::int64_t OptionalInteger(std::string_view key, std::int64_t least, std::int64_t most,
                               std::int64_t otherwise) const;
  bool OptionalBoolean(std::string_view key) const;
  std::vector<std::string> OptionalTexts(std::string_view key) const;

  /// The tables of an array of tables; none when the key is missing. Other elements are reported.
  std::vector<const toml::table*> OptionalTables(std::string_view key) const;

  void Complain(const toml::node& where, std::string message) const;
  /// At the line of a field, or of the table when it has no such field.
  void ComplainAt(std::string_view key, std::string message) const;
  Place PlaceOf(const toml::node& node) const;
  Place OwnPlace() const { return PlaceOf(*table_); }

 private:
  const toml::node* Required(std::string_view key) const;
  void WrongType(const toml::node& node, std::string_view key, std::string_view wanted) const;

  const toml::table* table_;
  std::string what_;
  std::string file_;
  Diagnostics* diagnostics_;
};

}  // namespace quillmere::generator
