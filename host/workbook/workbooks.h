// The open books, their sheets by name and id, and what references to them hold.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/text/letter_case.h"
#include "host/workbook/defined_names.h"
#include "host/workbook/sheet.h"
#include "host/workbook/tables.h"

namespace qcalc {

class Workbooks;

/// One workbook. Names of sheets are without case; sheets keep their place in memory.
class Book {
 public:
  Book(Workbooks& workbooks, XString name) : workbooks_(workbooks), name_(std::move(name)) {}

  const XString& Name() const { return name_; }
  /// In the order they were made.
  const std::vector<std::unique_ptr<Sheet>>& Sheets() const { return sheets_; }
  Sheet* FindSheet(XStringView name) const;
  /// The sheet of that name, made if need be; formulas that name it are then calculated anew.
  Sheet& SheetNamed(XStringView name);
  /// What its formulas may name beside cells. To be filled while nothing calculates.
  DefinedNames& Names() { return names_; }
  const DefinedNames& Names() const { return names_; }
  Tables& ItsTables() { return tables_; }
  const Tables& ItsTables() const { return tables_; }
  const Workbooks& ItsWorkbooks() const { return workbooks_; }

 private:
  Workbooks& workbooks_;
  XString name_;
  std::vector<std::unique_ptr<Sheet>> sheets_;
  CaselessMap<XString, Sheet*> sheetsByName_;
  DefinedNames names_;
  Tables tables_;
};

/// All open books.
class Workbooks {
 public:
  Workbooks();
  const std::vector<std::unique_ptr<Book>>& Books() const { return books_; }
  Book* FindBook(XStringView name) const;
  /// The book of that name, made without sheets if need be.
  Book& BookNamed(XStringView name);
  /// Closes a book: its sheets are gone, and formulas that name them are to be calculated anew.
  void Close(const Book& book);
  /// The sheet with that id; null for 0 and unknown ids.
  Sheet* FindSheet(IDSHEET id) const;
  /// The sheet `Sheet1` or `[Book1]Sheet1` names, seen from `current`; null when there is none.
  Sheet* FindSheet(XStringView book, XStringView sheet, const Sheet* current) const;
  /// The same, made if need be.
  Sheet& SheetNamed(XStringView book, XStringView sheet, Sheet& current);

 private:
  friend class Book;
  IDSHEET TakeSheetId();

  std::vector<std::unique_ptr<Book>> books_;
  std::map<IDSHEET, Sheet*> sheetsById_;
  IDSHEET nextSheetId_;
};

/// Finds the sheet of a written reference, made if need be, so that commands may name new sheets. Formulas make none.
Reference ResolveReference(const ReferenceText& text, Workbooks& workbooks, Sheet& current);

/// What a value stands for where no reference is wanted: one cell gives its value (empty stays empty), several an
/// array, a union or an unknown sheet #VALUE! or #REF!. Anything but a reference is returned as it is.
Value Dereference(const Value& value, const Workbooks& workbooks);

/// `[Book1]Sheet1!B3:C9`, unions as `(…,…)`; for messages.
std::string ReferenceToText(const Reference& reference, const Workbooks& workbooks);

}  // namespace qcalc
