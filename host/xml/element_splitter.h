// Large parts in XML, one element after the other: never more of the text in memory than one of them.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/xml/xml_markup.h"

namespace qcalc {

/// Puts the next bytes of a text where it is told, and says how many: 0 at the end alone.
using TextSource = std::function<std::size_t(std::span<char>)>;

/// One element with all it holds, and what stands between the one before and it (white space, comments). A zero byte
/// stands behind the element.
struct XmlPiece {
  std::string_view gap;
  std::string_view element;
};

/// Parts a text around and inside one element, its container: the rows of a sheet's `sheetData`, say. Joined, the head,
/// all pieces' gaps and elements, and the tail are the text, byte by byte, but for its byte-order mark. To be asked for
/// in that order; what it hands over is good until the next call. Throws XmlFault for what is no XML, is not in UTF-8,
/// declares a document type or is nested more than 256 deep, for more than 64 MiB of one piece, of the head or of the
/// tail, for more than 300,000 tags and attributes in one piece, and for a text that ends within an element.
class ElementSplitter {
 public:
  /// The container is the text's own element or a child of it, and the first of that name, whatever its prefix.
  ElementSplitter(TextSource source, std::string_view container);

  /// The text up to the container's first piece: with its start tag, or, when it has no content, with its only tag.
  /// All of the text, when it has no such element.
  std::string_view Head();
  /// The container's next child; nothing behind the last.
  std::optional<XmlPiece> Next();
  /// The rest, from behind the last piece on.
  std::string_view Tail();

 private:
  std::string_view Text() const { return {buffer_.data() + start_, end_ - start_}; }
  std::string_view TakeHeld(std::size_t bytes);
  void RestoreEnd();
  bool Fill();
  std::optional<XmlMarkup> TakeMarkup();
  XmlMarkup TakeMarkupBeforeEnd();

  TextSource source_;
  std::string container_;
  std::vector<char> buffer_;
  std::size_t start_ = 0;  // of what has not been handed over, in the buffer
  std::size_t end_ = 0;    // of what has been read
  std::size_t at_ = 0;     // where to look for markup, from start_ on
  char behind_ = 0;        // what stands at start_, where the zero byte behind a piece is now
  bool isEndHidden_ = false;
  bool isInside_ = false;  // of the container
  int containerDepth_ = 0;
  XmlGauge gauge_;
};

}  // namespace qcalc
