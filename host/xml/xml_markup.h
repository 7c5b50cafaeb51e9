// Tags, comments and the like in a text in XML, without reading what they say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qcalc {

enum class MarkupKind : std::uint8_t { kStart, kEnd, kEmpty, kData, kComment, kInstruction };

/// One piece of markup, from its "<" to behind its ">".
struct XmlMarkup {
  MarkupKind kind = MarkupKind::kStart;
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t attributes = 0;

  std::string_view In(std::string_view text) const { return text.substr(begin, end - begin); }
  /// A start tag, an end tag or, with kEmpty, both in one.
  bool IsTag() const { return kind <= MarkupKind::kEmpty; }
};

/// The first markup at or behind `from`; nothing when the text holds none that is complete. Throws XmlFault for a
/// DOCTYPE: what it may declare (entities of entities) no part of a workbook needs.
std::optional<XmlMarkup> FindMarkup(std::string_view text, std::size_t from);

/// Calls `visitor(const XmlMarkup&)` for all markup of the text.
template <typename Visitor>
void ForEachMarkup(std::string_view text, Visitor&& visitor) {
  std::size_t at = 0;
  while (const auto markup = FindMarkup(text, at)) {
    at = markup->end;
    visitor(*markup);
  }
}

/// The name without its prefix: `x:row` is `row`, whatever `x` stands for.
constexpr std::string_view WithoutPrefix(std::string_view name) { return name.substr(name.find(':') + 1); }
/// That of a tag.
std::string_view NameOfTag(std::string_view tag);
/// The attribute of that name in a tag, as it is written; nothing when it has none. A prefix is part of the name.
std::optional<std::string_view> AttributeOfTag(std::string_view tag, std::string_view name);
/// Whether that is how an attribute says yes.
constexpr bool IsTrue(std::optional<std::string_view> attribute) { return attribute == "1" || attribute == "true"; }

/// Counts what a parser would have to hold, so that no text is handed to one that would take its stack or all memory.
class XmlGauge {
 public:
  /// `mostMarks` tags and attributes may stand in a piece.
  explicit XmlGauge(std::size_t mostMarks) : mostMarks_(mostMarks) {}
  /// To be called for all markup in order. Throws XmlFault for tags nested too deep, for an end without a start, and
  /// for more marks since the last StartPiece than one piece may have.
  void Count(const XmlMarkup& markup);
  void StartPiece() { marks_ = 0; }
  /// How many elements are open.
  int Depth() const { return depth_; }

 private:
  int depth_ = 0;
  std::size_t mostMarks_;
  std::size_t marks_ = 0;
};

/// Throws XmlFault where a zero byte stands, at which a parser would end.
void CheckBytes(std::string_view text);

/// Checks the first bytes of a text, and its declaration when it has one: throws XmlFault unless it is in UTF-8. How
/// many bytes its byte-order mark takes.
std::size_t CheckEncoding(std::string_view text);

}  // namespace qcalc
