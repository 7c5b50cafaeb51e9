#include "host/xlsx/cell_text.h"

#include <algorithm>

#include "host/xml/xml_fault.h"
#include "host/xml/xml_text.h"
#include "xlcall/xlcall.h"

namespace qcalc {

namespace {

// No text that fits into a cell is written longer than this, whatever escapes it is written with.
constexpr std::size_t kMostWritten = std::size_t{1} << 20;

// The unit that `_x000A_` at the start of the text stands for; -1 where none does.
int EscapedUnit(XStringView text) {
  constexpr std::size_t kLength = 7;
  if (text.size() < kLength || text[1] != XTEXT('x') || text[kLength - 1] != XTEXT('_')) return -1;
  int unit = 0;
  for (const XCHAR digit : text.substr(2, 4)) {
    const int value = digit >= XTEXT('0') && digit <= XTEXT('9')   ? digit - XTEXT('0')
                      : digit >= XTEXT('A') && digit <= XTEXT('F') ? digit - XTEXT('A') + 10
                      : digit >= XTEXT('a') && digit <= XTEXT('f') ? digit - XTEXT('a') + 10
                                                                   : -1;
    if (value < 0) return -1;
    unit = unit * 16 + value;
  }
  return unit;
}

// Decodes in place; the new end.
XCHAR* DecodeEscapes(XCHAR* begin, XCHAR* end) {
  XCHAR* to = std::find(begin, end, XTEXT('_'));
  for (const XCHAR* from = to; from != end;) {
    const int unit = *from == XTEXT('_') ? EscapedUnit({from, static_cast<std::size_t>(end - from)}) : -1;
    *to++ = unit >= 0 ? static_cast<XCHAR>(unit) : *from;
    from += unit >= 0 ? 7 : 1;
  }
  return to;
}

// Joins the texts of `<t>` elements, or of any, in a pool.
class TextKeeper {
 public:
  TextKeeper(TextPool& pool, std::size_t mostUnits) : pool_(pool) {
    if (mostUnits > kMostWritten) throw XmlFault("a text is longer than a cell can hold");
    start_ = end_ = pool.Reserve(mostUnits);
  }
  void Add(const XmlNode& element) { end_ = DecodeEscapes(end_, DecodeTextOf(element, end_)); }
  XStringView Keep() {
    const auto units = static_cast<std::size_t>(end_ - start_);
    if (units > static_cast<std::size_t>(kXlMaxText))
      throw XmlFault("a text has " + std::to_string(units) + " characters, of at most " + std::to_string(kXlMaxText));
    return pool_.Keep(start_, units);
  }

 private:
  TextPool& pool_;
  XCHAR* start_;
  XCHAR* end_;
};

template <typename Visitor>
void ForEachRun(const XmlNode& element, Visitor&& visitor) {
  for (const XmlNode* child = element.first_node(); child; child = child->next_sibling()) {
    if (child->type() != rapidxml::node_element) continue;
    if (NameOf(*child) == "t") visitor(*child);
    if (NameOf(*child) == "r") ForEachChild(*child, "t", visitor);
  }
}

}  // namespace

XStringView KeepCellText(const XmlNode& element, TextPool& pool) {
  TextKeeper keeper(pool, MostUnitsOf(element));
  keeper.Add(element);
  return keeper.Keep();
}

XStringView KeepRichText(const XmlNode& element, TextPool& pool) {
  std::size_t units = 0;
  ForEachRun(element, [&units](const XmlNode& run) { units += MostUnitsOf(run); });
  TextKeeper keeper(pool, units);
  ForEachRun(element, [&keeper](const XmlNode& run) { keeper.Add(run); });
  return keeper.Keep();
}

XString EscapedText(std::string_view raw) {
  XString text = DecodeXml(raw);
  text.resize(static_cast<std::size_t>(DecodeEscapes(text.data(), text.data() + text.size()) - text.data()));
  return text;
}

}  // namespace qcalc
