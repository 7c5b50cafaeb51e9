#include "host/calculation/formula_reads.h"

#include <algorithm>
#include <vector>

#include "host/formulas/formula_node.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

using SheetAreaVisitor = std::function<void(const SheetArea&)>;

// Walks through one formula and what the names in it stand for.
class ReadWalk {
 public:
  ReadWalk(const Sheet& sheet, CellPosition caller, const NamedValues* names)
      : sheet_(sheet), caller_(caller), names_(names) {}

  void Visit(const FormulaTree& tree, CellShift shift, const SheetAreaVisitor& visitor) {
    for (const FormulaNode* node : tree.reads) {
      if (node->kind == FormulaNode::Kind::kRange)
        VisitRange(*node, shift, visitor);
      else
        VisitNode(*node, shift, visitor);
    }
  }

 private:
  const Sheet* FindSheet(const ReferenceText& text) const {
    if (text.sheet.empty() && text.book.empty()) return &sheet_;
    return sheet_.ItsBook().ItsWorkbooks().FindSheet(text.book, text.sheet, &sheet_);
  }

  void VisitNode(const FormulaNode& node, CellShift shift, const SheetAreaVisitor& visitor) {
    if (node.kind == FormulaNode::Kind::kReference) {
      if (const Sheet* sheet = FindSheet(node.reference)) visitor({sheet->Id(), node.reference.At(shift)});
    } else if (node.kind == FormulaNode::Kind::kTable) {
      VisitTable(*node.table, visitor);
    } else if (node.kind == FormulaNode::Kind::kName) {
      VisitName(node, visitor);
    }
  }

  void VisitTable(const TableReference& reference, const SheetAreaVisitor& visitor) const {
    const Table* table = sheet_.ItsBook().ItsTables().Find(reference.table);
    if (!table) return;
    const auto cells = table->Resolve(reference, caller_.row);
    if (const auto* where = std::get_if<SheetArea>(&cells)) visitor(*where);
  }

  void VisitName(const FormulaNode& node, const SheetAreaVisitor& visitor) {
    if (names_ && node.reference.sheet.empty())
      if (const auto bound = names_->find(FoldCase(node.name)); bound != names_->end()) {
        if (!bound->second.IsReference()) return;
        const Reference& reference = bound->second.AsReference();
        for (const Area& area : reference.areas) visitor({reference.sheet, area});
        return;
      }
    const Sheet* sheet = FindSheet(node.reference);
    if (!sheet) return;
    const Formula* formula = sheet->ItsBook().Names().Find(node.name, sheet->Id());
    if (!formula) return VisitTable(TableReference{.table = node.name, .hasData = true}, visitor);
    if (std::find(open_.begin(), open_.end(), formula) != open_.end() || ++namesVisited_ > kMostNamesFollowed) return;
    open_.push_back(formula);
    Visit(formula->Tree(), formula->Shift().Plus(caller_.row, caller_.column), visitor);
    open_.pop_back();
  }

  // Where a function finds an end, what lies between is known only once it is calculated.
  void VisitRange(const FormulaNode& range, CellShift shift, const SheetAreaVisitor& visitor) {
    bool isKnown = true;
    VisitNodes(range, [&](const FormulaNode& node) { isKnown = isKnown && node.kind != FormulaNode::Kind::kCall; });
    if (!isKnown) return;
    std::vector<SheetArea> spans;
    const SheetAreaVisitor widen = [&spans](const SheetArea& part) {
      const auto span =
          std::find_if(spans.begin(), spans.end(), [&](const SheetArea& other) { return other.sheet == part.sheet; });
      if (span == spans.end())
        spans.push_back(part);
      else
        span->area = span->area.Around(part.area);
    };
    VisitNodes(range, [&](const FormulaNode& node) { VisitNode(node, shift, widen); });
    for (const SheetArea& span : spans) visitor(span);
  }

  const Sheet& sheet_;
  const CellPosition caller_;
  const NamedValues* names_;
  std::vector<const Formula*> open_;
  int namesVisited_ = 0;
};

}  // namespace

void VisitReadsWith(const Formula& formula, const Sheet& sheet, CellPosition caller, const NamedValues* names,
                    const SheetAreaVisitor& visitor) {
  ReadWalk(sheet, caller, names).Visit(formula.Tree(), formula.Shift(), visitor);
}

}  // namespace qcalc
