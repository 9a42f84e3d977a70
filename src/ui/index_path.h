#pragma once

#include <cstddef>

namespace linewatch::ui {

/// The position of a row in a table. Both numbers count from 0.
struct IndexPath {
  std::size_t section = 0;
  std::size_t row = 0;

  bool operator==(const IndexPath&) const = default;
};

}  // namespace linewatch::ui
