#include "frame/text/error_text.h"

#include "frame/text/fold_case.h"
#include "xlcall/xlcall.h"

namespace quillmere {
namespace {

struct ErrorName {
  std::int32_t code;
  XStringView text;
  std::string_view text8;
};

constexpr ErrorName kErrorNames[] = {
    {xlerrNull, XTEXT("#NULL!"), "#NULL!"},    {xlerrDiv0, XTEXT("#DIV/0!"), "#DIV/0!"},
    {xlerrValue, XTEXT("#VALUE!"), "#VALUE!"}, {xlerrRef, XTEXT("#REF!"), "#REF!"},
    {xlerrName, XTEXT("#NAME?"), "#NAME?"},    {xlerrNum, XTEXT("#NUM!"), "#NUM!"},
    {xlerrNA, XTEXT("#N/A"), "#N/A"},          {xlerrGettingData, XTEXT("#GETTING_DATA"), "#GETTING_DATA"},
};

}  // namespace

XStringView ErrorText(std::int32_t code) noexcept {
  for (const ErrorName& name : kErrorNames)
    if (name.code == code) return name.text;
  return XTEXT("Unknown");
}

std::string_view ErrorText8(std::int32_t code) noexcept {
  for (const ErrorName& name : kErrorNames)
    if (name.code == code) return name.text8;
  return "Unknown";
}

std::optional<std::int32_t> ErrorCodeOf(XStringView text) {
  for (const ErrorName& name : kErrorNames)
    if (EqualFolded(name.text, text)) return name.code;
  return std::nullopt;
}

}  // namespace quillmere
