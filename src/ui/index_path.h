#pragma once

#include <cstddef>

namespace linewatch::ui {

/// The place of a row in a table, both counted from 0.
struct IndexPath {
  std::size_t section = 0;
  std::size_t row = 0;

  bool operator==(const IndexPath&) const = default;
};

}  // namespace linewatch::ui
