// Texts of cells as workbook files have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/values/text_pool.h"
#include "host/xml/xml_tree.h"

namespace qcalc {

/// The element's text, put into the pool: of `<t>`, `<v>`, or of `<si>` and `<is>`, whose differently formatted runs
/// are joined and whose reading aids are left out. `_x000A_` is the unit of that number. Throws XmlFault for a text of
/// more units than a cell holds, and as DecodeXml does.
XStringView KeepCellText(const XmlNode& element, TextPool& pool);
XStringView KeepRichText(const XmlNode& element, TextPool& pool);

/// The text of an attribute in which units may be written as `_x000A_`.
XString EscapedText(std::string_view raw);

}  // namespace qcalc
