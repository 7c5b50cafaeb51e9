#include "host/xml/element_splitter.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/xml/xml_fault.h"

namespace qcalc {

namespace {

constexpr std::size_t kFirstBytes = std::size_t{1} << 16;
constexpr std::size_t kMostBytes = std::size_t{1} << 26;
// A row of 16,384 cells, each with a formula and all attributes, has two thirds of these.
constexpr std::size_t kMostMarksOfElement = 300'000;

}  // namespace

ElementSplitter::ElementSplitter(TextSource source, std::string_view container)
    : source_(std::move(source)), container_(container), buffer_(kFirstBytes + 1), gauge_(kMostMarksOfElement) {}

// The buffer is always filled as far as it goes, and doubled when it holds nothing but one piece, so that looking for
// markup again after each filling costs no more than reading does. Its last byte is for the zero behind a piece.
bool ElementSplitter::Fill() {
  if (end_ + 1 == buffer_.size() && start_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + start_, end_ - start_);
    end_ -= std::exchange(start_, 0);
  }
  if (end_ + 1 == buffer_.size()) {
    if (end_ >= kMostBytes)
      throw XmlFault("one piece of it has more than " + std::to_string(kMostBytes >> 20) + " MiB");
    buffer_.resize(end_ * 2 + 1);
  }
  const std::size_t before = end_;
  while (end_ + 1 < buffer_.size()) {
    const std::size_t bytes = source_(std::span(buffer_).subspan(end_, buffer_.size() - 1 - end_));
    if (bytes == 0) break;
    end_ += bytes;
  }
  CheckBytes({buffer_.data() + before, end_ - before});
  return end_ > before;
}

std::string_view ElementSplitter::TakeHeld(std::size_t bytes) {
  const std::string_view held = Text().substr(0, bytes);
  start_ += bytes;
  at_ = 0;
  gauge_.StartPiece();
  return held;
}

void ElementSplitter::RestoreEnd() {
  if (std::exchange(isEndHidden_, false)) buffer_[start_] = behind_;
}

std::optional<XmlMarkup> ElementSplitter::TakeMarkup() {
  for (;;) {
    if (const auto markup = FindMarkup(Text(), at_)) {
      at_ = markup->end;
      gauge_.Count(*markup);
      return markup;
    }
    if (Fill()) continue;
    if (gauge_.Depth() > 0 || Text().find('<', at_) != std::string_view::npos) throw XmlFault("it ends in the middle");
    return std::nullopt;
  }
}

XmlMarkup ElementSplitter::TakeMarkupBeforeEnd() {
  const auto markup = TakeMarkup();
  if (!markup) throw XmlFault("it ends in the middle");
  return *markup;
}

std::string_view ElementSplitter::Head() {
  Fill();
  start_ = std::min(CheckEncoding(Text()), end_);
  while (const auto markup = TakeMarkup()) {
    const bool isStart = markup->kind == MarkupKind::kStart, isEmpty = markup->kind == MarkupKind::kEmpty;
    if ((!isStart && !isEmpty) || gauge_.Depth() > (isStart ? 2 : 1)) continue;
    if (NameOfTag(markup->In(Text())) != container_) continue;
    isInside_ = isStart;
    containerDepth_ = gauge_.Depth();
    return TakeHeld(at_);
  }
  return TakeHeld(Text().size());
}

std::optional<XmlPiece> ElementSplitter::Next() {
  RestoreEnd();
  if (!isInside_) return std::nullopt;
  XmlMarkup markup = TakeMarkupBeforeEnd();
  while (!markup.IsTag()) markup = TakeMarkupBeforeEnd();
  if (markup.kind == MarkupKind::kEnd) {
    isInside_ = false;
    return std::nullopt;
  }
  const std::size_t begin = markup.begin;
  while (gauge_.Depth() > containerDepth_) TakeMarkupBeforeEnd();
  const std::string_view held = TakeHeld(at_);
  behind_ = std::exchange(buffer_[start_], '\0');
  isEndHidden_ = true;
  return XmlPiece{held.substr(0, begin), held.substr(begin)};
}

std::string_view ElementSplitter::Tail() {
  RestoreEnd();
  while (TakeMarkup()) gauge_.StartPiece();
  return TakeHeld(Text().size());
}

}  // namespace qcalc
