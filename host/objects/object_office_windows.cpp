#include "host/objects/object_office_windows.h"

#include <numeric>

namespace qcalc {

const char* NameOf(ObjectKind kind) {
  constexpr const char* kNames[] = {"Application", "Window",    "Workbooks", "Workbook",
                                    "Worksheets",  "Worksheet", "Range"};
  return kNames[static_cast<std::size_t>(kind)];
}

int ObjectOffice::CountReferences() const { return std::accumulate(references.begin(), references.end(), 0); }

std::string ObjectOffice::DescribeReferences() const {
  std::string text;
  for (std::size_t i = 0; i < references.size(); ++i)
    if (const int count = references[i])
      text += (text.empty() ? "" : ", ") + std::to_string(count) + " to " + NameOf(static_cast<ObjectKind>(i));
  return text;
}

}  // namespace qcalc
