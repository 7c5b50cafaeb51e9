#include "frame/convert/convert_params.h"

#include "frame/errors/messages.h"

namespace quillmere {
namespace {

template <class... Arguments>
[[noreturn]] void Fail(MessageId id, const Arguments&... arguments) {
  throw CXlConversionException(FormatCatalogue(id, arguments...));
}

/// Raises the message for a count that is not the one asked for (0: any); "1" has a message of its own.
void CheckExact(XStringView name, std::int64_t count, std::int64_t exact, MessageId one, MessageId many) {
  if (exact == 0 || count == exact) return;
  if (exact == 1) Fail(one, name);
  Fail(many, name, exact);
}

/// The same for a count below the least allowed.
void CheckLeast(XStringView name, std::int64_t count, std::int64_t least, MessageId one, MessageId many) {
  if (count >= least) return;
  if (least == 1) Fail(one, name);
  Fail(many, name, least);
}

/// The same for the length of one row or column, `place` being its 1-based number.
void CheckLength(XStringView name, std::int64_t place, std::int64_t count, std::int64_t expected, MessageId one,
                 MessageId many) {
  if (count != expected) Fail(expected == 1 ? one : many, name, expected, place);
}

/// "a, b, c".
XString Joined(std::span<const XStringView> texts) {
  XString joined;
  for (const XStringView text : texts) {
    if (!joined.empty()) joined += XTEXT(", ");
    joined += text;
  }
  return joined;
}

}  // namespace

void CConvertParamsBase::ThrowNotInitialized() const {
  throw CXlUninitializedOperException(FormatCatalogue(MessageId::kNotInitialized, name_));
}

void CConvertParamsBase::ThrowLabelNotFound(XStringView label) const { Fail(MessageId::kLabelNotFound, name_, label); }

void CConvertParamsBase::ThrowNoPermittedType() const { Fail(MessageId::kNoPermittedType, name_); }

void CConvertParamsBase::ThrowFailedToConvert(const XLOPER12& value, XStringView target) const {
  Fail(MessageId::kFailedToConvert, name_, TypeNameOf(value), target);
}

void CConvertParamsBase::ThrowExpected(XStringView typeName) const { Fail(MessageId::kExpectedFor, name_, typeName); }

void CScalarConvertParamsBase::ThrowScalarNotInitialized(ElementKind kind) const {
  throw CXlUninitializedOperException(FormatCatalogue(MessageId::kScalarNotInitialized, Name(), TypeName(kind)));
}

void CScalarConvertParamsBase::ThrowNotOneOf(std::span<const XStringView> allowed) const {
  Fail(MessageId::kExpectedOneOf, Name(), Joined(allowed));
}

void CScalarConvertParamsBase::ThrowNotOneOf(std::span<const std::int32_t> allowed) const {
  XString joined;
  for (const std::int32_t value : allowed) {
    if (!joined.empty()) joined += XTEXT(", ");
    joined += psl::FormatArgument(value).Text();
  }
  Fail(MessageId::kExpectedOneOf, Name(), joined);
}

void CVectorConvertParamsBase::CheckPresent(ElementKind kind) const {
  if (!required_) return;
  const MessageId id = shape_ == Shape::kMatrix ? MessageId::kMatrixNotInitialized : MessageId::kVectorNotInitialized;
  throw CXlUninitializedOperException(FormatCatalogue(id, Name(), TypeName(kind)));
}

void CVectorConvertParamsBase::CheckSize(std::int64_t rows, std::int64_t columns) const {
  if (shape_ == Shape::kVector && rows > 1 && columns > 1) Fail(MessageId::kExpectedVector, Name());
  CheckExact(Name(), rows, rows_.exact, MessageId::kExpectedOneRow, MessageId::kExpectedRows);
  CheckExact(Name(), columns, columns_.exact, MessageId::kExpectedOneColumn, MessageId::kExpectedColumns);
  CheckLeast(Name(), rows, rows_.least, MessageId::kExpectedLeastOneRow, MessageId::kExpectedLeastRows);
  CheckLeast(Name(), columns, columns_.least, MessageId::kExpectedLeastOneColumn, MessageId::kExpectedLeastColumns);
  if (shape_ != Shape::kList) CheckValueCount(rows * columns);
}

void CVectorConvertParamsBase::CheckListCount(std::int64_t count) const {
  if (count == 0 && required_) Fail(MessageId::kExpectedListValue, Name());
  CheckValueCount(count);
}

void CVectorConvertParamsBase::CheckValueCount(std::int64_t count) const {
  CheckExact(Name(), count, values_.exact, MessageId::kExpectedOneValue, MessageId::kExpectedValues);
  CheckLeast(Name(), count, values_.least, MessageId::kExpectedLeastOneValue, MessageId::kExpectedLeastValues);
}

void CVectorConvertParamsBase::CheckRowLength(std::int64_t row, std::int64_t count, std::int64_t expected) const {
  CheckLength(Name(), row, count, expected, MessageId::kExpectedOneValueInRow, MessageId::kExpectedValuesInRow);
}

void CVectorConvertParamsBase::CheckColumnLength(std::int64_t column, std::int64_t count, std::int64_t expected) const {
  CheckLength(Name(), column, count, expected, MessageId::kExpectedOneValueInColumn,
              MessageId::kExpectedValuesInColumn);
}

}  // namespace quillmere
