#include "host/commands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <thread>

#include "host/library/library.h"
#include "host/scripts/parser.h"
#include "host/text/near_names.h"
#include "host/text/path_text.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr const char* kFooter = R"(
Exit status:
  0  all well
  1  an expectation failed, a formula could not be evaluated, a value differs, or the add-in broke a rule
  2  arguments that cannot be used, a file that cannot be read, a formula or script that does not parse
  3  the add-in did not load, or xlAutoOpen failed
  4  the output could not be written
  5  the add-in died
  6  qcalc itself failed

qcalc help COMMAND tells all about a command, qcalc help scripts lists the commands of scripts; docs/qcalc.md describes
them, literals and formulas.)";

constexpr const char* kEvalFooter = R"(
One result a line: a literal, or a JSON value; CSV results stand apart by an empty line.
FILE may end in options, as in the script command load: --load "Data=my file.csv separator ; text A,C:E")";

constexpr const char* kCalcFooter = R"(
OUT may end in .xlsx (the book as it is, with new values), .csv (its first sheet) or .json (the values of all sheets);
without it the values are printed. The status is 1 when a formula could not be calculated (it keeps its value, and so
does what reads it), when a value differs (--check) or a cell holds an error (--fail-on-error).)";

constexpr int kMostThreads = 256;

const std::vector<std::string> kFormats = {"literal", "csv", "json"};  // in the order of ResultFormat

/// A word of the command line that cannot be used, and why.
struct Misuse {
  std::string message;
};

std::string Quoted(const std::string& word) { return "'" + word + "'"; }

CsvLoad ReadLoad(const std::string& written) {
  const std::size_t equals = written.find('=');
  if (equals == 0 || equals == std::string::npos || !FromUtf8(written))
    throw Misuse{"--load " + Quoted(written) + ": expected SHEET=FILE"};
  const auto request = ParseCsvRequest(std::string_view(written).substr(equals + 1));
  if (!request) throw Misuse{"--load " + Quoted(written) + ": " + request.Error().message};
  if (request->path.empty()) throw Misuse{"--load " + Quoted(written) + ": expected a file behind '='"};
  return {written.substr(0, equals), *request};
}

