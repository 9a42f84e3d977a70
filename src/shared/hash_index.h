#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace linewatch {

/// Finds elements of an array by their hash. It knows them by their places only: who asks compares them.
/// Open addressing, half empty at least; a place takes eight bytes a slot and no memory of its own.
class HashIndex {
 public:
  /// The place with the hash for which `isEqual(place)` holds, if any.
  template <class IsEqual>
  std::optional<std::uint32_t> find(std::uint64_t hash, IsEqual isEqual) const {
    if (slots_.empty()) return std::nullopt;
    const Slot& slot = slots_[search(spread(hash), isEqual)];
    return slot.isFree() ? std::nullopt : std::optional(slot.place());
  }

  /// The same; where there is none, `place` is entered under the hash and none is given.
  template <class IsEqual>
  std::optional<std::uint32_t> findOrEnter(std::uint64_t hash, std::uint32_t place, IsEqual isEqual) {
    if (2 * count_ >= slots_.size()) grow();
    const std::uint32_t spreadHash = spread(hash);
    Slot& slot = slots_[search(spreadHash, isEqual)];
    if (!slot.isFree()) return slot.place();
    slot = {spreadHash, place + 1};
    ++count_;
    return std::nullopt;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t placeFromOne = 0;

    bool isFree() const { return placeFromOne == 0; }
    std::uint32_t place() const { return placeFromOne - 1; }
  };

  /// Counters and pointers differ in few bits; the upper half of the product differs with each of them.
  static std::uint32_t spread(std::uint64_t hash) {
    return static_cast<std::uint32_t>(((hash ^ (hash >> 32)) * 0x9E3779B97F4A7C15ULL) >> 32);
  }
  std::size_t firstSlot(std::uint32_t hash) const { return hash >> shift_; }
  std::size_t nextSlot(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }

  /// The slot of the equal place, or the free one where it belongs.
  template <class IsEqual>
  std::size_t search(std::uint32_t hash, IsEqual& isEqual) const {
    std::size_t slot = firstSlot(hash);
    while (!slots_[slot].isFree() && !(slots_[slot].hash == hash && isEqual(slots_[slot].place())))
      slot = nextSlot(slot);
    return slot;
  }

  void grow() {
    constexpr std::size_t kSmallest = 16, kFactor = 4;
    std::vector<Slot> old(slots_.empty() ? kSmallest : kFactor * slots_.size());
    old.swap(slots_);
    shift_ = 32 - std::countr_zero(slots_.size());
    for (const Slot& moved : old) {
      if (moved.isFree()) continue;
      std::size_t slot = firstSlot(moved.hash);
      while (!slots_[slot].isFree()) slot = nextSlot(slot);
      slots_[slot] = moved;
    }
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
  int shift_ = 0;
};

}  // namespace linewatch
