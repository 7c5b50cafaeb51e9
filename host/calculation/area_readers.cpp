#include "host/calculation/area_readers.h"

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/geometry/strategies/relate/cartesian.hpp>
#include <iterator>
#include <map>

namespace qcalc {

namespace {

namespace geometry = boost::geometry;
using Point = geometry::model::point<std::int32_t, 2, geometry::cs::cartesian>;
using Box = geometry::model::box<Point>;
using Entry = std::pair<Box, std::size_t>;
using Tree = geometry::index::rtree<Entry, geometry::index::quadratic<16>>;

Box BoxOf(const Area& area) { return {{area.firstRow, area.firstColumn}, {area.lastRow, area.lastColumn}}; }

}  // namespace

struct AreaReaders::Trees {
  std::map<IDSHEET, Tree> bySheet;
};

AreaReaders::AreaReaders(const std::vector<Reading>& readings) : trees_(std::make_unique<Trees>()) {
  std::map<IDSHEET, std::vector<Entry>> entries;
  for (const auto& [where, number] : readings) entries[where.sheet].emplace_back(BoxOf(where.area), number);
  // Given all at once they are packed, which takes less time and memory than one by one.
  for (const auto& [sheet, list] : entries) trees_->bySheet.emplace(sheet, Tree(list.begin(), list.end()));
}

AreaReaders::~AreaReaders() = default;

void AreaReaders::Find(const SheetArea& where, std::vector<std::size_t>& readers) const {
  const auto tree = trees_->bySheet.find(where.sheet);
  if (tree == trees_->bySheet.end()) return;
  for (auto found = tree->second.qbegin(geometry::index::intersects(BoxOf(where.area))); found != tree->second.qend();
       ++found)
    readers.push_back(found->second);
}

}  // namespace qcalc
