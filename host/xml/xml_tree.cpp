#include "host/xml/xml_tree.h"

#include <utility>

#include "host/xml/xml_fault.h"

namespace qcalc {

namespace {

// Of styles and defined names there may be tens of thousands.
constexpr std::size_t kMostMarksOfFile = 2'000'000;

const XmlNode* FirstNamed(const XmlNode* node, std::string_view name) {
  while (node && (node->type() != rapidxml::node_element || NameOf(*node) != name)) node = node->next_sibling();
  return node;
}

}  // namespace

const XmlNode& XmlParser::Parse(std::string_view element) {
  constexpr int kFlags = rapidxml::parse_non_destructive | rapidxml::parse_validate_closing_tags;
  document_->clear();
  try {
    // With these flags nothing is written.
    document_->parse<kFlags>(const_cast<char*>(element.data()));
  } catch (const rapidxml::parse_error& fault) {
    throw XmlFault(std::string("it is not well formed: ") + fault.what());
  }
  const XmlNode* root = document_->first_node();
  if (!root || root->type() != rapidxml::node_element) throw XmlFault("it is no element in XML");
  return *root;
}

const XmlNode& XmlParser::ParsePart(std::string part) {
  CheckBytes(part);
  part.erase(0, CheckEncoding(part));
  XmlGauge gauge(kMostMarksOfFile);
  ForEachMarkup(part, [&gauge](const XmlMarkup& markup) { gauge.Count(markup); });
  part_ = std::move(part);
  return Parse(part_);
}

const XmlNode* FindChild(const XmlNode& element, std::string_view name) {
  return FirstNamed(element.first_node(), name);
}

const XmlNode* FindNext(const XmlNode& element, std::string_view name) {
  return FirstNamed(element.next_sibling(), name);
}

std::optional<std::string_view> FindAttribute(const XmlNode& element, std::string_view name) {
  for (const auto* attribute = element.first_attribute(); attribute; attribute = attribute->next_attribute())
    if (std::string_view(attribute->name(), attribute->name_size()) == name)
      return std::string_view(attribute->value(), attribute->value_size());
  return std::nullopt;
}

}  // namespace qcalc
