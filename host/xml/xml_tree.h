// Short texts in XML as trees: whole small parts, or one row of a sheet.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Rows of up to some thousand cells make their trees in the same memory again and again, wider ones in one block more,
// which the C library keeps at hand.
#define RAPIDXML_STATIC_POOL_SIZE (1 << 20)
#define RAPIDXML_DYNAMIC_POOL_SIZE (30 << 20)
#include <rapidxml/rapidxml.hpp>

#include "host/xml/xml_markup.h"

namespace qcalc {

/// An element, or a text within one. It views the text that it was made of, where nothing has been decoded.
using XmlNode = rapidxml::xml_node<char>;

/// Makes trees of texts, one after the other, in memory that is used again.
class XmlParser {
 public:
  /// The element that the text consists of, good until the next call. A zero byte stands behind the text, which went
  /// through an XmlGauge and outlives the tree. Throws XmlFault for what is not well formed.
  const XmlNode& Parse(std::string_view element);
  /// The same of a whole part, which is checked first: XmlFault as ElementSplitter throws it.
  const XmlNode& ParsePart(std::string part);

 private:
  std::string part_;
  std::unique_ptr<rapidxml::xml_document<char>> document_ =
      std::make_unique_for_overwrite<rapidxml::xml_document<char>>();
};

/// The element's name without its prefix.
inline std::string_view NameOf(const XmlNode& element) { return WithoutPrefix({element.name(), element.name_size()}); }

/// The first element of that name (without its prefix) below this one, or null; from one on, the next beside it.
const XmlNode* FindChild(const XmlNode& element, std::string_view name);
const XmlNode* FindNext(const XmlNode& element, std::string_view name);

/// Calls `visitor(const XmlNode&)` for each element of that name right below this one.
template <typename Visitor>
void ForEachChild(const XmlNode& element, std::string_view name, Visitor&& visitor) {
  for (const XmlNode* child = FindChild(element, name); child; child = FindNext(*child, name)) visitor(*child);
}

/// The attribute of that name, as it is written; nothing when the element has none. A prefix is part of the name.
std::optional<std::string_view> FindAttribute(const XmlNode& element, std::string_view name);

}  // namespace qcalc
