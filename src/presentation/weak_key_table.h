#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

namespace linewatch {

/// Values of objects that the table does not keep alive: an entry goes away by itself with its object.
/// Objects are told apart by identity and visited in the order in which they were first entered.
template <class Key, class Value>
class WeakKeyTable {
 public:
  /// The value takes the place of an earlier one of the object. A null object is not entered.
  void set(const std::shared_ptr<Key>& key, Value value) {
    if (!key) return;
    if (Entry* entry = entryOf(key.get())) {
      entry->value = std::move(value);
      return;
    }
    makeRoom();
    places_[key.get()] = entries_.size();
    entries_.push_back({key.get(), key, std::move(value)});
  }

  /// Null when the object has no entry. Entering another object ends the pointer's use.
  Value* find(const Key* key) {
    Entry* entry = entryOf(key);
    return entry == nullptr ? nullptr : &entry->value;
  }

  void remove(const Key* key) {
    const auto place = places_.find(key);
    if (place == places_.end()) return;
    entries_[place->second].object.reset();
    places_.erase(place);
  }

  /// The objects that live now, kept alive by whoever holds the answer.
  std::vector<std::shared_ptr<Key>> keys() const {
    std::vector<std::shared_ptr<Key>> living;
    for (const Entry& entry : entries_) {
      if (auto key = entry.object.lock()) living.push_back(std::move(key));
    }
    return living;
  }

  /// Entries of dead objects that were not swept away yet are among them.
  std::size_t capacityInUse() const { return entries_.size(); }

 private:
  struct Entry {
    const Key* identity;
    std::weak_ptr<Key> object;
    Value value;
  };

  static constexpr std::size_t kSmallestSweep = 32;

  // An address may have got a new object since its entry was made.
  Entry* entryOf(const Key* key) {
    const auto place = places_.find(key);
    if (place == places_.end()) return nullptr;
    Entry& entry = entries_[place->second];
    if (!entry.object.expired()) return &entry;
    places_.erase(place);
    return nullptr;
  }

  void makeRoom() {
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
