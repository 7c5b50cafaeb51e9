#include "host/xml/xml_text.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "host/text/digits.h"
#include "host/text/utf8.h"
#include "host/xml/xml_fault.h"

namespace qcalc {

namespace {

// The name of an entity stands between "&" and ";".
char32_t CharacterOf(std::string_view entity) {
  constexpr std::pair<std::string_view, char32_t> kNamed[] = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
  for (const auto& [name, character] : kNamed)
    if (entity == name) return character;
  if (entity.starts_with('#')) {
    const bool isHex = entity.starts_with("#x");
    const auto number = ReadWhole<std::uint32_t>(entity.substr(isHex ? 2 : 1), isHex ? 16 : 10);
    if (number && *number > 0 && *number <= 0x10FFFF) return *number;
  }
  throw XmlFault("it holds the entity &" + std::string(entity.substr(0, 40)) + ";, which XML does not declare");
}

XCHAR* DecodeUtf8(std::string_view raw, XCHAR* units) {
  XCHAR* end = FromUtf8(raw, units);
  if (!end) throw XmlFault("it holds bytes that are no UTF-8");
  return end;
}

// A blank text of which a tree says nothing: RapidXML passes over white space before a tag.
std::string_view BlankTextOf(const XmlNode& element) {
  const auto* last = element.last_attribute();
  const std::string_view start = last ? std::string_view(last->value(), last->value_size() + 1)
                                      : std::string_view(element.name(), element.name_size());
  const char* at = start.data() + start.size();
  while (*at != '>' && *at != '/') ++at;
  if (*at++ == '/') return {};
  const char* end = at;
  while (*end != '<') ++end;
  return {at, static_cast<std::size_t>(end - at)};
}

}  // namespace

XCHAR* DecodeXml(std::string_view raw, XCHAR* units) {
  for (;;) {
    const std::size_t plain = std::min(raw.find_first_of("&\r"), raw.size());
    units = DecodeUtf8(raw.substr(0, plain), units);
    if (plain == raw.size()) return units;
    if (raw[plain] == '\r') {
      *units++ = XTEXT('\n');
      raw.remove_prefix(plain + (raw.substr(plain).starts_with("\r\n") ? 2 : 1));
      continue;
    }
    const std::size_t close = raw.find(';', plain);
    if (close == raw.npos) throw XmlFault("it holds a \"&\" that begins no entity");
    units = WriteCharacter(CharacterOf(raw.substr(plain + 1, close - plain - 1)), units);
    raw.remove_prefix(close + 1);
  }
}

XString DecodeXml(std::string_view raw) {
  XString text(raw.size(), XCHAR{});
  text.resize(static_cast<std::size_t>(DecodeXml(raw, text.data()) - text.data()));
  return text;
}

std::string_view PlainTextOf(const XmlNode& element) {
  const XmlNode* only = element.first_node();
  if (!only || only->next_sibling() || only->type() == rapidxml::node_element) return {};
  return {only->value(), only->value_size()};
}

std::size_t MostUnitsOf(const XmlNode& element) {
  if (!element.first_node()) return BlankTextOf(element).size();
  std::size_t units = 0;
  for (const XmlNode* node = element.first_node(); node; node = node->next_sibling()) units += node->value_size();
  return units;
}

XCHAR* DecodeTextOf(const XmlNode& element, XCHAR* units) {
  if (!element.first_node()) return DecodeXml(BlankTextOf(element), units);
  for (const XmlNode* node = element.first_node(); node; node = node->next_sibling()) {
    const std::string_view raw(node->value(), node->value_size());
    if (node->type() == rapidxml::node_data) units = DecodeXml(raw, units);
    if (node->type() == rapidxml::node_cdata) units = DecodeUtf8(raw, units);
  }
  return units;
}

XString TextOf(const XmlNode& element) {
  XString text(MostUnitsOf(element), XCHAR{});
  text.resize(static_cast<std::size_t>(DecodeTextOf(element, text.data()) - text.data()));
  return text;
}

}  // namespace qcalc
