// What texts in XML say, once entities and line ends are decoded.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/xml/xml_tree.h"
#include "xlcall/xchar.h"

namespace qcalc {

/// Writes what is written as `raw`, in UTF-8, to `units`, which has room for raw.size() of them; the end of what was
/// written. Throws XmlFault for what is not UTF-8, and for entities that XML itself does not declare.
XCHAR* DecodeXml(std::string_view raw, XCHAR* units);
XString DecodeXml(std::string_view raw);

/// The text of an element that holds nothing but one stretch of it, as it is written; empty for any other.
std::string_view PlainTextOf(const XmlNode& element);

/// At most how many units the element's own text has, and the text: without that of elements below it, with what
/// stands in CDATA sections. Otherwise as DecodeXml.
std::size_t MostUnitsOf(const XmlNode& element);
XCHAR* DecodeTextOf(const XmlNode& element, XCHAR* units);
XString TextOf(const XmlNode& element);

}  // namespace qcalc
