#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace linewatch {

/// Finds elements of an array by their hash. It knows them by their places only: who asks compares them.
/// Open addressing, half empty at least. A search reads one byte a slot until it meets an equal hash; the
/// places, eight bytes a slot, are only read then.
class HashIndex {
 public:
  /// How a search ended: at an equal element, or where it belongs. Holds until something is entered.
  class Search {
   public:
    /// The place of the equal element, if there is one.
    std::optional<std::uint32_t> place() const { return isFound_ ? std::optional(place_) : std::nullopt; }

   private:
    friend HashIndex;
    Search(std::size_t slot, std::uint32_t hash, std::uint32_t place, bool isFound)
        : slot_(slot), hash_(hash), place_(place), isFound_(isFound) {}

    std::size_t slot_;
    std::uint32_t hash_;
    std::uint32_t place_;
    bool isFound_;
  };

  /// Makes room for as many elements: neither entering them nor the searches after them grow anything.
  void reserve(std::size_t count) {
    if (2 * count >= tags_.size()) resize(std::max(kSmallest, std::bit_ceil(2 * count + 1)));
  }

  /// Looks for an element with the hash for which `isEqual(place)` holds.
  template <class IsEqual>
  Search search(std::uint64_t hash, IsEqual isEqual) {
    if (2 * count_ >= tags_.size()) resize(tags_.empty() ? kSmallest : kFactor * tags_.size());
    const std::uint32_t spreadHash = spread(hash);
    const std::uint8_t tag = tagOf(spreadHash);
    std::size_t slot = firstSlot(spreadHash);
    for (; tags_[slot] != kFree; slot = nextSlot(slot)) {
      if (tags_[slot] != tag) continue;
      const Slot& taken = slots_[slot];
      if (taken.hash == spreadHash && isEqual(taken.place)) return {slot, spreadHash, taken.place, true};
    }
    return {slot, spreadHash, 0, false};
  }

  /// Enters the element that `search` did not find, at the place where its array has it.
  void enter(const Search& search, std::uint32_t place) {
    put(search.slot_, {search.hash_, place});
    ++count_;
  }

 private:
  struct Slot {
    std::uint32_t hash;
    std::uint32_t place;
  };

  static constexpr std::uint8_t kFree = 0;
  static constexpr std::size_t kSmallest = 16, kFactor = 4;

  /// Counters and pointers differ in few bits; the upper half of the product differs with each of them.
  static std::uint32_t spread(std::uint64_t hash) {
    return static_cast<std::uint32_t>(((hash ^ (hash >> 32)) * 0x9E3779B97F4A7C15ULL) >> 32);
  }
  /// Of the bits that choose no slot until there are 2^25 of them; never free.
  static std::uint8_t tagOf(std::uint32_t hash) { return static_cast<std::uint8_t>(hash | 0x80U); }
  std::size_t firstSlot(std::uint32_t hash) const { return hash >> shift_; }
  std::size_t nextSlot(std::size_t slot) const { return (slot + 1) & (tags_.size() - 1); }

  void put(std::size_t slot, Slot element) {
    tags_[slot] = tagOf(element.hash);
    slots_[slot] = element;
  }

  void resize(std::size_t size) {
    const auto oldTags = std::exchange(tags_, std::vector<std::uint8_t>(size, kFree));
    // What is in a free slot is never read.
    const auto oldSlots = std::exchange(slots_, std::make_unique_for_overwrite<Slot[]>(size));
    shift_ = 32 - std::countr_zero(size);
    for (std::size_t old = 0; old < oldTags.size(); ++old) {
      if (oldTags[old] == kFree) continue;
      std::size_t slot = firstSlot(oldSlots[old].hash);
      while (tags_[slot] != kFree) slot = nextSlot(slot);
      put(slot, oldSlots[old]);
    }
  }

  std::vector<std::uint8_t> tags_;
  std::unique_ptr<Slot[]> slots_;
  std::size_t count_ = 0;
  int shift_ = 0;
};

}  // namespace linewatch
