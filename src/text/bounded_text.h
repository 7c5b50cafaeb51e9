// A text that is put together piece by piece and never grows beyond what a cell holds.
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>

#include "frame/errors/exceptions.h"
#include "frame/values/cell_copy.h"
#include "xlcall/xlcall.h"

namespace quillmere::text {

/// Room for one text, used again for the next. What would be too long is CXlStringTooLongException at once, and the
/// text stays as it was.
class BoundedText {
 public:
  BoundedText() : units_(std::make_unique_for_overwrite<XCHAR[]>(kXlMaxText)) {}

  XStringView View() const noexcept { return {units_.get(), size_}; }
  void Clear() noexcept { size_ = 0; }

  void Append(XStringView text) {
    if (text.size() > kXlMaxText - size_) ThrowStringTooLong();
    CopyUnits(units_.get() + size_, text.data(), text.size());
    size_ += text.size();
  }
  void Append(XCHAR unit) {
    if (size_ == kXlMaxText) ThrowStringTooLong();
    units_[size_++] = unit;
  }

 private:
  std::unique_ptr<XCHAR[]> units_;
  std::size_t size_ = 0;
};

/// Where an algorithm of the library's writes a text unit by unit.
class BoundedTextEnd {
 public:
  using iterator_category = std::output_iterator_tag;
  using value_type = void;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = void;

  explicit BoundedTextEnd(BoundedText& text) noexcept : text_(&text) {}

  BoundedTextEnd& operator=(XCHAR unit) {
    text_->Append(unit);
    return *this;
  }
  BoundedTextEnd& operator*() noexcept { return *this; }
  BoundedTextEnd& operator++() noexcept { return *this; }
  BoundedTextEnd& operator++(int) noexcept { return *this; }

 private:
  BoundedText* text_;
};

}  // namespace quillmere::text
