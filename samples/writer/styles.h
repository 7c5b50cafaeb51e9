// How the cells of the sample workbooks look: the few styles that all of them share.
#pragma once

#include <xlsxwriter.h>

#include <map>
#include <string>
#include <utility>

namespace samples {

enum class Style {
  kTitle,
  kHeading,  ///< of a part of the first sheet, of an example
  kText,     ///< wrapped, from the top of its cells on
  kLink,
  kFormulaText,  ///< a formula to be read
  kDataHeader,
  kData,
  kInputHeader,
  kInput,  ///< for the reader to change
  kResultHeader,
  kResult,
};

class Styles {
 public:
  explicit Styles(lxw_workbook* book) : book_(book) {}

  /// The format of that style in a column of numbers that are shown in that way; "" is a column of texts, which stand
  /// on the left.
  lxw_format* Get(Style style, const std::string& numbers = "");

 private:
  lxw_workbook* book_;
  std::map<std::pair<Style, std::string>, lxw_format*> made_;
};

}  // namespace samples
