// What COM hands out and takes, owned: references to objects, texts and variants.
#pragma once

#include <windows.h>
// Need what windows.h declares.
#include <objbase.h>
#include <oleauto.h>

#include <cstdint>
#include <optional>
#include <utility>

#include "xlcall/xchar.h"

namespace quillmere {

/// A counted reference to a COM object, or none.
template <class Interface>
class ComReference {
 public:
  ComReference() = default;
  /// Counts a further reference.
  explicit ComReference(Interface* object) noexcept : object_(object) {
    if (object_) object_->AddRef();
  }
  ComReference(const ComReference& other) noexcept : ComReference(other.object_) {}
  ComReference(ComReference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ComReference& operator=(ComReference other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComReference() {
    if (object_) object_->Release();
  }

  Interface* Get() const noexcept { return object_; }
  Interface& operator*() const noexcept { return *object_; }
  Interface* operator->() const noexcept { return object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  /// Where a call writes a reference that is the caller's; what was held is released first.
  template <class Written = Interface>
  Written** Receive() noexcept {
    *this = ComReference();
    return reinterpret_cast<Written**>(&object_);
  }

 private:
  Interface* object_ = nullptr;
};

/// A text as COM counts and allocates it; none when memory is out.
class ComText {
 public:
  explicit ComText(XStringView text) noexcept : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  ComText(const ComText&) = delete;
  ComText& operator=(const ComText&) = delete;
  ~ComText() { SysFreeString(text_); }

  explicit operator bool() const noexcept { return text_ != nullptr; }
  BSTR Get() const noexcept { return text_; }

 private:
  BSTR text_;
};

/// A value of the object model.
class ComVariant {
 public:
  ComVariant() noexcept { VariantInit(&value_); }
  explicit ComVariant(bool value) noexcept : ComVariant() {
    value_.vt = VT_BOOL;
    value_.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  ComVariant(const ComVariant&) = delete;
  ComVariant& operator=(const ComVariant&) = delete;
  ~ComVariant() { VariantClear(&value_); }

  VARIANT& Raw() noexcept { return value_; }
  /// Where a call writes a value that is the caller's; what was held is released first.
  VARIANT* Receive() noexcept {
    VariantClear(&value_);
    return &value_;
  }

  /// Whether it is no value, or a text without a character.
  bool IsEmpty() const noexcept {
    return value_.vt == VT_EMPTY || value_.vt == VT_NULL || (value_.vt == VT_BSTR && SysStringLen(value_.bstrVal) == 0);
  }
  bool IsText(XStringView text) const noexcept {
    return value_.vt == VT_BSTR && XStringView(value_.bstrVal, SysStringLen(value_.bstrVal)) == text;
  }
  /// The object that it refers to; none for every other value.
  ComReference<IDispatch> Object() const noexcept {
    return ComReference<IDispatch>(value_.vt == VT_DISPATCH ? value_.pdispVal : nullptr);
  }
  /// As a whole number; nothing where it cannot be read as one.
  std::optional<std::int32_t> Integer() const noexcept {
    ComVariant number;
    VARIANT* const source = const_cast<VARIANT*>(&value_);  // only read
    if (FAILED(VariantChangeType(&number.value_, source, 0, VT_I4))) return std::nullopt;
    return number.value_.lVal;
  }

 private:
  VARIANT value_;
};

}  // namespace quillmere
