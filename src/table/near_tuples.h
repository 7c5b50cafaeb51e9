// Numbering tuples whose parts have few distinct cells each, however many distinct tuples there are.
//
// The cells of a part are numbered, and the numbers of a tuple's cells packed into a word: equal words are equal
// tuples. No cell of an earlier tuple is looked at again.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <utility>

#include "frame/values/scratch_list.h"
#include "table/cell_numbers.h"
#include "table/hash_key.h"
#include "table/number_index.h"
#include "table/tuple_hash.h"

namespace quillmere {

/// The numbers of distinct words, in the order in which they came.
class WordNumbers {
 public:
  /// For about so many words.
  explicit WordNumbers(std::int32_t words)
      : mostDirectBits_(std::min(kMostDirectBits, std::bit_width(static_cast<std::uint32_t>(words)) + std::size_t{2})) {
  }

  std::int32_t Count() const noexcept { return static_cast<std::int32_t>(words_.size()); }

  /// From now on words have so many bits, and `recode(word)` is what one of those before has become.
  template <class Recode>
  void SetBits(std::size_t bits, const Recode& recode) {
    for (std::uint64_t& word : words_) word = recode(word);
    isDirect_ = bits <= mostDirectBits_;
    direct_ = ScratchArray<std::int32_t>(isDirect_ ? std::size_t{1} << bits : 0);
    std::ranges::fill(direct_, 0);
    index_ = NumberIndex();
    if (!isDirect_) MakeRoom(Count());
    for (std::int32_t number = 0; number < Count(); ++number) {
      if (isDirect_)
        direct_[WordOf(number)] = number + 1;
      else
        index_.Add(key_.Of(WordOf(number)), [](std::int32_t) { return false; });
    }
  }

  /// Writes the number of each of at most kTupleBatch words.
  void Add(std::span<const std::uint64_t> words, std::int32_t* numbers) {
    words_.MakeRoomFor(words.size());
    isDirect_ ? AddDirect(words, numbers) : AddHashed(words, numbers);
  }

 private:
  /// Words of so few bits, and of few more than there are words, are themselves the places where their numbers stand.
  static constexpr std::size_t kMostDirectBits = 20;

  void AddDirect(std::span<const std::uint64_t> words, std::int32_t* numbers) {
    for (const std::uint64_t word : words) __builtin_prefetch(&direct_[word]);
    std::int32_t count = Count();
    for (std::size_t i = 0; i < words.size(); ++i) {
      // Without a jump: nobody can foresee which words are new.
      std::int32_t& known = direct_[words[i]];
      const bool isNew = known == 0;
      words_.Room()[count] = words[i];
      count += isNew ? 1 : 0;
      known = isNew ? count : known;
      numbers[i] = known - 1;
    }
    words_.SetSize(static_cast<std::size_t>(count));
  }

  void AddHashed(std::span<const std::uint64_t> words, std::int32_t* numbers) {
    std::uint64_t hashes[kTupleBatch];
    MakeRoom(static_cast<std::int32_t>(words.size()));
    for (std::size_t i = 0; i < words.size(); ++i) {
      hashes[i] = key_.Of(words[i]);
      index_.PrefetchSlot(hashes[i]);
    }
    for (std::size_t i = 0; i < words.size(); ++i)
      if (const std::int32_t likely = index_.LikelyNumber(hashes[i]); likely != kNoEntry)
        __builtin_prefetch(&words_[static_cast<std::size_t>(likely)]);
    for (std::size_t i = 0; i < words.size(); ++i) {
      numbers[i] = index_.Add(hashes[i], [&](std::int32_t number) { return WordOf(number) == words[i]; });
      if (numbers[i] == Count()) words_.Append(words[i]);
    }
  }

  void MakeRoom(std::int32_t more) {
    index_.MakeRoomFor(more, [this](std::int32_t number) { return key_.Of(WordOf(number)); });
  }
  std::uint64_t WordOf(std::int32_t number) const noexcept { return words_[static_cast<std::size_t>(number)]; }

