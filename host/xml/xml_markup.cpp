#include "host/xml/xml_markup.h"

#include <string>

#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/xml/xml_fault.h"

namespace qcalc {

namespace {

constexpr int kMostDepth = 256;

// Markup that ends with the word behind the first `opening` bytes.
std::optional<XmlMarkup> Closed(std::string_view text, std::size_t begin, std::size_t opening, std::string_view word,
                                MarkupKind kind) {
  const std::size_t end = text.find(word, begin + opening);
  if (end == text.npos) return std::nullopt;
  return XmlMarkup{kind, begin, end + word.size()};
}

std::optional<XmlMarkup> FindTagEnd(std::string_view text, std::size_t begin) {
  XmlMarkup tag{MarkupKind::kStart, begin};
  for (std::size_t at = begin + 1; at < text.size(); ++at) {
    const char byte = text[at];
    if (byte == '>') {
      tag.end = at + 1;
      if (text[begin + 1] == '/')
        tag.kind = MarkupKind::kEnd;
      else if (text[at - 1] == '/')
        tag.kind = MarkupKind::kEmpty;
      return tag;
    }
    if (byte != '"' && byte != '\'') continue;
    ++tag.attributes;
    at = text.find(byte, at + 1);
    if (at == text.npos) break;
  }
  return std::nullopt;
}

}  // namespace

std::optional<XmlMarkup> FindMarkup(std::string_view text, std::size_t from) {
  constexpr std::string_view kComment = "<!--", kData = "<![CDATA[";
  const std::size_t begin = text.find('<', from);
  if (begin == text.npos || begin + 1 == text.size()) return std::nullopt;
  if (text[begin + 1] == '?') return Closed(text, begin, 2, "?>", MarkupKind::kInstruction);
  if (text[begin + 1] != '!') return FindTagEnd(text, begin);
  const std::string_view rest = text.substr(begin);
  if (rest.starts_with(kComment)) return Closed(text, begin, kComment.size(), "-->", MarkupKind::kComment);
  if (rest.starts_with(kData)) return Closed(text, begin, kData.size(), "]]>", MarkupKind::kData);
  if (kComment.starts_with(rest) || kData.starts_with(rest)) return std::nullopt;
  throw XmlFault("it declares a document type, as no workbook does");
}

std::string_view NameOfTag(std::string_view tag) {
  const std::size_t begin = tag.starts_with("</") ? 2 : 1;
  return WithoutPrefix(tag.substr(begin, tag.find_first_of(" \t\r\n/>", begin) - begin));
}

std::optional<std::string_view> AttributeOfTag(std::string_view tag, std::string_view name) {
  for (std::size_t quote = tag.find_first_of("\"'"); quote != tag.npos;) {
    const std::size_t end = tag.find(tag[quote], quote + 1);
    if (end == tag.npos) break;
    std::string_view before = tag.substr(0, quote);
    before = before.substr(0, before.find_last_not_of(" \t\r\n=") + 1);
    if (before.substr(before.find_last_of(" \t\r\n\"'") + 1) == name) return tag.substr(quote + 1, end - quote - 1);
    quote = tag.find_first_of("\"'", end + 1);
  }
  return std::nullopt;
}

void XmlGauge::Count(const XmlMarkup& markup) {
  if (markup.kind == MarkupKind::kStart && ++depth_ > kMostDepth)
    throw XmlFault("its elements are nested more than " + std::to_string(kMostDepth) + " deep");
  if (markup.kind == MarkupKind::kEnd && --depth_ < 0) throw XmlFault("it has an end tag without its start tag");
  if ((marks_ += 1 + markup.attributes) > mostMarks_)
    throw XmlFault("one piece of it has more than " + std::to_string(mostMarks_) + " tags and attributes");
}

void CheckBytes(std::string_view text) {
  if (text.find('\0') != text.npos) throw XmlFault("it holds a zero byte, as UTF-16 does; only UTF-8 is read");
}

std::size_t CheckEncoding(std::string_view text) {
  constexpr std::string_view kWords = "encoding=";
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    throw XmlFault("it is written in UTF-16; only UTF-8 is read");
  const std::size_t begin = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  text.remove_prefix(begin);
  if (!text.starts_with("<?xml")) return begin;
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const std::size_t at = declaration.find(kWords);
  if (at == declaration.npos || at + kWords.size() == declaration.size()) return begin;
  const char quote = declaration[at + kWords.size()];
  const std::string_view value = declaration.substr(at + kWords.size() + 1);
  const std::string_view name = value.substr(0, value.find(quote));
  if (!EqualsIgnoringCase(name, "utf-8") && !EqualsIgnoringCase(name, "us-ascii"))
    throw XmlFault("it is written in " + std::string(name.substr(0, 40)) + "; only UTF-8 is read");
  return begin;
}

}  // namespace qcalc
