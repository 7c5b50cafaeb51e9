#include "host/xlsx/cell_metadata.h"

#include <cstdint>

#include "host/text/digits.h"
#include "host/xml/xml_fault.h"

namespace qcalc {

namespace {

constexpr std::string_view kDynamicArrays = "XLDAPR";

// Whether a property of a dynamic array stands anywhere below: within lists of extensions.
bool SaysDynamic(const XmlNode& element) {
  if (NameOf(element) == "dynamicArrayProperties" && IsTrue(FindAttribute(element, "fDynamic"))) return true;
  for (const XmlNode* child = element.first_node(); child; child = child->next_sibling())
    if (child->type() == rapidxml::node_element && SaysDynamic(*child)) return true;
  return false;
}

std::size_t PlaceOf(const XmlNode& element, std::string_view attribute) {
  const auto place = ReadWhole<std::uint32_t>(FindAttribute(element, attribute).value_or(""));
  if (!place) throw XmlFault("its metadata lack a number, \"" + std::string(attribute) + "\"");
  return *place;
}

}  // namespace

// A cell's metadata are records of a type and a value: which of the types, from 1, and which of that type's values.
std::vector<bool> ReadCellMetadata(const Package& package, const std::string& part) {
  std::vector<bool> isDynamic;
  package.ReadTree(part, "the metadata", [&](const XmlNode& root) {
    std::size_t types = 0, dynamicType = 0;
    if (const XmlNode* list = FindChild(root, "metadataTypes"))
      ForEachChild(*list, "metadataType", [&](const XmlNode& type) {
        ++types;
        if (FindAttribute(type, "name") == kDynamicArrays) dynamicType = types;
      });
    std::vector<bool> values;
    ForEachChild(root, "futureMetadata", [&](const XmlNode& future) {
      if (FindAttribute(future, "name") != kDynamicArrays) return;
      ForEachChild(future, "bk", [&values](const XmlNode& value) { values.push_back(SaysDynamic(value)); });
    });
    const XmlNode* cells = FindChild(root, "cellMetadata");
    if (!cells) return;
    ForEachChild(*cells, "bk", [&](const XmlNode& block) {
      isDynamic.push_back(false);
      ForEachChild(block, "rc", [&](const XmlNode& record) {
        const std::size_t type = PlaceOf(record, "t"), value = PlaceOf(record, "v");
        if (type == 0 || type > types)
          throw XmlFault("its metadata name type " + std::to_string(type) + ", of " + std::to_string(types));
        if (type != dynamicType) return;
        if (value >= values.size())
          throw XmlFault("its metadata name value " + std::to_string(value) + ", of " + std::to_string(values.size()));
        if (values[value]) isDynamic.back() = true;
      });
    });
  });
  return isDynamic;
}

}  // namespace qcalc
