// One command line of a script, read from left to right.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/files/csv_request.h"
#include "host/formulas/formula.h"
#include "host/formulas/reference_text.h"
#include "host/text/syntax_error.h"
#include "host/values/value.h"
#include "xlcall/callback_list.h"

namespace qcalc {

/// The most that a count in a script may be.
inline constexpr std::int32_t kMostCount = 1'000'000'000;

struct ScriptSize {
  std::int32_t rows;
  std::int32_t columns;
};

/// A line with the lines it goes on in (each but the last ends in `\`), and a cursor in it. What cannot be read throws
/// a SyntaxError whose line and column are those of the file.
class ScriptLine {
 public:
  /// Adds a physical line, without its line break. `number` is 1-based.
  void Append(std::string_view text, int number);

  const std::string& Text() const { return text_; }
  int Number() const { return pieces_.front().line; }

  void SkipBlanks();
  bool IsAtEnd();
  /// The next word, up to a blank; blanks in single quotes belong to it. Throws when there is none.
  std::string_view Word(std::string_view expected);
  /// All that is left, without blanks around it. Throws when nothing is.
  std::string_view Rest(std::string_view expected);
  /// The text before the next "=" outside of single quotes, without blanks around it; the cursor goes behind the "=".
  std::string_view BeforeEquals(std::string_view expected);
  /// Throws unless the line ends here.
  void End();

  /// A callback of the published list, by its name.
  const XlCallback& Callback();
  std::int32_t WholeNumber(std::string_view expected, std::int32_t least, std::int32_t most);
  /// One of the words; its index.
  std::size_t Choice(std::initializer_list<std::string_view> words);
  /// Whether what is left begins with "=".
  bool StartsFormula();
  /// What is left, as what is asked for.
  Value Literal();
  Formula FormulaText();
  std::vector<ReferenceText> References();
  CsvRequest File();

  /// Reads a part of the line that a function above has given, as one reference.
  ReferenceText ReferenceIn(std::string_view part) const;
  /// The same, as rows such as `3:5` or `3`.
  Area RowsIn(std::string_view part) const;
  /// The same, as a size such as `3x2`, of `least` rows and columns at least.
  ScriptSize SizeIn(std::string_view part, std::int32_t least) const;

  [[noreturn]] void Fail(std::string message) const { FailAt(next_, std::move(message)); }
  /// As Fail, for a part of the line.
  [[noreturn]] void FailIn(std::string_view part, std::string message) const {
    FailAt(static_cast<std::size_t>(part.data() - text_.data()), std::move(message));
  }

 private:
  struct Piece {
    std::size_t offset;
    int line;
  };

  [[noreturn]] void FailAt(std::size_t offset, std::string message) const;
  /// Passes on the error of a parser that read `part`.
  [[noreturn]] void FailFrom(std::string_view part, const SyntaxError& error) const;

  std::string text_;
  std::vector<Piece> pieces_;
  std::size_t next_ = 0;
};

}  // namespace qcalc
