// What a sample workbook holds, as its description in samples/books says it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "functions/generator/diagnostics.h"
#include "host/values/area.h"

namespace samples {

using qcalc::Area;
using quillmere::generator::Diagnostics;
using quillmere::generator::Place;

/// A constant of a cell: empty, a number, a truth value, a text. A text "2012-07-04" is a date.
using Constant = std::variant<std::monostate, double, bool, std::string>;

struct Note {
  Area at;
  std::string text;
};

/// Cells for the reader to see and to change.
struct Input {
  Area cells;
  std::vector<std::vector<Constant>> rows;
  bool hasHeader = false;
  std::vector<std::string> formats;  ///< number formats of the columns
};

/// A formula and the cells that its values fill.
struct Result {
  Area fills;
  std::string formula;  ///< as Excel shows it, from "=" on
  std::string stored;   ///< as the file has it
  bool spills = false;  ///< calls the add-in, and may so fill any number of cells
  bool hasHeader = false;
  bool isQuiet = false;  ///< not shown in words beside the cells: one of several alike
  std::vector<std::string> formats;
  std::vector<std::string> labels;  ///< of the columns, shown in the row above
};

/// One thing shown: a heading, formulas and why one would want them in column A, the cells on the right of it.
struct Example {
  int row = 0;  ///< of the heading, from 0
  std::string heading;
  std::string text;
  std::vector<Input> inputs;
  std::vector<Result> results;
  Place place;
};

struct Series {
  std::string name;
  std::string values;      ///< "=Sheet!$A$1:$A$9"
  std::string categories;  ///< the same; none when empty
};

struct Chart {
  Area at;  ///< the cells that it covers
  std::string title;
  std::string type;  ///< "line" or "column"
  std::vector<Series> series;
  std::string categoryFormat;  ///< how dates of the categories are shown
  int labelEvery = 0;          ///< every how many categories one is labelled; as Excel likes it when 0
};

struct Sheet {
  std::string name;
  std::string about;  ///< for the first sheet's list of sheets
  std::vector<std::int64_t> widths;
  std::string data;                      ///< file of the data folder that it shows; examples when empty
  std::vector<std::string> textColumns;  ///< labels of columns whose fields stay texts
  std::vector<std::string> dateColumns;  ///< labels of columns of dates
  std::vector<std::string> formats;      ///< number formats of the data's columns
  std::vector<std::int64_t> hiddenRows;  ///< as Excel counts them, from 1
  std::vector<Example> examples;
  std::vector<Note> notes;
  std::vector<Chart> charts;
  Place place;
};

struct Book {
  std::string title;
  std::vector<std::string> introduction;
  std::vector<std::string> toTry;
  std::vector<std::string> sources;
  std::vector<Sheet> sheets;
};

/// Reads a description. `functions` are the add-in's by name: their calls are stored as Excel stores them. Every
/// mistake is reported with its line, and what is read is then incomplete.
Book ReadBook(const std::string& path, std::string_view text, const std::set<std::string>& functions,
              Diagnostics& diagnostics);

}  // namespace samples