class Reader {
 public:
  Reader() : app_("qcalc, the headless calculator: runs the add-in where there is no Excel.", "qcalc") {
    app_.set_version_flag("--version", "qcalc " QCALC_VERSION);
    app_.allow_windows_style_options(false);  // a path may begin with "/" on every build
    app_.require_subcommand(0, 1);
    app_.allow_extras();  // told here, with near ones
    app_.footer(kFooter);
    line_.calc.threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostThreads);
    app_.add_option("--addin", addin_, "the add-in to load; by default the one beside the program")->type_name("PATH");
    app_.add_flag("--in-process", line_.isInProcess,
                  "work in this process, for a debugger: an add-in that dies ends it untold");
    eval_->add_option("FORMULA", line_.eval.formulas, "formulas, as in a cell");
    eval_->add_option("--load", loads_, "first load a CSV file into a sheet, from A1 on; may be given again")
        ->type_name("SHEET=FILE")
        ->allow_extra_args(false);
    eval_->add_option("--format", format_, "how results are printed: literal (at first), csv or json")
        ->type_name("FORMAT");
    eval_->footer(kEvalFooter);
    run_->add_option("SCRIPT", line_.scripts, "script files; '-' is standard input");
    calc_->add_option("BOOK", book_, "a workbook (.xlsx), or a .csv file as one sheet");
    calc_->add_option("-o,--output", out_, "where to write the book")->type_name("OUT");
    calc_->add_option("--format", format_, "how values are printed: csv (at first) or json")->type_name("FORMAT");
    calc_->add_option("--threads", line_.calc.threads, "on how many threads; as many as processors, at first")
        ->type_name("N");
    calc_->add_flag("--check", line_.calc.checks, "list where values differ from those that the book has");
    calc_->add_flag("--fail-on-error", line_.calc.failsOnError, "an error in a cell is a failure");
    calc_->add_flag("--profile", line_.calc.profiles, "tell which functions took most time");
    calc_->footer(kCalcFooter);
    functions_->add_option("NAME", line_.function, "one function, with its marks and help texts");
    help_->add_option("COMMAND", topic_, "a command, or scripts");
    for (CLI::App* command : app_.get_subcommands({})) command->fallthrough();
  }

  std::variant<CommandLine, ExitStatus> Read(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(arguments);
    } catch (const CLI::CallForHelp& call) {
      return app_.exit(call) == 0 ? kAllWell : kUnusable;
    } catch (const CLI::CallForVersion& call) {
      return app_.exit(call) == 0 ? kAllWell : kUnusable;
    } catch (const CLI::ParseError& error) {
      throw Misuse{error.what()};
    }
    const std::vector<CLI::App*> chosen = app_.get_subcommands();
    for (const std::string& word : app_.remaining(true)) Refuse(word, chosen.empty() ? nullptr : chosen[0]);
    if (chosen.empty()) throw Misuse{"expected a command: eval, run, calc, functions or help"};
    if (chosen[0] == help_) return PrintHelp();
    return Finish(*chosen[0]);
  }

 private:
  [[noreturn]] void Refuse(const std::string& word, const CLI::App* command) const {
    if (word.starts_with('-')) {
      std::vector<std::string> known = OptionsOf(app_);
      if (command)
        for (const std::string& name : OptionsOf(*command)) known.push_back(name);
      throw Misuse{"there is no option " + Quoted(word) + NearNamesHint(word, known)};
    }
    if (command) throw Misuse{command->get_name() + " takes no further argument, found " + Quoted(word)};
    throw Misuse{"there is no command " + Quoted(word) + NearNamesHint(word, Topics())};
  }

  static std::vector<std::string> OptionsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
  }

  std::vector<std::string> Topics() const {
    std::vector<std::string> names;
    for (const CLI::App* command : app_.get_subcommands({})) names.push_back(command->get_name());
    return names;
  }

  ExitStatus PrintHelp() const {
    if (topic_.empty()) {
      // Its own help() would be that of the command given, which is this one.
      std::cout << app_.get_formatter()->make_help(&app_, app_.get_name(), CLI::AppFormatMode::Normal);
      return kAllWell;
    }
    if (topic_ == "scripts") {
      std::cout << "The commands of scripts, one a line; docs/qcalc.md describes them:\n";
      for (const std::string& form : CommandForms()) std::cout << "  " << form << "\n";
      return kAllWell;
    }
    for (const CLI::App* command : app_.get_subcommands({}))
      if (command->get_name() == topic_) {
        std::cout << command->help(app_.get_name());
        return kAllWell;
      }
    std::vector<std::string> known = Topics();
    known.push_back("scripts");
    throw Misuse{"there is no help on " + Quoted(topic_) + NearNamesHint(topic_, known)};
  }

  CommandLine Finish(const CLI::App& command) {
    line_.addin = addin_.empty() ? ProgramFolder() / "Quillmere4.xll" : PathOf(addin_);
    if (&command == eval_) {
      line_.command = CommandLine::Command::kEval;
      if (line_.eval.formulas.empty()) throw Misuse{"eval: expected a formula"};
      for (const std::string& load : loads_) line_.eval.loads.push_back(ReadLoad(load));
      if (format_.empty()) format_ = kFormats[0];
      const auto format = std::find(kFormats.begin(), kFormats.end(), format_);
      if (format == kFormats.end())
        throw Misuse{"there is no format " + Quoted(format_) + ", but literal, csv and json" +
                     NearNamesHint(format_, kFormats)};
      line_.eval.format = static_cast<ResultFormat>(format - kFormats.begin());
    } else if (&command == calc_) {
      line_.command = CommandLine::Command::kCalc;
      FinishCalc();
    } else if (&command == run_) {
      line_.command = CommandLine::Command::kRun;
      if (line_.scripts.empty()) throw Misuse{"run: expected a script"};
    } else {
      line_.command = CommandLine::Command::kFunctions;
    }
    return std::move(line_);
  }

  void FinishCalc() {
    CalcRequest& calc = line_.calc;
    if (book_.empty()) throw Misuse{"calc: expected a book"};
    calc.book = PathOf(book_);
    if (BookFormatOf(calc.book) == BookFormat::kJson) throw Misuse{"calc: " + Quoted(book_) + " is no book to be read"};
    if (calc.threads < 1 || calc.threads > kMostThreads)
      throw Misuse{"--threads: expected a number from 1 to " + std::to_string(kMostThreads)};
    const bool isJson = format_ == "json";
    if (!isJson && !format_.empty() && format_ != "csv")
      throw Misuse{"there is no format " + Quoted(format_) + " of calc, but csv and json"};
    calc.format = isJson ? BookFormat::kJson : BookFormat::kCsv;
    if (out_.empty()) return;
    if (!format_.empty()) throw Misuse{"--format is for values that are printed: OUT says by its end what it is"};
    calc.out = PathOf(out_);
    const auto format = BookFormatOf(calc.out);
    if (!format) throw Misuse{"-o " + Quoted(out_) + ": expected a file that ends in .xlsx, .csv or .json"};
    if (format == BookFormat::kXlsx && BookFormatOf(calc.book) == BookFormat::kCsv)
      throw Misuse{"-o " + Quoted(out_) + ": a .csv file becomes no workbook; .csv and .json are possible"};
    calc.format = *format;
  }

  CommandLine line_;
  std::string addin_, topic_, format_, book_, out_;
  std::vector<std::string> loads_;
  CLI::App app_;
  CLI::App* const eval_ = app_.add_subcommand("eval", "evaluate each formula and print its result");
  CLI::App* const run_ = app_.add_subcommand("run", "run scripts");
  CLI::App* const calc_ = app_.add_subcommand("calc", "recalculate a workbook");
  CLI::App* const functions_ = app_.add_subcommand("functions", "list what the add-in registered, by families");
  CLI::App* const help_ = app_.add_subcommand("help", "tell about the program or one of its commands");
};

}  // namespace

std::variant<CommandLine, ExitStatus> ReadCommandLine(std::vector<std::string> arguments) {
  try {
    return Reader().Read(std::move(arguments));
  } catch (const Misuse& misuse) {
    std::cerr << ShownMessage("qcalc: " + misuse.message) << "\nqcalc help tells what there is." << std::endl;
    return kUnusable;
  }
}

}  // namespace qcalc
