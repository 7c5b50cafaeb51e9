// Values of the host as those of COM.
#pragma once

#include <windows.h>
// Behind it: these need its types.
#include <oleauto.h>

#include <utility>

#include "host/values/value.h"

namespace qcalc {

/// A VARIANT that frees what it holds.
class Variant {
 public:
  Variant() { VariantInit(&variant_); }
  ~Variant() { VariantClear(&variant_); }
  Variant(Variant&& other) noexcept : variant_(other.Detach()) {}
  Variant& operator=(Variant&& other) noexcept {
    std::swap(variant_, other.variant_);
    return *this;
  }

  /// Takes over what the variant holds.
  static Variant Holding(const VARIANT& held) {
    Variant made;
    made.variant_ = held;
    return made;
  }
  static Variant OfLong(LONG number);
  static Variant OfBoolean(bool truth);
  static Variant OfText(XStringView text);
  /// Takes over the reference.
  static Variant OfObject(IDispatch* object);
  /// A cell's or a formula's value. An error is a VT_ERROR with the code that CVErr gives it; an array one of variants,
  /// 1-based; what is no value of a cell becomes VT_EMPTY.
  static Variant Of(const Value& value);

  const VARIANT& Get() const { return variant_; }
  /// What it held is the caller's.
  VARIANT Detach() {
    const VARIANT held = variant_;
    VariantInit(&variant_);
    return held;
  }

 private:
  VARIANT variant_;
};

/// A variant of a scalar as a value; what is none gives an empty one.
Value ValueOf(const VARIANT& variant);

}  // namespace qcalc
