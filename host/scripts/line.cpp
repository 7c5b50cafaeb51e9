#include "host/scripts/line.h"

#include <algorithm>

#include "host/text/digits.h"
#include "host/text/near_names.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return text.substr(text.size());
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IsBlank(char letter) { return kBlanks.find(letter) != std::string_view::npos; }

}  // namespace

void ScriptLine::Append(std::string_view text, int number) {
  pieces_.push_back({text_.size(), number});
  text_ += text;
}

void ScriptLine::SkipBlanks() {
  while (next_ < text_.size() && IsBlank(text_[next_])) ++next_;
}

bool ScriptLine::IsAtEnd() {
  SkipBlanks();
  return next_ == text_.size();
}

std::string_view ScriptLine::Word(std::string_view expected) {
  if (IsAtEnd()) Fail("expected " + std::string(expected) + ", found the end of the line");
  const std::size_t start = next_;
  for (bool isQuoted = false; next_ < text_.size() && (isQuoted || !IsBlank(text_[next_])); ++next_)
    if (text_[next_] == '\'') isQuoted = !isQuoted;
  return std::string_view(text_).substr(start, next_ - start);
}

std::string_view ScriptLine::Rest(std::string_view expected) {
  if (IsAtEnd()) Fail("expected " + std::string(expected) + ", found the end of the line");
  const std::string_view rest = Trimmed(std::string_view(text_).substr(next_));
  next_ = text_.size();
  return rest;
}

std::string_view ScriptLine::BeforeEquals(std::string_view expected) {
  if (IsAtEnd()) Fail("expected " + std::string(expected) + ", found the end of the line");
  const std::size_t start = next_;
  bool isQuoted = false;
  std::size_t end = start;
  for (; end < text_.size() && (isQuoted || text_[end] != '='); ++end)
    if (text_[end] == '\'') isQuoted = !isQuoted;
  const std::string_view part = Trimmed(std::string_view(text_).substr(start, end - start));
  if (part.empty()) Fail("expected " + std::string(expected) + ", found '='");
  if (end == text_.size()) FailAt(end, "expected '=' after " + std::string(expected) + ", found the end of the line");
  next_ = end + 1;
  return part;
}

void ScriptLine::End() {
  if (!IsAtEnd()) Fail("expected the end of the line, found '" + text_.substr(next_) + "'");
}

std::int32_t ScriptLine::WholeNumber(std::string_view expected, std::int32_t least, std::int32_t most) {
  const std::string_view word = Word(expected);
  const auto number = ReadWhole<std::int32_t>(word);
  if (!number || *number < least || *number > most)
    FailIn(word, "expected " + std::string(expected) + " from " + std::to_string(least) + " to " +
                     std::to_string(most) + ", found '" + std::string(word) + "'");
  return *number;
}

const XlCallback& ScriptLine::Callback() {
  const std::string_view name = Word("a callback's name");
  const XlCallback* callback = FindXlCallback(name);
  if (callback) return *callback;
  std::vector<std::string> known;
  for (const XlCallback& other : kXlCallbacks) known.emplace_back(other.name);
  FailIn(name,
         "expected a callback's name such as xlCoerce, found '" + std::string(name) + "'" + NearNamesHint(name, known));
}

std::size_t ScriptLine::Choice(std::initializer_list<std::string_view> words) {
  std::string expected;
  for (const std::string_view word : words) expected += (expected.empty() ? "" : ", ") + std::string(word);
  const std::string_view word = Word("one of " + expected);
  const auto* found = std::find(words.begin(), words.end(), word);
  if (found == words.end()) FailIn(word, "expected one of " + expected + ", found '" + std::string(word) + "'");
  return static_cast<std::size_t>(found - words.begin());
}

bool ScriptLine::StartsFormula() { return !IsAtEnd() && text_[next_] == '='; }

Value ScriptLine::Literal() {
  const std::string_view part = Rest("a literal");
  const Parsed<Value> value = ParseLiteral(part);
  if (!value) FailFrom(part, value.Error());
  return *value;
}

Formula ScriptLine::FormulaText() {
  const std::string_view part = Rest("a formula");
  if (part.front() != '=') FailIn(part, "expected a formula, which begins with '='");
  const Parsed<Formula> formula = ParseFormula(part);
  if (!formula) FailFrom(part, formula.Error());
  return *formula;
}

std::vector<ReferenceText> ScriptLine::References() {
  const std::string_view part = Rest("a reference");
  const Parsed<std::vector<ReferenceText>> references = ParseReferences(part);
  if (!references) FailFrom(part, references.Error());
  return *references;
}

CsvRequest ScriptLine::File() {
  const std::string_view part = Rest("a file's path");
  const Parsed<CsvRequest> request = ParseCsvRequest(part);
  if (!request) FailFrom(part, request.Error());
  return *request;
}

ReferenceText ScriptLine::ReferenceIn(std::string_view part) const {
  const Parsed<ReferenceText> reference = ParseReference(part);
  if (!reference) FailFrom(part, reference.Error());
  return *reference;
}

Area ScriptLine::RowsIn(std::string_view part) const {
  const Parsed<Area> rows = ParseRows(part);
  if (!rows) FailFrom(part, rows.Error());
  return *rows;
}

ScriptSize ScriptLine::SizeIn(std::string_view part, std::int32_t least) const {
  const std::size_t cross = std::min(part.find_first_of("xX"), part.size());
  const auto rows = ReadWhole<std::int32_t>(part.substr(0, cross));
  const auto columns = ReadWhole<std::int32_t>(part.substr(std::min(cross + 1, part.size())));
  if (!rows || !columns || *rows < least || *columns < least)
    FailIn(part, "expected a size such as 3x2, found '" + std::string(part) + "'");
  return {*rows, *columns};
}

void ScriptLine::FailFrom(std::string_view part, const SyntaxError& error) const {
  const auto start = static_cast<std::size_t>(part.data() - text_.data());
  FailAt(start + static_cast<std::size_t>(error.column - 1), error.message);
}

void ScriptLine::FailAt(std::size_t offset, std::string message) const {
  const auto behind =
      std::find_if(pieces_.begin() + 1, pieces_.end(), [offset](const Piece& piece) { return piece.offset > offset; });
  const Piece& piece = *(behind - 1);
  throw SyntaxError{piece.line, static_cast<int>(offset - piece.offset) + 1, std::move(message)};
}

}  // namespace qcalc
