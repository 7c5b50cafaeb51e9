#include "host/xlsx/shared_texts.h"

#include "host/xlsx/cell_text.h"
#include "host/xml/xml_fault.h"

namespace qcalc {

void SharedTexts::Read(const Package& package, const std::string& part, TextPool& pool) {
  pool_ = &pool;
  package.ReadPieces(part, "the shared strings", "sst", [&](ElementSplitter& splitter, XmlParser& parser) {
    splitter.Head();
    while (const auto piece = splitter.Next()) {
      const XmlNode& element = parser.Parse(piece->element);
      if (NameOf(element) != "si") continue;
      try {
        texts_.push_back(KeepRichText(element, pool));
      } catch (const XmlFault& fault) {
        throw XmlFault("shared string " + std::to_string(texts_.size()) + ": " + fault.what());
      }
      limit_.Take(sizeof(XStringView) + texts_.back().size() * sizeof(XCHAR));
    }
    splitter.Tail();
  });
}

XStringView SharedTexts::In(TextPool& pool, std::size_t number) {
  const XStringView text = texts_[number];
  if (&pool == pool_) return text;
  if (copies_.empty()) {
    limit_.Take(texts_.size() * sizeof(Copy));
    copies_.resize(texts_.size());
  }
  Copy& copy = copies_[number];
  if (copy.pool != &pool) {
    limit_.Take(text.size() * sizeof(XCHAR));
    copy = {&pool, pool.Add(text).data()};
  }
  return {copy.start, text.size()};
}

}  // namespace qcalc
