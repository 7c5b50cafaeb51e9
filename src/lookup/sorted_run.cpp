#include "lookup/sorted_run.h"

namespace quillmere::lookup {

void RecordRun(const SortedRun& run, std::int32_t position, bool exact, FoundRows& found) {
  if (!run.equal) {
    AddFoundRow(found, exact || position > 1 ? kNoRow : run.first);
    return;
  }
  if (position == wanted_match::kAll) {
    AddFoundRow(found, run.first);
    for (std::int32_t row = run.first + 1; row <= run.last; ++row) AddFoundRow(found, row);
    return;
  }
  const std::int64_t row = run.first + (position > 1 ? std::int64_t{position} - 1 : 0);
  AddFoundRow(found, row <= run.last ? static_cast<std::int32_t>(row) : kNoRow);
}

}  // namespace quillmere::lookup
