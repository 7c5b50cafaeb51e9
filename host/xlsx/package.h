// The parts of an Office file and how they refer to each other.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/xml/element_splitter.h"
#include "host/xml/xml_tree.h"
#include "host/zip/zip_reader.h"

namespace qcalc {

/// What one part is to another.
struct Relationship {
  std::string id;
  std::string kind;    ///< the last word of its type: `worksheet`, `styles`
  std::string target;  ///< the entry's name; empty for what lies outside the file
};

/// The parts of a file, by the names of their entries. What it throws is BookRefused, which names the part: also for a
/// part that is read twice, since the same bytes must not make any number of sheets.
class Package {
 public:
  /// `zip` outlives the package.
  explicit Package(const ZipReader& zip) : zip_(zip) {}

  bool Has(std::string_view part) const { return zip_.Find(part) != nullptr; }
  /// The relationships of a part ("" for those of the file) that are of one of the kinds; none when it has none.
  std::vector<Relationship> RelationshipsOf(std::string_view part, std::initializer_list<std::string_view> kinds) const;

  /// Reads the part as a tree, hands its element to `read` and drops it. `what` the part is, if it should be missing.
  void ReadTree(const std::string& part, const std::string& what,
                const std::function<void(const XmlNode& root)>& read) const;
  /// Reads the part piece by piece; `parser` makes trees of them.
  void ReadPieces(const std::string& part, const std::string& what, std::string_view container,
                  const std::function<void(ElementSplitter& splitter, XmlParser& parser)>& read) const;

 private:
  const ZipEntry& Require(const std::string& part, const std::string& what) const;

  const ZipReader& zip_;
  mutable std::set<const ZipEntry*> read_;
  mutable XmlParser parser_;
};

}  // namespace qcalc
