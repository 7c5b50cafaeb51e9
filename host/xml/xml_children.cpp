#include "host/xml/xml_children.h"

#include <algorithm>

namespace qcalc {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

XmlChildren::XmlChildren(std::string_view element) : element_(element) {
  const auto tag = FindMarkup(element, 0);
  tag_ = tag ? tag->In(element) : element;
  at_ = tag_.size();
}

std::optional<XmlPiece> XmlChildren::Next() {
  int depth = 0;
  std::size_t begin = at_;
  for (auto markup = FindMarkup(element_, at_); markup; markup = FindMarkup(element_, markup->end)) {
    if (!markup->IsTag()) continue;
    if (markup->kind == MarkupKind::kEnd && depth == 0) return std::nullopt;
    if (depth == 0) begin = markup->begin;
    if (markup->kind == MarkupKind::kStart) ++depth;
    if (markup->kind == MarkupKind::kEnd) --depth;
    if (depth > 0) continue;
    const XmlPiece piece{element_.substr(at_, begin - at_), element_.substr(begin, markup->end - begin)};
    at_ = markup->end;
    return piece;
  }
  return std::nullopt;
}

XmlTagParts PartsOfTag(std::string_view tag) {
  const std::size_t end = std::min(tag.find_first_of(" \t\r\n/>"), tag.size());
  return {tag.substr(0, end), tag.substr(end)};
}

std::optional<XmlAttribute> TakeAttribute(std::string_view& rest) {
  const std::size_t begin = rest.find_first_not_of(kBlanks);
  const std::size_t equals = rest.find('=');
  if (begin == rest.npos || equals == rest.npos || rest[begin] == '/' || rest[begin] == '>') return std::nullopt;
  const std::size_t open = rest.find_first_of("\"'", equals);
  if (open == rest.npos) return std::nullopt;
  const std::size_t close = rest.find(rest[open], open + 1);
  if (close == rest.npos) return std::nullopt;
  std::string_view name = rest.substr(begin, equals - begin);
  name = name.substr(0, name.find_first_of(kBlanks));
  const XmlAttribute attribute{rest.substr(0, close + 1), name, rest.substr(open + 1, close - open - 1)};
  rest.remove_prefix(close + 1);
  return attribute;
}

}  // namespace qcalc
