#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace linewatch {

/// Maps objects to values without keeping the objects alive. An object with `associatedValues` owns its
/// value, so that both are destroyed together; the value of any other object is destroyed by a later sweep.
/// Objects are compared by identity and visited in the order of their insertion.
template <class Key, class Value>
class WeakKeyTable {
 public:
  WeakKeyTable() = default;
  WeakKeyTable(const WeakKeyTable&) = delete;
  WeakKeyTable& operator=(const WeakKeyTable&) = delete;
  ~WeakKeyTable() {
    for (const auto& key : keys()) keepWith(*key, nullptr);
  }

  /// Replaces an earlier value of the object. A null object is ignored.
  void set(const std::shared_ptr<Key>& key, Value newValue) {
    if (!key) return;
    auto value = std::make_shared<Value>(std::move(newValue));
    sweepSometimes();
    const auto [place, isNew] = places_.try_emplace(key.get(), entries_.size());
    if (isNew) entries_.emplace_back();
    // A destroyed object may have left an entry at the same address.
    entries_[place->second] = {key.get(), key, value, kKeysKeepValues ? nullptr : value};
    keepWith(*key, std::move(value));
  }

  /// Null when the object has no entry. The value stays valid when the table changes.
  std::shared_ptr<Value> find(const Key* key) const {
    const auto place = places_.find(key);
    if (place == places_.end()) return nullptr;
    const Entry& entry = entries_[place->second];
    return entry.object.expired() ? nullptr : entry.value.lock();
  }

  void remove(const std::shared_ptr<Key>& key) {
    const auto place = places_.find(key.get());
    if (place == places_.end()) return;
    entries_[place->second] = {};
    places_.erase(place);
    if (key) keepWith(*key, nullptr);
  }

  /// The objects that are alive now, kept alive by the result.
  std::vector<std::shared_ptr<Key>> keys() const {
    std::vector<std::shared_ptr<Key>> living;
    for (const Entry& entry : entries_) {
      if (auto key = entry.object.lock()) living.push_back(std::move(key));
    }
    return living;
  }

  /// Counts entries of destroyed objects too, until they are swept away.
  std::size_t entryCount() const { return entries_.size(); }

 private:
  struct Entry {
    const Key* identity = nullptr;
    std::weak_ptr<Key> object;
    std::weak_ptr<Value> value;
    /// Null when the object owns the value.
    std::shared_ptr<Value> kept;
  };

  static constexpr std::size_t kSmallestSweep = 32;
  static constexpr bool kKeysKeepValues = requires(Key & key) { key.associatedValues(); };

  void keepWith(Key& key, std::shared_ptr<Value> value) {
    if constexpr (kKeysKeepValues) key.associatedValues().set(this, std::move(value));
  }

  // Sweeps when the number of entries has doubled, so that an insertion takes constant time on average.
  void sweepSometimes() {
    if (entries_.size() < sweepAt_) return;
    std::erase_if(entries_, [](const Entry& entry) { return entry.object.expired(); });
    places_.clear();
    for (std::size_t i = 0; i < entries_.size(); ++i) places_[entries_[i].identity] = i;
    sweepAt_ = std::max(kSmallestSweep, 2 * entries_.size());
  }

  std::vector<Entry> entries_;
  std::unordered_map<const Key*, std::size_t> places_;
  std::size_t sweepAt_ = kSmallestSweep;
};

}  // namespace linewatch
