// The children of one element, and the attributes of one tag, as they are written.
#pragma once

#include <optional>
#include <string_view>

#include "host/xml/element_splitter.h"
#include "host/xml/xml_markup.h"

namespace qcalc {

/// Parts an element that is held as a whole, and that has been parsed before. Joined, its tag, all pieces' gaps and
/// elements, and the tail are the element.
class XmlChildren {
 public:
  /// `element` begins with its tag.
  explicit XmlChildren(std::string_view element);

  /// The element's start tag, or, where it has no content, its only tag; the tail is then empty.
  std::string_view Tag() const { return tag_; }
  bool HasContent() const { return tag_.size() < element_.size(); }
  /// The next child; nothing behind the last.
  std::optional<XmlPiece> Next();
  /// What stands behind the last child handed over.
  std::string_view Tail() const { return element_.substr(at_); }

 private:
  std::string_view element_;
  std::string_view tag_;
  std::size_t at_;
};

/// ` name="value"`, with the blanks before it.
struct XmlAttribute {
  std::string_view written;
  std::string_view name;
  std::string_view value;  ///< entities are not decoded
};

/// Takes the first attribute off what stands behind a tag's name or an attribute of it; nothing, where none follows.
std::optional<XmlAttribute> TakeAttribute(std::string_view& rest);

/// `<x:row` of a tag, and what stands behind it.
struct XmlTagParts {
  std::string_view opening;
  std::string_view attributes;
};
XmlTagParts PartsOfTag(std::string_view tag);

}  // namespace qcalc
