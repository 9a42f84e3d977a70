#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace linewatch::simulation {

/// Values by key, in the order in which the keys were added.
template <class T>
class KeyedTable {
 public:
  using Entry = std::pair<std::string, T>;

  KeyedTable() = default;
  KeyedTable(std::initializer_list<Entry> entries) {
    for (const Entry& entry : entries) (*this)[entry.first] = entry.second;
  }

  /// The value of the key. A new key is added at the end with a default value.
  T& operator[](const std::string& key) {
    const auto [place, isNew] = places_.try_emplace(key, entries_.size());
    if (isNew) entries_.emplace_back(key, T{});
    return entries_[place->second].second;
  }
  /// The value of the key; null when there is none.
  const T* find(const std::string& key) const {
    const auto place = places_.find(key);
    return place == places_.end() ? nullptr : &entries_[place->second].second;
  }

  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }
  std::size_t size() const { return entries_.size(); }
  void clear() {
    entries_.clear();
    places_.clear();
  }

 private:
  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> places_;
};

}  // namespace linewatch::simulation
