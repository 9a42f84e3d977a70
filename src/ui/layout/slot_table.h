#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace linewatch::ui {

/// Entries with fixed numbers. The number of a removed entry is reused.
template <class T>
class SlotTable {
 public:
  std::uint32_t add(T entry) {
    if (free_.empty()) {
      slots_.push_back(std::move(entry));
      return static_cast<std::uint32_t>(slots_.size() - 1);
    }
    const std::uint32_t slot = free_.back();
    free_.pop_back();
    slots_[slot] = std::move(entry);
    return slot;
  }
  void remove(std::uint32_t slot) {
    slots_[slot] = T{};
    free_.push_back(slot);
  }
  void clear() {
    slots_.clear();
    free_.clear();
  }

  T& operator[](std::uint32_t slot) { return slots_[slot]; }
  const T& operator[](std::uint32_t slot) const { return slots_[slot]; }

  /// All slots; a removed entry is a `T{}`.
  std::size_t size() const { return slots_.size(); }
  auto begin() const { return slots_.begin(); }
  auto end() const { return slots_.end(); }

 private:
  std::vector<T> slots_;
  std::vector<std::uint32_t> free_;
};

}  // namespace linewatch::ui
