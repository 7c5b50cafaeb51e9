// The catalogue of the frame's messages, by number.
#pragma once

#include "frame/text/string_formatter.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// A catalogue number.
enum class MessageId : int {
  kNone = 0,
  kErrorPrefix = 1,
  kWait = 2,
  kUnknownType = 3,
  kBoolean = 4,
  kNumber = 5,
  kInteger = 6,
  kString = 7,
  kError = 8,
  kLongInteger = 9,
  kConversionError = 10,
  kExpected = 11,
  kExpectedFor = 12,
  kExpectedListValue = 13,
  kLabelNotFound = 14,
  kExpectedVector = 15,
  kExpectedLeastValues = 16,
  kExpectedOneRow = 17,
  kExpectedRows = 18,
  kExpectedOneColumn = 19,
  kExpectedColumns = 20,
  kExpectedOneValue = 21,
  kExpectedValues = 22,
  kExpectedOneValueInRow = 23,
  kExpectedValuesInRow = 24,
  kExpectedOneValueInColumn = 25,
  kExpectedValuesInColumn = 26,
  kExpectedLeastRows = 27,
  kExpectedLeastColumns = 28,
  kFailedToConvert = 29,
  kIndexOutOfRange = 30,
  kIllegalArgument = 31,
  kBadOperType = 32,
  kNoPermittedType = 33,
  kElementTraitsMissing = 34,
  kArrayTooLarge = 35,
  kArrayEmpty = 36,
  kStringTooLong = 37,
  kExtendedIndexOutOfRange = 38,
  kCellNeedsScalar = 39,
  kIgnoreItemsOutOfRange = 40,
  kSourceNeedsScalar = 41,
  kExpectedEmptyItems = 42,
  kOperNotInitialized = 43,
  kNotInitialized = 44,
  kScalarNotInitialized = 45,
  kVectorNotInitialized = 46,
  kMatrixNotInitialized = 47,
  kIllegalCommonResult = 48,
  kFunctionsFailedToRegister = 49,
  kAddInLoadFailure = 50,
  kMemoryAllocationFailed = 51,
  kExcelCallFailed = 52,
  kExcelCallFailedWithCode = 53,
  kStructuredException = 54,
  kStructuredExceptionCode = 55,
  kThrewExcelError = 56,
  kComCallFailed = 57,
  kCallFailedWithCode = 58,
  kShortInteger = 59,
  kUnsignedShortInteger = 60,
  kExpectedLeastOneValue = 61,
  kExpectedLeastOneRow = 62,
  kExpectedLeastOneColumn = 63,
  kExpectedOneOf = 64,
  kHandleTo = 65,
};

/// The text of a message that is in the catalogue, its placeholders unfilled; it lives as long as the program.
XStringView MessageText(MessageId id) noexcept;

/// The catalogue text of that number; "Message #{0} not found" with the number filled in where there is none.
XString CatalogueText(int number);

/// The catalogue text with its placeholders replaced. Raises psl::StringFormatterError when an argument is missing.
XString FormatCatalogue(MessageId id, std::initializer_list<psl::FormatArgument> arguments);

template <class... Arguments>
XString FormatCatalogue(MessageId id, const Arguments&... arguments) {
  return FormatCatalogue(id, {psl::FormatArgument(arguments)...});
}

}  // namespace quillmere
