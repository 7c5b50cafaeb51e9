#include "host/xlsx/package.h"

#include <algorithm>
#include <span>
#include <utility>

#include "host/text/utf8.h"
#include "host/xlsx/stored_book.h"
#include "host/xml/xml_fault.h"
#include "host/xml/xml_text.h"

namespace qcalc {

namespace {

constexpr std::size_t kMostTreeBytes = std::size_t{1} << 26;
constexpr std::size_t kMostRelationships = 100'000;

// What is wrong with a text is said with the name of the part that it is.
template <typename Read>
void InPart(const std::string& part, Read&& read) {
  try {
    read();
  } catch (const XmlFault& fault) {
    throw BookRefused(part + ": " + fault.what());
  }
}

std::string_view FolderOf(std::string_view part) { return part.substr(0, part.rfind('/') + 1); }

// `_rels/workbook.xml.rels` beside `workbook.xml`.
std::string RelationshipsPartOf(std::string_view part) {
  const std::string_view folder = FolderOf(part);
  return std::string(folder) + "_rels/" + std::string(part.substr(folder.size())) + ".rels";
}

std::string ResolveTarget(std::string_view folder, std::string_view target) {
  std::string path(target.starts_with('/') ? "" : folder);
  while (!target.empty()) {
    const std::size_t end = std::min(target.find('/'), target.size());
    const std::string_view step = target.substr(0, end);
    target.remove_prefix(std::min(end + 1, target.size()));
    if (step.empty() || step == ".") continue;
    if (step == "..") {
      if (path.empty()) throw XmlFault("it refers to a part outside the file");
      path.resize(FolderOf(std::string_view(path).substr(0, path.size() - 1)).size());
      continue;
    }
    path += step;
    path += '/';
  }
  if (!path.empty()) path.pop_back();
  return path;
}

std::string Decoded(const XmlNode& element, std::string_view attribute) {
  return ToUtf8(DecodeXml(FindAttribute(element, attribute).value_or("")));
}

}  // namespace

const ZipEntry& Package::Require(const std::string& part, const std::string& what) const {
  const ZipEntry* entry = zip_.Find(part);
  if (!entry) throw BookRefused("it has no part " + part + ", " + what);
  if (!read_.insert(entry).second) throw BookRefused("it refers to the part " + part + " twice");
  return *entry;
}

std::vector<Relationship> Package::RelationshipsOf(std::string_view part,
                                                   std::initializer_list<std::string_view> kinds) const {
  std::vector<Relationship> relationships;
  const std::string name = RelationshipsPartOf(part);
  if (!Has(name)) return relationships;
  ReadPieces(name, "", "Relationships", [&](ElementSplitter& splitter, XmlParser& parser) {
    splitter.Head();
    while (const auto piece = splitter.Next()) {
      const XmlNode& element = parser.Parse(piece->element);
      const std::string type = Decoded(element, "Type");
      const std::string kind = type.substr(type.rfind('/') + 1);
      if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) continue;
      const bool isOutside = FindAttribute(element, "TargetMode") == "External";
      std::string target = isOutside ? "" : ResolveTarget(FolderOf(part), Decoded(element, "Target"));
      relationships.push_back({Decoded(element, "Id"), kind, std::move(target)});
      if (relationships.size() > kMostRelationships)
        throw XmlFault("it refers to more than " + std::to_string(kMostRelationships) + " parts");
    }
    splitter.Tail();
  });
  return relationships;
}

void Package::ReadTree(const std::string& part, const std::string& what,
                       const std::function<void(const XmlNode& root)>& read) const {
  InPart(part, [&] { read(parser_.ParsePart(zip_.ReadWhole(Require(part, what), kMostTreeBytes))); });
}

void Package::ReadPieces(const std::string& part, const std::string& what, std::string_view container,
                         const std::function<void(ElementSplitter& splitter, XmlParser& parser)>& read) const {
  InPart(part, [&] {
    ZipStream stream = zip_.Open(Require(part, what));
    ElementSplitter splitter([&stream](std::span<char> into) { return stream.Read(into); }, container);
    read(splitter, parser_);
  });
}

}  // namespace qcalc
