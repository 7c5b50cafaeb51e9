// The tables of a book: stretches of cells whose columns have names.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "host/formulas/table_reference.h"
#include "host/text/letter_case.h"
#include "host/values/area.h"

namespace qcalc {

/// One table, as a book describes it; never changed. Names are without case.
class Table {
 public:
  /// `where` holds headers and totals too: so many rows at its top and its bottom, 0 or 1 as a rule. `columns` are the
  /// names from the left on; of those that are equal the first counts, those beyond the area do not.
  Table(XString name, SheetArea where, std::int32_t headerRows, std::int32_t totalsRows,
        const std::vector<XString>& columns);

  const XString& Name() const { return name_; }
  /// The cells that the reference means in a formula of a cell in that row (-1: of none), or the error that it is
  /// there: #REF! for columns, headers or totals that the table has not, #VALUE! where the row is none of its data's.
  std::variant<SheetArea, std::int32_t> Resolve(const TableReference& reference, std::int32_t callingRow) const;

 private:
  std::optional<std::int32_t> FindColumn(XStringView name) const;

  XString name_;
  SheetArea where_;
  std::int32_t headerRows_;
  std::int32_t totalsRows_;
  CaselessMap<XString, std::int32_t> columns_;
};

/// All tables of a book. Any number of threads may look while none adds.
class Tables {
 public:
  /// Instead of one of that name, if there is one.
  void Add(Table table);
  const Table* Find(XStringView name) const;

 private:
  CaselessMap<XString, Table> tables_;
};

}  // namespace qcalc
