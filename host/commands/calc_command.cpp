// qcalc calc.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <optional>

#include "host/books/calculation_report.h"
#include "host/commands/commands.h"
#include "host/process/checked_output.h"
#include "host/text/counted.h"
#include "host/text/path_text.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr std::size_t kProfiledFunctions = 20;
// With what the book itself may take, and a batch of results, it stays near a gigabyte.
constexpr std::size_t kMostBytesOfResults = std::size_t{384} << 20;

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

std::string InSeconds(Seconds time) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.2f s", time.count());
  return text;
}

std::string Counted(std::int64_t count, const std::string& noun) { return Grouped(count) + " " + NounFor(count, noun); }

/// One book from its file to what is asked for.
class Calc {
 public:
  Calc(Session& session, const CalcRequest& request) : session_(session), request_(request) {}

  ExitStatus Run() {
    const auto start = Clock::now();
    try {
      book_.emplace(request_.book, session_.ItsWorkbooks(), request_.checks);
    } catch (const BookRefused& refused) {
      Tell(refused.what());
      return kUnusable;
    }
    for (const std::string& remark : book_->Stored().remarks) Tell(remark);
    TakeTheBook();
    const auto read = Clock::now();
    session_.Open();
    const auto opened = Clock::now();
    const CalculationOutcome outcome = Calculate();
    const auto calculated = Clock::now();
    ExitStatus status = TellOutcome(outcome);
    if (request_.checks) status = std::max(status, Check());
    if (!request_.out.empty() || !request_.checks) status = std::max(status, Write());
    Summarise(outcome, read - start, calculated - opened, Clock::now() - calculated);
    return status;
  }

 private:
  void Tell(const std::string& what) const {
    std::cerr << ShownMessage(TextOf(request_.book) + ": " + what) << std::endl;
  }

  /// The book alone is open then: the empty one that sessions begin with is closed.
  void TakeTheBook() {
    const Book& empty = session_.CurrentSheet().ItsBook();
    session_.SelectSheet(book_->FirstSheet());
    session_.ItsWorkbooks().Close(empty);
  }

  CalculationOutcome Calculate() {
    ProcessJournal().formulasDue = book_->Formulas();
    FunctionProfile* const profile = request_.profiles ? &profile_.emplace() : nullptr;
    const CalculationOutcome outcome =
        session_.CalculateBooks({request_.threads, kMostBytesOfResults, book_->Stored().uses1904, profile});
    ProcessJournal().formulasDue = 0;
    return outcome;
  }

  ExitStatus TellOutcome(const CalculationOutcome& outcome) {
    for (const std::string& sentence : ReportFailures(outcome, session_.ItsWorkbooks())) Tell(sentence);
    for (const std::string& hint : session_.TakeHints()) Tell(hint);
    errors_ = book_->FindErrors();
    if (request_.failsOnError && errors_.count > 0)
      Tell("errors in " + CellNames(errors_.first, session_.ItsWorkbooks()));
    const bool isWrong = !outcome.failures.empty() || (request_.failsOnError && errors_.count > 0);
    return isWrong ? kFailed : kAllWell;
  }

  ExitStatus Check() {
    const Comparison comparison = book_->Compare();
    for (const std::string& line : comparison.lines) std::cout << ShownMessage(line) << "\n";
    if (const auto more = comparison.different - std::ssize(comparison.lines); more > 0)
      std::cout << "... and " << Counted(more, "difference") << " more\n";
    std::cout << std::flush;
    std::string sentence =
        Counted(comparison.compared, "value") + " compared, " + Grouped(comparison.different) + " different";
    if (comparison.withoutValue > 0)
      sentence += "; the book has none for " + Counted(comparison.withoutValue, "formula");
    Tell(sentence);
    return comparison.different > 0 ? kFailed : kAllWell;
  }

  ExitStatus Write() {
    try {
      if (request_.out.empty()) {
        PrintedOutput out;
        book_->Print(out, request_.format);
      } else {
        book_->Write(request_.out, request_.format);
      }
      return kAllWell;
    } catch (const BookRefused& refused) {
      Tell(std::string("it changed while it was calculated: ") + refused.what());
      return kUnusable;
    }
  }

  void Summarise(const CalculationOutcome& outcome, Seconds reading, Seconds calculating, Seconds writing) const {
    std::string line = Counted(outcome.calculated, "formula");
    if (const std::int64_t left = book_->Formulas() - outcome.calculated; left > 0)
      line += ", " + Grouped(left) + " not calculated";
    line += ", " + Counted(errors_.count, "error") + ", " + InSeconds(reading + calculating + writing) + " (read " +
            InSeconds(reading) + ", calculated " + InSeconds(calculating) + ", written " + InSeconds(writing) + ")";
    Tell(line);
    if (!profile_) return;
    for (const FunctionProfile::Entry& entry : profile_->Slowest(kProfiledFunctions))
      std::cerr << "  " << ToUtf8(entry.name) << ": " << InSeconds(entry.time) << ", " << Counted(entry.calls, "call")
                << std::endl;
  }

  Session& session_;
  const CalcRequest& request_;
  std::optional<BookFile> book_;
  std::optional<FunctionProfile> profile_;
  BookFile::HeldErrors errors_;
};

}  // namespace

Work CalcWork(const std::filesystem::path& addin, const CalcRequest& request) {
  const std::string name = TextOf(request.book);
  return {
      {name},
      [=](std::size_t) { return WithAddin(addin, [&](Session& session) { return Calc(session, request).Run(); }); },
      [=](Journal&, const std::string& sentence) { std::cerr << ShownMessage(name + ": " + sentence) << std::endl; },
      {}};
}

}  // namespace qcalc
