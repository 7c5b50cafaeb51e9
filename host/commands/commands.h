// The program's subcommands, each as work for the supervisor.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/books/book_file.h"
#include "host/commands/result_format.h"
#include "host/commands/supervisor.h"
#include "host/files/csv_request.h"
#include "host/scripts/session.h"

namespace qcalc {

/// A file to load into a sheet, `Data` or `[Book]Data`, UTF-8, from A1 on.
struct CsvLoad {
  std::string sheet;
  CsvRequest file;
};

struct EvalRequest {
  std::vector<std::string> formulas;
  std::vector<CsvLoad> loads;
  ResultFormat format = ResultFormat::kLiteral;
};

struct CalcRequest {
  std::filesystem::path book;
  std::filesystem::path out;  ///< empty: what is asked for is printed
  BookFormat format = BookFormat::kCsv;
  int threads = 1;
  bool checks = false;
  bool failsOnError = false;
  bool profiles = false;
};

/// Reads the book, calculates it and writes or prints its values, or holds them against those of the file.
Work CalcWork(const std::filesystem::path& addin, const CalcRequest& request);

/// Loads the files, evaluates the formulas and prints each result. A formula that does not parse is told in its turn.
Work EvalWork(const std::filesystem::path& addin, const EvalRequest& request);

/// Runs scripts, each with the add-in loaded anew; "-" is standard input. An add-in that is none ends but its script.
Work ScriptWork(const std::filesystem::path& addin, const std::vector<std::string>& names);

/// Lists what the add-in registered: with a name all about that function, else a line for each, by families.
Work FunctionsWork(const std::filesystem::path& addin, const std::string& name);

/// Prints to standard error what the add-in did against the rules; whether there was anything.
bool PrintComplaints(Session& session);

/// Does `work` with that add-in; kNoAddin, with the reason told, when it is none.
ExitStatus WithAddin(const std::filesystem::path& addin, const std::function<ExitStatus(Session&)>& work);

}  // namespace qcalc
