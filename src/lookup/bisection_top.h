// What many bisections of the same column look at first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "table/bisection.h"
#include "table/cell_tuples.h"

namespace quillmere::lookup {

/// The rows that the first steps of every bisection look at, as numbers side by side in memory: a binary tree whose
/// node n goes on to 2n + 1 in the rows before and to 2n + 2 in those behind. What is no number is taken as one that
/// sends the search where that cell does: kinds other than numbers come after all of them, empty cells behind every
/// key.
class BisectionTop {
 public:
  /// Whether so many keys make up for reading the tree's rows once more.
  static bool Pays(std::int64_t rows, std::int64_t keys) noexcept {
    return keys >= std::int64_t{1} << (kLevels - 1) && rows >= std::int64_t{4} << kLevels;
  }

  /// Reads the tree from the first key column of a table in that order.
  BisectionTop(const RowTuples& rows, SortOrder order);

  /// The steps that the tree holds; every bisection has at least so many.
  static constexpr int kLevels = 15;

  double operator[](std::uint32_t node) const noexcept { return numbers_[node]; }
  /// Where a bisection that has come to `node` behind the last level stands.
  Bisection BelowIt(std::uint32_t node) const noexcept { return below_[node - (std::size_t{1} << kLevels) + 1]; }

 private:
  std::vector<double> numbers_;
  std::vector<Bisection> below_;
};

}  // namespace quillmere::lookup
