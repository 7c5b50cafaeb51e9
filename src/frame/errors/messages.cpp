#include "frame/errors/messages.h"

#include <iterator>

namespace quillmere {
namespace {

/// The texts, in the order of their numbers.
constexpr XStringView kTexts[] = {
    XTEXT(""),
    XTEXT("#ERROR: {0}"),
    XTEXT("#WAIT!"),
    XTEXT("unknown type"),
    XTEXT("boolean"),
    XTEXT("number"),
    XTEXT("integer"),
    XTEXT("string"),
    XTEXT("error"),
    XTEXT("long integer"),
    XTEXT("Conversion error"),
    XTEXT("Expected {0}"),
    XTEXT("Expected {1} for {0}"),
    XTEXT("Expected at least 1 value for {0}"),
    XTEXT("Label {1} not found in {0}"),
    XTEXT("Expected vector for {0}"),
    XTEXT("Expected at least {1} values for {0}"),
    XTEXT("Expected 1 row in {0}"),
    XTEXT("Expected {1} rows in {0}"),
    XTEXT("Expected 1 column in {0}"),
    XTEXT("Expected {1} columns in {0}"),
    XTEXT("Expected 1 value in {0}"),
    XTEXT("Expected {1} values in {0}"),
    XTEXT("Expected 1 value in row {2} of {0}"),
    XTEXT("Expected {1} values in row {2} of {0}"),
    XTEXT("Expected 1 value in column {2} of {0}"),
    XTEXT("Expected {1} values in column {2} of {0}"),
    XTEXT("Expected at least {1} rows for {0}"),
    XTEXT("Expected at least {1} columns for {0}"),
    XTEXT("Failed to convert {0} from {1} to {2}"),
    XTEXT("Index out of range"),
    XTEXT("Illegal argument"),
    XTEXT("Bad XLOPER type"),
    XTEXT("Failed to convert {0} to any of the permitted types"),
    XTEXT("XlElemTraits is not implemented for this type"),
    XTEXT("Array is too large"),
    XTEXT("Array is empty"),
    XTEXT("String is too long"),
    XTEXT("Extended {0} parameter index {1} for argument {2} is out of range"),
    XTEXT("Right-hand side of cell assignment must be a scalar value"),
    XTEXT("Parameter ignoreItems is out of range (maximum = {0})"),
    XTEXT("Source must be a scalar value"),
    XTEXT("Expected all items in the array to be empty"),
    XTEXT("CXlOper instance is not initialized"),
    XTEXT("{0} is not initialized"),
    XTEXT("{0} is not initialized. Expected {1}."),
    XTEXT("{0} is not initialized. Expected {1} vector."),
    XTEXT("{0} is not initialized. Expected {1} matrix."),
    XTEXT("Illegal value for result of common function. Must be 0, &xloResult or static."),
    XTEXT("The following functions in {0} failed to register:\n\n{1}\nDo you wish to continue loading the add-in?"),
    XTEXT("Add-in Load Failure"),
    XTEXT("Memory allocation failed"),
    XTEXT("Excel API call failed"),
    XTEXT("Excel API call {0} failed with error code {1}"),
    XTEXT("'C' structured exception occurred"),
    XTEXT("'C' exception {0}"),
    XTEXT("Threw Excel error {0}"),
    XTEXT("COM call failed"),
    XTEXT("{0} failed with error code {1}"),
    XTEXT("short integer"),
    XTEXT("unsigned short integer"),
    XTEXT("Expected at least 1 value for {0}"),
    XTEXT("Expected at least 1 row for {0}"),
    XTEXT("Expected at least 1 column for {0}"),
    XTEXT("Expected one of {1} for {0}"),
    XTEXT("handle to {0}"),
};
static_assert(std::size(kTexts) == static_cast<std::size_t>(MessageId::kHandleTo) + 1);

}  // namespace

XStringView MessageText(MessageId id) noexcept { return kTexts[static_cast<int>(id)]; }

XString CatalogueText(int number) {
  if (number >= 0 && number < static_cast<int>(std::size(kTexts))) return XString(kTexts[number]);
  return psl::Format(XTEXT("Message #{0} not found"), {number});
}

XString FormatCatalogue(MessageId id, std::initializer_list<psl::FormatArgument> arguments) {
  return psl::Format(MessageText(id), arguments);
}

}  // namespace quillmere
