// The arguments of a worksheet function as its body gets them: each with what its table declares of it.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

#include "frame/convert/convert_array.h"
#include "frame/convert/convert_scalar.h"
#include "frame/convert/element_kind.h"
#include "frame/convert/single_value.h"
#include "frame/registration/function_declaration.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// One argument: what Excel passed, and its declared name, default and codes, which nobody says a second time. It is
/// read when the body asks, so that faults come in the body's order. It lives as long as the call.
class CXlArgument {
 public:
  CXlArgument(const CXlOper& passed, const ArgumentDeclaration& declaration);
  CXlArgument(const CXlArgument&) = delete;
  CXlArgument& operator=(const CXlArgument&) = delete;

  /// The registered name, for messages.
  XStringView Name() const noexcept { return declaration_.name; }

  // One that is required and was left out is CXlErrorException with #VALUE!, whatever is asked of it.

  /// Whether the call gives it: it is not left out, whatever its default.
  bool IsGiven() const {
    CheckRequired();
    return !passed_.IsAbsent();
  }
  /// What was passed; the default of one that was left out, and without a default a missing value.
  const CXlOper& Value() const {
    CheckRequired();
    return default_.IsSet() ? default_ : passed_;
  }

  /// The value as a scalar: that of an array's or a reference's top-left cell. Messages: 45 (left out, no default, not
  /// declared as required), 29 (does not convert), 64 (none of the codes that are allowed).
  template <ElementKind kind>
  ElementOf<kind> As() const {
    return ConvertArgument(Value(), ScalarParams<kind>());
  }

  /// The value as a list: a single value, that of an array of one too, as As; of other arrays and of references all
  /// cells but the empty ones, row by row. Further messages: 12 (one of several does not convert), 13 (none is there).
  template <ElementKind kind>
  CElementArray<kind> AsList() const {
    CElementArray<kind> list = ReadCells<kind>(CVectorConvertParamsBase::Shape::kList);
    for (const ElementOf<kind>& value : list.Values()) CheckAllowed(value, ScalarParams<kind>());
    return list;
  }

  /// The same as a matrix: every cell in its place.
  template <ElementKind kind>
  CElementArray<kind> AsMatrix() const {
    return ReadCells<kind>(CVectorConvertParamsBase::Shape::kMatrix);
  }

 private:
  template <ElementKind kind>
  CElementArray<kind> ReadCells(CVectorConvertParamsBase::Shape shape) const {
    if (!OnlyCell(Value())) return ConvertArgument(Value(), CVectorConvertParams<kind>(Name(), shape));
    CElementArray<kind> one{1, 1, std::make_unique<ElementOf<kind>[]>(1)};
    one.values[0] = As<kind>();
    return one;
  }
  template <ElementKind kind>
  CScalarConvertParams<kind> ScalarParams() const {
    CScalarConvertParams<kind> params(Name());
    if constexpr (std::is_integral_v<ElementOf<kind>>) params.OneOf(declaration_.allowedCodes);
    return params;
  }
  void CheckRequired() const;

  const CXlOper& passed_;
  const ArgumentDeclaration& declaration_;
  CXlOper default_;  ///< set when the argument was left out and has one
};

/// An argument that is declared as a scalar of that kind.
template <ElementKind kind>
class CXlScalarArgument : public CXlArgument {
 public:
  using CXlArgument::CXlArgument;

  /// The scalar: see As.
  ElementOf<kind> Read() const { return As<kind>(); }
};

/// N arguments of one run, in registered order: Arg1 ... Arg29, or Col1, Crit1, Col2 ...
template <std::size_t N>
class CXlArgumentRun {
 public:
  CXlArgumentRun(const CXlOper* passed, const ArgumentDeclaration* declarations) noexcept
      : passed_(passed), declarations_(declarations) {}

  static constexpr std::size_t Count() noexcept { return N; }
  /// The argument at a place of the run, from 0.
  CXlArgument operator[](std::size_t place) const { return CXlArgument(passed_[place], declarations_[place]); }

 private:
  const CXlOper* passed_;
  const ArgumentDeclaration* declarations_;
};

}  // namespace quillmere
