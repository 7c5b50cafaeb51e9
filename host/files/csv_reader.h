// The records and fields of CSV (RFC 4180).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "host/files/csv.h"
#include "host/text/utf8.h"

namespace qcalc {

/// Reads the records of a text, which outlives it.
class CsvReader {
 public:
  /// `separator` is one character, no quote and no line end.
  CsvReader(std::string_view text, std::string_view separator) : text_(text), separator_(separator) {
    if (text_.starts_with(kByteOrderMark)) lineStart_ = at_ = kByteOrderMark.size();
  }

  /// Hands the fields on: `field(record, index, text)`, without the quotes around it, then
  /// `endOfRecord(record, fields)`; records and fields count from 0. Throws CsvError at the first fault.
  template <typename Field, typename EndOfRecord>
  void Read(Field&& field, EndOfRecord&& endOfRecord) {
    for (std::int64_t record = 0; at_ < text_.size(); ++record) {
      std::int64_t index = 0;
      do {
        fieldStart_ = at_;
        fieldLine_ = line_;
        fieldLineStart_ = lineStart_;
        field(record, index++, TakeField());
      } while (AcceptSeparator());
      endOfRecord(record, index);
      SkipLineEnd();
    }
  }

  /// For sinks: the field last read as it is written, quotes and all, a part of the text.
  std::string_view Written() const { return text_.substr(fieldStart_, at_ - fieldStart_); }

  /// A fault at the field last read, to be thrown.
  CsvError FaultAtField(std::string message) const {
    return {fieldLine_, static_cast<std::int64_t>(fieldStart_ - fieldLineStart_) + 1, std::move(message)};
  }

 private:
  std::string_view TakeField() {
    if (at_ < text_.size() && text_[at_] == '"') return TakeQuotedField();
    const std::size_t start = at_;
    while (!IsEndOfField()) ++at_;
    return text_.substr(start, at_ - start);
  }

  // A view of the file where no quote is doubled, else of the buffer.
  std::string_view TakeQuotedField() {
    buffer_.clear();
    std::size_t start = ++at_;
    for (;;) {
      const std::size_t quote = text_.find('"', at_);
      if (quote == std::string_view::npos) throw FaultAtField("expected a closing quote for this field, found the end");
      CountLines(at_, quote);
      at_ = quote + 1;
      if (at_ >= text_.size() || text_[at_] != '"') break;
      buffer_.append(text_.substr(start, at_ - start));
      start = ++at_;
    }
    if (!IsEndOfField())
      throw CsvError{line_, static_cast<std::int64_t>(at_ - lineStart_) + 1,
                     "expected '" + separator_ + "' or the end of the record after the closing quote, found '" +
                         std::string(1, text_[at_]) + "'"};
    const std::string_view last = text_.substr(start, at_ - 1 - start);
    if (buffer_.empty()) return last;
    buffer_.append(last);
    return buffer_;
  }

  void CountLines(std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      const bool pair = text_[i] == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n';
      if (pair || (text_[i] != '\n' && text_[i] != '\r')) continue;
      ++line_;
      lineStart_ = i + 1;
    }
  }

  bool IsAtSeparator() const {
    return text_[at_] == separator_[0] && text_.compare(at_, separator_.size(), separator_) == 0;
  }

  bool IsEndOfField() const {
    return at_ >= text_.size() || text_[at_] == '\n' || text_[at_] == '\r' || IsAtSeparator();
  }

  bool AcceptSeparator() {
    if (at_ >= text_.size() || !IsAtSeparator()) return false;
    at_ += separator_.size();
    return true;
  }

  void SkipLineEnd() {
    if (at_ < text_.size() && text_[at_] == '\r') ++at_;
    if (at_ < text_.size() && text_[at_] == '\n') ++at_;
    ++line_;
    lineStart_ = at_;
  }

  std::string_view text_;
  std::string separator_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::size_t lineStart_ = 0;
  std::int64_t line_ = 1;
  std::size_t fieldStart_ = 0;
  std::size_t fieldLineStart_ = 0;
  std::int64_t fieldLine_ = 1;
};

}  // namespace qcalc
