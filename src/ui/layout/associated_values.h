#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace linewatch::ui {

/// Values that other code attaches to an object, destroyed together with it.
class AssociatedValues {
 public:
  /// Replaces the owner's earlier value; null removes it. `owner` is an identity only.
  void set(const void* owner, std::shared_ptr<void> value) {
    const auto place =
        std::find_if(values_.begin(), values_.end(), [&](const auto& each) { return each.first == owner; });
    if (place == values_.end()) {
      if (value) values_.emplace_back(owner, std::move(value));
    } else {
      // The earlier value is destroyed last, as its destructor may come back here.
      place->second.swap(value);
      if (!place->second) values_.erase(place);
    }
  }

 private:
  std::vector<std::pair<const void*, std::shared_ptr<void>>> values_;
};

}  // namespace linewatch::ui