  const std::size_t mostDirectBits_;
  const HashKey key_ = HashKey::OfProcess();
  ScratchList<std::uint64_t> words_;
  bool isDirect_ = false;
  ScratchArray<std::int32_t> direct_;  ///< the number of each word, from 1
  NumberIndex index_;
};

/// The numbers of distinct tuples, in the order in which they were added.
template <TextCase textCase, CellTuples Tuples>
class NearTuples {
 public:
  /// Tuples of more parts leave too few bits for each.
  static constexpr std::size_t kMostParts = 8;

  /// The tuples have at most so many parts, and outlive this.
  explicit NearTuples(const Tuples& tuples)
      : mostBits_(std::min<std::size_t>(kMostCellBits, 64 / tuples.Parts())), words_(tuples.Count()) {
    for (std::size_t part = 0; part < tuples.Parts(); ++part) cells_.emplace_back(tuples, part);
  }

  /// Makes room for so many more tuples; false when a part has too many distinct cells.
  bool MakeRoomFor(std::int32_t more) {
    for (CellNumbers<textCase, Tuples>& cells : cells_) {
      if (cells.Count() + more > std::int32_t{1} << mostBits_) return false;
      cells.MakeRoomFor(more);
    }
    return true;
  }

  /// Writes the numbers of the tuples at so many places, at most kTupleBatch, for which there must be room.
  void Add(std::span<const std::int32_t> places, std::int32_t* numbers) {
    if (cells_.size() == 1) {
      cells_.front().Add(places, numbers);
      return;
    }
    AddWords(places, numbers);
    firstPlaces_.MakeRoomFor(places.size());
    std::size_t count = firstPlaces_.size();
    for (std::size_t i = 0; i < places.size(); ++i) {
      firstPlaces_.Room()[count] = places[i];
      count += static_cast<std::size_t>(numbers[i]) == count ? 1 : 0;
    }
    firstPlaces_.SetSize(count);
  }

  /// The places that were added first, by their numbers.
  ScratchList<std::int32_t> TakeFirstPlaces() && {
    return cells_.size() == 1 ? cells_.front().FirstPlaces() : std::move(firstPlaces_);
  }

 private:
  /// So many distinct cells, with what finds them, stay in the cache.
  static constexpr std::size_t kMostCellBits = 14;

  void AddWords(std::span<const std::int32_t> places, std::int32_t* numbers) {
    std::int32_t ofCells[kMostParts][kTupleBatch];
    for (std::size_t part = 0; part < cells_.size(); ++part) cells_[part].Add(places, ofCells[part]);
    FitBits();
    std::uint64_t words[kTupleBatch] = {};
    for (std::size_t part = 0; part < cells_.size(); ++part)
      for (std::size_t i = 0; i < places.size(); ++i)
        words[i] = words[i] << bits_[part] | static_cast<std::uint64_t>(ofCells[part][i]);
    words_.Add({words, places.size()}, numbers);
  }

  /// Gives each part the bits that its numbers take, and codes the words that are there anew.
  void FitBits() {
    std::array<std::size_t, kMostParts> bits{};
    std::size_t all = 0;
    for (std::size_t part = 0; part < cells_.size(); ++part) {
      const auto last = static_cast<std::uint32_t>(std::max(cells_[part].Count(), 1) - 1);
      bits[part] = std::max<std::size_t>(bits_[part], static_cast<std::size_t>(std::bit_width(last)));
      all += bits[part];
    }
    if (bits == bits_) return;
    words_.SetBits(all, [&](std::uint64_t word) {
      std::uint64_t recoded = 0;
      for (std::size_t part = cells_.size(), at = 0; part-- > 0; at += bits[part]) {
        recoded |= (word & ((std::uint64_t{1} << bits_[part]) - 1)) << at;
        word >>= bits_[part];
      }
      return recoded;
    });
    bits_ = bits;
  }

  std::size_t mostBits_;                        ///< of the number of a cell
  std::array<std::size_t, kMostParts> bits_{};  ///< that numbers of each part have now, the first part's uppermost
  std::deque<CellNumbers<textCase, Tuples>> cells_;
  WordNumbers words_;
  ScratchList<std::int32_t> firstPlaces_;  ///< of tuples of several parts
};

}  // namespace quillmere
